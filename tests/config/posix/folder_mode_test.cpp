// The permissions that a folder of the driver has for the rest of the machine.
#include <sys/stat.h>

#include "config/CMvFsServices.h"
#include "config/StoreTest.h"

namespace morvil {
namespace {

constexpr const WCHAR* kFolder = TEXT("C:\\made");

class FolderMode : public test::StoreTest {
  protected:
    CMvFsServices m_services;
};

// A folder that is made for its owner alone, on a machine whose mask allows more: what the others get, the list gives.
TEST_F(FolderMode, a_folder_gives_everything_to_the_users) {
    const mode_t before = ::umask(0);
    platformCalls().makeFolder = [](const char* path, mode_t) { return ::mkdir(path, 0700); };
    EXPECT_TRUE(m_services.createDirectory(kFolder));
    platformCalls() = systemCalls();
    struct stat status {};
    EXPECT_EQ(::stat(m_home.hostPath(kFolder).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0777U);
    ::umask(before);
}

}  // namespace
}  // namespace morvil
