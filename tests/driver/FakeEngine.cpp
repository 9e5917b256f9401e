#include "driver/FakeEngine.h"

#include <algorithm>
#include <stdexcept>

namespace morvil::test {

namespace {

FakeEngine* theEngine = nullptr;

FakeEngine& record(const char* call) {
    FakeEngine& engine = fakeEngine();
    engine.calls.emplace_back(call);
    if (engine.throws) throw std::runtime_error(call);
    return engine;
}

// The same for a service that can fail; whether it does so now.
bool refuses(const char* call) {
    FakeEngine& engine = record(call);
    if (engine.refuses == 0 || --engine.refuses != 0) return false;
    engine.refused = call;
    return true;
}

BOOL draw(const char* call, std::vector<const void*> arguments, ULONG number, FLONG options) {
    const bool now = refuses(call);
    FakeEngine& engine = fakeEngine();
    engine.arguments = std::move(arguments);
    engine.lastNumber = number;
    engine.lastOptions = options;
    return now ? FALSE : engine.result;
}

HPALETTE paletteHandle(std::size_t number) { return reinterpret_cast<HPALETTE>(0x1000 + number); }

}  // namespace

FakeEngine& fakeEngine() {
    if (theEngine == nullptr) throw std::logic_error("no engine in this test");
    return *theEngine;
}

FakeEngine::FakeEngine() { theEngine = this; }
FakeEngine::~FakeEngine() { theEngine = nullptr; }

std::size_t FakeEngine::count(const std::string& call) const {
    return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), call));
}

FakePath::FakePath(std::vector<PathRecord> pathRecords) : PATHOBJ{0, 0}, records(std::move(pathRecords)) {
    for (const PathRecord& record : records) cCurves += static_cast<ULONG>(record.points.size());
}

POINTFIX fixedPoint(int x, int y) { return {x * 16, y * 16}; }

}  // namespace morvil::test

using namespace morvil::test;

extern "C" {

HBITMAP EngCreateBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags, PVOID /*bits*/) {
    const bool now = refuses("EngCreateBitmap");
    FakeEngine& engine = fakeEngine();
    engine.bitmaps.push_back({size, rowBytes, format, flags});
    const bool hasPixels = size.cx > 0 && size.cy > 0;
    if (now || !hasPixels || (engine.grantsBitmap && !engine.grantsBitmap(engine.bitmaps.back()))) return nullptr;
    auto surface = std::make_unique<FakeSurface>();
    surface->bits.assign(static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(size.cy), 0);
    SURFOBJ& object = surface->object;
    object.hsurf = reinterpret_cast<HSURF>(surface.get());
    object.sizlBitmap = size;
    object.cjBits = static_cast<ULONG>(surface->bits.size());
    object.pvBits = surface->bits.data();
    const bool topDown = (flags & BMF_TOPDOWN) != 0;
    object.lDelta = topDown ? rowBytes : -rowBytes;
    object.pvScan0 = topDown ? surface->bits.data() : surface->bits.data() + surface->bits.size() - rowBytes;
    object.iBitmapFormat = format;
    object.iType = STYPE_BITMAP;
    const HSURF handle = object.hsurf;
    engine.surfaces[handle] = std::move(surface);
    return reinterpret_cast<HBITMAP>(handle);
}

BOOL EngDeleteSurface(HSURF surface) { return record("EngDeleteSurface").surfaces.erase(surface) != 0 ? TRUE : FALSE; }

BOOL EngMarkBandingSurface(HSURF surface) {
    const bool now = refuses("EngMarkBandingSurface");
    const FakeEngine& engine = fakeEngine();
    return !now && engine.marksBanding && engine.surfaces.contains(surface) ? TRUE : FALSE;
}

BOOL EngAssociateSurface(HSURF surface, HDEV device, FLONG hooks) {
    const bool now = refuses("EngAssociateSurface");
    FakeEngine& engine = fakeEngine();
    engine.hooks = hooks;
    engine.associatedDevice = device;
    if (now || !engine.associates || !engine.surfaces.contains(surface)) return FALSE;
    engine.surfaces[surface]->object.hdev = device;
    engine.surfaces[surface]->object.dhpdev = engine.dhpdev;
    return TRUE;
}

HPALETTE EngCreatePalette(ULONG mode, ULONG colours, ULONG* entries, FLONG /*red*/, FLONG /*green*/, FLONG /*blue*/) {
    const bool now = refuses("EngCreatePalette");
    FakeEngine& engine = fakeEngine();
    engine.palettes.push_back({mode, entries == nullptr ? std::vector<ULONG>() : std::vector<ULONG>(entries, entries + colours)});
    if (now || !engine.grantsPalettes) return nullptr;
    ++engine.livePalettes;
    return paletteHandle(engine.palettes.size());
}

BOOL EngDeletePalette(HPALETTE /*palette*/) {
    --record("EngDeletePalette").livePalettes;
    return TRUE;
}

SURFOBJ* EngLockSurface(HSURF surface) {
    const bool now = refuses("EngLockSurface");
    FakeEngine& engine = fakeEngine();
    if (now || !engine.locks || !engine.surfaces.contains(surface)) return nullptr;
    ++engine.locked;
    return &engine.surfaces[surface]->object;
}

VOID EngUnlockSurface(SURFOBJ* /*surface*/) { --record("EngUnlockSurface").locked; }

BOOL EngCheckAbort(SURFOBJ* /*surface*/) { return record("EngCheckAbort").aborted ? TRUE : FALSE; }

BOOL EngBitBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source,
               POINTL* maskOrigin, BRUSHOBJ* brush, POINTL* brushOrigin, ROP4 rop) {
    return draw("EngBitBlt", {to, from, mask, clip, translation, target, source, maskOrigin, brush, brushOrigin}, rop, 0);
}

BOOL EngStretchBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, COLORADJUSTMENT* adjustment,
                   POINTL* brushOrigin, RECTL* target, RECTL* source, POINTL* maskOrigin, ULONG mode) {
    return draw("EngStretchBlt", {to, from, mask, clip, translation, adjustment, brushOrigin, target, source, maskOrigin}, mode, 0);
}

BOOL EngCopyBits(SURFOBJ* to, SURFOBJ* from, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source) {
    return draw("EngCopyBits", {to, from, clip, translation, target, source}, 0, 0);
}

BOOL EngFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brushOrigin, MIX mix, FLONG options) {
    return draw("EngFillPath", {surface, path, clip, brush, brushOrigin}, mix, options);
}

BOOL EngTextOut(SURFOBJ* surface, STROBJ* text, FONTOBJ* font, CLIPOBJ* clip, RECTL* extra, RECTL* opaque, BRUSHOBJ* fore, BRUSHOBJ* back,
                POINTL* brushOrigin, MIX mix) {
    return draw("EngTextOut", {surface, text, font, clip, extra, opaque, fore, back, brushOrigin}, mix, 0);
}

VOID PATHOBJ_vEnumStart(PATHOBJ* path) {
    auto& fake = static_cast<FakePath&>(*path);
    fake.next = 0;
    ++fake.walks;
}

BOOL PATHOBJ_bEnum(PATHOBJ* path, PATHDATA* data) {
    auto& fake = static_cast<FakePath&>(*path);
    if (fake.next >= fake.records.size()) {
        *data = {};
        return FALSE;
    }
    PathRecord& current = fake.records[fake.next++];
    *data = {current.flags, static_cast<ULONG>(current.points.size()), current.points.data()};
    return fake.next < fake.records.size() ? TRUE : FALSE;
}

ULONG BRUSHOBJ_ulGetBrushColor(BRUSHOBJ* brush) { return static_cast<FakeBrush&>(*brush).colour; }

ULONG XLATEOBJ_cGetPalette(XLATEOBJ* translation, ULONG kind, ULONG count, ULONG* entries) {
    FakeEngine& engine = record("XLATEOBJ_cGetPalette");
    engine.lastNumber = count;
    const auto& fake = static_cast<FakeTranslation&>(*translation);
    if (kind != XO_SRCPALETTE) return 0;
    const std::size_t copied = std::min<std::size_t>(count, fake.sourcePalette.size());
    std::copy_n(fake.sourcePalette.begin(), copied, entries);
    return static_cast<ULONG>(copied);
}

}  // extern "C"
