// Names beyond ASCII as paths of this host.
#include <gtest/gtest.h>

#include "platform/posix/HostPath.h"
#include "support/TempHome.h"

namespace morvil {
namespace {

TEST(HostPathNames, beyond_ascii_are_utf8_from_wherever_that_begins) {
    const test::TempHome home;
    const std::string root = home.folder().string();
    const struct {
        const WCHAR* path;
        const char* name;
    } cases[] = {{TEXT("C:\\\u03A9.xml"), "/Ω.xml"},
                 {TEXT("C:\\Entw\u00FCrfe\\gro\u00DF a.txt"), "/Entwürfe/groß a.txt"},
                 {TEXT("C:\\a\u00E4"), "/aä"}};
    for (const auto& entry : cases) EXPECT_EQ(home.hostPath(entry.path).string(), root + entry.name);
}

}  // namespace
}  // namespace morvil
