// ddrawint.h - winddi.h names these records of the display driver interface, and a printer driver never touches them:
// forward declarations stand in for the header, which mingw-w64 does not bring.
#pragma once

struct DD_CALLBACKS;
struct DD_DIRECTDRAW_GLOBAL;
struct DD_HALINFO;
struct DD_PALETTECALLBACKS;
struct DD_SURFACECALLBACKS;
struct DD_SURFACE_LOCAL;
struct VIDEOMEMORY;
using PDD_DIRECTDRAW_GLOBAL = DD_DIRECTDRAW_GLOBAL*;
using PDD_SURFACE_LOCAL = DD_SURFACE_LOCAL*;
