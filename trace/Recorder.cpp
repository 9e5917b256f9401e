#include "trace/Recorder.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>

#include "trace/Arguments.h"

namespace morvil::trace {

namespace {

// Functions of the driver interface have no room for a context, so the one recorder is found here.
struct RecorderState {
    EnableDriver enable = nullptr;
    Listener listener;
    std::map<ULONG, PFN> functions;  // of the driver behind
    std::vector<DRVFN> table;        // offered in their place
    std::vector<DHPDEV> instances;   // in the order of their making
};
std::unique_ptr<RecorderState> theRecorder;

// The driver's own function, to be called at once: what happens from here to its answer is its doing.
template <typename Function>
Function original(ULONG index) {
    theRecorder->listener.callBegins();
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(theRecorder->functions.at(index)));
}

template <typename Result>
Result tell(Event& event, Result result) {
    event.result = static_cast<std::int64_t>(result);
    theRecorder->listener.heard(event);
    return result;
}

std::int64_t numberOf(DHPDEV instance) {
    const std::vector<DHPDEV>& known = theRecorder->instances;
    for (std::size_t i = known.size(); i > 0; --i) {
        if (known[i - 1] == instance) return static_cast<std::int64_t>(i);
    }
    return 0;
}

Event eventOf(ULONG function, const SURFOBJ* target) {
    Event event{.function = function};
    event.surfaces[0] = describe(target);
    return event;
}

// The page as it is now, which is what the driver stores.
void keepBits(Event& event, const SURFOBJ* page) {
    if (page != nullptr) event.blocks.push_back(blockBytes(page->pvBits, page->cjBits));
}

// An engine may know a shorter record than ours; what it lacks is zero.
template <typename Record>
Record beginningOf(const void* data, ULONG bytes) {
    Record record{};
    if (data != nullptr) std::memcpy(&record, data, std::min<std::size_t>(bytes, sizeof(record)));
    return record;
}

// ---- instances and surfaces ---------------------------------------------------------------------------------------------

DHPDEV enablePDEV(DEVMODEW* devmode, PWSTR logAddress, ULONG patternCount, HSURF* patterns, ULONG capsBytes, ULONG* caps, ULONG infoBytes, DEVINFO* info, HDEV device,
                  PWSTR name, HANDLE printer) {
    Event event{.function = INDEX_DrvEnablePDEV, .numbers = {patternCount, capsBytes, infoBytes}};
    event.blocks = {devmode == nullptr ? Bytes() : blockBytes(devmode, std::size_t{devmode->dmSize} + devmode->dmDriverExtra), textBytes(logAddress), textBytes(name)};
    const DHPDEV instance = original<decltype(&enablePDEV)>(INDEX_DrvEnablePDEV)(devmode, logAddress, patternCount, patterns, capsBytes, caps, infoBytes, info, device, name, printer);
    if (instance != nullptr) {
        theRecorder->instances.push_back(instance);
        theRecorder->listener.deviceTold(beginningOf<GDIINFO>(caps, capsBytes), beginningOf<DEVINFO>(info, infoBytes));
    }
    tell(event, instance == nullptr ? 0 : numberOf(instance));
    return instance;
}

VOID completePDEV(DHPDEV instance, HDEV device) {
    Event event{.function = INDEX_DrvCompletePDEV, .numbers = {numberOf(instance)}};
    original<decltype(&completePDEV)>(INDEX_DrvCompletePDEV)(instance, device);
    tell(event, 0);
}

BOOL resetPDEV(DHPDEV from, DHPDEV to) {
    Event event{.function = INDEX_DrvResetPDEV, .numbers = {numberOf(from), numberOf(to)}};
    return tell(event, original<decltype(&resetPDEV)>(INDEX_DrvResetPDEV)(from, to));
}

VOID disablePDEV(DHPDEV instance) {
    Event event{.function = INDEX_DrvDisablePDEV, .numbers = {numberOf(instance)}};
    original<decltype(&disablePDEV)>(INDEX_DrvDisablePDEV)(instance);
    tell(event, 0);
}

HSURF enableSurface(DHPDEV instance) {
    Event event{.function = INDEX_DrvEnableSurface, .numbers = {numberOf(instance)}};
    const HSURF surface = original<decltype(&enableSurface)>(INDEX_DrvEnableSurface)(instance);
    tell(event, surface == nullptr ? 0 : 1);
    return surface;
}

VOID disableSurface(DHPDEV instance) {
    Event event{.function = INDEX_DrvDisableSurface, .numbers = {numberOf(instance)}};
    original<decltype(&disableSurface)>(INDEX_DrvDisableSurface)(instance);
    tell(event, 0);
}

VOID disableDriver() {
    Event event{.function = INDEX_DrvDisableDriver};
    original<decltype(&disableDriver)>(INDEX_DrvDisableDriver)();
    tell(event, 0);
}

// ---- document -----------------------------------------------------------------------------------------------------------

BOOL startDoc(SURFOBJ* page, PWSTR name, DWORD job) {
    Event event = eventOf(INDEX_DrvStartDoc, page);
    event.blocks = {textBytes(name)};
    event.numbers = {job};
    return tell(event, original<decltype(&startDoc)>(INDEX_DrvStartDoc)(page, name, job));
}

BOOL startPage(SURFOBJ* page) {
    Event event = eventOf(INDEX_DrvStartPage, page);
    return tell(event, original<decltype(&startPage)>(INDEX_DrvStartPage)(page));
}

BOOL sendPage(SURFOBJ* page) {
    Event event = eventOf(INDEX_DrvSendPage, page);
    keepBits(event, page);
    return tell(event, original<decltype(&sendPage)>(INDEX_DrvSendPage)(page));
}

BOOL startBanding(SURFOBJ* page, POINTL* origin) {
    Event event = eventOf(INDEX_DrvStartBanding, page);
    event.points[0] = copyOf(origin);
    return tell(event, original<decltype(&startBanding)>(INDEX_DrvStartBanding)(page, origin));
}

BOOL nextBand(SURFOBJ* page, POINTL* origin) {
    Event event = eventOf(INDEX_DrvNextBand, page);
    event.points[0] = copyOf(origin);
    keepBits(event, page);
    return tell(event, original<decltype(&nextBand)>(INDEX_DrvNextBand)(page, origin));
}

BOOL endDoc(SURFOBJ* page, FLONG flags) {
    Event event = eventOf(INDEX_DrvEndDoc, page);
    event.numbers = {flags};
    return tell(event, original<decltype(&endDoc)>(INDEX_DrvEndDoc)(page, flags));
}

// ---- drawing ------------------------------------------------------------------------------------------------------------

BOOL strokePath(SURFOBJ* page, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* transform, BRUSHOBJ* brush, POINTL* brushOrigin, LINEATTRS* line, MIX mix) {
    Event event = eventOf(INDEX_DrvStrokePath, page);
    event.path = describe(path);
    event.clip = describe(clip);
    event.brushes[0] = describe(brush);
    event.points[0] = copyOf(brushOrigin);
    event.line = describe(line);
    event.numbers = {transform != nullptr ? 1 : 0, mix};
    return tell(event, original<decltype(&strokePath)>(INDEX_DrvStrokePath)(page, path, clip, transform, brush, brushOrigin, line, mix));
}

BOOL fillPath(SURFOBJ* page, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brushOrigin, MIX mix, FLONG options) {
    Event event = eventOf(INDEX_DrvFillPath, page);
    event.path = describe(path);
    event.clip = describe(clip);
    event.brushes[0] = describe(brush);
    event.points[0] = copyOf(brushOrigin);
    event.numbers = {mix, options};
    return tell(event, original<decltype(&fillPath)>(INDEX_DrvFillPath)(page, path, clip, brush, brushOrigin, mix, options));
}

BOOL strokeAndFillPath(SURFOBJ* page, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* transform, BRUSHOBJ* stroke, LINEATTRS* line, BRUSHOBJ* fill, POINTL* brushOrigin, MIX mix,
                       FLONG options) {
    Event event = eventOf(INDEX_DrvStrokeAndFillPath, page);
    event.path = describe(path);
    event.clip = describe(clip);
    event.brushes = {describe(stroke), describe(fill)};
    event.points[0] = copyOf(brushOrigin);
    event.line = describe(line);
    event.numbers = {transform != nullptr ? 1 : 0, mix, options};
    return tell(event, original<decltype(&strokeAndFillPath)>(INDEX_DrvStrokeAndFillPath)(page, path, clip, transform, stroke, line, fill, brushOrigin, mix, options));
}

BOOL bitBlt(SURFOBJ* target, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* area, POINTL* sourceOrigin, POINTL* maskOrigin, BRUSHOBJ* brush,
            POINTL* brushOrigin, ROP4 rop) {
    Event event = eventOf(INDEX_DrvBitBlt, target);
    event.surfaces[1] = describe(source);
    event.surfaces[2] = describe(mask);
    event.clip = describe(clip);
    event.translation = describe(translation);
    event.rectangles[0] = copyOf(area);
    event.points = {copyOf(sourceOrigin), copyOf(maskOrigin), copyOf(brushOrigin)};
    event.brushes[0] = describe(brush);
    event.numbers = {rop};
    return tell(event, original<decltype(&bitBlt)>(INDEX_DrvBitBlt)(target, source, mask, clip, translation, area, sourceOrigin, maskOrigin, brush, brushOrigin, rop));
}

BOOL copyBits(SURFOBJ* target, SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* area, POINTL* sourceOrigin) {
    Event event = eventOf(INDEX_DrvCopyBits, target);
    event.surfaces[1] = describe(source);
    event.clip = describe(clip);
    event.translation = describe(translation);
    event.rectangles[0] = copyOf(area);
    event.points[0] = copyOf(sourceOrigin);
    return tell(event, original<decltype(&copyBits)>(INDEX_DrvCopyBits)(target, source, clip, translation, area, sourceOrigin));
}

BOOL stretchBlt(SURFOBJ* target, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, COLORADJUSTMENT* adjustment, POINTL* brushOrigin, RECTL* area,
                RECTL* sourceArea, POINTL* maskOrigin, ULONG mode) {
    Event event = eventOf(INDEX_DrvStretchBlt, target);
    event.surfaces[1] = describe(source);
    event.surfaces[2] = describe(mask);
    event.clip = describe(clip);
    event.translation = describe(translation);
    event.adjustment = copyOf(adjustment);
    event.rectangles = {copyOf(area), copyOf(sourceArea)};
    event.points = {copyOf(brushOrigin), copyOf(maskOrigin), std::nullopt};
    event.numbers = {mode};
    return tell(event, original<decltype(&stretchBlt)>(INDEX_DrvStretchBlt)(target, source, mask, clip, translation, adjustment, brushOrigin, area, sourceArea, maskOrigin, mode));
}

BOOL textOut(SURFOBJ* target, STROBJ* text, FONTOBJ* font, CLIPOBJ* clip, RECTL* extra, RECTL* opaque, BRUSHOBJ* fore, BRUSHOBJ* back, POINTL* brushOrigin, MIX mix) {
    Event event = eventOf(INDEX_DrvTextOut, target);
    if (text != nullptr) event.blocks = {blockBytes(text->pwszOrg, text->cGlyphs * sizeof(WCHAR))};  // a character for each glyph, where the engine tells them
    event.clip = describe(clip);
    event.rectangles = {copyOf(extra), copyOf(opaque)};
    event.brushes = {describe(fore), describe(back)};
    event.points[0] = copyOf(brushOrigin);
    event.numbers = {mix};
    return tell(event, original<decltype(&textOut)>(INDEX_DrvTextOut)(target, text, font, clip, extra, opaque, fore, back, brushOrigin, mix));
}

ULONG getGlyphMode(DHPDEV instance, FONTOBJ* font) {
    Event event{.function = INDEX_DrvGetGlyphMode, .numbers = {numberOf(instance)}};
    return tell(event, original<decltype(&getGlyphMode)>(INDEX_DrvGetGlyphMode)(instance, font));
}

ULONG ditherColor(DHPDEV instance, ULONG mode, ULONG rgb, ULONG* pattern) {
    Event event{.function = INDEX_DrvDitherColor, .numbers = {numberOf(instance), mode, rgb}};
    return tell(event, original<decltype(&ditherColor)>(INDEX_DrvDitherColor)(instance, mode, rgb, pattern));
}

ULONG escape(SURFOBJ* page, ULONG code, ULONG inBytes, PVOID in, ULONG outBytes, PVOID out) {
    Event event = eventOf(INDEX_DrvEscape, page);
    event.numbers = {code, outBytes};
    event.blocks = {blockBytes(in, inBytes)};
    return tell(event, original<decltype(&escape)>(INDEX_DrvEscape)(page, code, inBytes, in, outBytes, out));
}

template <typename Function>
DRVFN entry(ULONG index, Function function) {
    return {index, reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(function))};
}

// In the order of the index; what the driver behind does not offer is left out.
std::vector<DRVFN> wrappers() {
    return {entry(INDEX_DrvEnablePDEV, &enablePDEV),         entry(INDEX_DrvCompletePDEV, &completePDEV), entry(INDEX_DrvDisablePDEV, &disablePDEV),
            entry(INDEX_DrvEnableSurface, &enableSurface),   entry(INDEX_DrvDisableSurface, &disableSurface), entry(INDEX_DrvResetPDEV, &resetPDEV),
            entry(INDEX_DrvDisableDriver, &disableDriver),   entry(INDEX_DrvDitherColor, &ditherColor),   entry(INDEX_DrvStrokePath, &strokePath),
            entry(INDEX_DrvFillPath, &fillPath),             entry(INDEX_DrvStrokeAndFillPath, &strokeAndFillPath), entry(INDEX_DrvBitBlt, &bitBlt),
            entry(INDEX_DrvCopyBits, &copyBits),             entry(INDEX_DrvStretchBlt, &stretchBlt),     entry(INDEX_DrvTextOut, &textOut),
            entry(INDEX_DrvEscape, &escape),                 entry(INDEX_DrvStartPage, &startPage),       entry(INDEX_DrvSendPage, &sendPage),
            entry(INDEX_DrvStartDoc, &startDoc),             entry(INDEX_DrvEndDoc, &endDoc),             entry(INDEX_DrvStartBanding, &startBanding),
            entry(INDEX_DrvNextBand, &nextBand),             entry(INDEX_DrvGetGlyphMode, &getGlyphMode)};
}

BOOL enableDriver(ULONG engineVersion, ULONG size, DRVENABLEDATA* data) {
    if (theRecorder == nullptr || theRecorder->enable == nullptr) return FALSE;
    theRecorder->listener.begins();
    if (theRecorder->enable(engineVersion, size, data) == FALSE) return FALSE;
    for (ULONG i = 0; i < data->c; ++i) theRecorder->functions[data->pdrvfn[i].iFunc] = data->pdrvfn[i].pfn;
    theRecorder->table = wrappers();
    std::erase_if(theRecorder->table, [](const DRVFN& offered) { return !theRecorder->functions.contains(offered.iFunc); });
    data->c = static_cast<ULONG>(theRecorder->table.size());
    data->pdrvfn = theRecorder->table.data();
    return TRUE;
}

}  // namespace

Recorder::Recorder(EnableDriver behind, Listener listener) {
    if (theRecorder != nullptr) throw std::logic_error("one recorder at a time");
    theRecorder = std::make_unique<RecorderState>();
    theRecorder->enable = behind;
    theRecorder->listener = std::move(listener);
}

Recorder::~Recorder() { theRecorder.reset(); }

EnableDriver Recorder::driver() { return &enableDriver; }

}  // namespace morvil::trace
