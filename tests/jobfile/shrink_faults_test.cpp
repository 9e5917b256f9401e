// Shrinking where something fails: files that were cut or cannot be opened, no memory, and every call refused in turn.
#include "jobfile/ShrinkJob.h"
#include "support/FailingCalls.h"
#include "support/System.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

class JobShrinkFaults : public ShrinkJob {
  protected:
    void visitEveryCall(const std::string& rows);
};

}  // namespace

TEST_F(JobShrinkFaults, without_a_backup_the_job_stays_as_it_is) {
    setPage(kModeStamp, 16, 8);
    const auto writer = begin(1);
    polygon(*writer, {4}, {1});
    sendPage(*writer, bitRows(kShrinkPicture));
    const std::string before = bytesOf(*writer);
    makeFolder(inSpool(TEXT("BackUp_Polygon.dat")));
    writer->Complete();
    EXPECT_TRUE(logged("!!! SpoolFile Error BackUpPolygon"));
    EXPECT_EQ(finished(*writer), before);
}

TEST_F(JobShrinkFaults, a_file_that_cannot_be_opened_is_left_alone) {
    setPage(kModeStamp, 16, 8);
    const auto writer = begin(1);
    sendPage(*writer, bitRows(kShrinkPicture));
    const std::string before = bytesOf(*writer);
    makeReadOnly(writer->jobFilePath());
    clearLog();
    writer->Complete();
    EXPECT_EQ(messages(), (Strings{"SpoolFile ProcessMode=Stamp", "Shringk to bounding box", "CSpoolFile::doShrinkToBoundigbox",
                                   "Shringk to bounding box finished"}));
    EXPECT_EQ(finished(*writer), before);
}

TEST_F(JobShrinkFaults, nothing_is_shrunk_without_a_job_of_our_own) {
    setPage(kModeStamp, 16, 8);
    const auto writer = begin(1);
    writer->Abort();
    writeBytes(inSpool(TEXT("Plan.tsa")), "somebody else's");
    writer->Complete();
    EXPECT_EQ(readBytes(inSpool(TEXT("Plan.tsa"))), "somebody else's");
}

TEST_F(JobShrinkFaults, a_file_cut_anywhere_is_logged_and_not_given_away) {
    setPage(kModeStamp, 16, 8);
    std::size_t length = 0;
    {
        const auto writer = begin(1);
        polygon(*writer, {4, 12, 5}, {1, 3, 6});
        sendPage(*writer, bitRows(kShrinkPicture));
        length = bytesOf(*writer).size();
    }
    for (std::size_t cut = 0; cut < length; cut += cut + 40 < length ? 7 : 1) {
        const auto writer = begin(1);
        polygon(*writer, {4, 12, 5}, {1, 3, 6});
        sendPage(*writer, bitRows(kShrinkPicture));
        writeBytes(writer->jobFilePath(), bytesOf(*writer).substr(0, cut));
        clearLog();
        writer->Complete();
        EXPECT_TRUE(logged("!!! doShrinkToBoundigbox, " + toUtf8(m_spool) + "\\Plan.tsa has been cut")) << cut;
        EXPECT_EQ(spoolFiles(), Strings{}) << cut;
    }
}

// A page with content, and one where the box is that of the vectors alone.
void JobShrinkFaults::visitEveryCall(const std::string& rows) {
    setPage(kModeStamp, 16, 8);
    setMargins(1, 0, 0, 2);
    m_log.settings.enabled = 0;
    const auto prepared = [this, &rows] {
        auto writer = begin(1);
        polygon(*writer, {4, 12, 5}, {1, 3, 6});
        sendPage(*writer, rows);
        return writer;
    };
    const std::string asDrawn = bytesOf(*prepared());
    auto first = prepared();
    first->Complete();
    const std::string whole = finished(*first);
    first.reset();
    ASSERT_NE(whole, asDrawn);
    const auto withoutMargins = [&] {  // where the configuration cannot be read
        setMargins(0, 0, 0, 0);
        DeleteFileW(inSpool(TEXT("Plan.tsf")).c_str());
        const auto writer = prepared();
        writer->Complete();
        setMargins(1, 0, 0, 2);
        return finished(*writer);
    }();
    for (const char* const call : {"write", "read", "open", "truncate", "allocate", "remove", "rename"}) {
        for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
            for (int n = 1;; ++n) {
                for (const std::string& file : spoolFiles()) DeleteFileW(inSpool(fromUtf8(file)).c_str());
                auto writer = prepared();
                int fired = 0;
                {
                    const FailingCalls faults(n, fault, call);
                    writer->Complete();
                    fired = faults.fired();
                }
                const std::string job = finished(*writer);
                EXPECT_TRUE(job == whole || job == withoutMargins || job == asDrawn || job == "no finished job")
                    << call << ' ' << n << ":\n"
                    << job;
                writer.reset();
                for (const std::string& file : spoolFiles()) {
                    const bool mayStay = std::string_view(call) == "remove" || std::string_view(call) == "rename";
                    EXPECT_TRUE(file == "Plan.tsf" || mayStay) << call << ' ' << n << ": " << file;
                }
                if (fired == 0) {
                    EXPECT_EQ(job, whole);
                    break;
                }
                ASSERT_LT(n, 500);
            }
        }
    }
}

TEST_F(JobShrinkFaults, each_call_that_fails_leaves_a_whole_job_or_none) { visitEveryCall(bitRows(kShrinkPicture)); }
TEST_F(JobShrinkFaults, each_call_that_fails_beside_an_empty_bitmap_leaves_a_whole_job_or_none) {
    visitEveryCall(bitRows(Strings(8, std::string(16, '.'))));
}

TEST_F(JobShrinkFaults, without_memory_for_the_pixels_the_job_stays_as_it_is) {
    setPage(kModeStamp, 16, 8);
    const auto writer = begin(1);
    sendPage(*writer, bitRows(kShrinkPicture));
    const std::string before = bytesOf(*writer);
    {
        const FailingCalls faults(2, Fault::Transient, "allocate");  // the first is the search's row buffer
        writer->Complete();
        EXPECT_EQ(faults.fired(), 1);
    }
    EXPECT_EQ(finished(*writer), before);
    EXPECT_EQ(messagesFrom("!!! doShrinkToBoundigbox").size(), 5U);
}

}  // namespace morvil::test
