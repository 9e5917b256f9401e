// "morvil trace" and "morvil replay": what they show, keep and refuse.
#include <gmock/gmock.h>

#include <fstream>
#include <functional>

#include "tool/PrintFixture.h"
#include "trace/RecordingFile.h"

namespace morvil::tool {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

trace::Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

class Trace : public PrintFixture {
  protected:
    static constexpr const char* kResolution = "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5";

    Outcome trace(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"trace", "--quiet", "--spool", m_spool.string(), "--set", kResolution});
        return run(std::move(arguments));
    }
    Outcome record(const std::string& file, std::vector<std::string> arguments = {}) const {
        arguments.insert(arguments.end(), {"--record", recording().string(), sample(file)});
        return trace(std::move(arguments));
    }
    Outcome replay() const { return run({"replay", "--home", (m_home.folder() / "other").string(), "--spool", replayed().string(), recording().string()}); }
    [[nodiscard]] fs::path recording() const { return m_home.folder() / "calls.rec"; }
    [[nodiscard]] fs::path replayed() const {
        fs::create_directories(m_home.folder() / "replayed");
        return m_home.folder() / "replayed";
    }
    void change(const std::function<void(trace::Recording&)>& edit) const {
        std::string reason;
        auto recorded = trace::fromBytes(bytesOf(read(recording())), reason);
        ASSERT_TRUE(recorded) << reason;
        edit(*recorded);
        const trace::Bytes bytes = trace::toBytes(*recorded);
        std::ofstream(recording(), std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
};

TEST_F(Trace, needs_a_recording_that_is_one) {
    EXPECT_EQ(run({"replay", "--home", "x", "nowhere.rec"}).status, kUsage);
    std::ofstream(recording()) << "";
    EXPECT_THAT(replay().err, HasSubstr("byte 0: the recording ends inside a value"));
    std::ofstream(recording()) << "something else entirely";
    const Outcome other = replay();
    EXPECT_EQ(other.status, kUsage);
    EXPECT_THAT(other.err, HasSubstr("byte 0: not a recording"));
}

// Every cut of a small recording is refused, whatever it cuts; and so is one byte too many.
TEST_F(Trace, a_cut_recording_is_refused) {
    trace::Recording small;
    small.printer = TEXT("Morvil");
    small.files.push_back({TEXT("a.ini"), {1, 2, 3}});
    trace::Event event{.function = INDEX_DrvStrokePath, .result = 1, .numbers = {1, 2}};
    event.path = trace::PathArgument{.flags = 1, .curves = 1, .parts = {{PD_BEGINSUBPATH, {{16, 32}, {48, 64}}}}};
    event.line = trace::LineArgument{.flags = 2, .join = 0, .endCap = 0, .width = 1, .miterLimit = 0, .style = {5, 6}, .styleState = 0};
    small.events.push_back(event);
    const trace::Bytes whole = trace::toBytes(small);
    std::string reason;
    ASSERT_TRUE(trace::fromBytes(whole, reason)) << reason;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(trace::fromBytes({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}, reason)) << length;
        EXPECT_THAT(reason, StartsWith("byte ")) << length;
    }
    trace::Bytes longer = whole;
    longer.push_back(0);
    EXPECT_FALSE(trace::fromBytes(longer, reason));
    EXPECT_EQ(reason, "bytes follow behind the recording's end");
}

// A length of 2^60 elements must not be allocated.
TEST_F(Trace, a_list_longer_than_its_recording_is_refused) {
    trace::Bytes bytes = trace::toBytes({});
    bytes.at(8 + 7) = 0x10;  // highest byte of the printer name's length, behind the magic
    std::string reason;
    EXPECT_FALSE(trace::fromBytes(bytes, reason));
    EXPECT_EQ(reason, "byte 16: a list is longer than the recording");
}

TEST_F(Trace, comes_back_from_its_bytes) {
    ASSERT_EQ(record("badge.emf").status, kDone);
    std::string reason;
    const trace::Bytes bytes = bytesOf(read(recording()));
    const auto recorded = trace::fromBytes(bytes, reason);
    ASSERT_TRUE(recorded) << reason;
    EXPECT_TRUE(trace::toBytes(*recorded) == bytes);
    EXPECT_GT(recorded->events.size(), 10U);
    EXPECT_EQ(recorded->events.front().function, static_cast<ULONG>(INDEX_DrvEnablePDEV));
    EXPECT_EQ(recorded->events.back().function, static_cast<ULONG>(INDEX_DrvDisableDriver));
}

TEST_F(Trace, shows_the_calls_in_their_order) {
    const Outcome shown = trace({sample("badge.emf")});
    ASSERT_EQ(shown.status, kDone) << shown.err;
    std::vector<std::string> functions;
    for (const std::string& line : shown.lines()) {
        const std::string function = line.substr(0, line.find(' '));
        if (functions.empty() || functions.back() != function) functions.push_back(function);
    }
    EXPECT_EQ(functions.front(), "DrvEnablePDEV");
    EXPECT_EQ(functions.back(), "DrvDisableDriver");
    EXPECT_THAT(shown.lines(), Contains(StartsWith("DrvStartDoc job 1 title [\"badge\"] target {")));
    EXPECT_THAT(shown.lines(), Contains(testing::MatchesRegex("DrvStrokePath .* path \\{[0-9]+ segments: figure .*\\} line \\{.*\\} brush \\{.*\\} = 1")));
    EXPECT_THAT(shown.lines(), Contains(testing::MatchesRegex("DrvSendPage bits \\[[0-9]+ bytes\\] target .* = 1")));
    EXPECT_THAT(spooled(), ElementsAre("badge.tsf"));
}

TEST_F(Trace, a_recording_makes_the_same_job_again) {
    const Outcome recorded = record("badge.emf", {"--title", "Badge"});
    ASSERT_EQ(recorded.status, kDone) << recorded.err;
    const Outcome again = replay();
    ASSERT_EQ(again.status, kDone) << again.err;
    EXPECT_THAT(again.lines(), ElementsAre((replayed() / "Badge.tsf").string()));
    EXPECT_TRUE(read(replayed() / "Badge.tsf") == read(job("Badge.tsf")));
}

TEST_F(Trace, the_bits_of_the_page_come_from_the_recording) {
    ASSERT_EQ(record("badge.emf", {"--title", "Badge"}).status, kDone);
    change([](trace::Recording& recorded) {
        for (trace::Event& event : recorded.events) {
            if (event.function == INDEX_DrvSendPage) std::fill(event.blocks.at(0).begin(), event.blocks.at(0).end(), std::uint8_t{0x5A});
        }
    });
    ASSERT_EQ(replay().status, kDone);
    EXPECT_NE(read(replayed() / "Badge.tsf").find(std::string(64, '\x5A')), std::string::npos);
}

TEST_F(Trace, replay_stops_where_the_driver_answers_otherwise) {
    ASSERT_EQ(record("badge.emf").status, kDone);
    change([](trace::Recording& recorded) { recorded.events.at(3).result = 7; });
    const Outcome again = replay();
    EXPECT_EQ(again.status, kWrong);
    EXPECT_THAT(again.err, HasSubstr("call 4, DrvStartDoc: answered 1, recorded was 7"));
    EXPECT_THAT(again.lines(), IsEmpty());
}

TEST_F(Trace, replay_refuses_what_cannot_be_played) {
    struct Case {
        const char* text;
        std::function<void(trace::Event&)> edit;
    };
    const Case cases[] = {{"the page's surface has another size than the recorded one", [](trace::Event& event) { event.blocks.at(0).pop_back(); }},
                          {"a block is missing in the recording", [](trace::Event& event) { event.blocks.clear(); }},
                          {"the driver does not offer it", [](trace::Event& event) { event.function = INDEX_DrvGetGlyphMode + 1000; }}};
    for (const Case& each : cases) {
        ASSERT_EQ(record("badge.emf").status, kDone);
        change([&](trace::Recording& recorded) {
            for (trace::Event& event : recorded.events) {
                if (event.function == INDEX_DrvSendPage) return each.edit(event);
            }
        });
        const Outcome again = replay();
        EXPECT_EQ(again.status, kWrong) << each.text;
        if (std::string(each.text).find("offer") == std::string::npos) {
            EXPECT_THAT(again.err, HasSubstr(each.text));
        }
    }
}

// A path in a recording must not lead out of the data root, and is looked at before anything is written.
TEST_F(Trace, kept_files_stay_below_the_data_root) {
    ASSERT_EQ(record("badge.emf").status, kDone);
    const WString long_name(300, 'n');
    const WString with_end{'a', 0, 'b'};
    for (const WString& path : {WString(TEXT("..\\outside.ini")), WString(TEXT("\\outside.ini")), WString(TEXT("a\\..\\..\\outside.ini")), WString(TEXT("..")),
                                WString(), WString(TEXT(".")), WString(TEXT("folder\\")), TEXT("folder\\") + long_name, with_end}) {
        change([&](trace::Recording& recorded) {
            recorded.files.resize(2);
            recorded.files.at(0).path = TEXT("first.ini");
            recorded.files.at(1).path = path;
        });
        const Outcome again = replay();
        EXPECT_EQ(again.status, kUsage) << toUtf8(path);
        EXPECT_THAT(again.err, HasSubstr("calls.rec: it keeps \"" + toUtf8(path) + "\", which is no file below the data root"));
        EXPECT_FALSE(fs::exists(m_home.folder() / "outside.ini"));
        EXPECT_FALSE(fs::exists(m_home.folder() / "other/first.ini"));
    }
}

TEST_F(Trace, kept_files_that_cannot_be_written_are_the_systems_failure) {
    ASSERT_EQ(record("badge.emf").status, kDone);
    std::ofstream(m_home.folder() / "other") << "a file where the data root should be";
    const Outcome again = replay();
    EXPECT_EQ(again.status, kSystemFailed);
    EXPECT_THAT(again.err, HasSubstr(": Not a directory"));
}

TEST_F(Trace, a_recording_that_cannot_be_written_is_told) {
    const Outcome outcome = trace({"--record", (m_home.folder() / "nowhere/calls.rec").string(), sample("badge.emf")});
    EXPECT_EQ(outcome.status, kSystemFailed);
    EXPECT_THAT(outcome.err, HasSubstr("calls.rec: No such file or directory"));
}

}  // namespace
}  // namespace morvil::tool
