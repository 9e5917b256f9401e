#include "Workplace.h"

#include <unistd.h>

#include <stdexcept>

#include "config/CPrinterConfig.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"

namespace morvil::bench {

Workplace::Workplace() : configuration(CPrinterConfig::defaultConfiguration()) {
    std::string pattern = std::filesystem::temp_directory_path() / "morvil-bench-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = pattern;
    resetHostState();
    hostState().home = m_folder;
    ConfigurationRecord record{};
    CPrinterConfig().getConfig(TEXT(""), record);  // makes the file, and answers that it was missing
    CPrinterConfig().getConfig(TEXT(""), configuration);
}

Workplace::~Workplace() {
    resetHostState();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::filesystem::path Workplace::hostPath(WStringView windowsPath) {
    HostPath path;
    if (!path.assign(windowsPath)) throw std::runtime_error("no path of this host: " + toUtf8(windowsPath));
    return path.c_str();
}

}  // namespace morvil::bench
