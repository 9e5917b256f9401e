// d3dnthal.h - winddi.h includes it for display drivers; a printer driver needs nothing from it. See ddrawint.h.
#pragma once
