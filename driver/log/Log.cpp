// Log.cpp - one log call after another: size test, append, close. See Log.h.
#include "driver/log/Log.h"

#include "platform/common/FileStream.h"

namespace morvil {

namespace {

// The platform's line buffer: a longer format is not trusted to be one.
constexpr std::size_t kLineCharacters = 600;
constexpr WStringView kErrorPrefix = TEXT("!!! ");

struct LogTarget {
    const WCHAR* fileName;
    const WCHAR* function;  // as it names itself in the log
};

constexpr LogTarget targetOf(detail::LogFile file) {
    if (file == detail::LogFile::Morvil) return {TEXT("log_morvil.txt"), TEXT("logMorvil")};
    return {TEXT("log_rend.txt"), TEXT("logRend")};
}

bool isFull(const WCHAR* path, DWORD maxBytes) {
    FileStream file(path, OpenMode::Read);
    const std::int64_t bytes = file.size();
    return bytes >= 0 && bytes >= static_cast<std::int64_t>(maxBytes);
}

// A full log starts afresh; no older copy is kept.
void startAfresh(detail::LogFile file, const WCHAR* path) {
    if (file == detail::LogFile::Morvil && !fileExists(path)) return;
    DeleteFileW(path);
}

void appendTime(WString& line) {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    line += format(TEXT("%02d:%02d:%02d"), now.wHour, now.wMinute, now.wSecond);
}

void appendMessage(WString& line, int withTime, int level, WStringView text, std::span<const FormatArg> arguments) {
    if (level == kInformation) {
        if (withTime != 0)
            appendTime(line);
        else
            line += TEXT('\t');
        line += TEXT('\t');
    } else {
        line += kErrorPrefix;
    }
    formatTo(line, text, arguments);
    line += TEXT('\n');
}

// The format is printed as it stands: its arguments cannot be told apart any more once it is cut.
void appendTooLong(WString& line, const WCHAR* text, const WCHAR* function) {
    WString cut(kErrorPrefix);
    cut += text == nullptr ? WStringView(TEXT("(null)")) : viewOf(text);
    line.append(cut, 0, kLineCharacters);
    line += TEXT('\n');
    line += format(TEXT("!!! %s, Error String to long\n"), function);
}

}  // namespace

namespace detail {

LogState theLogState;

namespace {

// A line between a failure and its caller must not hide why it failed.
class LastErrorKeeper {
  public:
    LastErrorKeeper() : m_error(GetLastError()) {}
    ~LastErrorKeeper() { SetLastError(m_error); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

  private:
    DWORD m_error;
};

}  // namespace

int writeLogLine(LogFile file, int withTime, int level, const WCHAR* text, std::span<const FormatArg> arguments) {
    const LastErrorKeeper keeper;
    const LogState& state = logState();
    const LogTarget target = targetOf(file);
    const WString path = format(TEXT("%s\\%s"), state.folder, target.fileName);
    if (isFull(path.c_str(), state.settings->maxBytes)) startAfresh(file, path.c_str());

    FileStream log(path.c_str(), OpenMode::Append);
    if (!log.isOpen()) return 0;
    WString line;
    WStringView message = viewOf(text);
    if (text != nullptr && message.size() <= kLineCharacters) {
        if (file == LogFile::Rend && message.ends_with(TEXT('\n'))) message.remove_suffix(1);
        appendMessage(line, withTime, level, message, arguments);
    } else {
        appendTooLong(line, text, target.function);
    }
    log.writeText(line);
    return log.close() ? 0 : -1;
}

void sendDebugText(WStringView text, std::span<const FormatArg> arguments) {
    WString out;
    formatTo(out, text, arguments);
    OutputDebugStringW(out.c_str());
}

}  // namespace detail

int getDebugValue(const WCHAR* key) {
    const WString& folder = logState().baseFolder;
    if (key == nullptr || folder.empty()) return -1;
    const WString file = format(TEXT("%s\\mvDebug.ini"), folder);
    return static_cast<int>(GetPrivateProfileIntW(TEXT("Debug"), key, -1, file.c_str()));
}

}  // namespace morvil
