// The version resource of program files, cut and corrupted ones first.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/common/LocalBlock.h"
#include "platform/platform.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr const WCHAR* kFile = TEXT("C:\\a.dll");

template <typename T>
void put(std::string& bytes, std::size_t at, T value) {
    if (bytes.size() < at + sizeof(T)) bytes.resize(at + sizeof(T), '\0');
    std::memcpy(bytes.data() + at, &value, sizeof(T));
}

// Where the parts of the made-up program file stand.
constexpr std::size_t kHeader = 0x40;
constexpr std::size_t kOptional = kHeader + 24;
constexpr std::size_t kSection = kOptional + 240;
constexpr std::size_t kTree = 0x200;
constexpr std::size_t kResource = kTree + 0x60;
constexpr std::uint32_t kAddress = 0x1000;  // of the tree, once loaded
constexpr std::uint16_t kResourceBytes = 40 + sizeof(VS_FIXEDFILEINFO);

std::string program64() {
    std::string file;
    put<std::uint16_t>(file, 0, 0x5A4D);
    put<std::uint32_t>(file, 0x3C, kHeader);
    put<std::uint32_t>(file, kHeader, 0x00004550);
    put<std::uint16_t>(file, kHeader + 4 + 2, 1);     // sections
    put<std::uint16_t>(file, kHeader + 4 + 16, 240);  // bytes of the optional header
    put<std::uint16_t>(file, kOptional, 0x20B);
    put<std::uint32_t>(file, kOptional + 108, 16);  // directories
    put<std::uint32_t>(file, kOptional + 112 + 16, kAddress);
    put<std::uint32_t>(file, kSection + 12, kAddress);
    put<std::uint32_t>(file, kSection + 16, 0x200);
    put<std::uint32_t>(file, kSection + 20, kTree);
    // Kind 16, then the first name, then the first language, then the leaf.
    put<std::uint16_t>(file, kTree + 14, 1);
    put<std::uint32_t>(file, kTree + 16, 16);
    put<std::uint32_t>(file, kTree + 20, 0x80000018U);
    put<std::uint16_t>(file, kTree + 0x18 + 14, 1);
    put<std::uint32_t>(file, kTree + 0x18 + 16, 1);
    put<std::uint32_t>(file, kTree + 0x18 + 20, 0x80000030U);
    put<std::uint16_t>(file, kTree + 0x30 + 14, 1);
    put<std::uint32_t>(file, kTree + 0x30 + 16, 0x409);
    put<std::uint32_t>(file, kTree + 0x30 + 20, 0x48);
    put<std::uint32_t>(file, kTree + 0x48, kAddress + 0x60);
    put<std::uint32_t>(file, kTree + 0x4C, kResourceBytes);
    put<std::uint16_t>(file, kResource, kResourceBytes);
    put<std::uint16_t>(file, kResource + 2, sizeof(VS_FIXEDFILEINFO));
    const WCHAR key[] = TEXT("VS_VERSION_INFO");
    for (std::size_t i = 0; i < std::size(key); ++i) put<std::uint16_t>(file, kResource + 6 + 2 * i, key[i]);
    put<std::uint32_t>(file, kResource + 40, 0xFEEF04BD);
    put<std::uint32_t>(file, kResource + 48, 0x00060001);
    put<std::uint32_t>(file, kResource + 52, 0x00020003);
    file.resize(kResource + kResourceBytes, '\0');
    return file;
}

struct VersionTest : testing::Test {
    TempHome home;
};

// True when the whole way to the version works.
bool readVersion(VS_FIXEDFILEINFO& version) {
    DWORD handle = 0x55;
    const DWORD bytes = GetFileVersionInfoSizeW(kFile, &handle);
    EXPECT_EQ(handle, 0U);
    if (bytes == 0) return false;
    LocalBlock<BYTE> data(bytes);
    if (GetFileVersionInfoW(kFile, 0, bytes, data.get()) == FALSE) return false;
    LPVOID value = nullptr;
    UINT valueBytes = 0;
    if (VerQueryValueW(data.get(), TEXT("\\"), &value, &valueBytes) == FALSE) return false;
    EXPECT_EQ(valueBytes, sizeof(version));
    std::memcpy(&version, value, sizeof(version));
    return true;
}

}  // namespace

TEST_F(VersionTest, filesWithoutVersion) {
    VS_FIXEDFILEINFO version{};
    EXPECT_FALSE(readVersion(version));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    for (const std::string& bytes : {std::string(), std::string("MZ"),
                                     std::string("\x7F"
                                                 "ELF"),
                                     std::string(100000, 'M')}) {
        writeBytes(kFile, bytes);
        EXPECT_FALSE(readVersion(version));
        EXPECT_EQ(GetLastError(), ERROR_RESOURCE_DATA_NOT_FOUND);
    }
}

TEST_F(VersionTest, fileCutAnywhere_hasNone) {
    const std::string whole = program64();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        writeBytes(kFile, whole.substr(0, size));
        VS_FIXEDFILEINFO version{};
        EXPECT_FALSE(readVersion(version)) << size;
    }
}

TEST_F(VersionTest, anyNumberGoneWild_endsInAnAnswer) {
    const std::string whole = program64();
    int refusedFiles = 0;
    for (std::size_t at = 0; at + 4 <= whole.size(); at += 2) {
        for (const std::uint32_t value : {0xFFFFFFFFU, 0x7FFFFFFFU, 0U, 0x80000000U}) {
            std::string file = whole;
            put<std::uint32_t>(file, at, value);
            writeBytes(kFile, file);
            VS_FIXEDFILEINFO version{};
            refusedFiles += readVersion(version) ? 0 : 1;
        }
    }
    EXPECT_GT(refusedFiles, 50);
}

TEST_F(VersionTest, smallBuffer_isRefused) {
    writeBytes(kFile, program64());
    std::array<BYTE, 1000> data{};
    EXPECT_FALSE(GetFileVersionInfoW(kFile, 0, kResourceBytes - 1, data.data()));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    ASSERT_TRUE(GetFileVersionInfoW(kFile, 0, kResourceBytes, data.data()));
    LPVOID value = nullptr;
    UINT bytes = 0;
    EXPECT_FALSE(VerQueryValueW(data.data(), TEXT("\\StringFileInfo"), &value, &bytes));
    EXPECT_FALSE(VerQueryValueW(nullptr, TEXT("\\"), &value, &bytes));
}

TEST_F(VersionTest, versionIsRead) {
    writeBytes(kFile, program64());
    VS_FIXEDFILEINFO version{};
    ASSERT_TRUE(readVersion(version));
    EXPECT_EQ(version.dwFileVersionMS, 0x00060001U);
    EXPECT_EQ(version.dwFileVersionLS, 0x00020003U);
}

}  // namespace morvil::test
