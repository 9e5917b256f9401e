// Files that are not what the tool takes them for: pipes and devices, a configuration that cannot be had, names that no text
// encoding knows. Each ends in an error that names the file and the reason, and nothing that was there before is harmed.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <nlohmann/json.hpp>

#include "config/MvMutex.h"
#include "support/ChildProcess.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

namespace fs = std::filesystem;
using test::ChildProcess;
using testing::HasSubstr;
using testing::IsEmpty;

std::string bytesOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class HostileFiles : public PrintFixture {
  protected:
    HostileFiles() { EXPECT_EQ(print({"--title", "Job", sample("label.emf")}).status, kDone); }
    // One more file among the jobs, a link to a device that takes nothing.
    [[nodiscard]] fs::path fullDevice() const {
        const fs::path link = m_home.folder() / "full";
        fs::create_symlink("/dev/full", link);
        return link;
    }
};

// ---- configuration ----------------------------------------------------------------------------------------------------

TEST_F(HostileFiles, configuration_that_is_locked_is_named_once_the_wait_is_over) {
    std::ofstream(m_home.folder() / "ProgramData/Morvil/mvDebug.ini") << "[Debug]\r\nMvMutexTimeOut=50\r\n";
    resetState();
    ChildProcess holder([](const ChildProcess::Link& link) {
        MvMutex mutex(kConfigurationMutex);
        const MvMutexLock lock(mutex);
        link.ready();
        link.waitForParent();
        return lock.held() ? 0 : 1;
    });
    ASSERT_TRUE(holder.waitUntilReady());
    const std::string expected = configurationFile().string() + ": locked by another process (waited for 50 ms)\n";
    EXPECT_EQ(run({"config", "dump"}).err, "morvil config: " + expected);
    const Outcome printed = print({"--title", "Locked", sample("label.emf")});
    EXPECT_EQ(printed.status, kSystemFailed);
    EXPECT_EQ(printed.err, "morvil print: " + expected);
    holder.letGo();
    EXPECT_EQ(holder.finish(), 0);
    EXPECT_EQ(run({"config", "dump"}).status, kDone);
    EXPECT_THAT(spooled(), testing::ElementsAre("Job.tsf"));
}

TEST_F(HostileFiles, configuration_of_noise_is_named_with_its_size) {
    fs::resize_file(configurationFile(), 50U << 20U);
    resetState();
    const Outcome run = print({sample("label.emf")});
    EXPECT_EQ(run.status, kSystemFailed);
    EXPECT_EQ(run.err, "morvil print: " + configurationFile().string() +
                           ": 52428800 bytes are more than a configuration may have (8388608); without the file the defaults are used\n");
    EXPECT_EQ(fs::file_size(configurationFile()), 50U << 20U) << "and is left alone";
}

TEST_F(HostileFiles, configuration_that_is_a_folder_is_named) {
    fs::remove(configurationFile());
    fs::create_directory(configurationFile());
    resetState();
    const Outcome run = print({sample("label.emf")});
    EXPECT_EQ(run.status, kSystemFailed);
    EXPECT_EQ(run.err, "morvil print: " + configurationFile().string() + ": Is a directory\n");
}

TEST_F(HostileFiles, data_root_that_is_a_file_is_named) {
    const fs::path file = m_home.folder() / "root";
    std::ofstream(file) << "x";
    const Outcome run = PrintFixture::run({"config", "dump", "--home", file.string()});
    EXPECT_EQ(run.status, kSystemFailed);
    EXPECT_EQ(run.err, "morvil config: " + file.string() + ": Not a directory\n");
}

TEST_F(HostileFiles, names_and_values_that_would_damage_the_configuration_are_refused) {
    const std::string before = bytesOf(configurationFile());
    for (const char* const item : {"PrinterDriver.!--", "PrinterDriver.a b", "PrinterDriver.X@\"/><evil y=\""}) {
        EXPECT_EQ(run({"config", "set", item, "x"}).status, kUsage) << item;
        EXPECT_EQ(print({"--set", std::string(item) + "=x", sample("label.emf")}).status, kUsage) << item;
    }
    EXPECT_THAT(run({"config", "set", "PrinterDriver.X", "a\nb"}).err, HasSubstr("a value holds at most 259 characters"));
    EXPECT_THAT(print({"--set", "PrinterDriver.X=<", sample("label.emf")}).err, HasSubstr("a value holds at most 259 characters"));
    EXPECT_EQ(run({"config", "remove", "PrinterDriver.Flags@value"}).status, kUsage);
    EXPECT_EQ(bytesOf(configurationFile()), before);
}

// ---- input ------------------------------------------------------------------------------------------------------------

// An alarm instead of a test that never ends.
TEST_F(HostileFiles, pipe_without_writer_is_refused_at_once) {
    const std::string pipe = (m_home.folder() / "pipe").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"check", pipe}, {"show", pipe}, {"preview", pipe, "-o", "x.png"}, {"print", pipe}}) {
        ChildProcess child([&](const ChildProcess::Link&) {
            ::alarm(20);
            const Outcome answer = run(arguments);
            return answer.err.find(pipe + ": not a regular file") != std::string::npos ? answer.status : 99;
        });
        EXPECT_EQ(child.finish(), kUsage) << arguments[0];
    }
}

TEST_F(HostileFiles, name_in_no_encoding_still_makes_json) {
    const fs::path odd = m_home.folder() / "\xFF\xFE.tsf";
    fs::copy_file(job("Job.tsf"), odd);
    for (const char* const command : {"check", "show"}) {
        const Outcome answer = run({command, "--json", odd.string()});
        EXPECT_EQ(answer.status, kDone) << command << answer.err;
        EXPECT_TRUE(nlohmann::json::accept(answer.out)) << command;
    }
}

TEST_F(HostileFiles, spool_folder_that_is_a_file_is_said_to_be_none) {
    const Outcome run = PrintFixture::run({"print", "--spool", job("Job.tsf"), sample("label.emf")});
    EXPECT_EQ(run.status, kUsage);
    EXPECT_THAT(run.err, HasSubstr("Job.tsf\" is no folder"));
}

// ---- output -----------------------------------------------------------------------------------------------------------

TEST_F(HostileFiles, recording_onto_a_full_device_leaves_the_device) {
    const fs::path device = fullDevice();
    const Outcome answer = run({"trace", "--quiet", "--spool", m_spool.string(), "--record", device.string(), sample("label.emf")});
    EXPECT_EQ(answer.status, kSystemFailed);
    EXPECT_EQ(answer.err, "morvil trace: " + device.string() + ": No space left on device\n");
    EXPECT_TRUE(fs::is_symlink(device));
}

TEST_F(HostileFiles, preview_never_overwrites_the_job) {
    const std::string before = bytesOf(job("Job.tsf"));
    const Outcome answer = run({"preview", job("Job.tsf"), "-o", m_spool.string() + "/./Job.tsf"});
    EXPECT_EQ(answer.status, kUsage);
    EXPECT_THAT(answer.err, HasSubstr("is the job itself"));
    EXPECT_EQ(bytesOf(job("Job.tsf")), before);
}

TEST_F(HostileFiles, preview_onto_a_full_device_leaves_the_device) {
    const fs::path device = fullDevice();
    const Outcome answer = run({"preview", job("Job.tsf"), "-o", device.string()});
    EXPECT_EQ(answer.status, kSystemFailed);
    EXPECT_EQ(answer.err, "morvil preview: " + device.string() + ": No space left on device\n");
    EXPECT_TRUE(fs::is_symlink(device));
}

TEST_F(HostileFiles, preview_replaces_a_picture_only_when_the_new_one_is_whole) {
    const fs::path picture = m_home.folder() / "job.png";
    std::ofstream(picture) << "old";
    fs::create_symlink("/dev/full", picture.string() + ".part");
    EXPECT_EQ(run({"preview", job("Job.tsf"), "-o", picture.string()}).status, kSystemFailed);
    EXPECT_EQ(bytesOf(picture), "old");
    EXPECT_EQ(run({"preview", job("Job.tsf"), "-o", picture.string()}).status, kDone);
    EXPECT_THAT(bytesOf(picture), testing::StartsWith("\x89PNG"));
    EXPECT_FALSE(fs::exists(picture.string() + ".part"));
    EXPECT_THAT(run({"preview", job("Job.tsf"), "-o", (m_home.folder() / "none/x.png").string()}).err, HasSubstr("none/x.png: No such file or directory"));
}

}  // namespace
}  // namespace morvil::tool
