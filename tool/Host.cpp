#include "tool/Host.h"

#include <algorithm>
#include <filesystem>

#include "config/CMvConfig.h"
#include "platform/host/HostPath.h"
#include "platform/host/HostState.h"

namespace morvil::tool {

namespace {

std::string absolute(const std::string& path) { return std::filesystem::absolute(path).lexically_normal().string(); }

}  // namespace

void useHome(const std::string& home) {
    if (home.empty()) return;
    std::string folder = absolute(home);
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    hostState().home = folder;
}

void useApplication(const std::string& name) {
    if (!name.empty()) hostState().processes[GetCurrentProcessId()].moduleName = fromUtf8(name);
}

void useSpoolFolder(const std::string& folder) {
    const WString ini = CMvConfig().jobApplicationIni();
    std::erase_if(hostState().profileOverrides, [](const ProfileOverride& before) { return before.key == WStringView(TEXT("SpoolPath")); });
    hostState().profileOverrides.push_back({.file = ini, .section = TEXT("UserSetup"), .key = TEXT("SpoolPath"), .value = windowsPath(folder)});
}

WString windowsPath(const std::string& hostPath) { return windowsPathOf(absolute(hostPath)); }

std::string hostPath(WStringView windowsPath) {
    HostPath path;
    return path.assign(windowsPath) ? std::string(path.view()) : toUtf8(windowsPath);
}

FinishedJobs::FinishedJobs() {
    hostState().fileMoved = [this](WStringView, WStringView to) {
        if (to.ends_with(TEXT(".tsf"))) m_files.push_back(hostPath(to));
    };
}

FinishedJobs::~FinishedJobs() { hostState().fileMoved = {}; }

}  // namespace morvil::tool
