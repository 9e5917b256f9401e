#include "host/Services.h"

#include <algorithm>

#include "host/HostEngine.h"

namespace morvil::host {

namespace {

HBITMAP APIENTRY createBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags, PVOID /*bits*/) {
    return hostEngine()->refuses() ? nullptr : hostEngine()->createBitmap(size, rowBytes, format, flags);
}
BOOL APIENTRY deleteSurface(HSURF surface) { return hostEngine()->deleteSurface(surface) ? TRUE : FALSE; }
BOOL APIENTRY markBandingSurface(HSURF surface) { return !hostEngine()->refuses() && hostEngine()->surface(surface) != nullptr ? TRUE : FALSE; }
BOOL APIENTRY associateSurface(HSURF surface, HDEV device, FLONG /*hooks*/) { return !hostEngine()->refuses() && hostEngine()->associate(surface, device) ? TRUE : FALSE; }
HPALETTE APIENTRY createPalette(ULONG /*mode*/, ULONG count, ULONG* entries, FLONG /*red*/, FLONG /*green*/, FLONG /*blue*/) {
    return hostEngine()->refuses() ? nullptr : hostEngine()->createPalette(entries, count);
}
BOOL APIENTRY deletePalette(HPALETTE palette) { return hostEngine()->deletePalette(palette) ? TRUE : FALSE; }
SURFOBJ* APIENTRY lockSurface(HSURF surface) { return hostEngine()->refuses() ? nullptr : hostEngine()->lock(surface); }
VOID APIENTRY unlockSurface(SURFOBJ* /*surface*/) { hostEngine()->unlock(); }
BOOL APIENTRY checkAbort(SURFOBJ* /*surface*/) { return hostEngine()->aborted() ? TRUE : FALSE; }

BOOL drawn() { return hostEngine()->refuses() ? FALSE : TRUE; }

BOOL APIENTRY bitBlt(SURFOBJ*, SURFOBJ*, SURFOBJ*, CLIPOBJ*, XLATEOBJ*, RECTL*, POINTL*, POINTL*, BRUSHOBJ*, POINTL*, ROP4) { return drawn(); }
BOOL APIENTRY stretchBlt(SURFOBJ*, SURFOBJ*, SURFOBJ*, CLIPOBJ*, XLATEOBJ*, COLORADJUSTMENT*, POINTL*, RECTL*, RECTL*, POINTL*, ULONG) { return drawn(); }
BOOL APIENTRY copyBits(SURFOBJ*, SURFOBJ*, CLIPOBJ*, XLATEOBJ*, RECTL*, POINTL*) { return drawn(); }
BOOL APIENTRY fillPath(SURFOBJ*, PATHOBJ*, CLIPOBJ*, BRUSHOBJ*, POINTL*, MIX, FLONG) { return drawn(); }
BOOL APIENTRY textOut(SURFOBJ*, STROBJ*, FONTOBJ*, CLIPOBJ*, RECTL*, RECTL*, BRUSHOBJ*, BRUSHOBJ*, POINTL*, MIX) { return drawn(); }

VOID APIENTRY pathEnumStart(PATHOBJ* path) { static_cast<HostPath*>(path)->next = 0; }
BOOL APIENTRY pathEnum(PATHOBJ* path, PATHDATA* data) {
    auto& full = *static_cast<HostPath*>(path);
    *data = {};
    if (full.next >= full.parts.size()) return FALSE;
    trace::PathPart& part = full.parts[full.next++];
    *data = {part.flags, static_cast<ULONG>(part.points.size()), part.points.data()};
    return full.next < full.parts.size() ? TRUE : FALSE;
}
ULONG APIENTRY brushColour(BRUSHOBJ* brush) { return brush == nullptr ? 0xFFFFFFFF : static_cast<HostBrush*>(brush)->rgb; }
ULONG APIENTRY translationPalette(XLATEOBJ* translation, ULONG kind, ULONG count, ULONG* entries) {
    if (translation == nullptr || kind != XO_SRCPALETTE) return 0;
    const std::vector<ULONG>& palette = static_cast<HostTranslation*>(translation)->sourcePalette;
    const std::size_t copied = std::min<std::size_t>(count, palette.size());
    std::copy_n(palette.begin(), copied, entries);
    return static_cast<ULONG>(copied);
}

template <typename Function>
Service service(const char* name, Function function) {
    return {name, reinterpret_cast<void (*)()>(function)};
}

}  // namespace

std::span<const Service> services() {
    static const std::array list{service("EngCreateBitmap", &createBitmap),
                                 service("EngDeleteSurface", &deleteSurface),
                                 service("EngMarkBandingSurface", &markBandingSurface),
                                 service("EngAssociateSurface", &associateSurface),
                                 service("EngCreatePalette", &createPalette),
                                 service("EngDeletePalette", &deletePalette),
                                 service("EngLockSurface", &lockSurface),
                                 service("EngUnlockSurface", &unlockSurface),
                                 service("EngCheckAbort", &checkAbort),
                                 service("EngBitBlt", &bitBlt),
                                 service("EngStretchBlt", &stretchBlt),
                                 service("EngCopyBits", &copyBits),
                                 service("EngFillPath", &fillPath),
                                 service("EngTextOut", &textOut),
                                 service("PATHOBJ_vEnumStart", &pathEnumStart),
                                 service("PATHOBJ_bEnum", &pathEnum),
                                 service("BRUSHOBJ_ulGetBrushColor", &brushColour),
                                 service("XLATEOBJ_cGetPalette", &translationPalette)};
    return list;
}

}  // namespace morvil::host
