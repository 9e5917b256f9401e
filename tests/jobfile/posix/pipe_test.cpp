// A bitmap section in a file that has no positions.
#include <sys/stat.h>
#include <unistd.h>

#include "jobfile/JobFixture.h"
#include "platform/posix/PlatformCalls.h"

namespace morvil::test {

namespace {

const std::string kRows("\x7F\x80\x00\x00\xFF\x00\x00\x00", 8);

class JobPipe : public JobFixture {
  protected:
    static bool writePage(CSpoolFile& writer, const std::string& rows) {
        return writer.WriteBitmap(reinterpret_cast<const std::uint8_t*>(rows.data()), rows.size());
    }
};

}  // namespace

// The file changes under the writer into one that has no positions.
TEST_F(JobPipe, a_place_that_cannot_be_reached_is_logged) {
    static std::string path;
    static int opening = 0;
    static int turn = 0;
    bool seen = false;
    for (turn = 1; turn <= 8 && !seen; ++turn) {
        const auto writer = begin(1);
        path = m_home.hostPath(writer->jobFilePath()).string();
        opening = 0;
        clearLog();
        platformCalls().open = [](const char* name, int flags, mode_t mode) {
            if (name == path && ++opening == turn) {
                ::unlink(name);
                if (::mkfifo(name, 0600) != 0) return -1;
            }
            return systemCalls().open(name, flags, mode);
        };
        EXPECT_FALSE(writePage(*writer, kRows) && logged("!!! WriteBitmap seek failed"));
        platformCalls() = systemCalls();
        seen = logged("!!! WriteBitmap seek failed");
    }
    EXPECT_TRUE(seen);
}

}  // namespace morvil::test
