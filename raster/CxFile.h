// CxFile.h - what images are saved to: a file as the image classes see it. CxIOFile is the one on disk.
#pragma once

#include <cstdint>
#include <span>

#include "platform/common/FileStream.h"

namespace morvil {

class CxFile {
  public:
    virtual ~CxFile() = default;
    CxFile() = default;
    CxFile(const CxFile&) = delete;
    CxFile& operator=(const CxFile&) = delete;

    virtual bool Write(std::span<const std::uint8_t> bytes) = 0;
    virtual std::size_t Read(std::span<std::uint8_t> out) = 0;
    virtual bool Seek(std::int64_t position) = 0;
    // Byte position and size; -1 on failure.
    virtual std::int64_t Tell() = 0;
    virtual std::int64_t Size() = 0;
    // False when the file could not be brought to its end properly.
    virtual bool Close() = 0;
};

// Owns its file; closed at the end at the latest.
class CxIOFile : public CxFile {
  public:
    bool Open(const WCHAR* path, OpenMode mode) { return m_file.open(path, mode); }
    bool Write(std::span<const std::uint8_t> bytes) override { return m_file.write(bytes); }
    std::size_t Read(std::span<std::uint8_t> out) override { return m_file.read(out); }
    bool Seek(std::int64_t position) override { return m_file.seek(position); }
    std::int64_t Tell() override { return m_file.tell(); }
    std::int64_t Size() override { return m_file.size(); }
    bool Close() override { return m_file.close(); }

  private:
    FileStream m_file;
};

}  // namespace morvil
