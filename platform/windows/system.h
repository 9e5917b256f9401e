// system.h - the system's own headers, in one include, as platform/posix/system.h offers the same names elsewhere.
// winddi.h comes last: it builds on the device mode of windows.h, and on two headers that shims/ stands in for.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

// clang-format off
#include <windows.h>
#include <shlobj.h>
#include <winspool.h>
#include <psapi.h>
#include <sddl.h>
#include <winver.h>
#include <winddi.h>
// clang-format on
