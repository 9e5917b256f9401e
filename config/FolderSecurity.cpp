// CMvFsServices::createDirectory: a folder whose access list lets every user of the machine write.
#include <array>
#include <memory>
#include <optional>

#include "config/CMvFsServices.h"
#include "driver/log/Log.h"
#include "platform/common/LocalBlock.h"

namespace morvil {

namespace {

// Allow, inherited by files and folders, everything, built-in Users.
constexpr const WCHAR* kUsersMayWrite = TEXT("D:(A;OICI;GA;;;BU)");

struct FreeLocal {
    void operator()(void* block) const { LocalFree(block); }
};
using LocalDescriptor = std::unique_ptr<void, FreeLocal>;

// The access list inside a security descriptor; null when there is none.
PACL listOf(PSECURITY_DESCRIPTOR descriptor) {
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL list = nullptr;
    if (GetSecurityDescriptorDacl(descriptor, &present, &list, &defaulted) == FALSE || present == FALSE) return nullptr;
    return list;
}

// The security descriptor of a folder, which holds its present access list; empty on failure.
LocalBlock<BYTE> getAcl(const WCHAR* path) {
    DWORD bytes = 0;
    GetFileSecurityW(path, DACL_SECURITY_INFORMATION, nullptr, 0, &bytes);
    LocalBlock<BYTE> descriptor(bytes);
    if (bytes == 0 || !descriptor) return {};
    if (GetFileSecurityW(path, DACL_SECURITY_INFORMATION, descriptor.get(), bytes, &bytes) == FALSE) return {};
    return descriptor;
}

LocalDescriptor getSecurityDescriptor(const WCHAR* text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &descriptor, nullptr) == FALSE) return nullptr;
    return LocalDescriptor(descriptor);
}

std::optional<ACL_SIZE_INFORMATION> sizeOf(PACL list) {
    ACL_SIZE_INFORMATION size{};
    if (list == nullptr || GetAclInformation(list, &size, sizeof(size), AclSizeInformation) == FALSE) return std::nullopt;
    return size;
}

bool appendEntries(PACL target, PACL source, DWORD count) {
    for (DWORD index = 0; index < count; ++index) {
        LPVOID entry = nullptr;
        if (GetAce(source, index, &entry) == FALSE) return false;
        if (AddAce(target, ACL_REVISION, MAXDWORD, entry, static_cast<const ACE_HEADER*>(entry)->AceSize) == FALSE) return false;
    }
    return true;
}

// The entries of both lists, those of `present` first; empty on failure.
LocalBlock<BYTE> joined(PACL present, PACL added) {
    const auto presentSize = sizeOf(present);
    const auto addedSize = sizeOf(added);
    if (!presentSize || !addedSize) return {};
    const DWORD bytes = presentSize->AclBytesInUse + addedSize->AclBytesInUse;  // one list header more than needed
    LocalBlock<BYTE> list(bytes);
    if (!list) return {};
    const auto target = reinterpret_cast<PACL>(list.get());
    if (InitializeAcl(target, bytes, ACL_REVISION) == FALSE) return {};
    if (!appendEntries(target, present, presentSize->AceCount) || !appendEntries(target, added, addedSize->AceCount)) return {};
    return list;
}

}  // namespace

bool CMvFsServices::createDirectory(const WCHAR* path) {
    if (CreateDirectoryW(path, nullptr) == FALSE) {
        debugPrint(TEXT("!!! CMvFsServices::createDirectory error create directory (%d)\n"), GetLastError());
        return false;
    }
    const LocalBlock<BYTE> present = getAcl(path);
    if (!present) {
        debugPrint(TEXT("!!! CMvFsServices::createDirectory error getAcl\n"));
        return false;
    }
    const LocalDescriptor users = getSecurityDescriptor(kUsersMayWrite);
    if (users == nullptr) {
        debugPrint(TEXT("!!! CMvFsServices::createDirectory error getSecurityDescriptor\n"));
        return false;
    }
    const LocalBlock<BYTE> list = joined(listOf(present.get()), listOf(users.get()));
    SECURITY_DESCRIPTOR descriptor{};
    if (!list || InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) == FALSE ||
        SetSecurityDescriptorDacl(&descriptor, TRUE, reinterpret_cast<PACL>(list.get()), FALSE) == FALSE) {
        debugPrint(TEXT("!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"));
        return false;
    }
    if (SetFileSecurityW(path, DACL_SECURITY_INFORMATION, &descriptor) == FALSE) {
        debugPrint(TEXT("!!! CMvFsServices::createDirectory error SetFileSecurity (%d)\n"), GetLastError());
        return false;
    }
    debugPrint(TEXT("CMvFsServices::createDirectory SetFileSecurity success, kb\n"));
    return true;
}

}  // namespace morvil
