// File-system services and the two questions about the machine.
#include <array>

#include "config/CMvFsServices.h"
#include "config/MvOperatingSystem.h"
#include "config/StoreTest.h"
#include "platform/common/FileStream.h"

namespace morvil {
namespace {

using test::exists;
using test::makeFolder;
using test::readBytes;
using test::writeBytes;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const WCHAR* kFolder = TEXT("C:\\made");

class FsServices : public test::StoreTest {
  protected:
    CMvFsServices m_services;
};

TEST_F(FsServices, a_folder_that_cannot_be_made_is_reported_with_the_error_number) {
    EXPECT_FALSE(m_services.createDirectory(TEXT("C:\\missing\\folder")));
    EXPECT_THAT(texts(), ElementsAre("!!! CMvFsServices::createDirectory error create directory (3)\n"));
    makeFolder(kFolder);
    m_debug.clear();
    EXPECT_FALSE(m_services.createDirectory(kFolder));
    EXPECT_THAT(texts(), ElementsAre("!!! CMvFsServices::createDirectory error create directory (183)\n"));
}

TEST_F(FsServices, each_step_of_securing_a_folder_has_its_own_report) {
    const struct {
        const char* refused;
        const char* text;
    } steps[] = {
        {"GetFileSecurityW", "!!! CMvFsServices::createDirectory error getAcl\n"},
        {"ConvertStringSecurityDescriptorToSecurityDescriptorW", "!!! CMvFsServices::createDirectory error getSecurityDescriptor\n"},
        {"GetSecurityDescriptorDacl", "!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"},
        {"GetAclInformation", "!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"},
        {"InitializeAcl", "!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"},
        {"GetAce", "!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"},
        {"AddAce", "!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"},
        {"InitializeSecurityDescriptor", "!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"},
        {"SetSecurityDescriptorDacl", "!!! CMvFsServices::createDirectory error SetSecurityDescriptorDacl\n"},
        {"SetFileSecurityW", "!!! CMvFsServices::createDirectory error SetFileSecurity (5)\n"}};
    for (const auto& step : steps) {
        hostState().refusals = {{step.refused, ERROR_ACCESS_DENIED}};
        m_debug.clear();
        EXPECT_FALSE(m_services.createDirectory(kFolder)) << step.refused;
        EXPECT_THAT(texts(), ElementsAre(step.text)) << step.refused;
        EXPECT_TRUE(folderExists(kFolder));  // the folder is there, only not secured
        RemoveDirectoryW(kFolder);
    }
}

DWORD entriesOf(const WCHAR* folder) {
    DWORD bytes = 0;
    GetFileSecurityW(folder, DACL_SECURITY_INFORMATION, nullptr, 0, &bytes);
    std::vector<std::uint8_t> descriptor(bytes);
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL list = nullptr;
    ACL_SIZE_INFORMATION size{};
    EXPECT_TRUE(GetFileSecurityW(folder, DACL_SECURITY_INFORMATION, descriptor.data(), bytes, &bytes));
    EXPECT_TRUE(GetSecurityDescriptorDacl(descriptor.data(), &present, &list, &defaulted));
    EXPECT_TRUE(GetAclInformation(list, &size, sizeof(size), AclSizeInformation));
    return size.AceCount;
}

TEST_F(FsServices, a_folder_is_made_and_opened_to_the_users) {
    EXPECT_TRUE(m_services.createDirectory(kFolder));
    EXPECT_THAT(texts(), ElementsAre("CMvFsServices::createDirectory SetFileSecurity success, kb\n"));
    EXPECT_TRUE(folderExists(kFolder));
    EXPECT_GT(entriesOf(kFolder), 0U);
}

TEST_F(FsServices, a_size_that_the_system_does_not_tell_is_reported) {
    writeBytes(TEXT("C:\\file.txt"), "12345");
    hostState().refusals["GetFileSizeEx"] = ERROR_GEN_FAILURE;
    EXPECT_EQ(m_services.getSize(TEXT("C:\\file.txt")), -1);
    EXPECT_THAT(texts(), ElementsAre("!!! CMvFsServices::getSize, Error(31), invalid file size (C:\\file.txt)"));
}

TEST_F(FsServices, pathWritable_reports_wrong_use_only) {
    EXPECT_FALSE(m_services.pathWritable(nullptr));
    EXPECT_FALSE(m_services.pathWritable(TEXT("")));
    EXPECT_THAT(texts(),
                ElementsAre("CMvFsServices::pathWritable Error invalid usage\n", "CMvFsServices::pathWritable Error invalid usage\n"));
    m_debug.clear();
    EXPECT_FALSE(m_services.pathWritable(TEXT("C:\\missing")));
    EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(FsServices, pathWritable_wants_to_open_a_file_and_to_make_one_in_a_folder) {
    makeFolder(kFolder);
    writeBytes(TEXT("C:\\file.txt"), "kept");
    EXPECT_TRUE(m_services.pathWritable(kFolder));
    EXPECT_FALSE(exists(TEXT("C:\\made\\test.xml")));
    EXPECT_TRUE(m_services.pathWritable(TEXT("C:\\file.txt")));
    EXPECT_EQ(readBytes(TEXT("C:\\file.txt")), "kept");
    for (const char* call : {"open", "remove"}) {
        const test::FailingCalls faults(1, test::Fault::Persistent, call);
        EXPECT_FALSE(m_services.pathWritable(kFolder)) << call;
    }
    const test::FailingCalls faults(1, test::Fault::Persistent, "open");
    EXPECT_FALSE(m_services.pathWritable(TEXT("C:\\file.txt")));
}

TEST_F(FsServices, pathWritable_refuses_what_is_read_only) {
    writeBytes(TEXT("C:\\file.txt"), "kept");
    ASSERT_TRUE(SetFileAttributesW(TEXT("C:\\file.txt"), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(m_services.pathWritable(TEXT("C:\\file.txt")));
    SetFileAttributesW(TEXT("C:\\file.txt"), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(m_services.pathWritable(TEXT("C:\\file.txt")));
}

TEST_F(FsServices, getSize_of_what_cannot_be_opened_is_reported) {
    EXPECT_EQ(m_services.getSize(TEXT("C:\\missing")), -1);
    EXPECT_EQ(m_services.getSize(nullptr), -1);
    EXPECT_THAT(texts(), ElementsAre("CMvFsServices::getSize, can't open file to check for\n",
                                     "CMvFsServices::getSize, can't open file to check for\n"));
}

TEST_F(FsServices, getSize_counts_bytes) {
    writeBytes(TEXT("C:\\file.txt"), std::string(70'000, 'x'));
    EXPECT_EQ(m_services.getSize(TEXT("C:\\file.txt")), 70'000);
    writeBytes(TEXT("C:\\file.txt"), "");
    EXPECT_EQ(m_services.getSize(TEXT("C:\\file.txt")), 0);
    EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(FsServices, a_file_without_a_version_is_version_zero) {
    writeBytes(TEXT("C:\\file.dll"), "MZ no program");
    EXPECT_EQ(toUtf8(m_services.getFileVersion(TEXT("C:\\file.dll"))), "0.0.0.0");
    EXPECT_EQ(toUtf8(m_services.getFileVersion(TEXT("C:\\missing.dll"))), "0.0.0.0");
    EXPECT_EQ(toUtf8(m_services.getFileVersion(nullptr)), "0.0.0.0");
}

TEST_F(FsServices, version_parts_are_padded_to_two_digits_where_they_are_texts) {
    const auto version = [](unsigned major, unsigned minor, unsigned build, unsigned revision) {
        return toUtf8(fileVersionText((major << 16) | minor, (build << 16) | revision));
    };
    EXPECT_EQ(version(6, 0, 0, 0), "6.00.0.00");
    EXPECT_EQ(version(6, 1, 2, 34), "6.01.2.34");
    EXPECT_EQ(version(0, 9, 9, 9), "0.09.9.09");
    EXPECT_EQ(version(12, 3, 4, 567), "12.03.4.567");
    EXPECT_EQ(version(10, 65535, 0, 10), "10.65535.0.10");
}

TEST_F(FsServices, the_machine_names_its_architecture_and_printer_driver_folder) {
    MvOperatingSystem system;
    EXPECT_EQ(system.getHardwareArchitecture(), MvOperatingSystem::kX64);
    EXPECT_THAT(texts(), ElementsAre("MvOperatingSystem::getHardwareArchitecture=2\n"));
    m_debug.clear();
    std::array<WCHAR, MAX_PATH> folder{};
    ASSERT_NE(GetSystemDirectoryW(folder.data(), MAX_PATH), 0U);
    const std::string drivers = toUtf8(viewOf(folder)) + "\\spool\\drivers\\x64\\3";
    EXPECT_EQ(toUtf8(system.getPrinterDriverSubPath()), drivers);
    EXPECT_THAT(texts(), ElementsAre("MvOperatingSystem::getHardwareArchitecture=2\n",
                                     "MvOperatingSystem::getPrinterDriverSubPath=" + drivers + "\n"));
}

TEST_F(FsServices, a_system_folder_that_is_not_told_gives_no_printer_driver_folder) {
    hostState().refusals["GetSystemDirectoryW"] = ERROR_ACCESS_DENIED;
    EXPECT_TRUE(MvOperatingSystem().getPrinterDriverSubPath().empty());
}

TEST_F(FsServices, each_architecture_has_its_number_and_folder) {
    static const struct {
        WORD processor;
        MvOperatingSystem::Architecture architecture;
        const char* folder;
    } machines[] = {{PROCESSOR_ARCHITECTURE_INTEL, MvOperatingSystem::kX86, "C:\\Windows\\System32\\spool\\drivers\\w32x86\\3"},
                    {PROCESSOR_ARCHITECTURE_AMD64, MvOperatingSystem::kX64, "C:\\Windows\\System32\\spool\\drivers\\x64\\3"},
                    {PROCESSOR_ARCHITECTURE_IA64, MvOperatingSystem::kIa64, "C:\\Windows\\System32\\spool\\drivers\\ia64\\3"},
                    {5, MvOperatingSystem::kUnknown, ""}};
    static_assert(MvOperatingSystem::kX86 == 1 && MvOperatingSystem::kX64 == 2 && MvOperatingSystem::kIa64 == 3);
    for (const auto& machine : machines) {
        hostState().processorArchitecture = machine.processor;
        m_debug.clear();
        EXPECT_EQ(MvOperatingSystem().getHardwareArchitecture(), machine.architecture);
        EXPECT_THAT(texts(), ElementsAre("MvOperatingSystem::getHardwareArchitecture=" + std::to_string(machine.architecture) + "\n"));
        EXPECT_EQ(toUtf8(MvOperatingSystem().getPrinterDriverSubPath()), machine.folder);
    }
}

}  // namespace
}  // namespace morvil
