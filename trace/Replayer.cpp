#include "trace/Replayer.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <stdexcept>

namespace morvil::trace {

namespace {

constexpr ULONG kEngineVersion = 0x00030100;
constexpr ULONG kPatterns = 6;

struct Instance {
    DHPDEV handle = nullptr;
    HDEV device = nullptr;
    HANDLE printer = nullptr;
    SURFOBJ* page = nullptr;
};

// A recorded text with its terminator, for a function that takes a changeable one; null when none was recorded.
class TextArgument {
  public:
    explicit TextArgument(const Bytes& bytes) : m_text(bytes.size() / sizeof(WCHAR)) {
        if (!bytes.empty()) std::memcpy(m_text.data(), bytes.data(), m_text.size() * sizeof(WCHAR));
    }
    [[nodiscard]] WCHAR* get() { return m_text.empty() || m_text.back() != 0 ? nullptr : m_text.data(); }

  private:
    std::vector<WCHAR> m_text;
};

class LineObject {
  public:
    explicit LineObject(const std::optional<LineArgument>& line) {
        if (!line) return;
        m_present = true;
        m_line.fl = line->flags;
        m_line.iJoin = line->join;
        m_line.iEndCap = line->endCap;
        std::memcpy(&m_line.elWidth, &line->width, sizeof(line->width));
        std::memcpy(&m_line.eMiterLimit, &line->miterLimit, sizeof(line->miterLimit));
        std::memcpy(&m_line.elStyleState, &line->styleState, sizeof(line->styleState));
        m_style.resize(line->style.size());
        for (std::size_t i = 0; i < m_style.size(); ++i) std::memcpy(&m_style[i], &line->style[i], sizeof(ULONG));
        m_line.cstyle = static_cast<ULONG>(m_style.size());
        m_line.pstyle = m_style.empty() ? nullptr : m_style.data();
    }
    [[nodiscard]] LINEATTRS* get() { return m_present ? &m_line : nullptr; }

  private:
    bool m_present = false;
    LINEATTRS m_line{};
    std::vector<FLOAT_LONG> m_style;
};

// Stands for the type of what functions without a result give.
struct NoResult {};
template <typename T>
struct ResultOf {
    using Type = T;
};
template <>
struct ResultOf<NoResult> {
    using Type = void;
};

template <typename T>
T* pointerTo(std::optional<T>& value) {
    return value ? &*value : nullptr;
}

class Player {
  public:
    Player(const Recording& recording, ReplayEngine& engine, const DRVENABLEDATA& data) : m_recording(recording), m_engine(engine) {
        for (ULONG i = 0; i < data.c; ++i) m_functions[data.pdrvfn[i].iFunc] = data.pdrvfn[i].pfn;
    }
    // What a recording that stopped half-way has left open.
    ~Player() {
        for (Instance& instance : m_instances) {
            if (instance.page != nullptr) disable(INDEX_DrvDisableSurface, instance);
            if (instance.handle != nullptr) disable(INDEX_DrvDisablePDEV, instance);
            close(instance);
        }
    }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    std::int64_t play(const Event& event);

  private:
    // The second argument only names the result's type.
    template <typename Result, typename... Arguments>
    typename ResultOf<Result>::Type call(const Event& event, Result, Arguments... arguments) {
        const auto found = m_functions.find(event.function);
        if (found == m_functions.end()) throw std::runtime_error("the driver does not offer it");
        using Function = typename ResultOf<Result>::Type(APIENTRY*)(Arguments...);
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(found->second))(arguments...);
    }
    void disable(ULONG function, const Instance& instance) const {
        const auto found = m_functions.find(function);
        if (found != m_functions.end()) reinterpret_cast<void(APIENTRY*)(DHPDEV)>(reinterpret_cast<void (*)()>(found->second))(instance.handle);
    }
    void close(Instance& instance) {
        if (instance.device != nullptr) m_engine.closeDevice(instance.device);
        if (instance.printer != nullptr) ClosePrinter(instance.printer);
        instance = {};
    }
    std::int64_t enablePDEV(const Event& event);
    std::int64_t enableSurface(const Event& event);
    std::int64_t document(const Event& event);
    std::int64_t drawing(const Event& event);
    std::int64_t transfer(const Event& event);

    static std::int64_t number(const Event& event, std::size_t index) {
        if (index >= event.numbers.size()) throw std::runtime_error("a number is missing in the recording");
        return event.numbers[index];
    }
    static ULONG ulong(const Event& event, std::size_t index) { return static_cast<ULONG>(number(event, index)); }
    static const Bytes& block(const Event& event, std::size_t index) {
        if (index >= event.blocks.size()) throw std::runtime_error("a block is missing in the recording");
        return event.blocks[index];
    }
    Instance& instance(const Event& event, std::size_t index) {
        const std::int64_t which = number(event, index);
        if (which < 1 || which > static_cast<std::int64_t>(m_instances.size())) throw std::runtime_error("the recording names an instance that was never made");
        return m_instances[static_cast<std::size_t>(which - 1)];
    }
    // The page of the instance whose surface was made last.
    SURFOBJ* page(const Event& event) {
        if (!event.surfaces[0]) return nullptr;
        return m_page;
    }
    void putBits(const Event& event);

    const Recording& m_recording;
    ReplayEngine& m_engine;
    std::map<ULONG, PFN> m_functions;
    std::vector<Instance> m_instances;
    SURFOBJ* m_page = nullptr;
    XFORMOBJ m_transform{};
};

std::int64_t Player::enablePDEV(const Event& event) {
    Instance made;
    WString printer = m_recording.printer;
    if (OpenPrinterW(printer.data(), &made.printer, nullptr) == FALSE) made.printer = nullptr;
    made.device = m_engine.openDevice();
    Bytes devmode = block(event, 0);
    TextArgument logAddress(block(event, 1));
    TextArgument name(block(event, 2));
    std::array<HSURF, kPatterns> patterns{};
    GDIINFO caps{};
    DEVINFO info{};
    made.handle = call(event, DHPDEV{}, devmode.empty() ? nullptr : reinterpret_cast<DEVMODEW*>(devmode.data()), logAddress.get(), kPatterns, patterns.data(),
                       static_cast<ULONG>(sizeof(caps)), reinterpret_cast<ULONG*>(&caps), static_cast<ULONG>(sizeof(info)), &info, made.device, name.get(), made.printer);
    if (made.handle == nullptr) {
        close(made);
        return 0;
    }
    m_engine.deviceReady(made.device, caps, info);
    m_instances.push_back(made);
    return static_cast<std::int64_t>(m_instances.size());
}

std::int64_t Player::enableSurface(const Event& event) {
    Instance& owner = instance(event, 0);
    const HSURF surface = call(event, HSURF{}, owner.handle);
    if (surface == nullptr) return 0;
    owner.page = m_engine.pageSurface(surface, owner.handle);
    m_page = owner.page;
    return 1;
}

void Player::putBits(const Event& event) {
    const Bytes& bits = block(event, 0);
    if (m_page == nullptr || bits.size() != m_page->cjBits || m_page->pvBits == nullptr) throw std::runtime_error("the page's surface has another size than the recorded one");
    std::memcpy(m_page->pvBits, bits.data(), bits.size());
}

std::int64_t Player::document(const Event& event) {
    std::optional<POINTL> origin = event.points[0];
    switch (event.function) {
        case INDEX_DrvStartDoc: {
            TextArgument name(block(event, 0));
            return call(event, BOOL{}, page(event), name.get(), static_cast<DWORD>(ulong(event, 0)));
        }
        case INDEX_DrvStartPage: return call(event, BOOL{}, page(event));
        case INDEX_DrvStartBanding: return call(event, BOOL{}, page(event), pointerTo(origin));
        case INDEX_DrvSendPage: putBits(event); return call(event, BOOL{}, page(event));
        case INDEX_DrvNextBand: putBits(event); return call(event, BOOL{}, page(event), pointerTo(origin));
        case INDEX_DrvEndDoc: return call(event, BOOL{}, page(event), static_cast<FLONG>(ulong(event, 0)));
        case INDEX_DrvEscape: {
            Bytes in = block(event, 0);
            Bytes out(ulong(event, 1));
            return static_cast<std::int64_t>(call(event, ULONG{}, page(event), ulong(event, 0), static_cast<ULONG>(in.size()), static_cast<PVOID>(in.empty() ? nullptr : in.data()),
                                                  static_cast<ULONG>(out.size()), static_cast<PVOID>(out.empty() ? nullptr : out.data())));
        }
        default: throw std::runtime_error("the recording holds a call that is never made");
    }
}

std::int64_t Player::drawing(const Event& event) {
    std::optional<POINTL> origin = event.points[0];
    LineObject line(event.line);
    SURFOBJ* const target = page(event);
    CLIPOBJ* const clip = m_engine.clip(event.clip);
    BRUSHOBJ* const first = m_engine.brush(event.brushes[0], 0);
    BRUSHOBJ* const second = m_engine.brush(event.brushes[1], 1);
    switch (event.function) {
        case INDEX_DrvStrokePath:
            return call(event, BOOL{}, target, m_engine.path(event.path), clip, number(event, 0) != 0 ? &m_transform : nullptr, first, pointerTo(origin), line.get(),
                        static_cast<MIX>(ulong(event, 1)));
        case INDEX_DrvFillPath:
            return call(event, BOOL{}, target, m_engine.path(event.path), clip, first, pointerTo(origin), static_cast<MIX>(ulong(event, 0)), static_cast<FLONG>(ulong(event, 1)));
        case INDEX_DrvStrokeAndFillPath:
            return call(event, BOOL{}, target, m_engine.path(event.path), clip, number(event, 0) != 0 ? &m_transform : nullptr, first, line.get(), second, pointerTo(origin),
                        static_cast<MIX>(ulong(event, 1)), static_cast<FLONG>(ulong(event, 2)));
        default: {
            std::array<std::optional<RECTL>, 2> areas = event.rectangles;
            return call(event, BOOL{}, target, m_engine.text(), static_cast<FONTOBJ*>(nullptr), clip, pointerTo(areas[0]), pointerTo(areas[1]), first, second, pointerTo(origin),
                        static_cast<MIX>(ulong(event, 0)));
        }
    }
}

std::int64_t Player::transfer(const Event& event) {
    std::array<std::optional<RECTL>, 2> areas = event.rectangles;
    std::array<std::optional<POINTL>, 3> points = event.points;
    std::optional<COLORADJUSTMENT> adjustment = event.adjustment;
    SURFOBJ* const target = page(event);
    SURFOBJ* const source = m_engine.otherSurface(event.surfaces[1], 1);
    SURFOBJ* const mask = m_engine.otherSurface(event.surfaces[2], 2);
    CLIPOBJ* const clip = m_engine.clip(event.clip);
    XLATEOBJ* const translation = m_engine.translation(event.translation);
    switch (event.function) {
        case INDEX_DrvBitBlt:
            return call(event, BOOL{}, target, source, mask, clip, translation, pointerTo(areas[0]), pointerTo(points[0]), pointerTo(points[1]), m_engine.brush(event.brushes[0], 0),
                        pointerTo(points[2]), static_cast<ROP4>(ulong(event, 0)));
        case INDEX_DrvCopyBits: return call(event, BOOL{}, target, source, clip, translation, pointerTo(areas[0]), pointerTo(points[0]));
        default:
            return call(event, BOOL{}, target, source, mask, clip, translation, pointerTo(adjustment), pointerTo(points[0]), pointerTo(areas[0]), pointerTo(areas[1]),
                        pointerTo(points[1]), ulong(event, 0));
    }
}

std::int64_t Player::play(const Event& event) {
    switch (event.function) {
        case INDEX_DrvEnablePDEV: return enablePDEV(event);
        case INDEX_DrvEnableSurface: return enableSurface(event);
        case INDEX_DrvCompletePDEV: call(event, NoResult{}, instance(event, 0).handle, instance(event, 0).device); return 0;
        case INDEX_DrvResetPDEV: return call(event, BOOL{}, instance(event, 0).handle, instance(event, 1).handle);
        case INDEX_DrvDisableSurface:
            call(event, NoResult{}, instance(event, 0).handle);
            instance(event, 0).page = nullptr;
            return 0;
        case INDEX_DrvDisablePDEV:
            call(event, NoResult{}, instance(event, 0).handle);
            close(instance(event, 0));
            return 0;
        case INDEX_DrvDisableDriver: call(event, NoResult{}); return 0;
        case INDEX_DrvGetGlyphMode: return call(event, ULONG{}, instance(event, 0).handle, static_cast<FONTOBJ*>(nullptr));
        case INDEX_DrvDitherColor: return call(event, ULONG{}, instance(event, 0).handle, ulong(event, 1), ulong(event, 2), static_cast<ULONG*>(nullptr));
        case INDEX_DrvStrokePath:
        case INDEX_DrvFillPath:
        case INDEX_DrvStrokeAndFillPath:
        case INDEX_DrvTextOut: return drawing(event);
        case INDEX_DrvBitBlt:
        case INDEX_DrvCopyBits:
        case INDEX_DrvStretchBlt: return transfer(event);
        default: return document(event);
    }
}

}  // namespace

ReplayReport replay(const Recording& recording, BOOL (*enableDriver)(ULONG, ULONG, DRVENABLEDATA*), ReplayEngine& engine) {
    ReplayReport report;
    DRVENABLEDATA data{};
    if (enableDriver(kEngineVersion, sizeof(data), &data) == FALSE) {
        report.reason = "DrvEnableDriver refused";
        return report;
    }
    Player player(recording, engine, data);
    for (const Event& event : recording.events) {
        const std::string call = "call " + std::to_string(report.calls + 1) + ", " + functionName(event.function) + ": ";
        try {
            const std::int64_t result = player.play(event);
            if (result != event.result) {
                report.reason = call + "answered " + std::to_string(result) + ", recorded was " + std::to_string(event.result);
                return report;
            }
        } catch (const std::runtime_error& error) {
            report.reason = call + error.what();
            return report;
        }
        ++report.calls;
    }
    report.done = true;
    return report;
}

}  // namespace morvil::trace
