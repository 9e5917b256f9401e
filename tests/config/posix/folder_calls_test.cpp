// How often the system is asked while the shared folders are worked out: a new object is made for every load.
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>

#include "config/CMvConfig.h"
#include "config/StoreTest.h"
#include "platform/common/FileStream.h"

namespace morvil {
namespace {

constexpr useconds_t kLongerThanARest = 130'000;  // microseconds; platform/posix/ProfileCache.h

std::map<std::string, int>& questions() {
    static std::map<std::string, int> count;
    return count;
}

class FolderCalls : public test::StoreTest {};

TEST_F(FolderCalls, nothing_is_asked_twice_when_everything_is_there) {
    { const CMvConfig first; }
    ::usleep(kLongerThanARest);
    { const CMvConfig second; }  // the ini files have rested since, and are remembered
    questions().clear();
    platformCalls().status = [](const char* path, struct stat* out) { return ++questions()[path], systemCalls().status(path, out); };
    platformCalls().open = [](const char* path, int, mode_t) { return ++questions()[path], -1; };
    const CMvConfig third;
    for (const auto& [path, count] : questions()) EXPECT_EQ(count, 1) << path;
    EXPECT_EQ(questions().size(), 6U);
    for (const WCHAR* shown : {TEXT("C:\\ProgramData\\Morvil\\Plotkeeper"), TEXT("C:\\ProgramData"), TEXT("C:\\Program Files")})
        EXPECT_EQ(questions().count(m_home.hostPath(shown)), 0U) << "what is in it tells that it is there";
}

// On a real machine the system's own folders cannot go.
TEST_F(FolderCalls, folders_around_ours_that_are_gone_are_made_again) {
    { const CMvConfig first; }
    for (const WCHAR* gone : {TEXT("C:\\ProgramData"), TEXT("C:\\Program Files")}) std::filesystem::remove_all(m_home.hostPath(gone));
    const CMvConfig second;
    for (const WCHAR* path : {second.commonFiles(), second.driverVersionFolder(), second.driverProgramFolder()})
        EXPECT_TRUE(folderExists(path)) << toUtf8(path);
}

}  // namespace
}  // namespace morvil
