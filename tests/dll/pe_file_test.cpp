// The shipped driver file, read as it lies on the disk: exports, imports, protections, reproducibility and version.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "config/CMvFsServices.h"
#include "platform/platform.h"

namespace {

// A portable executable for x64, with every position checked against the file's end.
class PeFile {
  public:
    explicit PeFile(const char* path) {
        std::ifstream stream(path, std::ios::binary);
        m_bytes.assign(std::istreambuf_iterator<char>(stream), {});
    }

    [[nodiscard]] bool empty() const { return m_bytes.empty(); }
    [[nodiscard]] const IMAGE_NT_HEADERS64& headers() const { return at<IMAGE_NT_HEADERS64>(static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(0).e_lfanew)); }
    [[nodiscard]] std::vector<IMAGE_SECTION_HEADER> sections() const {
        const std::size_t first = static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(0).e_lfanew) + sizeof(IMAGE_NT_HEADERS64);
        std::vector<IMAGE_SECTION_HEADER> list;
        for (std::size_t i = 0; i < headers().FileHeader.NumberOfSections; ++i) list.push_back(at<IMAGE_SECTION_HEADER>(first + i * sizeof(IMAGE_SECTION_HEADER)));
        return list;
    }
    [[nodiscard]] std::set<std::string> exports() const {
        const auto& table = atAddress<IMAGE_EXPORT_DIRECTORY>(directory(IMAGE_DIRECTORY_ENTRY_EXPORT));
        std::set<std::string> names;
        for (DWORD i = 0; i < table.NumberOfNames; ++i) names.insert(text(atAddress<DWORD>(table.AddressOfNames + 4 * i)));
        return names;
    }
    [[nodiscard]] DWORD exportedFunctions() const { return atAddress<IMAGE_EXPORT_DIRECTORY>(directory(IMAGE_DIRECTORY_ENTRY_EXPORT)).NumberOfFunctions; }
    // Names of the libraries, in lower case.
    [[nodiscard]] std::set<std::string> imports() const {
        std::set<std::string> names;
        for (DWORD address = directory(IMAGE_DIRECTORY_ENTRY_IMPORT);; address += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
            const auto& entry = atAddress<IMAGE_IMPORT_DESCRIPTOR>(address);
            if (entry.Name == 0) return names;
            std::string name = text(entry.Name);
            std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            names.insert(name);
        }
    }

  private:
    template <typename T>
    [[nodiscard]] const T& at(std::size_t position) const {
        if (position + sizeof(T) > m_bytes.size()) throw std::out_of_range("beyond the end of the file");
        return *reinterpret_cast<const T*>(m_bytes.data() + position);
    }
    [[nodiscard]] std::size_t positionOf(DWORD address) const {
        for (const IMAGE_SECTION_HEADER& section : sections()) {
            if (address >= section.VirtualAddress && address - section.VirtualAddress < section.SizeOfRawData) return section.PointerToRawData + (address - section.VirtualAddress);
        }
        throw std::out_of_range("no section holds this address");
    }
    template <typename T>
    [[nodiscard]] const T& atAddress(DWORD address) const {
        return at<T>(positionOf(address));
    }
    [[nodiscard]] std::string text(DWORD address) const {
        const std::size_t begin = positionOf(address);
        const auto end = std::find(m_bytes.begin() + static_cast<std::ptrdiff_t>(begin), m_bytes.end(), '\0');
        return {m_bytes.begin() + static_cast<std::ptrdiff_t>(begin), end};
    }
    [[nodiscard]] DWORD directory(std::size_t entry) const { return headers().OptionalHeader.DataDirectory[entry].VirtualAddress; }

    std::vector<char> m_bytes;
};

class DriverFile : public testing::Test {
  protected:
    void SetUp() override { ASSERT_FALSE(file.empty()) << MORVIL_DLL; }
    PeFile file{MORVIL_DLL};
};

TEST_F(DriverFile, exports_four_functions_and_nothing_else) {
    EXPECT_EQ(file.exports(), (std::set<std::string>{"DllMain", "DrvDisableDriver", "DrvEnableDriver", "DrvQueryDriverInfo"}));
    EXPECT_EQ(file.exportedFunctions(), 4U) << "none by number alone";
}

TEST_F(DriverFile, needs_only_what_every_windows_has) {
    const std::set<std::string> system{"advapi32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "psapi.dll", "shell32.dll", "user32.dll", "version.dll", "winspool.drv"};
    for (const std::string& library : file.imports()) EXPECT_TRUE(system.contains(library)) << library;
    EXPECT_TRUE(file.imports().contains("gdi32.dll"));
}

TEST_F(DriverFile, is_a_library_for_x64) {
    EXPECT_EQ(file.headers().FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_TRUE((file.headers().FileHeader.Characteristics & IMAGE_FILE_DLL) != 0);
}

// Addresses are random over 64 bits and data is not run; what would ask more of its host than any build gives stays off.
TEST_F(DriverFile, is_protected_as_libraries_are) {
    const WORD flags = file.headers().OptionalHeader.DllCharacteristics;
    EXPECT_TRUE((flags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE) != 0);
    EXPECT_TRUE((flags & 0x20) != 0) << "high entropy";
    EXPECT_TRUE((flags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT) != 0);
    EXPECT_FALSE((flags & 0x4000) != 0) << "control flow guard";
    EXPECT_FALSE((flags & IMAGE_DLLCHARACTERISTICS_FORCE_INTEGRITY) != 0);
    EXPECT_FALSE((flags & IMAGE_DLLCHARACTERISTICS_NO_SEH) != 0);
    EXPECT_FALSE((file.headers().FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED) != 0);
    EXPECT_NE(file.headers().OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
    for (const IMAGE_SECTION_HEADER& section : file.sections()) {
        EXPECT_FALSE((section.Characteristics & IMAGE_SCN_MEM_WRITE) != 0 && (section.Characteristics & IMAGE_SCN_MEM_EXECUTE) != 0)
            << std::string(reinterpret_cast<const char*>(section.Name), 8);
    }
}

TEST_F(DriverFile, does_not_know_when_it_was_built) { EXPECT_EQ(file.headers().FileHeader.TimeDateStamp, 0U); }

TEST_F(DriverFile, carries_its_version) {
    const std::string narrow = MORVIL_DLL;
    const std::wstring path(narrow.begin(), narrow.end());
    DWORD ignored = 0;
    std::vector<BYTE> block(GetFileVersionInfoSizeW(path.c_str(), &ignored));
    ASSERT_FALSE(block.empty());
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &value, &length));
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(value);
    EXPECT_EQ(fixed.dwFileVersionMS, 0x00060000U);
    EXPECT_EQ(fixed.dwFileVersionLS, 0U);
    EXPECT_EQ(fixed.dwFileType, static_cast<DWORD>(VFT_DRV));
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904b0\\FileVersion", &value, &length));
    EXPECT_STREQ(static_cast<const wchar_t*>(value), L"6.0.0.0");
}

// The same version as the driver writes it into the main ini file.
TEST_F(DriverFile, is_found_by_the_driver_in_its_version) {
    const std::string narrow = MORVIL_DLL;
    EXPECT_EQ(morvil::CMvFsServices().getFileVersion(std::wstring(narrow.begin(), narrow.end()).c_str()), L"6.00.0.00");
}

TEST_F(DriverFile, loads_and_offers_its_table) {
    const HMODULE library = LoadLibraryA(MORVIL_DLL);
    ASSERT_NE(library, nullptr) << GetLastError();
    const auto enable = reinterpret_cast<BOOL(WINAPI*)(ULONG, ULONG, DRVENABLEDATA*)>(reinterpret_cast<void*>(GetProcAddress(library, "DrvEnableDriver")));
    ASSERT_NE(enable, nullptr);
    DRVENABLEDATA data{};
    EXPECT_FALSE(enable(0x10000, sizeof(data), &data));
    EXPECT_FALSE(enable(0x30000, sizeof(data) - 1, &data));
    EXPECT_FALSE(enable(0x30000, sizeof(data), nullptr));
    EXPECT_EQ(data.c, 0U);
    EXPECT_TRUE(enable(0x30000, sizeof(data), &data));
    EXPECT_EQ(data.iDriverVersion, 0x30000U);
    EXPECT_EQ(data.c, 23U);
    EXPECT_TRUE(FreeLibrary(library));
}

}  // namespace
