// The tracing mode: three pictures in the spool folder, and polygons from a library that may be missing, strange or wrong.
#include <filesystem>

#include "jobfile/PageJob.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "support/Environment.h"
#include "support/FailingCalls.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

class JobTracing : public PageJob {
  protected:
    JobTracing() { setPage(kModeTest2, 3, 2); }
    ~JobTracing() override { clearEnvironment("MORVIL_TEST_TRACER"); }

    // Puts a library where the driver looks for it.
    void install(const char* library = MORVIL_TEST_TRACER_LIBRARY) const {
        const std::filesystem::path folder = m_home.hostPath(CMvConfig().driverProgramFolder());
        std::filesystem::create_directories(folder);
        std::filesystem::copy_file(library, folder / "MvTracer.dll", std::filesystem::copy_options::overwrite_existing);
    }
    static void answer(const char* text) { setEnvironment("MORVIL_TEST_TRACER", text); }
    static bool trace(CSpoolFile& writer, const std::string& page, std::uint32_t yOffset = 0) {
        return writer.TraceBitmap(reinterpret_cast<const std::uint8_t*>(page.data()), page.size(), 3, 2, yOffset);
    }
    // The one picture of that kind in the spool folder.
    [[nodiscard]] std::string picture(const std::string& kind) const {
        for (const std::string& name : spoolFiles()) {
            if (name.starts_with("tracer." + kind + ".")) return readBytes(inSpool(fromUtf8(name)));
        }
        return {};
    }
};

// Blue, green, red for each pixel; the padding of the rows is whatever the surface holds.
const std::string kPage(
    "\x00\x00\xFF\xFF\xFF\xFF\x00\x00\x00zzz\x10\xF0\xF0\x10\xF1\xF0\x80\x80\xFE"
    "abc",
    24);

std::string trueColourImage(const std::string& rows) {
    return "BM" + littleEndian(54 + 24, 4) + littleEndian(0, 4) + littleEndian(54, 4) + littleEndian(40, 4) + littleEndian(3, 4) +
           littleEndian(2, 4) + littleEndian(1, 2) + littleEndian(24, 2) + littleEndian(0, 4) + littleEndian(24, 4) +
           std::string(16, '\0') + rows;
}

}  // namespace

TEST_F(JobTracing, keeps_three_pictures_of_the_page) {
    const auto writer = begin(1);
    EXPECT_FALSE(trace(*writer, kPage)) << "there is no library";
    const Strings files = spoolFiles();
    ASSERT_EQ(files.size(), 4U);
    const std::string stamp = files[1].substr(std::string("tracer.extracted.").size(), 6);
    EXPECT_EQ(stamp.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_EQ(files, (Strings{"Plan.tsa", "tracer.extracted." + stamp + ".bmp", "tracer.org." + stamp + ".bmp",
                              "tracer.removed." + stamp + ".bmp"}));
    EXPECT_EQ(picture("org"), trueColourImage(kPage));
    EXPECT_EQ(picture("extracted"),
              trueColourImage(std::string("\x00\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFFzzz\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"
                                          "abc",
                                          24)));
    // Reds of 240 and more whose other channels are at most 240.
    EXPECT_EQ(picture("removed"), trueColourImage(std::string("\xFF\xFF\xFF\xFF\xFF\xFF\x00\x00\x00zzz\xFF\xFF\xFF\x10\xF1\xF0\xFF\xFF\xFF"
                                                              "abc",
                                                              24)));
}

TEST_F(JobTracing, outlines_become_red_polygons_at_the_bands_place) {
    install();
    const auto writer = begin(1);
    clearLog();
    EXPECT_TRUE(trace(*writer, kPage, 100));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 3;255;0;0;0;120;1;121;2;122>\r\n<DrawPolygon: 1;255;0;0;10;120>");
    EXPECT_TRUE(logged("MvTracer.dll loaded"));
    EXPECT_EQ(messagesFrom("Get polygon").size(), 2U);
    EXPECT_TRUE(trace(*writer, kPage, 100));
    EXPECT_EQ(messagesFrom("WritePolygon (Raw), cntPoints=3").size(), 2U) << "the same outline is written again";
    EXPECT_EQ(outstanding().libraries, 0U);
}

TEST_F(JobTracing, a_missing_library_is_logged) {
    const auto writer = begin(1);
    EXPECT_FALSE(trace(*writer, kPage));
    EXPECT_TRUE(logged("!!! MvTracer.dll not loaded, Error=126"));
    EXPECT_FALSE(logged("MvTracer.dll loaded"));
    writer->Complete();
    EXPECT_TRUE(spooled(TEXT("Plan.tsf"))) << "the page itself is whole";
}

TEST_F(JobTracing, a_library_without_the_functions_is_unloaded) {
    install(MORVIL_TEST_OTHER_LIBRARY);
    const auto writer = begin(1);
    EXPECT_FALSE(trace(*writer, kPage));
    EXPECT_TRUE(logged("MvTracer.dll loaded"));
    EXPECT_EQ(messagesFrom("!!! "), Strings{"!!! MvTracer.dll has no GetPoints"});
    EXPECT_EQ(messagesFrom("Get polygon").size(), 0U);
    EXPECT_EQ(outstanding().libraries, 0U);
}

TEST_F(JobTracing, a_file_that_is_no_library_is_refused) {
    writeBytes(WString(CMvConfig().driverProgramFolder()) + TEXT("\\MvTracer.dll"), "no library");
    const auto writer = begin(1);
    EXPECT_FALSE(trace(*writer, kPage));
    EXPECT_TRUE(logged("!!! MvTracer.dll not loaded, Error=193"));
}

TEST_F(JobTracing, numbers_that_cannot_be_are_refused) {
    install();
    struct Case {
        const char* answers;
        bool result;
        Strings errors;
        std::size_t asked;
    };
    for (const Case& given : std::vector<Case>{
             {"-1 3", false, {"!!! MvTracer.dll reports -1 polygons"}, 0},
             {"2147483647 3", false, {"!!! MvTracer.dll reports 2147483647 polygons"}, 0},
             {"1000001 3", false, {"!!! MvTracer.dll reports 1000001 polygons"}, 0},
             {"0 3", true, {}, 0},
             {"1 -1", true, {"!!! MvTracer.dll reports -1 points in polygon 0"}, 1},
             {"2 2147483647",
              true,
              {"!!! MvTracer.dll reports 2147483647 points in polygon 0", "!!! MvTracer.dll reports 2147483647 points in polygon 1"},
              2},
             {"1 10000001", true, {"!!! MvTracer.dll reports 10000001 points in polygon 0"}, 1},
             {"3 0", true, {}, 3}}) {
        answer(given.answers);
        const auto writer = begin(1);
        clearLog();
        EXPECT_EQ(trace(*writer, kPage), given.result) << given.answers;
        EXPECT_EQ(messagesFrom("!!! "), given.errors) << given.answers;
        EXPECT_EQ(messagesFrom("Get polygon").size(), given.asked) << given.answers;
        EXPECT_EQ(commandsOf(bytesOf(*writer)), "") << given.answers;
    }
}

TEST_F(JobTracing, functions_that_fail_give_no_polygons) {
    install();
    for (const auto& [function, result] : std::vector<std::pair<std::string, bool>>{
             {"Trace", false}, {"GetCntPolygons", false}, {"GetCntPoints", true}, {"GetPoints", true}}) {
        answer(("2 3 " + function).c_str());
        const auto writer = begin(1);
        clearLog();
        EXPECT_EQ(trace(*writer, kPage), result) << function;
        EXPECT_EQ(commandsOf(bytesOf(*writer)), "") << function;
        EXPECT_EQ(messagesFrom("!!! "), Strings(result ? 2 : 1, "!!! MvTracer.dll " + function + " failed"));
    }
}

TEST_F(JobTracing, a_page_too_short_for_its_size_is_refused) {
    const auto writer = begin(1);
    EXPECT_FALSE(trace(*writer, kPage.substr(1)));
    EXPECT_TRUE(logged("!!! TraceBitmap page of 23 bytes is no picture of 3 x 2"));
    EXPECT_FALSE(writer->TraceBitmap(nullptr, 24, 3, 2, 0));
    EXPECT_FALSE(writer->TraceBitmap(reinterpret_cast<const std::uint8_t*>(kPage.data()), 24, 0, 2, 0));
    EXPECT_FALSE(writer->TraceBitmap(reinterpret_cast<const std::uint8_t*>(kPage.data()), 24, 0xFFFFFFFF, 0xFFFFFFFF, 0));
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsa"});
}

TEST_F(JobTracing, a_full_disk_or_no_memory_ends_the_step_and_nothing_else) {
    install();
    m_log.settings.enabled = 0;
    for (const char* const call : {"write", "allocate", "open"}) {
        for (int n = 1;; ++n) {
            auto writer = begin(1);
            int fired = 0;
            {
                const FailingCalls faults(n, Fault::Persistent, call);
                platformCalls().sleep = [](std::uint32_t) {};  // nobody needs to wait for what is made to fail
                trace(*writer, kPage);
                fired = faults.fired();
            }
            EXPECT_EQ(outstanding().libraries, 0U);
            if (fired == 0) break;
            ASSERT_LT(n, 200);
        }
    }
    const auto writer = begin(1);
    const FailingCalls faults(1, Fault::Persistent, "write");
    EXPECT_FALSE(trace(*writer, kPage)) << "there is no extract to look at";
}

}  // namespace morvil::test
