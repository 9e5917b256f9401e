#include "trace/RecordingFile.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <type_traits>

namespace morvil::trace {

namespace {

constexpr std::array<std::uint8_t, 8> kMagic{'M', 'v', 'T', 'r', 'a', 'c', 'e', '1'};

// One description of the members serves writing and reading: visit(archive, value).
class Writer {
  public:
    template <typename T>
    requires std::is_trivially_copyable_v<T>
    void plain(T& value) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&value);
        m_bytes.insert(m_bytes.end(), bytes, bytes + sizeof(T));
    }
    template <typename T>
    void length(std::vector<T>& list) {
        auto count = static_cast<std::uint64_t>(list.size());
        plain(count);
    }
    template <typename T>
    bool present(std::optional<T>& value) {
        auto flag = static_cast<std::uint8_t>(value.has_value());
        plain(flag);
        return value.has_value();
    }
    Bytes take() { return std::move(m_bytes); }

  private:
    Bytes m_bytes;
};

class Reader {
  public:
    explicit Reader(const Bytes& bytes) : m_bytes(bytes) {}
    template <typename T>
    requires std::is_trivially_copyable_v<T>
    void plain(T& value) {
        if (m_bytes.size() - m_at < sizeof(T)) throw std::out_of_range("byte " + std::to_string(m_at) + ": the recording ends inside a value");
        std::memcpy(&value, m_bytes.data() + m_at, sizeof(T));
        m_at += sizeof(T);
    }
    // Every element takes at least a byte, so a length beyond the rest cannot be right.
    template <typename T>
    void length(std::vector<T>& list) {
        std::uint64_t count = 0;
        plain(count);
        constexpr std::size_t least = std::is_trivially_copyable_v<T> ? sizeof(T) : 1;
        if (count > (m_bytes.size() - m_at) / least) throw std::out_of_range("byte " + std::to_string(m_at) + ": a list is longer than the recording");
        list.resize(static_cast<std::size_t>(count));
    }
    template <typename T>
    bool present(std::optional<T>& value) {
        std::uint8_t flag = 0;
        plain(flag);
        if (flag != 0) value.emplace();
        return flag != 0;
    }
    [[nodiscard]] bool atEnd() const { return m_at == m_bytes.size(); }

  private:
    const Bytes& m_bytes;
    std::size_t m_at = 0;
};

template <typename Archive, typename T>
requires std::is_trivially_copyable_v<T>
void visit(Archive& archive, T& value) {
    archive.plain(value);
}

template <typename Archive>
void visit(Archive& archive, WString& text) {
    std::vector<WCHAR> characters(text.begin(), text.end());
    archive.length(characters);
    for (WCHAR& character : characters) archive.plain(character);
    text.assign(characters.begin(), characters.end());
}

template <typename Archive, typename T>
void visit(Archive& archive, std::vector<T>& list) {
    archive.length(list);
    for (T& element : list) visit(archive, element);
}

template <typename Archive, typename T>
void visit(Archive& archive, std::optional<T>& value) {
    if (archive.present(value)) visit(archive, *value);
}

template <typename Archive>
void visit(Archive& archive, PathPart& part) {
    visit(archive, part.flags);
    visit(archive, part.points);
}
template <typename Archive>
void visit(Archive& archive, PathArgument& path) {
    visit(archive, path.flags);
    visit(archive, path.curves);
    visit(archive, path.parts);
}
template <typename Archive>
void visit(Archive& archive, TranslationArgument& translation) {
    visit(archive, translation.flags);
    visit(archive, translation.sourceType);
    visit(archive, translation.targetType);
    visit(archive, translation.table);
    visit(archive, translation.sourcePalette);
}
template <typename Archive>
void visit(Archive& archive, LineArgument& line) {
    for (ULONG* const value : {&line.flags, &line.join, &line.endCap, &line.width, &line.miterLimit, &line.styleState}) visit(archive, *value);
    visit(archive, line.style);
}
template <typename Archive>
void visit(Archive& archive, Event& event) {
    visit(archive, event.function);
    visit(archive, event.result);
    visit(archive, event.numbers);
    visit(archive, event.blocks);
    for (auto& surface : event.surfaces) visit(archive, surface);
    visit(archive, event.path);
    for (auto& brush : event.brushes) visit(archive, brush);
    visit(archive, event.clip);
    visit(archive, event.translation);
    visit(archive, event.line);
    for (auto& rectangle : event.rectangles) visit(archive, rectangle);
    for (auto& point : event.points) visit(archive, point);
    visit(archive, event.adjustment);
}
template <typename Archive>
void visit(Archive& archive, KeptFile& file) {
    visit(archive, file.path);
    visit(archive, file.content);
}
template <typename Archive>
void visit(Archive& archive, Recording& recording) {
    visit(archive, recording.printer);
    visit(archive, recording.files);
    visit(archive, recording.largestSurface);
    visit(archive, recording.events);
}

}  // namespace

Bytes toBytes(Recording recording) {  // one description serves both directions, so it takes its members as changeable
    Writer writer;
    std::array<std::uint8_t, 8> magic = kMagic;
    writer.plain(magic);
    visit(writer, recording);
    return writer.take();
}

std::optional<Recording> fromBytes(const Bytes& bytes, std::string& reason) {
    try {
        Reader reader(bytes);
        std::array<std::uint8_t, 8> magic{};
        reader.plain(magic);
        if (magic != kMagic) throw std::out_of_range("byte 0: not a recording");
        Recording recording;
        visit(reader, recording);
        if (reader.atEnd()) return recording;
        reason = "bytes follow behind the recording's end";
    } catch (const std::out_of_range& error) {
        reason = error.what();
    }
    return std::nullopt;
}

std::string functionName(ULONG function) {
    switch (function) {
        case INDEX_DrvEnablePDEV: return "DrvEnablePDEV";
        case INDEX_DrvCompletePDEV: return "DrvCompletePDEV";
        case INDEX_DrvDisablePDEV: return "DrvDisablePDEV";
        case INDEX_DrvEnableSurface: return "DrvEnableSurface";
        case INDEX_DrvDisableSurface: return "DrvDisableSurface";
        case INDEX_DrvResetPDEV: return "DrvResetPDEV";
        case INDEX_DrvDisableDriver: return "DrvDisableDriver";
        case INDEX_DrvDitherColor: return "DrvDitherColor";
        case INDEX_DrvStrokePath: return "DrvStrokePath";
        case INDEX_DrvFillPath: return "DrvFillPath";
        case INDEX_DrvStrokeAndFillPath: return "DrvStrokeAndFillPath";
        case INDEX_DrvBitBlt: return "DrvBitBlt";
        case INDEX_DrvCopyBits: return "DrvCopyBits";
        case INDEX_DrvStretchBlt: return "DrvStretchBlt";
        case INDEX_DrvTextOut: return "DrvTextOut";
        case INDEX_DrvEscape: return "DrvEscape";
        case INDEX_DrvStartPage: return "DrvStartPage";
        case INDEX_DrvSendPage: return "DrvSendPage";
        case INDEX_DrvStartDoc: return "DrvStartDoc";
        case INDEX_DrvEndDoc: return "DrvEndDoc";
        case INDEX_DrvStartBanding: return "DrvStartBanding";
        case INDEX_DrvNextBand: return "DrvNextBand";
        case INDEX_DrvGetGlyphMode: return "DrvGetGlyphMode";
        default: return "function " + std::to_string(function);
    }
}

}  // namespace morvil::trace
