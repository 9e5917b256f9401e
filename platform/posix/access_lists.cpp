// access_lists.cpp - who may use a folder. Promises: an access list has entries for the owner, the group and the users, read
// from and written to the mode bits of the folder; entries are copied and counted as on Windows; the text form understands
// allow-entries such as "D:(A;OICI;GA;;;BU)". Setting a list never takes rights from the owner, and gives others only what the
// process's file creation mask allows to new files, too: the data root is one user's own unless the administrator's mask says
// otherwise.
// Refuses: deny-entries, owners and groups in the text form, rights by number (ERROR_INVALID_PARAMETER), audit lists.
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/security.h"

using namespace morvil;

namespace {

enum class Who : DWORD { Owner, Group, Users };

// One entry; its header comes first, as callers read the entry's size there.
struct Entry {
    ACE_HEADER header;
    DWORD rights;  // mode bits of one class: 4 read, 2 write, 1 search
    Who who;
};
static_assert(sizeof(Entry) == 12);

constexpr BYTE kAllow = 0;
constexpr WORD kDaclPresent = 0x4;
constexpr DWORD kAllRights = 7;

Entry entryOf(Who who, DWORD rights) {
    return {.header = {.AceType = kAllow, .AceFlags = 0, .AceSize = sizeof(Entry)}, .rights = rights, .who = who};
}

// A descriptor with its list right behind it, in one block.
struct Block {
    SECURITY_DESCRIPTOR descriptor;
    ACL list;
};

DWORD blockBytes(std::size_t entries) { return static_cast<DWORD>(sizeof(Block) + entries * sizeof(Entry)); }

void fillBlock(void* out, const std::vector<Entry>& entries) {
    auto* const block = static_cast<Block*>(out);
    *block = {};
    block->descriptor.Revision = SECURITY_DESCRIPTOR_REVISION;
    block->descriptor.Control = kDaclPresent;
    block->descriptor.Dacl = &block->list;
    block->list.AclRevision = ACL_REVISION;
    block->list.AclSize = static_cast<WORD>(sizeof(ACL) + entries.size() * sizeof(Entry));
    block->list.AceCount = static_cast<WORD>(entries.size());
    std::memcpy(block + 1, entries.data(), entries.size() * sizeof(Entry));
}

BYTE* entriesOf(PACL list) { return reinterpret_cast<BYTE*>(list + 1); }

// Bytes of the first `count` entries; nothing when they do not fit the list.
std::optional<std::size_t> bytesInUse(PACL list, std::size_t count) {
    std::size_t used = 0;
    const std::size_t room = list->AclSize - sizeof(ACL);
    for (std::size_t i = 0; i < count; ++i) {
        ACE_HEADER header{};
        if (room - used < sizeof(header)) return std::nullopt;
        std::memcpy(&header, entriesOf(list) + used, sizeof(header));
        if (header.AceSize < sizeof(header) || header.AceSize > room - used) return std::nullopt;
        used += header.AceSize;
    }
    return used;
}

bool isList(PACL list) { return list != nullptr && list->AclSize >= sizeof(ACL); }

mode_t creationMask() {
    constexpr mode_t kUsual = 022;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("Umask:")) return static_cast<mode_t>(std::stoul(line.substr(6), nullptr, 8));
    }
    return kUsual;
}

mode_t bitsOf(const Entry& entry) {
    const mode_t rights = entry.rights & kAllRights;
    switch (entry.who) {
        case Who::Owner: return rights << 6;
        case Who::Group: return rights << 3;
        case Who::Users: return rights << 3 | rights;
    }
    return 0;
}

// What the list gives to group and others.
std::optional<mode_t> sharedBitsOf(PACL list) {
    mode_t bits = 0;
    std::size_t at = 0;
    for (std::size_t i = 0; i < list->AceCount; ++i) {
        const auto end = bytesInUse(list, i + 1);
        if (!end || *end - at < sizeof(Entry)) return std::nullopt;
        Entry entry{};
        std::memcpy(&entry, entriesOf(list) + at, sizeof(entry));
        bits |= bitsOf(entry);
        at = *end;
    }
    return bits & 077;
}

WStringView takeField(WStringView& text) {
    const std::size_t end = text.find(TEXT(';'));
    const WStringView field = text.substr(0, end);
    text = end == WStringView::npos ? WStringView() : text.substr(end + 1);
    return field;
}

// "A;OICI;GA;;;BU": kind, flags, rights, two fields for objects, account.
std::optional<Entry> parseEntry(WStringView text) {
    if (std::count(text.begin(), text.end(), TEXT(';')) != 5) return std::nullopt;
    const WStringView kind = takeField(text);
    takeField(text);
    const WStringView rights = takeField(text);
    if (!takeField(text).empty() || !takeField(text).empty() || kind != TEXT("A")) return std::nullopt;
    DWORD bits = 0;
    if (rights == TEXT("GA") || rights == TEXT("FA")) bits = kAllRights;
    if (rights == TEXT("GR") || rights == TEXT("FR")) bits = 5;
    if (rights == TEXT("GW") || rights == TEXT("FW")) bits = 2;
    if (bits == 0) return std::nullopt;
    if (text == TEXT("BU") || text == TEXT("WD") || text == TEXT("AU")) return entryOf(Who::Users, bits);
    if (text == TEXT("CO") || text == TEXT("OW")) return entryOf(Who::Owner, bits);
    return std::nullopt;
}

std::optional<std::vector<Entry>> parseList(WStringView text) {
    if (!text.starts_with(TEXT("D:"))) return std::nullopt;
    text.remove_prefix(2);
    std::vector<Entry> entries;
    while (!text.empty()) {
        const std::size_t end = text.find(TEXT(')'));
        if (text.front() != TEXT('(') || end == WStringView::npos) return std::nullopt;
        const auto entry = parseEntry(text.substr(1, end - 1));
        if (!entry) return std::nullopt;
        entries.push_back(*entry);
        text.remove_prefix(end + 1);
    }
    return entries;
}

}  // namespace

BOOL GetFileSecurityW(LPCWSTR path, DWORD what, PSECURITY_DESCRIPTOR out, DWORD bytes, LPDWORD needed) {
    if (refused("GetFileSecurityW")) return FALSE;
    HostPath hostPath;
    if (!hostPath.assign(path)) return FALSE;
    if (what != DACL_SECURITY_INFORMATION || needed == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    struct stat status {};
    if (platformCalls().status(hostPath.c_str(), &status) != 0) return failForPath(hostPath.c_str());
    const std::vector<Entry> entries{entryOf(Who::Owner, (status.st_mode >> 6) & kAllRights),
                                     entryOf(Who::Group, (status.st_mode >> 3) & kAllRights),
                                     entryOf(Who::Users, status.st_mode & kAllRights)};
    *needed = blockBytes(entries.size());
    if (out == nullptr || bytes < *needed) return failWith(ERROR_INSUFFICIENT_BUFFER);
    fillBlock(out, entries);
    return TRUE;
}

BOOL SetFileSecurityW(LPCWSTR path, DWORD what, PSECURITY_DESCRIPTOR descriptor) {
    if (refused("SetFileSecurityW")) return FALSE;
    HostPath hostPath;
    if (!hostPath.assign(path)) return FALSE;
    const auto* const given = static_cast<const SECURITY_DESCRIPTOR*>(descriptor);
    if (what != DACL_SECURITY_INFORMATION || given == nullptr || (given->Control & kDaclPresent) == 0)
        return failWith(ERROR_INVALID_PARAMETER);
    const auto shared = given->Dacl == nullptr ? std::optional<mode_t>(077)
                        : isList(given->Dacl)  ? sharedBitsOf(given->Dacl)
                                               : std::nullopt;
    if (!shared) return failWith(ERROR_INVALID_PARAMETER);
    struct stat status {};
    if (platformCalls().status(hostPath.c_str(), &status) != 0) return failForPath(hostPath.c_str());
    const mode_t now = status.st_mode & 07777;
    const mode_t allowed = now | ~creationMask();
    const mode_t wanted = (now & ~mode_t{077}) | (*shared & allowed);
    if (wanted == now || platformCalls().changeMode(hostPath.c_str(), wanted) == 0) return TRUE;
    return failWithErrno();
}

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision) {
    if (refused("InitializeSecurityDescriptor")) return FALSE;
    if (descriptor == nullptr || revision != SECURITY_DESCRIPTOR_REVISION) return failWith(ERROR_INVALID_PARAMETER);
    *static_cast<SECURITY_DESCRIPTOR*>(descriptor) = {};
    static_cast<SECURITY_DESCRIPTOR*>(descriptor)->Revision = SECURITY_DESCRIPTOR_REVISION;
    return TRUE;
}

BOOL GetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, LPBOOL present, PACL* list, LPBOOL defaulted) {
    if (refused("GetSecurityDescriptorDacl")) return FALSE;
    const auto* const given = static_cast<const SECURITY_DESCRIPTOR*>(descriptor);
    if (given == nullptr || present == nullptr || list == nullptr || defaulted == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    *present = (given->Control & kDaclPresent) != 0 ? TRUE : FALSE;
    if (*present == FALSE) return TRUE;
    *list = given->Dacl;
    *defaulted = FALSE;
    return TRUE;
}

BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL list, BOOL) {
    if (refused("SetSecurityDescriptorDacl")) return FALSE;
    auto* const given = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
    if (given == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    given->Control = present != FALSE ? kDaclPresent : WORD{0};
    given->Dacl = present != FALSE ? list : nullptr;
    return TRUE;
}

BOOL InitializeAcl(PACL list, DWORD bytes, DWORD revision) {
    if (refused("InitializeAcl")) return FALSE;
    if (list == nullptr || revision != ACL_REVISION || bytes > 0xFFFF) return failWith(ERROR_INVALID_PARAMETER);
    if (bytes < sizeof(ACL)) return failWith(ERROR_INSUFFICIENT_BUFFER);
    *list = {.AclRevision = ACL_REVISION, .Sbz1 = 0, .AclSize = static_cast<WORD>(bytes), .AceCount = 0, .Sbz2 = 0};
    return TRUE;
}

BOOL GetAclInformation(PACL list, LPVOID out, DWORD bytes, ACL_INFORMATION_CLASS kind) {
    if (refused("GetAclInformation")) return FALSE;
    if (!isList(list) || kind != AclSizeInformation || out == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    if (bytes < sizeof(ACL_SIZE_INFORMATION)) return failWith(ERROR_INSUFFICIENT_BUFFER);
    const auto used = bytesInUse(list, list->AceCount);
    if (!used) return failWith(ERROR_INVALID_PARAMETER);
    const auto inUse = static_cast<DWORD>(sizeof(ACL) + *used);
    const ACL_SIZE_INFORMATION information{.AceCount = list->AceCount, .AclBytesInUse = inUse, .AclBytesFree = list->AclSize - inUse};
    std::memcpy(out, &information, sizeof(information));
    return TRUE;
}

BOOL GetAce(PACL list, DWORD index, LPVOID* entry) {
    if (refused("GetAce")) return FALSE;
    if (!isList(list) || entry == nullptr || index >= list->AceCount) return failWith(ERROR_INVALID_PARAMETER);
    const auto at = bytesInUse(list, index);
    if (!at || !bytesInUse(list, std::size_t{index} + 1)) return failWith(ERROR_INVALID_PARAMETER);
    *entry = entriesOf(list) + *at;
    return TRUE;
}

// Entries go behind those that are there, whatever the index: with allow-entries alone their order says nothing.
BOOL AddAce(PACL list, DWORD revision, DWORD, LPVOID entries, DWORD bytes) {
    if (refused("AddAce")) return FALSE;
    if (!isList(list) || revision != ACL_REVISION || entries == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    const auto used = bytesInUse(list, list->AceCount);
    if (!used) return failWith(ERROR_INVALID_PARAMETER);
    if (bytes > list->AclSize - sizeof(ACL) - *used) return failWith(ERROR_ALLOTTED_SPACE_EXCEEDED);
    WORD added = 0;
    for (DWORD at = 0; at < bytes; ++added) {
        ACE_HEADER header{};
        if (bytes - at < sizeof(header)) return failWith(ERROR_INVALID_PARAMETER);
        std::memcpy(&header, static_cast<const BYTE*>(entries) + at, sizeof(header));
        if (header.AceSize < sizeof(header) || header.AceSize > bytes - at) return failWith(ERROR_INVALID_PARAMETER);
        at += header.AceSize;
    }
    std::memmove(entriesOf(list) + *used, entries, bytes);
    list->AceCount = static_cast<WORD>(list->AceCount + added);
    return TRUE;
}

// The caller frees the descriptor with LocalFree.
BOOL ConvertStringSecurityDescriptorToSecurityDescriptorW(LPCWSTR text, DWORD revision, PSECURITY_DESCRIPTOR* descriptor, ULONG* bytes) {
    if (refused("ConvertStringSecurityDescriptorToSecurityDescriptorW")) return FALSE;
    const auto entries = parseList(viewOf(text));
    if (!entries || revision != SDDL_REVISION_1 || descriptor == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    void* const block = LocalAlloc(LPTR, blockBytes(entries->size()));
    if (block == nullptr) return FALSE;
    fillBlock(block, *entries);
    *descriptor = block;
    if (bytes != nullptr) *bytes = blockBytes(entries->size());
    return TRUE;
}
