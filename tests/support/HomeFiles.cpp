// HomeFiles.cpp - the files of a data root: what is the same on both hosts once a path is one of this host.
#include <gtest/gtest.h>

#include <fstream>

#include "support/TempHome.h"

namespace morvil::test {

namespace fs = std::filesystem;

std::string readHostBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << file;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeHostBytes(const fs::path& file, std::string_view bytes) {
    std::error_code ignored;  // the root of a drive cannot be made
    fs::create_directories(file.parent_path(), ignored);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    EXPECT_TRUE(out.good()) << file;
}

std::string readBytes(WStringView windowsPath) { return readHostBytes(TempHome::hostPath(windowsPath)); }
void writeBytes(WStringView windowsPath, std::string_view bytes) { writeHostBytes(TempHome::hostPath(windowsPath), bytes); }
void makeFolder(WStringView windowsPath) { fs::create_directories(TempHome::hostPath(windowsPath)); }
bool exists(WStringView windowsPath) { return fs::exists(TempHome::hostPath(windowsPath)); }

}  // namespace morvil::test
