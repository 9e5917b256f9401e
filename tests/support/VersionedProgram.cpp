#include "support/VersionedProgram.h"

#include <cstring>
#include <string_view>

namespace morvil::test {

namespace {

constexpr std::size_t kHeader = 0x80;           // where the program header begins
constexpr std::size_t kOptionalBytes = 240;     // of a 64-bit program, with 16 directories
constexpr std::size_t kResources = 0x400;       // file offset of the only section
constexpr std::uint32_t kAddress = 0x1000;      // and the address it is loaded at
constexpr std::size_t kVersionBytes = 40 + 52;  // root block, then the fixed part

template <typename T>
void put(std::string& bytes, std::size_t at, T value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

// A folder of the resource tree with one numbered entry.
void putFolder(std::string& bytes, std::size_t at, std::uint32_t id, std::uint32_t offset) {
    put<std::uint16_t>(bytes, at + 14, 1);
    put<std::uint32_t>(bytes, at + 16, id);
    put<std::uint32_t>(bytes, at + 20, offset);
}

void putVersion(std::string& bytes, std::size_t at, const std::array<std::uint16_t, 4>& version) {
    put<std::uint16_t>(bytes, at, kVersionBytes);
    put<std::uint16_t>(bytes, at + 2, 52);
    constexpr std::u16string_view kKey = u"VS_VERSION_INFO";
    std::memcpy(bytes.data() + at + 6, kKey.data(), kKey.size() * 2);
    put<std::uint32_t>(bytes, at + 40, 0xFEEF04BD);
    put<std::uint32_t>(bytes, at + 44, 0x00010000);
    put<std::uint32_t>(bytes, at + 48, static_cast<std::uint32_t>(version[0]) << 16 | version[1]);
    put<std::uint32_t>(bytes, at + 52, static_cast<std::uint32_t>(version[2]) << 16 | version[3]);
}

}  // namespace

std::string programWithVersion(const std::array<std::uint16_t, 4>& version) {
    constexpr std::uint32_t kFolder = 0x80000000;
    constexpr std::size_t kOptional = kHeader + 24;
    std::string bytes(0x600, '\0');
    put<std::uint16_t>(bytes, 0, 0x5A4D);
    put<std::uint32_t>(bytes, 0x3C, kHeader);
    put<std::uint32_t>(bytes, kHeader, 0x00004550);
    put<std::uint16_t>(bytes, kHeader + 4, 0x8664);
    put<std::uint16_t>(bytes, kHeader + 6, 1);  // sections
    put<std::uint16_t>(bytes, kHeader + 20, kOptionalBytes);
    put<std::uint16_t>(bytes, kOptional, 0x20B);
    put<std::uint32_t>(bytes, kOptional + 108, 16);             // directories
    put<std::uint32_t>(bytes, kOptional + 112 + 16, kAddress);  // the third one: resources
    put<std::uint32_t>(bytes, kOptional + 112 + 20, 0x200);
    const std::size_t section = kOptional + kOptionalBytes;
    put<std::uint32_t>(bytes, section + 8, 0x200);
    put<std::uint32_t>(bytes, section + 12, kAddress);
    put<std::uint32_t>(bytes, section + 16, 0x200);
    put<std::uint32_t>(bytes, section + 20, kResources);
    putFolder(bytes, kResources, 16, kFolder | 24);
    putFolder(bytes, kResources + 24, 1, kFolder | 48);
    putFolder(bytes, kResources + 48, 1033, 72);
    put<std::uint32_t>(bytes, kResources + 72, kAddress + 0x60);
    put<std::uint32_t>(bytes, kResources + 76, kVersionBytes);
    putVersion(bytes, kResources + 0x60, version);
    return bytes;
}

}  // namespace morvil::test
