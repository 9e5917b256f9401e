// Processes, accounts and access lists of this host.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "platform/HostTest.h"
#include "platform/common/LocalBlock.h"

namespace morvil::test {

namespace {

HANDLE tokenOf(HANDLE process) {
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(process, TOKEN_QUERY, &token));
    return token;
}

WString userName() {
    std::array<WCHAR, 100> name{};
    DWORD characters = 100;
    EXPECT_TRUE(GetUserNameW(name.data(), &characters));
    EXPECT_EQ(characters, viewOf(name).size() + 1);
    return WString(viewOf(name));
}

unsigned modeOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

}  // namespace

TEST_F(HostTest, process_unknownOnesAreRefused) {
    for (const DWORD number : {DWORD{0}, kSomePid}) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, number), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    std::array<WCHAR, 10> name{};
    HMODULE module = nullptr;
    DWORD needed = 0;
    EXPECT_FALSE(EnumProcessModules(nullptr, &module, sizeof(module), &needed));
    EXPECT_EQ(GetModuleBaseNameW(nullptr, nullptr, name.data(), 10), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenProcessToken(nullptr, TOKEN_QUERY, &token));
}

TEST_F(HostTest, process_ownProgramHasItsName) {
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, GetCurrentProcessId()));
    HMODULE module = nullptr;
    DWORD needed = 0;
    ASSERT_TRUE(EnumProcessModules(process, &module, sizeof(module), &needed));
    EXPECT_NE(module, nullptr);
    std::array<WCHAR, 520> name{};
    EXPECT_EQ(GetModuleBaseNameW(process, module, name.data(), 520), 13U);
    EXPECT_EQ(viewOf(name), TEXT("test_platform"));
    EXPECT_EQ(GetModuleBaseNameW(process, module, name.data(), 5), 4U);
    EXPECT_EQ(viewOf(name), TEXT("test"));
    EXPECT_EQ(GetModuleBaseNameW(GetCurrentProcess(), module, name.data(), 520), 13U);
}

TEST_F(HostTest, process_canBeGivenANameAndAnOwner) {
    hostState().processes[kSomePid] = {.moduleName = TEXT("winword.exe"), .owner = 77};
    hostState().accounts[77] = {.name = TEXT("anna"), .domain = TEXT("WORKSHOP")};
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, kSomePid));
    std::array<WCHAR, 100> name{};
    EXPECT_EQ(GetModuleBaseNameW(process, nullptr, name.data(), 100), 11U);
    EXPECT_EQ(viewOf(name), TEXT("winword.exe"));
    const Handle token(tokenOf(process));
    EXPECT_TRUE(ImpersonateLoggedOnUser(token));
    EXPECT_EQ(userName(), TEXT("anna"));
    EXPECT_EQ(outstanding().impersonations, 1U);
    EXPECT_TRUE(RevertToSelf());
    EXPECT_NE(userName(), TEXT("anna"));
}

TEST_F(HostTest, userName_tellsTheRoomItNeeds) {
    hostState().userName = TEXT("SYSTEM");
    std::array<WCHAR, 7> name{};
    DWORD characters = 6;
    EXPECT_FALSE(GetUserNameW(name.data(), &characters));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(characters, 7U);
    EXPECT_TRUE(GetUserNameW(name.data(), &characters));
    EXPECT_EQ(viewOf(name), TEXT("SYSTEM"));
    EXPECT_FALSE(GetUserNameW(name.data(), nullptr));
}

TEST_F(HostTest, impersonation_needsAToken) {
    for (HANDLE const token : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        EXPECT_FALSE(ImpersonateLoggedOnUser(token));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_TRUE(RevertToSelf()) << "also without an impersonation";
}

TEST_F(HostTest, token_namesItsOwner) {
    hostState().processes[kSomePid] = {.moduleName = TEXT("a.exe"), .owner = 77};
    hostState().accounts[77] = {.name = TEXT("anna"), .domain = TEXT("WORKSHOP")};
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, kSomePid));
    const Handle token(tokenOf(process));
    DWORD needed = 0;
    EXPECT_FALSE(GetTokenInformation(token, TokenUser, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    LocalBlock<BYTE> buffer(needed);
    EXPECT_FALSE(GetTokenInformation(token, TokenUser, buffer.get(), needed - 1, &needed));
    ASSERT_TRUE(GetTokenInformation(token, TokenUser, buffer.get(), needed, &needed));
    TOKEN_USER user{};
    std::memcpy(&user, buffer.get(), sizeof(user));

    std::array<WCHAR, 100> name{};
    std::array<WCHAR, 100> domain{};
    DWORD characters = 8;  // one length for both, as some callers have it
    EXPECT_FALSE(LookupAccountSidW(nullptr, user.User.Sid, name.data(), &characters, domain.data(), &characters, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(characters, 9U);
    SID_NAME_USE use = SidTypeUnknown;
    ASSERT_TRUE(LookupAccountSidW(nullptr, user.User.Sid, name.data(), &characters, domain.data(), &characters, &use));
    EXPECT_EQ(viewOf(name), TEXT("anna"));
    EXPECT_EQ(viewOf(domain), TEXT("WORKSHOP"));
    EXPECT_EQ(use, SidTypeUser);

    hostState().accounts.clear();
    WString stranger = TEXT("S-1-22-1-4000000000");
    characters = 100;
    EXPECT_FALSE(LookupAccountSidW(nullptr, stranger.data(), name.data(), &characters, domain.data(), &characters, &use));
    EXPECT_EQ(GetLastError(), ERROR_NONE_MAPPED);
    WString nonsense = TEXT("S-1-22-1-x");
    EXPECT_FALSE(LookupAccountSidW(nullptr, nonsense.data(), name.data(), &characters, domain.data(), &characters, &use));
}

TEST_F(HostTest, accessText_nearMisses) {
    for (const WCHAR* const text :
         {TEXT(""), TEXT("BU"), TEXT("D"), TEXT("D:("), TEXT("D:(A;OICI;GA;;;BU"), TEXT("D:(D;OICI;GA;;;BU)"), TEXT("D:(A;OICI;GA;;BU)"),
          TEXT("D:(A;OICI;;;;BU)"), TEXT("D:(A;OICI;GA;x;;BU)"), TEXT("D:(A;;GA;;;XX)"), TEXT("O:BA"), TEXT("D:(A;;GA;;;BU)x")}) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        EXPECT_FALSE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &descriptor, nullptr)) << toUtf8(text);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(descriptor, nullptr);
    }
}

TEST_F(HostTest, accessList_givesWhatTheCreationMaskAllows) {
    const mode_t before = ::umask(0);
    for (const mode_t mask : {0022U, 0002U, 0000U, 0077U}) {
        ::umask(0077);
        makeFolder(TEXT("C:\\folder"));
        ::umask(mask);
        DWORD needed = 0;
        EXPECT_FALSE(GetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, nullptr, 0, &needed));
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        LocalBlock<BYTE> present(needed);
        ASSERT_TRUE(GetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, present.get(), needed, &needed));
        BOOL isPresent = FALSE;
        BOOL defaulted = TRUE;
        PACL old = nullptr;
        ASSERT_TRUE(GetSecurityDescriptorDacl(present.get(), &isPresent, &old, &defaulted));
        ACL_SIZE_INFORMATION size{};
        ASSERT_TRUE(GetAclInformation(old, &size, sizeof(size), AclSizeInformation));
        EXPECT_EQ(size.AceCount, 3U);
        EXPECT_EQ(size.AclBytesFree, 0U);

        PSECURITY_DESCRIPTOR text = nullptr;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(TEXT("D:(A;OICI;GA;;;BU)"), SDDL_REVISION_1, &text, nullptr));
        PACL added = nullptr;
        ASSERT_TRUE(GetSecurityDescriptorDacl(text, &isPresent, &added, &defaulted));
        LPVOID entry = nullptr;
        ASSERT_TRUE(GetAce(added, 0, &entry));
        EXPECT_FALSE(GetAce(added, 1, &entry));
        const DWORD entryBytes = static_cast<ACE_HEADER*>(entry)->AceSize;

        LocalBlock<BYTE> room(size.AclBytesInUse + entryBytes);
        const auto list = reinterpret_cast<PACL>(room.get());
        ASSERT_TRUE(InitializeAcl(list, size.AclBytesInUse + entryBytes, ACL_REVISION));
        for (DWORD i = 0; i < size.AceCount; ++i) {
            LPVOID each = nullptr;
            ASSERT_TRUE(GetAce(old, i, &each));
            EXPECT_TRUE(AddAce(list, ACL_REVISION, MAXDWORD, each, static_cast<ACE_HEADER*>(each)->AceSize));
        }
        EXPECT_TRUE(AddAce(list, ACL_REVISION, MAXDWORD, entry, entryBytes));
        EXPECT_FALSE(AddAce(list, ACL_REVISION, MAXDWORD, entry, entryBytes));
        EXPECT_EQ(GetLastError(), ERROR_ALLOTTED_SPACE_EXCEEDED);
        SECURITY_DESCRIPTOR descriptor{};
        ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
        EXPECT_FALSE(SetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, &descriptor)) << "without a list";
        ASSERT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE));
        EXPECT_FALSE(SetFileSecurityW(TEXT("C:\\none"), DACL_SECURITY_INFORMATION, &descriptor));
        EXPECT_TRUE(SetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, &descriptor));
        EXPECT_EQ(modeOf(home.folder() / "folder"), 0777U & ~mask);
        LocalFree(text);
        RemoveDirectoryW(TEXT("C:\\folder"));
    }
    ::umask(before);
}

TEST_F(HostTest, accessList_withLyingCounts) {
    alignas(8) std::array<BYTE, 64> room{};
    const auto list = reinterpret_cast<PACL>(room.data());
    LPVOID entry = nullptr;
    ACL_SIZE_INFORMATION size{};
    EXPECT_FALSE(InitializeAcl(list, 4, ACL_REVISION));
    ASSERT_TRUE(InitializeAcl(list, 64, ACL_REVISION));
    list->AceCount = 1000;  // entries of no size
    EXPECT_FALSE(GetAclInformation(list, &size, sizeof(size), AclSizeInformation));
    EXPECT_FALSE(GetAce(list, 5, &entry));
    EXPECT_FALSE(AddAce(list, ACL_REVISION, MAXDWORD, room.data(), 4));
    SECURITY_DESCRIPTOR descriptor{};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    makeFolder(TEXT("C:\\folder"));
    EXPECT_FALSE(SetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, &descriptor));
    list->AceCount = 1;
    const ACE_HEADER tooLong{.AceType = 0, .AceFlags = 0, .AceSize = 1000};
    std::memcpy(list + 1, &tooLong, sizeof(tooLong));
    EXPECT_FALSE(GetAce(list, 0, &entry));
}

}  // namespace morvil::test
