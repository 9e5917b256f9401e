// Log.h - the diagnostic log: two text files, the debugger output and the debug switches of mvDebug.ini.
// The only piece of the driver that the lower folders may use; it uses none of them. Printing thread only; no lock, so lines
// of several processes may interleave in one file. Every call opens and closes its file, nothing is buffered between calls; the thread's
// last error stays as it was.
#pragma once

#include <array>
#include <initializer_list>
#include <span>

#include "platform/common/DebugChannel.h"
#include "platform/common/Format.h"
#include "platform/platform.h"

namespace morvil {

// The logging block of the configuration record; the log reads it where the working record lives.
struct LoggingBlock {
    DWORD enabled;   // 0: nothing is written and no file is touched
    WORD debugLevel; // kept for the user interface; the driver does not read it
    WORD reserved;
    DWORD maxBytes;  // a log file of this size or more is started afresh
};
static_assert(sizeof(LoggingBlock) == 12);

// What the log needs to know of the rest. `settings` points into the process-wide working configuration (null or an empty
// record: logging is off); the folders are announced by whoever works them out.
struct LogState {
    const LoggingBlock* settings = nullptr;
    WString folder;      // holds log_morvil.txt and log_rend.txt; no trailing backslash
    WString baseFolder;  // holds mvDebug.ini; no trailing backslash
};
namespace detail {
extern LogState theLogState;  // reached through logState() alone; made before main, gone after what was made later
}
inline LogState& logState() { return detail::theLogState; }

// The end marker that every call passes behind its own arguments; the log ignores it.
inline constexpr int kLogEnd = -777;

enum LogLevel : std::uint16_t { kInformation = 1, kNotice = 2, kError = 3 };

inline bool logEnabled() {
    const LoggingBlock* const settings = logState().settings;
    return settings != nullptr && settings->enabled != 0;
}

namespace detail {
enum class LogFile : std::uint8_t { Morvil, Rend };
int writeLogLine(LogFile file, int withTime, int level, const WCHAR* format, std::span<const FormatArg> arguments);
void sendDebugText(WStringView format, std::span<const FormatArg> arguments);
}  // namespace detail

// Appends a line to log_morvil.txt: "HH:MM:SS<tab>text" (level 1 with time), "<tab><tab>text" (level 1 without) or
// "!!! text" (every other level). Returns 0, the result of closing the file or of having nothing to do.
template <typename... Args>
int logMorvil(int withTime, int level, const WCHAR* format, const Args&... arguments) {
    if (!logEnabled()) return 0;
    const std::initializer_list<FormatArg> list{FormatArg(arguments)...};
    return detail::writeLogLine(detail::LogFile::Morvil, withTime, level, format, {list.begin(), list.size()});
}

// The same for log_rend.txt; one trailing line end of the format is dropped.
template <typename... Args>
void logRend(int withTime, int level, const WCHAR* format, const Args&... arguments) {
    if (!logEnabled()) return;
    const std::initializer_list<FormatArg> list{FormatArg(arguments)...};
    detail::writeLogLine(detail::LogFile::Rend, withTime, level, format, {list.begin(), list.size()});
}

// Sends a formatted text to the debugger output as it stands.
template <typename... Args>
void debugPrint(const WCHAR* format, const Args&... arguments) {
    if (!debugOutputWanted()) return;
    const std::initializer_list<FormatArg> list{FormatArg(arguments)...};
    detail::sendDebugText(viewOf(format), {list.begin(), list.size()});
}

// The whole number behind `key` in section "Debug" of mvDebug.ini; -1 when the key, the file or the folder is missing.
int getDebugValue(const WCHAR* key);

}  // namespace morvil
