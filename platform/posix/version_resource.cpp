// version_resource.cpp - the version of a program file. Promises: the version resource of a 64-bit or 32-bit Windows program
// file, every offset and count of the file checked before it is followed. Refuses: files of other kinds, this host's shared
// libraries among them (ERROR_RESOURCE_DATA_NOT_FOUND); files above 256 MB; queries other than the root block ("\").
#include <cstring>
#include <optional>
#include <span>
#include <vector>

#include "platform/common/FileStream.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HostState.h"

using namespace morvil;

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint64_t kMaxFile = std::uint64_t{256} << 20;
constexpr DWORD kFixedInfoMark = 0xFEEF04BD;

// A number of the file; nothing when it lies beyond the end.
template <typename T>
std::optional<T> readAt(Bytes bytes, std::size_t at) {
    if (at > bytes.size() || bytes.size() - at < sizeof(T)) return std::nullopt;
    T value{};
    std::memcpy(&value, bytes.data() + at, sizeof(T));
    return value;
}

std::optional<Bytes> pieceOf(Bytes bytes, std::size_t at, std::size_t count) {
    if (at > bytes.size() || bytes.size() - at < count) return std::nullopt;
    return bytes.subspan(at, count);
}

struct Section {
    DWORD address = 0;
    DWORD fileOffset = 0;
    DWORD bytes = 0;
};

// What of a program file leads to its resources.
struct Program {
    DWORD resources = 0;  // address of the resource tree
    std::vector<Section> sections;
};

std::optional<Program> readProgram(Bytes file) {
    constexpr WORD kDosMark = 0x5A4D;
    constexpr DWORD kProgramMark = 0x00004550;
    constexpr WORD kOptional32 = 0x10B;
    constexpr WORD kOptional64 = 0x20B;
    if (readAt<WORD>(file, 0) != kDosMark) return std::nullopt;
    const auto header = readAt<DWORD>(file, 0x3C);
    if (!header || readAt<DWORD>(file, *header) != kProgramMark) return std::nullopt;
    const std::size_t coff = std::size_t{*header} + 4;
    const auto sectionCount = readAt<WORD>(file, coff + 2);
    const auto optionalBytes = readAt<WORD>(file, coff + 16);
    const std::size_t optional = coff + 20;
    const auto kind = readAt<WORD>(file, optional);
    if (!sectionCount || !optionalBytes || (kind != kOptional32 && kind != kOptional64)) return std::nullopt;
    const std::size_t directories = optional + (kind == kOptional64 ? 112 : 96);
    const auto directoryCount = readAt<DWORD>(file, directories - 4);
    const auto resources = readAt<DWORD>(file, directories + 2 * 8);
    if (!directoryCount || *directoryCount < 3 || !resources || *resources == 0) return std::nullopt;

    Program program{.resources = *resources, .sections = {}};
    for (std::size_t i = 0; i < *sectionCount; ++i) {
        const std::size_t at = optional + *optionalBytes + i * 40;
        const auto address = readAt<DWORD>(file, at + 12);
        const auto bytes = readAt<DWORD>(file, at + 16);
        const auto offset = readAt<DWORD>(file, at + 20);
        if (!address || !bytes || !offset) return std::nullopt;
        program.sections.push_back({*address, *offset, *bytes});
    }
    return program;
}

// The bytes of the file from a loaded address to the end of its section.
std::optional<Bytes> atAddress(Bytes file, const Program& program, DWORD address) {
    for (const Section& section : program.sections) {
        if (address < section.address || address - section.address >= section.bytes) continue;
        const DWORD inside = address - section.address;
        const std::size_t start = std::size_t{section.fileOffset} + inside;
        if (start >= file.size()) return std::nullopt;
        return file.subspan(start, std::min<std::size_t>(section.bytes - inside, file.size() - start));
    }
    return std::nullopt;
}

// The offset behind an entry of a folder of the resource tree: the entry with `id`, or the first one.
std::optional<DWORD> entryOf(Bytes tree, std::size_t folder, std::optional<DWORD> id) {
    const auto named = readAt<WORD>(tree, folder + 12);
    const auto numbered = readAt<WORD>(tree, folder + 14);
    if (!named || !numbered) return std::nullopt;
    const std::size_t count = std::size_t{*named} + *numbered;
    for (std::size_t i = 0; i < count; ++i) {
        const auto entryId = readAt<DWORD>(tree, folder + 16 + i * 8);
        const auto offset = readAt<DWORD>(tree, folder + 20 + i * 8);
        if (!entryId || !offset) return std::nullopt;
        if (!id || *entryId == *id) return *offset;
    }
    return std::nullopt;
}

std::optional<Bytes> versionResourceOf(Bytes file) {
    constexpr DWORD kVersionKind = 16;
    constexpr DWORD kIsFolder = 0x80000000U;
    const auto program = readProgram(file);
    const auto tree = program ? atAddress(file, *program, program->resources) : std::nullopt;
    if (!tree) return std::nullopt;
    const auto names = entryOf(*tree, 0, kVersionKind);
    if (!names || (*names & kIsFolder) == 0) return std::nullopt;
    const auto languages = entryOf(*tree, *names & ~kIsFolder, std::nullopt);
    if (!languages || (*languages & kIsFolder) == 0) return std::nullopt;
    const auto leaf = entryOf(*tree, *languages & ~kIsFolder, std::nullopt);
    if (!leaf || (*leaf & kIsFolder) != 0) return std::nullopt;
    const auto address = readAt<DWORD>(*tree, *leaf);
    const auto bytes = readAt<DWORD>(*tree, std::size_t{*leaf} + 4);
    if (!address || !bytes) return std::nullopt;
    const auto data = atAddress(file, *program, *address);
    return data ? pieceOf(*data, 0, *bytes) : std::nullopt;
}

// The root block: its length, its value's length, its kind, the key, and the fixed part of the version at offset 40.
struct RootBlock {
    WORD length;
    WORD valueLength;
    WORD kind;
};
constexpr std::size_t kFixedInfoOffset = 40;

bool isWellFormed(Bytes resource) {
    const auto root = readAt<RootBlock>(resource, 0);
    constexpr WStringView kKey = TEXT("VS_VERSION_INFO");
    if (!root || root->length > resource.size() || root->valueLength < sizeof(VS_FIXEDFILEINFO)) return false;
    if (root->length < kFixedInfoOffset + sizeof(VS_FIXEDFILEINFO)) return false;
    return std::memcmp(resource.data() + sizeof(RootBlock), kKey.data(), (kKey.size() + 1) * sizeof(WCHAR)) == 0 &&
           readAt<DWORD>(resource, kFixedInfoOffset) == kFixedInfoMark;
}

// Empty with the last error set.
std::vector<std::uint8_t> readVersion(LPCWSTR path) {
    FileStream file(path, OpenMode::Read);
    if (!file.isOpen()) return {};
    const auto bytes = file.readAll(kMaxFile);
    const auto resource = bytes ? versionResourceOf(*bytes) : std::nullopt;
    if (resource && isWellFormed(*resource)) return {resource->begin(), resource->end()};
    SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
    return {};
}

}  // namespace

DWORD GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD handle) {
    if (handle != nullptr) *handle = 0;
    if (refused("GetFileVersionInfoSizeW")) return 0;
    return static_cast<DWORD>(readVersion(file).size());
}

BOOL GetFileVersionInfoW(LPCWSTR file, DWORD, DWORD bytes, LPVOID data) {
    if (refused("GetFileVersionInfoW")) return FALSE;
    const auto resource = readVersion(file);
    if (resource.empty()) return FALSE;
    if (data == nullptr || bytes < resource.size()) return failWith(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(data, resource.data(), resource.size());
    return TRUE;
}

// The block was checked when GetFileVersionInfoW handed it out.
BOOL VerQueryValueW(LPCVOID data, LPCWSTR block, LPVOID* value, UINT* bytes) {
    if (refused("VerQueryValueW")) return FALSE;
    if (data == nullptr || value == nullptr || bytes == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    const auto root = readAt<RootBlock>({static_cast<const std::uint8_t*>(data), sizeof(RootBlock)}, 0);
    if (viewOf(block) != TEXT("\\") || root->length < kFixedInfoOffset + sizeof(VS_FIXEDFILEINFO))
        return failWith(ERROR_RESOURCE_DATA_NOT_FOUND);
    *value = const_cast<std::uint8_t*>(static_cast<const std::uint8_t*>(data)) + kFixedInfoOffset;
    *bytes = sizeof(VS_FIXEDFILEINFO);
    return TRUE;
}
