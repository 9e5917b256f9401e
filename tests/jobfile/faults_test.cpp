// Every system call of a whole job fails once: whatever happens, no half-made job is given away, nothing is left behind, and
// what is given away holds everything that was drawn.
#include "jobfile/JobFixture.h"
#include "platform/posix/PlatformCalls.h"
#include "support/FailingCalls.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

class JobFaults : public JobFixture {
  protected:
    JobFaults() {
        config.flags = MV_FL_POLYGON_CLIPPING;
        m_log.settings.enabled = 0;  // the log's own files shall not count
    }

    // A page with two polygons, one of them twice, a curve and the pixels.
    void printJob() {
        CSpoolFile writer;
        writer.SetPrinterConfig(&config);
        writer.SetJobName(TEXT("Plan"));
        writer.WriteHeader();
        writer.CreateBitmap(1);
        writer.WriteVectorSection();
        std::array<std::int32_t, 3> xs{1, 2, 3};
        std::array<std::int32_t, 3> ys{0, 1, 0};
        writer.WritePolygon(xs.data(), ys.data(), 3, 0xFF, true);
        writer.WritePolygon(xs.data(), ys.data(), 3, 0xFF, true);
        writer.WritePolygon(xs.data(), ys.data(), 2, 0xFF00, true);
        writer.WriteBezier(xs.data(), ys.data(), 3, 0);
        writer.WriteBitmap(reinterpret_cast<const std::uint8_t*>("\x7F\x80\x00\x00\xFF\x00\x00\x00"), 8);
        writer.Complete();
    }

    void visitEveryCall(Fault fault, const char* only);

    // Whatever a job may leave, in whichever folder it was made.
    [[nodiscard]] std::vector<std::filesystem::path> filesLeft() const {
        std::vector<std::filesystem::path> files;
        for (const std::filesystem::path& file : m_home.files()) {
            const std::string extension = file.extension().string();
            if (extension == ".tsa" || extension == ".tsf" || extension == ".dat" || extension == ".txt") files.push_back(file);
        }
        return files;
    }

    void removeJobs() {
        for (const std::filesystem::path& file : filesLeft()) std::filesystem::remove(file);
    }
};

// A fault may make a name look taken, so the job's number does not count.
std::string withoutNumber(std::string job) {
    const std::string start = "<JobName: Plan";
    const std::size_t at = job.find(start);
    if (at != std::string::npos) job.erase(at + start.size(), job.find('>', at) - at - start.size());
    return job;
}

void JobFaults::visitEveryCall(Fault fault, const char* only) {
    printJob();
    const std::string whole = withoutNumber(readBytes(inSpool(TEXT("Plan.tsf"))));
    ASSERT_EQ(commandsOf(whole),
              "<DrawPolygon: 3;255;0;0;1;0;2;1;3;0>\r\n<DrawPolygon: 2;0;255;0;1;0;2;1>\r\n<DrawBezier: 3;0;0;0;1;0;2;1;3;0>");
    removeJobs();
    int given = 0;
    for (int n = 1;; ++n) {
        int fired = 0;
        std::string call;
        {
            const FailingCalls faults(n, fault, only == nullptr ? std::string_view() : only);
            platformCalls().sleep = [](std::uint32_t) {};  // nobody needs to wait for what is made to fail
            printJob();
            fired = faults.fired();
            call = faults.failedCall();
        }
        for (const std::filesystem::path& file : filesLeft()) {
            const bool finished = file.extension() == ".tsf";
            given += finished ? 1 : 0;
            // What could not be removed or renamed stays; nothing else may, and no job is given away in part.
            const bool mayStay = call == "remove" || call == "rename" || fault == Fault::Persistent;
            EXPECT_TRUE(finished || mayStay) << "call " << n << " (" << call << ") left " << file;
            EXPECT_TRUE(!finished || withoutNumber(readHostBytes(file)) == whole)
                << "call " << n << " (" << call << ") gave away " << file << ":\n"
                << readHostBytes(file);
        }
        removeJobs();
        if (fired == 0) break;
        ASSERT_LT(n, 5000);
    }
    EXPECT_GT(given, 0);
}

}  // namespace

TEST_F(JobFaults, each_call_fails_once) { visitEveryCall(Fault::Transient, nullptr); }
TEST_F(JobFaults, each_call_fails_and_all_after_it) { visitEveryCall(Fault::Persistent, nullptr); }
TEST_F(JobFaults, the_disk_is_full_once) { visitEveryCall(Fault::Transient, "write"); }
TEST_F(JobFaults, the_disk_is_full_from_some_write_on) { visitEveryCall(Fault::Persistent, "write"); }

TEST_F(JobFaults, a_short_write_keeps_the_job_from_being_given_away_and_is_logged) {
    m_log.settings.enabled = 1;
    auto writer = begin(3);
    std::int32_t x = 1;
    {
        const FailingCalls faults(1, Fault::Transient, "write");
        m_log.settings.enabled = 0;
        writer->WriteBezier(&x, &x, 1, 0);
        m_log.settings.enabled = 1;
        EXPECT_EQ(faults.fired(), 1);
    }
    writer->WriteBezier(&x, &x, 1, 0);
    writer->Complete();
    EXPECT_TRUE(logged("!!! Error SpoolFile incomplete, no Tsf: " + toUtf8(m_spool) + "\\Plan.tsa"));
    EXPECT_EQ(spoolFiles(), Strings{});
    // The writer's next page is a job of its own.
    writer->WriteHeader();
    writer->CreateBitmap(3);
    writer->WriteVectorSection();
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
}

TEST_F(JobFaults, a_missing_spool_folder_is_replaced) {
    std::filesystem::remove_all(m_home.hostPath(m_spool));
    printJob();
    const WString fallback = CMvConfig().fallbackSpoolFolder();
    EXPECT_TRUE(exists(fallback + TEXT("\\Plan.tsf")));
}

}  // namespace morvil::test
