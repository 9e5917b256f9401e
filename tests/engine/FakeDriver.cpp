#include "engine/FakeDriver.h"

#include <algorithm>
#include <sstream>

#include "platform/common/Text.h"

namespace morvil::engine {

namespace {

FakeDriver* g_fake = nullptr;

struct FakeInstance {
    HDEV hdev = nullptr;
    HSURF surface = nullptr;
    HPALETTE palette = nullptr;
    LONG top = 0;
    std::size_t band = 0;
};

template <typename... Parts>
void note(const Parts&... parts) {
    std::ostringstream text;
    (text << ... << parts);
    g_fake->calls.push_back(text.str());
}

bool listed(const std::vector<std::string>& list, const char* name) { return std::find(list.begin(), list.end(), name) != list.end(); }

BOOL answer(const char* name) {
    if (listed(g_fake->errors, name)) return static_cast<BOOL>(DDI_ERROR);
    return listed(g_fake->refuses, name) ? FALSE : TRUE;
}

FakeInstance* instanceOf(SURFOBJ* surface) { return reinterpret_cast<FakeInstance*>(surface->dhpdev); }

// The path as text: "B" begins a subpath, "c" closes it, "z" marks curves.
std::string pathText(PATHOBJ* path) {
    std::ostringstream text;
    text << "cCurves=" << path->cCurves << " fl=" << path->fl;
    PATHOBJ_vEnumStart(path);
    BOOL more = TRUE;
    while (more != FALSE) {
        PATHDATA data{};
        more = PATHOBJ_bEnum(path, &data);
        text << " " << ((data.flags & PD_BEGINSUBPATH) != 0 ? "B" : "") << ((data.flags & PD_BEZIERS) != 0 ? "z" : "") << ((data.flags & PD_CLOSEFIGURE) != 0 ? "c" : "");
        for (ULONG i = 0; i < data.count; ++i) text << "(" << data.pptfx[i].x / 16.0 << "," << data.pptfx[i].y / 16.0 << ")";
    }
    return text.str();
}

DHPDEV enablePDEV(DEVMODEW*, PWSTR, ULONG, HSURF*, ULONG, ULONG* caps, ULONG, DEVINFO* info, HDEV, PWSTR name, HANDLE) {
    note("DrvEnablePDEV printer=", toUtf8(viewOf(name)));
    if (answer("DrvEnablePDEV") == FALSE) return nullptr;
    auto* const gdi = reinterpret_cast<GDIINFO*>(caps);
    gdi->ulHorzRes = static_cast<ULONG>(g_fake->page.cx);
    gdi->ulVertRes = static_cast<ULONG>(g_fake->page.cy);
    gdi->ulLogPixelsX = gdi->ulLogPixelsY = 254;
    gdi->cBitsPixel = g_fake->format == BMF_1BPP ? 1 : (g_fake->format == BMF_8BPP ? 8 : 24);
    gdi->xStyleStep = gdi->yStyleStep = 1;
    gdi->denStyleStep = 10;
    info->flGraphicsCaps = g_fake->graphicsCaps;
    info->cxDither = info->cyDither = g_fake->dither;
    ULONG blackWhite[] = {0x000000, 0xFFFFFF};
    auto* const instance = new FakeInstance;  // NOLINT(cppcoreguidelines-owning-memory): given back in disablePDEV
    instance->palette = g_fake->format == BMF_24BPP ? EngCreatePalette(PAL_BGR, 0, nullptr, 0, 0, 0) : EngCreatePalette(PAL_INDEXED, 2, blackWhite, 0, 0, 0);
    info->hpalDefault = instance->palette;
    return reinterpret_cast<DHPDEV>(instance);
}

VOID completePDEV(DHPDEV pdev, HDEV hdev) {
    note("DrvCompletePDEV");
    reinterpret_cast<FakeInstance*>(pdev)->hdev = hdev;
}

VOID disablePDEV(DHPDEV pdev) {
    note("DrvDisablePDEV");
    auto* const instance = reinterpret_cast<FakeInstance*>(pdev);
    EngDeletePalette(instance->palette);
    delete instance;  // NOLINT(cppcoreguidelines-owning-memory)
}

BOOL resetPDEV(DHPDEV, DHPDEV) {
    note("DrvResetPDEV");
    return answer("DrvResetPDEV");
}

HSURF enableSurface(DHPDEV pdev) {
    note("DrvEnableSurface");
    if (answer("DrvEnableSurface") == FALSE) return nullptr;
    auto* const instance = reinterpret_cast<FakeInstance*>(pdev);
    const SIZEL size{g_fake->page.cx, g_fake->bandHeight > 0 ? g_fake->bandHeight : g_fake->page.cy};
    instance->surface = reinterpret_cast<HSURF>(EngCreateBitmap(size, 0, g_fake->format, BMF_TOPDOWN, nullptr));
    if (g_fake->bandHeight > 0) EngMarkBandingSurface(instance->surface);
    EngAssociateSurface(instance->surface, instance->hdev, g_fake->hooks);
    return instance->surface;
}

VOID disableSurface(DHPDEV pdev) {
    note("DrvDisableSurface");
    EngDeleteSurface(reinterpret_cast<FakeInstance*>(pdev)->surface);
}

BOOL startDoc(SURFOBJ*, PWSTR name, DWORD job) {
    note("DrvStartDoc name=", name == nullptr ? "null" : toUtf8(viewOf(name)), " job=", job);
    return answer("DrvStartDoc");
}

BOOL startPage(SURFOBJ*) {
    note("DrvStartPage");
    if (g_fake->atStartPage) g_fake->atStartPage();
    return answer("DrvStartPage");
}

BOOL sendPage(SURFOBJ* surface) {
    note("DrvSendPage");
    return EngCheckAbort(surface) != FALSE ? FALSE : answer("DrvSendPage");
}

BOOL endDoc(SURFOBJ*, FLONG flags) {
    note("DrvEndDoc flags=", flags);
    return answer("DrvEndDoc");
}

BOOL startBanding(SURFOBJ* surface, POINTL* origin) {
    note("DrvStartBanding");
    instanceOf(surface)->top = 0;
    *origin = {0, 0};
    return answer("DrvStartBanding");
}

BOOL nextBand(SURFOBJ* surface, POINTL* origin) {
    FakeInstance& instance = *instanceOf(surface);
    instance.top += surface->sizlBitmap.cy;
    const bool last = instance.top >= g_fake->page.cy;
    *origin = last ? POINTL{-1, -1} : POINTL{0, instance.top};
    if (instance.band < g_fake->bandOrigins.size()) *origin = g_fake->bandOrigins[instance.band];
    ++instance.band;
    note("DrvNextBand");
    if (last && g_fake->lastBandAnswersFalse) return FALSE;
    return answer("DrvNextBand");
}

BOOL strokePath(SURFOBJ*, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* xform, BRUSHOBJ* brush, POINTL*, LINEATTRS* line, MIX mix) {
    note("DrvStrokePath ", pathText(path), " colour=", BRUSHOBJ_ulGetBrushColor(brush), " line=", line->fl, " styles=", line->cstyle, " mix=", mix, " xform=", xform != nullptr,
         " clip=", static_cast<int>(clip->iDComplexity));
    return answer("DrvStrokePath");
}

BOOL strokeAndFillPath(SURFOBJ*, PATHOBJ* path, CLIPOBJ*, XFORMOBJ*, BRUSHOBJ*, LINEATTRS*, BRUSHOBJ*, POINTL*, MIX, FLONG options) {
    note("DrvStrokeAndFillPath ", pathText(path), " options=", options);
    return answer("DrvStrokeAndFillPath");
}

BOOL fillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* origin, MIX mix, FLONG options) {
    note("DrvFillPath ", pathText(path), " solid=", brush->iSolidColor != 0xFFFFFFFF, " options=", options);
    const BOOL result = answer("DrvFillPath");
    return result == TRUE ? EngFillPath(surface, path, clip, brush, origin, mix, options) : result;
}

BOOL bitBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* xlate, RECTL* target, POINTL* source, POINTL* maskOrigin, BRUSHOBJ* brush, POINTL* origin, ROP4 rop) {
    note("DrvBitBlt (", target->left, ",", target->top, ",", target->right, ",", target->bottom, ") rop=", rop, " source=", from != nullptr, " clip=", static_cast<int>(clip->iDComplexity));
    const BOOL result = answer("DrvBitBlt");
    return result == TRUE ? EngBitBlt(to, from, mask, clip, xlate, target, source, maskOrigin, brush, origin, rop) : result;
}

BOOL stretchBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* xlate, COLORADJUSTMENT* adjustment, POINTL* origin, RECTL* target, RECTL* source, POINTL* maskOrigin, ULONG mode) {
    note("DrvStretchBlt (", target->left, ",", target->top, ",", target->right, ",", target->bottom, ") from (", source->left, ",", source->top, ",", source->right, ",", source->bottom, ") mode=", mode);
    const BOOL result = answer("DrvStretchBlt");
    return result == TRUE ? EngStretchBlt(to, from, mask, clip, xlate, adjustment, origin, target, source, maskOrigin, mode) : result;
}

BOOL copyBits(SURFOBJ* to, SURFOBJ* from, CLIPOBJ* clip, XLATEOBJ* xlate, RECTL* target, POINTL* source) {
    note("DrvCopyBits (", target->left, ",", target->top, ",", target->right, ",", target->bottom, ") from (", source->x, ",", source->y, ")");
    const BOOL result = answer("DrvCopyBits");
    return result == TRUE ? EngCopyBits(to, from, clip, xlate, target, source) : result;
}

BOOL textOut(SURFOBJ*, STROBJ* text, FONTOBJ* font, CLIPOBJ*, RECTL* extra, RECTL* opaque, BRUSHOBJ*, BRUSHOBJ*, POINTL*, MIX mix) {
    note("DrvTextOut glyphs=", text->cGlyphs, " font=", font->iUniq, " extra=", extra != nullptr, " opaque=", opaque != nullptr, " mix=", mix);
    return answer("DrvTextOut");
}

ULONG getGlyphMode(DHPDEV, FONTOBJ* font) {
    note("DrvGetGlyphMode font=", font->iUniq);
    return FO_GLYPHBITS;
}

ULONG ditherColor(DHPDEV, ULONG mode, ULONG colour, ULONG*) {
    note("DrvDitherColor mode=", mode, " colour=", colour);
    return g_fake->ditherAnswer;
}

VOID disableDriver() { note("DrvDisableDriver"); }

template <typename Function>
DRVFN entry(ULONG index, Function function) {
    return {index, reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(function))};
}

}  // namespace

FakeDriver::FakeDriver() { g_fake = this; }
FakeDriver::~FakeDriver() { g_fake = nullptr; }

BOOL FakeDriver::enable(ULONG, ULONG, DRVENABLEDATA* data) {
    static DRVFN table[] = {entry(INDEX_DrvDisableDriver, &disableDriver),
                            entry(INDEX_DrvEnablePDEV, &enablePDEV),
                            entry(INDEX_DrvCompletePDEV, &completePDEV),
                            entry(INDEX_DrvDisablePDEV, &disablePDEV),
                            entry(INDEX_DrvResetPDEV, &resetPDEV),
                            entry(INDEX_DrvEnableSurface, &enableSurface),
                            entry(INDEX_DrvDisableSurface, &disableSurface),
                            entry(INDEX_DrvStartDoc, &startDoc),
                            entry(INDEX_DrvStartPage, &startPage),
                            entry(INDEX_DrvSendPage, &sendPage),
                            entry(INDEX_DrvEndDoc, &endDoc),
                            entry(INDEX_DrvStartBanding, &startBanding),
                            entry(INDEX_DrvNextBand, &nextBand),
                            entry(INDEX_DrvStrokePath, &strokePath),
                            entry(INDEX_DrvStrokeAndFillPath, &strokeAndFillPath),
                            entry(INDEX_DrvFillPath, &fillPath),
                            entry(INDEX_DrvBitBlt, &bitBlt),
                            entry(INDEX_DrvStretchBlt, &stretchBlt),
                            entry(INDEX_DrvCopyBits, &copyBits),
                            entry(INDEX_DrvTextOut, &textOut),
                            entry(INDEX_DrvGetGlyphMode, &getGlyphMode),
                            entry(INDEX_DrvDitherColor, &ditherColor)};
    if (answer("DrvEnableDriver") == FALSE) return FALSE;
    data->iDriverVersion = 0x30000;
    data->c = static_cast<ULONG>(std::size(table));
    data->pdrvfn = table;
    return TRUE;
}

std::size_t FakeDriver::count(const std::string& prefix) const {
    return static_cast<std::size_t>(std::count_if(calls.begin(), calls.end(), [&](const std::string& call) { return call.starts_with(prefix); }));
}

std::vector<std::string> FakeDriver::names() const {
    std::vector<std::string> list;
    for (const std::string& call : calls) list.push_back(call.substr(0, call.find(' ')));
    return list;
}

}  // namespace morvil::engine
