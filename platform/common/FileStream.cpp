#include "platform/common/FileStream.h"

#include <algorithm>
#include <utility>

namespace morvil {

namespace {

struct OpenRule {
    DWORD access;
    DWORD disposition;
};

OpenRule ruleOf(OpenMode mode) {
    switch (mode) {
        case OpenMode::Read: return {GENERIC_READ, OPEN_EXISTING};
        case OpenMode::Update: return {GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING};
        case OpenMode::Append: return {GENERIC_READ | FILE_APPEND_DATA, OPEN_ALWAYS};
        case OpenMode::Create: return {GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS};
        case OpenMode::CreateNew: return {GENERIC_READ | GENERIC_WRITE, CREATE_NEW};
    }
    return {GENERIC_READ, OPEN_EXISTING};
}

// The platform takes 32-bit counts; larger buffers go in pieces.
constexpr std::size_t kPiece = std::size_t{1} << 30;

}  // namespace

FileStream::FileStream(FileStream&& other) noexcept
    : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE)), m_failed(std::exchange(other.m_failed, false)) {}

FileStream& FileStream::operator=(FileStream&& other) noexcept {
    if (this == &other) return *this;
    close();
    m_handle = std::exchange(other.m_handle, INVALID_HANDLE_VALUE);
    m_failed = std::exchange(other.m_failed, false);
    return *this;
}

bool FileStream::open(const WCHAR* path, OpenMode mode) {
    close();
    m_failed = false;
    if (path == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    const OpenRule rule = ruleOf(mode);
    m_handle = CreateFileW(path, rule.access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, rule.disposition,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    return isOpen();
}

bool FileStream::close() {
    if (!isOpen()) return true;
    return CloseHandle(std::exchange(m_handle, INVALID_HANDLE_VALUE)) != FALSE;
}

std::size_t FileStream::read(std::span<std::uint8_t> out) {
    std::size_t total = 0;
    while (total < out.size()) {
        const std::size_t got = readOnce(out.subspan(total));
        if (got == 0) break;
        total += got;
    }
    return total;
}

std::size_t FileStream::readOnce(std::span<std::uint8_t> out) {
    DWORD got = 0;
    if (!isOpen() || out.empty()) return 0;
    if (ReadFile(m_handle, out.data(), static_cast<DWORD>(std::min(kPiece, out.size())), &got, nullptr) != FALSE) return got;
    m_failed = true;
    return 0;
}

std::optional<std::vector<std::uint8_t>> FileStream::readAll(std::uint64_t limit) {
    const std::int64_t end = size();
    const std::int64_t start = tell();
    if (end < 0 || start < 0 || start > end || static_cast<std::uint64_t>(end - start) > limit) return std::nullopt;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(end - start));
    bytes.resize(read(bytes));
    if (m_failed) return std::nullopt;
    return bytes;
}

bool FileStream::write(std::span<const std::uint8_t> bytes) {
    if (!isOpen()) return false;
    for (std::size_t total = 0; total < bytes.size();) {
        DWORD put = 0;
        const BOOL done =
            WriteFile(m_handle, bytes.data() + total, static_cast<DWORD>(std::min(kPiece, bytes.size() - total)), &put, nullptr);
        if (done == FALSE || put == 0) {
            m_failed = true;
            return false;
        }
        total += put;
    }
    return true;
}

bool FileStream::write(std::string_view bytes) {
    return write(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
}

bool FileStream::writeText(WStringView text) { return write(toFileBytes(text)); }

bool FileStream::seek(std::int64_t position) {
    LARGE_INTEGER distance{};
    distance.QuadPart = position;
    return isOpen() && position >= 0 && SetFilePointerEx(m_handle, distance, nullptr, FILE_BEGIN) != FALSE;
}

bool FileStream::seekToEnd() { return sizeAtEnd() >= 0; }

std::int64_t FileStream::sizeAtEnd() {
    const LARGE_INTEGER distance{};
    LARGE_INTEGER end{};
    if (!isOpen() || SetFilePointerEx(m_handle, distance, &end, FILE_END) == FALSE) return -1;
    return end.QuadPart;
}

std::int64_t FileStream::tell() {
    const LARGE_INTEGER distance{};
    LARGE_INTEGER position{};
    if (!isOpen() || SetFilePointerEx(m_handle, distance, &position, FILE_CURRENT) == FALSE) return -1;
    return position.QuadPart;
}

std::int64_t FileStream::size() {
    LARGE_INTEGER bytes{};
    if (!isOpen() || GetFileSizeEx(m_handle, &bytes) == FALSE) return -1;
    return bytes.QuadPart;
}

bool FileStream::truncateHere() { return isOpen() && SetEndOfFile(m_handle) != FALSE; }

bool FileStream::flushToDisk() { return isOpen() && FlushFileBuffers(m_handle) != FALSE; }

std::string toFileBytes(WStringView text) {
    std::string bytes;
    bytes.reserve(text.size() + 2);
    for (const WCHAR unit : text) {
        if (unit == TEXT('\n')) bytes.push_back('\r');
        bytes.push_back(unit <= 0xFF ? static_cast<char>(static_cast<unsigned char>(unit)) : '?');
    }
    return bytes;
}

}  // namespace morvil
