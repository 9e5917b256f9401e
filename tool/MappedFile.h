// MappedFile.h - a whole file as read-only bytes, mapped rather than copied: job files hold page bitmaps of hundreds of
// megabytes. Owns the mapping.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace morvil::tool {

class MappedFile {
  public:
    // `path` is the host's own path, UTF-8. Throws std::system_error with the path and the system's reason.
    explicit MappedFile(const std::string& path);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return {static_cast<const std::uint8_t*>(m_data), m_size}; }

  private:
    void* m_data = nullptr;
    std::size_t m_size = 0;
};

}  // namespace morvil::tool
