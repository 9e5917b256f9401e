// clock.cpp - time of day, ticks, sleeping. Promises: the host state's fixed time stops the clock (not the ticks); sleeping
// goes through the table of calls, so that a test need not wait. Refuses: times before 1970.
#include <ctime>

#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/kernel.h"

namespace {

using Breakdown = std::tm* (*)(const std::time_t*, std::tm*);

void fill(SYSTEMTIME& out, Breakdown breakdown) {
    using namespace std::chrono;
    const auto now = morvil::hostState().fixedTime.value_or(system_clock::now());
    const auto sinceEpoch = duration_cast<milliseconds>(now.time_since_epoch()).count();
    const auto seconds = static_cast<std::time_t>(sinceEpoch / 1000);
    std::tm parts{};
    breakdown(&seconds, &parts);
    out = {.wYear = static_cast<WORD>(parts.tm_year + 1900),
           .wMonth = static_cast<WORD>(parts.tm_mon + 1),
           .wDayOfWeek = static_cast<WORD>(parts.tm_wday),
           .wDay = static_cast<WORD>(parts.tm_mday),
           .wHour = static_cast<WORD>(parts.tm_hour),
           .wMinute = static_cast<WORD>(parts.tm_min),
           .wSecond = static_cast<WORD>(parts.tm_sec),
           .wMilliseconds = static_cast<WORD>(sinceEpoch % 1000)};
}

}  // namespace

void Sleep(DWORD milliseconds) { morvil::platformCalls().sleep(milliseconds); }

DWORD GetTickCount() {
    using namespace std::chrono;
    return static_cast<DWORD>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void GetLocalTime(SYSTEMTIME* time) { fill(*time, ::localtime_r); }
void GetSystemTime(SYSTEMTIME* time) { fill(*time, ::gmtime_r); }
