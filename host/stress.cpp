#include "host/stress.h"

#include <cstdio>

#include "config/CXml.h"
#include "host/LoadedDriver.h"

namespace morvil::host {

std::string stress(const std::filesystem::path& driverFile, const trace::Recording& recording, const StressLoad& load) {
    const LoadedDriver driver(driverFile);
    int stored = 0;
    int printed = 0;
    for (int i = 0; i < load.stores; ++i) {
        if (CXml().putItem(load.item.c_str(), std::to_wstring(i).c_str())) ++stored;
        if ((i + 1) * load.jobs / load.stores == i * load.jobs / load.stores) continue;
        if (std::string reason = driver.play(recording); !reason.empty()) return reason;
        ++printed;
    }
    std::printf("stored %d, printed %d\n", stored, printed);
    return {};
}

}  // namespace morvil::host
