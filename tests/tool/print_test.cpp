// Printing on the command line, from a metafile through driver and engine to the finished job file.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>

#include "support/FailingCalls.h"
#include "tool/JobFile.h"
#include "tool/MappedFile.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Print = PrintFixture;

std::string bytesOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string writeFile(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
    return file.string();
}

// ---- bad input --------------------------------------------------------------------------------------------------------

TEST_F(Print, missing_file_is_named) {
    const Outcome run = print({"nowhere.emf"});
    EXPECT_EQ(run.status, kUsage);
    EXPECT_THAT(run.err, HasSubstr("nowhere.emf"));
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(spooled(), IsEmpty());
}

TEST_F(Print, bad_later_page_leaves_no_earlier_job) {
    EXPECT_EQ(print({sample("bracket.emf"), writeFile(m_home.folder() / "empty.emf", "")}).status, kUsage);
    EXPECT_THAT(spooled(), IsEmpty());
}

TEST_F(Print, cut_metafile_is_refused_with_the_place) {
    const std::string whole = bytesOf(sample("bracket.emf"));
    for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{80}, std::size_t{107}, std::size_t{500}, whole.size() / 2, whole.size() - 1}) {
        const Outcome run = print({writeFile(m_home.folder() / "cut.emf", whole.substr(0, length))});
        EXPECT_EQ(run.status, kUsage) << length;
        EXPECT_THAT(run.err, HasSubstr("cut.emf: byte ")) << length;
        EXPECT_THAT(spooled(), IsEmpty());
    }
}

TEST_F(Print, record_of_size_zero_or_beyond_the_end_is_refused) {
    const std::string whole = bytesOf(sample("bracket.emf"));
    std::uint32_t headerSize = 0;
    std::memcpy(&headerSize, whole.data() + 4, 4);
    for (const std::uint32_t size : {0U, 4U, 7U, 0x7FFFFFFCU, 0xFFFFFFFCU}) {
        std::string damaged = whole;
        std::memcpy(damaged.data() + headerSize + 4, &size, 4);
        const Outcome run = print({writeFile(m_home.folder() / "damaged.emf", damaged)});
        EXPECT_EQ(run.status, kUsage) << size;
        EXPECT_THAT(run.err, HasSubstr("byte " + std::to_string(headerSize))) << size;
    }
    EXPECT_THAT(spooled(), IsEmpty());
}

TEST_F(Print, absurd_paper_is_refused) {
    for (const char* const paper : {"0x10", "10x0", "-5x10", "10", "1x10", "4000x10", "a4"}) {
        EXPECT_EQ(print({"--paper", paper, sample("bracket.emf")}).status, kUsage) << paper;
    }
    EXPECT_THAT(spooled(), IsEmpty());
}

TEST_F(Print, bad_options_are_usage_errors) {
    EXPECT_EQ(run({}).status, kUsage);
    EXPECT_EQ(run({"print"}).status, kUsage);
    EXPECT_EQ(run({"print", "--nonsense", sample("bracket.emf")}).status, kUsage);
    EXPECT_EQ(print({"--set", "NoValue", sample("bracket.emf")}).status, kUsage);
    EXPECT_EQ(print({"--copies", "0", sample("bracket.emf")}).status, kUsage);
    EXPECT_EQ(print({"--config", "Wood", sample("bracket.emf")}).status, kUsage);
    EXPECT_EQ(run({"print", "--spool", (m_home.folder() / "missing").string(), sample("bracket.emf")}).status, kUsage);
    EXPECT_THAT(spooled(), IsEmpty());
}

TEST_F(Print, each_subcommand_has_help) {
    for (const char* const command : {"print", "config", "check", "show", "preview"}) {
        const Outcome help = run({command, "--help"});
        EXPECT_EQ(help.status, kDone) << command;
        EXPECT_THAT(help.out, HasSubstr("--")) << command;
    }
}

// ---- faults -----------------------------------------------------------------------------------------------------------

// Whatever write fails: the tool says so, no half-made job is left, and the configuration file stays whole.
TEST_F(Print, full_disk_leaves_no_half_made_job) {
    ASSERT_EQ(print({"--title", "First", sample("bracket.emf")}).status, kDone);
    const std::string configuration = bytesOf(configurationFile().string());
    for (const int n : {1, 2, 3, 4, 6, 9, 14, 20}) {
        for (const std::string& name : spooled()) std::filesystem::remove(m_spool / name);
        int status = 0;
        int fired = 0;
        {
            test::FailingCalls faults(n, test::Fault::Persistent, "write");
            status = print({"--title", "Plan", "--quiet", sample("bracket.emf")}).status;
            fired = faults.fired();
        }
        resetState();
        EXPECT_TRUE(fired > 0 || n > 5) << n;  // the job alone takes more writes than that
        EXPECT_TRUE(fired == 0 || status == kSystemFailed) << n;
        for (const std::string& name : spooled()) {
            ASSERT_TRUE(name.ends_with(".tsf")) << name << " at " << n;
            const MappedFile mapped(job(name));
            EXPECT_EQ(readJobFile(mapped.bytes()).violationCount, 0U) << n;
        }
        EXPECT_EQ(bytesOf(configurationFile().string()), configuration) << n;
    }
}

TEST_F(Print, damaged_configuration_is_replaced_by_the_defaults) {
    ASSERT_EQ(print({"--title", "Plan", sample("bracket.emf")}).status, kDone);
    const std::string whole = bytesOf(configurationFile().string());
    const std::string reference = bytesOf(job("Plan.tsf"));
    for (const std::string& damaged : {std::string(), whole.substr(0, whole.size() / 3), std::string(100000, '\x07')}) {
        std::filesystem::remove(m_spool / "Plan.tsf");
        writeFile(configurationFile(), damaged);
        resetState();
        const Outcome run = print({"--title", "Plan", sample("bracket.emf")});
        EXPECT_EQ(run.status, kDone) << damaged.size() << run.err;
        EXPECT_EQ(bytesOf(job("Plan.tsf")), reference) << damaged.size();
    }
}

// ---- printing ---------------------------------------------------------------------------------------------------------

TEST_F(Print, first_print_of_all_makes_a_well_formed_job) {
    const Outcome run = print({sample("bracket.emf")});
    EXPECT_EQ(run.status, kDone) << run.err;
    EXPECT_THAT(run.lines(), ElementsAre(job("bracket.tsf")));
    EXPECT_THAT(run.err, HasSubstr("page 1: Standard, "));
    EXPECT_THAT(run.err, HasSubstr(" mm, 3150 x 1989 pixels at 500 dpi, 1 bit; vectors: "));
    EXPECT_THAT(run.err, HasSubstr("painted: "));
    EXPECT_EQ(PrintFixture::run({"check", job("bracket.tsf")}).status, kDone);
}

TEST_F(Print, quiet_says_nothing_but_the_path) {
    const Outcome run = print({"--quiet", sample("bracket.emf")});
    EXPECT_THAT(run.lines(), ElementsAre(job("bracket.tsf")));
    EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(Print, json_tells_the_same) {
    const Outcome run = print({"--json", "--quiet", sample("bracket.emf")});
    const auto json = nlohmann::json::parse(run.out);
    EXPECT_EQ(json["status"], "done");
    EXPECT_EQ(json["jobs"][0], job("bracket.tsf"));
    EXPECT_EQ(json["pages"][0]["dpi"], 500);
    EXPECT_EQ(json["pages"][0]["polygons"], 15);
}

TEST_F(Print, several_files_are_pages_of_one_document) {
    const Outcome run = print({"--title", "Plan", sample("bracket.emf"), sample("bracket.emf"), sample("label.emf")});
    EXPECT_EQ(run.status, kDone) << run.err;
    EXPECT_THAT(run.lines(), ElementsAre(job("Plan.tsf"), job("Plan 0001.tsf"), job("Plan 0002.tsf")));
    EXPECT_THAT(spooled(), ElementsAre("Plan 0001.tsf", "Plan 0002.tsf", "Plan.tsf"));
}

TEST_F(Print, same_title_again_is_numbered) {
    print({"--title", "Plan", sample("label.emf")});
    EXPECT_THAT(print({"--title", "Plan", sample("label.emf")}).lines(), ElementsAre(job("Plan 0001.tsf")));
}

TEST_F(Print, title_with_characters_that_no_file_name_may_hold) {
    const Outcome run = print({"--title", "a/b:c*d?e\"f<g>h|i", sample("label.emf")});
    EXPECT_EQ(run.status, kDone) << run.err;
    EXPECT_THAT(spooled(), ElementsAre("a_b_c_d_e_f_g_h_i.tsf"));
    const MappedFile mapped(job("a_b_c_d_e_f_g_h_i.tsf"));
    EXPECT_EQ(readJobFile(mapped.bytes()).headerValue("JobName"), "a/b:c*d?e\"f<g>h|i");
}

TEST_F(Print, application_chooses_the_naming_rule) {
    EXPECT_THAT(print({"--app", "winword.exe", "--title", "Word - Plan.doc", sample("label.emf")}).lines(), ElementsAre(job("Plan.doc.tsf")));
    const MappedFile mapped(job("Plan.doc.tsf"));
    EXPECT_EQ(readJobFile(mapped.bytes()).application, "winword.exe");
}

TEST_F(Print, stored_paper_names_both_sizes_when_the_drawing_does_not_fit) {
    const Outcome run = print({"--paper", "stored", sample("bracket.emf")});
    EXPECT_EQ(run.status, kDone) << run.err;
    EXPECT_THAT(run.err, HasSubstr("160.0 x 101.0 mm does not fit on the page of 100.0 x 100.0 mm"));
    const MappedFile mapped(job("bracket.tsf"));
    EXPECT_EQ(readJobFile(mapped.bytes()).headerValue("Size"), "100.00;100.00");
}

TEST_F(Print, given_paper_is_the_jobs_size) {
    print({"--paper", "200x120.5", sample("bracket.emf")});
    const MappedFile mapped(job("bracket.tsf"));
    EXPECT_EQ(readJobFile(mapped.bytes()).headerValue("Size"), "200.00;120.50");
}

TEST_F(Print, set_items_are_stored_and_used) {
    const Outcome run = print({"--set", "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5", sample("label.emf")});
    EXPECT_THAT(run.err, HasSubstr("at 125 dpi"));
    EXPECT_EQ(PrintFixture::run({"config", "get", "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index"}).out, "5\n");
}

TEST_F(Print, job_without_bitmap_has_no_bitmap_group) {
    print({"--set", "PrinterDriver.Configuration.Print.Process.ProcessOption.VectorJob=1", sample("bracket.emf")});
    const MappedFile mapped(job("bracket.tsf"));
    const JobFile read = readJobFile(mapped.bytes());
    EXPECT_EQ(read.violationCount, 0U);
    EXPECT_FALSE(read.bitmap);
    EXPECT_EQ(read.vectors.size(), 15U);
}

TEST_F(Print, copies_are_one_whatever_is_asked) {
    const Outcome run = print({"--copies", "3", sample("label.emf")});
    EXPECT_EQ(spooled().size(), 1U);
    EXPECT_THAT(run.err, HasSubstr("3 copies were asked for"));
}

// The same strokes again, whether the page comes whole or in bands.
TEST_F(Print, banded_page_has_the_vectors_of_the_whole_page_once) {
    print({"--title", "Whole", sample("bracket.emf")});
    print({"--title", "Banded", "--set", "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=8000", "--set",
           "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=0", sample("bracket.emf")});
    print({"--title", "Fine", "--set", "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=1000", sample("bracket.emf")});
    const MappedFile banded(job("Banded.tsf"));
    const MappedFile fine(job("Fine.tsf"));
    const JobFile bandedJob = readJobFile(banded.bytes());
    const JobFile fineJob = readJobFile(fine.bytes());
    ASSERT_EQ(bandedJob.vectors.size(), fineJob.vectors.size());
    for (std::size_t i = 0; i < fineJob.vectors.size(); ++i) EXPECT_EQ(bandedJob.vectors[i].coordinates, fineJob.vectors[i].coordinates) << i;
}

// Two processes, one spool folder, one title: every job arrives under a name of its own.
TEST_F(Print, two_processes_lose_no_job) {
    ASSERT_EQ(print({"--title", "Warm", "--quiet", sample("label.emf")}).status, kDone);
    constexpr int kJobs = 10;
    std::vector<pid_t> children;
    for (int child = 0; child < 2; ++child) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            int failures = 0;
            for (int i = 0; i < kJobs; ++i) failures += print({"--title", "Plan", "--quiet", sample("label.emf")}).status == kDone ? 0 : 1;
            ::_exit(failures);
        }
        children.push_back(pid);
    }
    for (const pid_t pid : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(pid, &status, 0), pid);
        EXPECT_EQ(status, 0);
    }
    const std::vector<std::string> names = spooled();
    EXPECT_EQ(names.size(), 2U * kJobs + 1U);
    const std::string reference = bytesOf(job("Warm.tsf"));
    for (const std::string& name : names) {
        EXPECT_TRUE(name.ends_with(".tsf")) << name;
        const MappedFile mapped(job(name));
        EXPECT_EQ(readJobFile(mapped.bytes()).violationCount, 0U) << name;
    }
}

// ---- real metafiles ---------------------------------------------------------------------------------------------------

TEST_F(Print, every_sample_makes_a_well_formed_job) {
    for (const char* const name : {"nameplate", "bracket", "photoplate", "pens", "label"}) {
        EXPECT_EQ(print({sample(std::string(name) + ".emf")}).status, kDone) << name;
        EXPECT_EQ(run({"check", job(std::string(name) + ".tsf")}).status, kDone) << name;
    }
}

TEST_F(Print, metafiles_from_elsewhere_print) {
    const std::filesystem::path folder = std::filesystem::path(MORVIL_SAMPLES) / "../../shared/emf";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "the folder of metafiles from elsewhere is not there";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".emf") continue;
        const Outcome run = print({entry.path().string()});
        EXPECT_EQ(run.status, kDone) << entry.path() << run.err;
        ASSERT_EQ(run.lines().size(), 1U) << entry.path();
        EXPECT_EQ(PrintFixture::run({"check", run.lines()[0]}).status, kDone) << entry.path();
    }
}

}  // namespace
}  // namespace morvil::tool
