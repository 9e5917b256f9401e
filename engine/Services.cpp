// Services.cpp - the engine's exported services, as drivers call them: each does its work (engine/pixels/Services.h) and tells
// the tap, if there is one, how it went. Without a tap that costs one test.
#include "engine/pixels/Services.h"

#include "engine/EngineState.h"
#include "engine/Pixels.h"

using namespace morvil::engine;

namespace {

using Arguments = std::vector<ServiceArgument>;

// `arguments` makes their list, which is done for a listener only.
template <typename MakeArguments>
void tell(const char* name, const ServiceValue& result, const MakeArguments& arguments) {
    if (const ServiceTap& tap = engineState().serviceTap) tap({name, arguments(), result});
}

template <typename Result, typename MakeArguments>
Result told(const char* name, Result result, const MakeArguments& arguments) {
    tell(name, result, arguments);
    return result;
}

HSURF surfaceHandle(HBITMAP bitmap) { return reinterpret_cast<HSURF>(bitmap); }

// A driver may call with what is no surface, or none any more; a listener gets null then.
const SURFOBJ* known(SURFOBJ* surface) { return surfaceOf(surface); }

}  // namespace

// ---- surfaces and palettes ------------------------------------------------------------------------------------------------

HBITMAP EngCreateBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags, PVOID bits) {
    const HBITMAP bitmap = services::createBitmap(size, rowBytes, format, flags, bits);
    tell("EngCreateBitmap", surfaceHandle(bitmap), [&] {
        return Arguments{{"size", size}, {"row bytes", rowBytes}, {"format", format}, {"flags", ServiceBits{flags}}};
    });
    return bitmap;
}

BOOL EngDeleteSurface(HSURF surface) {
    return told("EngDeleteSurface", services::deleteSurface(surface), [&] { return Arguments{{"surface", surface}}; });
}

BOOL EngMarkBandingSurface(HSURF surface) {
    return told("EngMarkBandingSurface", services::markBandingSurface(surface), [&] { return Arguments{{"surface", surface}}; });
}

BOOL EngAssociateSurface(HSURF surface, HDEV device, FLONG hooks) {
    return told("EngAssociateSurface", services::associateSurface(surface, device, hooks), [&] {
        return Arguments{{"surface", surface}, {"device", device}, {"hooks", ServiceBits{hooks}}};
    });
}

SURFOBJ* EngLockSurface(HSURF surface) {
    return told("EngLockSurface", services::lockSurface(surface), [&] { return Arguments{{"surface", surface}}; });
}

VOID EngUnlockSurface(SURFOBJ* surface) {
    services::unlockSurface(surface);
    tell("EngUnlockSurface", {}, [&] { return Arguments{{"surface", known(surface)}}; });
}

HPALETTE EngCreatePalette(ULONG mode, ULONG colours, ULONG* entries, FLONG red, FLONG green, FLONG blue) {
    return told("EngCreatePalette", services::createPalette(mode, colours, entries, red, green, blue), [&] {
        return Arguments{
            {"mode", mode}, {"colours", colours}, {"red", ServiceBits{red}}, {"green", ServiceBits{green}}, {"blue", ServiceBits{blue}}};
    });
}

BOOL EngDeletePalette(HPALETTE palette) {
    return told("EngDeletePalette", services::deletePalette(palette), [&] { return Arguments{{"palette", palette}}; });
}

BOOL EngCheckAbort(SURFOBJ* surface) {
    return told("EngCheckAbort", services::checkAbort(surface), [&] { return Arguments{{"surface", known(surface)}}; });
}

// ---- drawing --------------------------------------------------------------------------------------------------------------

BOOL EngBitBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source,
               POINTL* maskOrigin, BRUSHOBJ* brush, POINTL* brushOrigin, ROP4 rop) {
    return told("EngBitBlt", services::bitBlt(to, from, mask, clip, translation, target, source, maskOrigin, brush, brushOrigin, rop), [&] {
        return Arguments{
            {"target", known(to)},    {"source", known(from)}, {"mask", known(mask)},     {"clip", clip},   {"translation", translation},
            {"area", target},         {"from", source},        {"mask from", maskOrigin}, {"brush", brush}, {"brush origin", brushOrigin},
            {"rop", ServiceBits{rop}}};
    });
}

BOOL EngStretchBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, COLORADJUSTMENT* adjustment,
                   POINTL* brushOrigin, RECTL* target, RECTL* source, POINTL* maskOrigin, ULONG mode) {
    return told("EngStretchBlt",
                services::stretchBlt(to, from, mask, clip, translation, adjustment, brushOrigin, target, source, maskOrigin, mode), [&] {
                    return Arguments{{"target", known(to)},
                                     {"source", known(from)},
                                     {"mask", known(mask)},
                                     {"clip", clip},
                                     {"translation", translation},
                                     {"adjustment", adjustment},
                                     {"brush origin", brushOrigin},
                                     {"area", target},
                                     {"source area", source},
                                     {"mask from", maskOrigin},
                                     {"mode", mode}};
                });
}

BOOL EngCopyBits(SURFOBJ* to, SURFOBJ* from, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source) {
    return told("EngCopyBits", services::copyBits(to, from, clip, translation, target, source), [&] {
        return Arguments{{"target", known(to)},        {"source", known(from)}, {"clip", clip},
                         {"translation", translation}, {"area", target},        {"from", source}};
    });
}

BOOL EngFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brushOrigin, MIX mix, FLONG options) {
    return told("EngFillPath", services::fillPath(surface, path, clip, brush, brushOrigin, mix, options), [&] {
        return Arguments{{"target", known(surface)},
                         {"path", path},
                         {"clip", clip},
                         {"brush", brush},
                         {"brush origin", brushOrigin},
                         {"mix", ServiceBits{mix}},
                         {"options", ServiceBits{options}}};
    });
}

BOOL EngTextOut(SURFOBJ* surface, STROBJ* text, FONTOBJ* font, CLIPOBJ* clip, RECTL* extra, RECTL* opaque, BRUSHOBJ* fore, BRUSHOBJ* back,
                POINTL* brushOrigin, MIX mix) {
    return told("EngTextOut", services::textOut(surface, text, font, clip, extra, opaque, fore, back, brushOrigin, mix), [&] {
        return Arguments{{"target", known(surface)}, {"text", text},  {"clip", clip},       {"extra area", extra},
                         {"opaque area", opaque},    {"brush", fore}, {"back brush", back}, {"brush origin", brushOrigin},
                         {"mix", ServiceBits{mix}}};
    });
}

// ---- what objects hold ----------------------------------------------------------------------------------------------------

VOID PATHOBJ_vEnumStart(PATHOBJ* path) {
    services::startPath(path);
    tell("PATHOBJ_vEnumStart", {}, [&] { return Arguments{{"path", path}}; });
}

BOOL PATHOBJ_bEnum(PATHOBJ* path, PATHDATA* data) {
    return told("PATHOBJ_bEnum", services::nextOfPath(path, data), [&] { return Arguments{{"path", path}}; });
}

ULONG BRUSHOBJ_ulGetBrushColor(BRUSHOBJ* brush) {
    const ULONG colour = services::brushColour(brush);
    tell("BRUSHOBJ_ulGetBrushColor", ServiceColour{colour}, [&] { return Arguments{{"brush", brush}}; });
    return colour;
}

ULONG XLATEOBJ_cGetPalette(XLATEOBJ* translation, ULONG kind, ULONG count, ULONG* entries) {
    return told("XLATEOBJ_cGetPalette", services::translationPalette(translation, kind, count, entries), [&] {
        return Arguments{{"translation", translation}, {"kind", kind}, {"most", count}};
    });
}
