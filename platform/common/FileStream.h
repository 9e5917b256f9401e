// FileStream.h - one open file, the way the driver works with files: open in a mode, work at a byte position, close.
// Owns its handle; closes it on destruction. Unbuffered: each write reaches the system at once, so callers hand over whole
// lines or rows. Not shared between threads.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/common/Text.h"

namespace morvil {

enum class OpenMode : std::uint8_t {
    Read,      // "rb": must exist
    Update,    // "r+b": must exist, read and write
    Append,    // "a+": made when missing, every write goes to the end
    Create,    // "w+b": made or emptied, read and write
    CreateNew  // as Create, but fails when the file exists
};

class FileStream {
  public:
    FileStream() = default;
    FileStream(const WCHAR* path, OpenMode mode) { open(path, mode); }
    ~FileStream() { close(); }
    FileStream(FileStream&& other) noexcept;
    FileStream& operator=(FileStream&& other) noexcept;
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    // Closes what was open first. On failure the stream is closed and GetLastError tells why.
    bool open(const WCHAR* path, OpenMode mode);
    // False when the system reports a failure on closing; closed either way. Closing a closed stream is a success.
    bool close();
    [[nodiscard]] bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }

    // Reads up to out.size() bytes; the count read, 0 at the end of the file or on an error (which sets failed()).
    std::size_t read(std::span<std::uint8_t> out);
    // The same with a single call of the system: a count below out.size() means the end of the file, 0 an error as well.
    std::size_t readOnce(std::span<std::uint8_t> out);
    // Everything from the position to the end. Nothing when `limit` bytes are exceeded or a read fails.
    std::optional<std::vector<std::uint8_t>> readAll(std::uint64_t limit);
    // All bytes or failure; a short write counts as failure.
    bool write(std::span<const std::uint8_t> bytes);
    bool write(std::string_view bytes);
    // Text as the job and log files hold it: one Latin-1 byte per character ('?' for others), "\n" as CR LF.
    bool writeText(WStringView text);

    bool seek(std::int64_t position);
    bool seekToEnd();
    // The same, telling the size of the file, -1 on failure: one call of the system where seeking and asking are two.
    std::int64_t sizeAtEnd();
    // Byte position, -1 on failure.
    std::int64_t tell();
    // Size in bytes, -1 on failure.
    std::int64_t size();
    // Cuts or extends the file to the current position.
    bool truncateHere();
    // Hands everything to the disk (not only to the system).
    bool flushToDisk();
    // True once any read or write on this stream failed; stays set until the next open.
    [[nodiscard]] bool failed() const { return m_failed; }

  private:
    HANDLE m_handle = INVALID_HANDLE_VALUE;
    bool m_failed = false;
};

// "text\n" as it lands in a file: Latin-1 with CR LF.
std::string toFileBytes(WStringView text);

bool fileExists(const WCHAR* path);    // a file, not a folder
bool folderExists(const WCHAR* path);  // a folder

}  // namespace morvil
