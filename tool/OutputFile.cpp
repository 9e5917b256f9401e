#include "tool/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace morvil::tool {

namespace fs = std::filesystem;

int writeOutputFile(const std::string& file, std::span<const char> bytes) {
    std::error_code unknown;
    const bool replaces = !fs::exists(file, unknown) || fs::is_regular_file(file, unknown);
    const fs::path target = replaces ? fs::path(file + ".part") : fs::path(file);
    errno = 0;
    std::ofstream stream(target, std::ios::binary | std::ios::trunc);
    const bool opened = stream.is_open();
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    int error = stream ? 0 : errno == 0 ? EIO : errno;
    if (error == 0 && replaces && std::rename(target.c_str(), file.c_str()) != 0) error = errno;
    if (error != 0 && replaces && opened) fs::remove(target, unknown);
    return error;
}

}  // namespace morvil::tool
