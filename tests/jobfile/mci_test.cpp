// The colour group of colour stamps: its lines, its place in the file, and which entries of the colour lists it names.
#include <cerrno>

#include "config/CMvConfig.h"
#include "jobfile/PageJob.h"
#include "platform/posix/PlatformCalls.h"
#include "raster/ColourListFiles.h"
#include "support/FailingCalls.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

class MciColours : public PageJob {
  protected:
    MciColours() {
        setPage(kModeColourStamp, 4, 2);
        config.mciVersion = 3;
    }
    static void writeLists(const std::string& catalogue, const std::string& customer) {
        const WString folder = CMvConfig().jobApplicationFolder();
        writeBytes(folder + TEXT("\\ColorsGaspen.xml"), catalogue);
        writeBytes(folder + TEXT("\\ColorsCustomer.xml"), customer);
    }
    static void writeTemplates(const std::string& body) {
        writeBytes(WString(CMvConfig().commonFiles()) + TEXT("\\MvTemplate.ini"), "[BDSIZETEMPLATE]\r\n" + body);
    }
    // The colour group of a finished page of 4 x 2 pixels with these bytes, with both its closing lines.
    std::string groupOf(const std::string& bytes) {
        const std::string job = printed(bytes);
        const std::size_t from = job.find("<BegGroup: Mci>");
        if (from == std::string::npos) return {};
        return job.substr(from, job.find("<BegGroup: Bitmap>") - from);
    }
};

const std::string kTwoLists = listXml("2.1", colourXml("1", 10, 20, 30, R"(Target="7" Level="high")", nameXml("en", "Oak")) +
                                                 colourXml("2", 40, 50, 60, R"(Target="255" Level="low")", nameXml("en", "Elm")));
const std::string kCustomers = listXml("1.7", colourXml("9", 70, 80, 90, "", nameXml("en", "Ours")));
const std::string kVersions = "<Version.ColorsGaspen: 2.1>\r\n<Version.ColorsCustomer: 1.7>\r\n<Version.ColorsSystem: 0.9>\r\n";
const std::string kEnd = "<EndGroup: Mci>\r\n<EndGroup: Header>\r\n";

}  // namespace

TEST_F(MciColours, stand_between_header_and_bitmap_with_the_header_closed_twice) {
    writeLists(kTwoLists, kCustomers);
    const auto writer = begin(1);
    polygon(*writer, {1, 2}, {0, 1});
    const std::string before = bytesOf(*writer);
    EXPECT_EQ(before.find("Mci"), std::string::npos) << "the page's colours are not known yet";
    const std::string rows("\x01\x00\x02\x01\x00\x00\x03\x04", 8);
    EXPECT_TRUE(sendPage(*writer, rows));
    const std::string job = bytesOf(*writer);
    const std::string header = before.substr(0, before.find("<BegGroup: Bitmap>"));
    EXPECT_TRUE(header.ends_with("<EndGroup: Header>\r\n"));
    const std::string group = "<BegGroup: Mci>\r\n" + kVersions +
                              "<Parameters:>\r\n<Color0: Elm;40;50;60;255;low>\r\n<Color1: Oak;10;20;30;7;high>\r\n"
                              "<Color2: Ours;70;80;90;0;>\r\n<Color3: border;232;232;232;0;>\r\n<Color4: white;255;255;255;0;>\r\n" +
                              kEnd + "<BegGroup: Bitmap>\r\n<STBmp: 0;0>BM";
    EXPECT_EQ(job.substr(0, header.size() + group.size()), header + group);
    const StoredImage image = imageOf(job);
    EXPECT_EQ(image.width, 4U);
    EXPECT_EQ(image.height, 2U);
    EXPECT_EQ(image.pixels, rows);
    EXPECT_EQ(vectorsOf(job), vectorsOf(before));
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsa"});
    // The palette behind the group is that of the lists.
    EXPECT_EQ(job.substr(header.size() + group.size() - 2 + 54, 12), std::string("\x1E\x14\x0A\0\x3C\x32\x28\0\x5A\x50\x46\0", 12));

    // The positions are those of the longer file.
    polygon(*writer, {3}, {1});
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;1;0;2;1>\r\n<DrawPolygon: 1;255;0;0;3;1>");
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
}

TEST_F(MciColours, name_an_entry_once_and_skip_what_no_list_holds) {
    // Two entries that agree in every field are one; the second customer colour differs in its level alone.
    const std::string twin = colourXml("9", 1, 2, 3, R"(Target="5")", nameXml("en", "Twin"));
    writeLists(listXml("1.0", twin + twin), listXml("1.0", colourXml("9", 1, 2, 3, R"(Target="5" Level="x")", nameXml("en", "Twin"))));
    const DebugCapture debug;
    EXPECT_EQ(groupOf(std::string("\x01\x00\x01\x02\x07\xFF\x03\x00", 8)),
              "<BegGroup: Mci>\r\n<Version.ColorsGaspen: 1.0>\r\n<Version.ColorsCustomer: 1.0>\r\n<Version.ColorsSystem: "
              "0.9>\r\n<Parameters:>\r\n"
              "<Color0: Twin;1;2;3;5;>\r\n<Color1: Twin;1;2;3;5;x>\r\n<Color2: border;232;232;232;0;>\r\n" +
                  kEnd);
    EXPECT_EQ(debug.count("CMciColorHandler::operator [], invalid index\n"), 2U);  // 7 and 255
}

TEST_F(MciColours, without_lists_only_the_two_of_the_system_have_an_entry) {
    EXPECT_EQ(groupOf(std::string("\x00\x01\x02\x03\x04\x05\x06\x00", 8)),
              "<BegGroup: Mci>\r\n<Version.ColorsGaspen: 0.0>\r\n<Version.ColorsCustomer: 0.0>\r\n<Version.ColorsSystem: "
              "0.9>\r\n<Parameters:>\r\n"
              "<Color0: border;232;232;232;0;>\r\n<Color1: white;255;255;255;0;>\r\n" +
                  kEnd);
}

TEST_F(MciColours, are_filtered_by_the_version_of_the_configuration) {
    const std::string lists = listXml("1", colourXml("1", 1, 1, 1, R"(Version="2.0")", nameXml("en", "New")) +
                                               colourXml("2", 2, 2, 2, R"(Version="1.0")", nameXml("en", "Old")));
    writeLists(lists, listXml("1", ""));
    config.mciVersion = 0;
    EXPECT_NE(groupOf(std::string(8, '\0')).find("<Color0: Old;2;2;2;0;>"), std::string::npos);
    config.mciVersion = 2;
    EXPECT_NE(groupOf(std::string(8, '\0')).find("<Color0: New;1;1;1;0;>"), std::string::npos);
}

TEST_F(MciColours, carry_the_identifier_of_the_template_of_their_size) {
    writeTemplates(
        "SIZETEMPLATECOUNT=3\r\nSIZETEMPLATE[1].Name=Other\r\nSIZETEMPLATE[1].Width=1\r\nSIZETEMPLATE[1].Height=1\r\n"
        "SIZETEMPLATE[1].MCI_ID=5\r\nSIZETEMPLATE[2].Name=Ours\r\nSIZETEMPLATE[2].Width=0,43\r\nSIZETEMPLATE[2].Height=0.2\r\n"
        "SIZETEMPLATE[2].MCI_ID=4711\r\nSIZETEMPLATE[3].Name=None\r\nSIZETEMPLATE[3].Width=0.8\r\nSIZETEMPLATE[3].Height=0.2\r\n");
    EXPECT_TRUE(groupOf(std::string(8, '\0')).starts_with("<BegGroup: Mci>\r\n<MCI_ID: 4711>\r\n<Version.ColorsGaspen: "));
    setPage(kModeColourStamp, 8, 2);
    EXPECT_EQ(groupOf(std::string(16, '\0')).find("MCI_ID"), std::string::npos) << "its template has none";
    setPage(kModeColourStamp, 20, 2);
    EXPECT_EQ(groupOf(std::string(40, '\0')).find("MCI_ID"), std::string::npos) << "no template has its size";
}

TEST_F(MciColours, stand_behind_the_diagnostic_group) {
    config.diagnostic.enabled = 1;
    const std::string job = printed(std::string(8, '\0'));
    EXPECT_NE(job.find("<EndGroup: Diagnostic>\r\n<BegGroup: Mci>\r\n"), std::string::npos);
}

TEST_F(MciColours, texts_of_the_lists_stay_on_their_line) {
    writeLists(listXml("1", colourXml("1", 1, 2, 3, R"(Level="a&#10;b")", nameXml("en", "x&#13;y"))), listXml("1", ""));
    const std::string group = groupOf(std::string(8, '\0'));
    EXPECT_EQ(std::count(group.begin(), group.end(), '\n'), 8);
}

TEST_F(MciColours, other_modes_have_none) {
    for (const WORD mode : {kModeStandard, kModeStamp, kModeRelief, kModeLayer}) {
        setPage(mode, 4, 2);
        EXPECT_EQ(groupOf(std::string(8, '\0')), "") << mode;
    }
}

TEST_F(MciColours, an_empty_list_writes_nothing) {
    const auto writer = begin(3);
    const std::string before = bytesOf(*writer);
    EXPECT_FALSE(writer->WriteMciHeader({}));
    EXPECT_EQ(bytesOf(*writer), before);
    writer->Complete();
    EXPECT_TRUE(spooled(TEXT("Plan.tsf")));
}

TEST_F(MciColours, a_group_that_cannot_be_written_spoils_the_job) {
    const auto writer = begin(3);
    DeleteFileW(writer->jobFilePath());
    EXPECT_FALSE(writer->WriteMciHeader(std::vector<std::uint8_t>{0}));
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{});
}

TEST_F(MciColours, a_page_that_is_too_short_for_the_image_made_anew_is_refused) {
    const auto writer = begin(1);
    ConfigurationRecord larger = config;
    larger.size.pixelWidth = 4000;
    writer->SetPrinterConfig(&larger);
    EXPECT_FALSE(sendPage(*writer, std::string(8, '\0')));
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{});
}

TEST_F(MciColours, each_call_that_fails_leaves_a_whole_job_or_none) {
    m_log.settings.enabled = 0;
    const auto run = [this](int n, Fault fault, const char* call, int& fired) {
        DeleteFileW(inSpool(TEXT("Plan.tsf")).c_str());
        const auto writer = begin(1);
        polygon(*writer, {1, 2}, {0, 1});
        {
            const FailingCalls faults(n, fault, call);
            platformCalls().sleep = [](std::uint32_t) {};  // nobody needs to wait for what is made to fail
            sendPage(*writer, std::string("\x01\x00\x05\x05\x05\x05\x05\x05", 8));
            fired = faults.fired();
        }
        writer->Complete();
        return finished(*writer);
    };
    int fired = 0;
    const std::string whole = run(1, Fault::Transient, "none", fired);
    ASSERT_NE(whole.find("<Color0: white;255;255;255;0;>"), std::string::npos);
    for (const char* const call : {"write", "close", "open", "read", "allocate"}) {
        for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
            for (int n = 1;; ++n) {
                const std::string job = run(n, fault, call, fired);
                EXPECT_TRUE(job == whole || job == "no finished job") << call << ' ' << n << ":\n" << job;
                if (fired == 0) break;
                ASSERT_LT(n, 500);
            }
        }
    }
}

// Another process' copy is there when ours is made, and gone when we look for it.
TEST_F(MciColours, a_copy_of_the_vectors_that_comes_and_goes_costs_no_job) {
    const auto writer = begin(3);
    polygon(*writer, {1}, {1});
    {
        static int left;
        left = 3;
        const PlatformCalls before = platformCalls();
        static decltype(PlatformCalls::open) openFile;
        openFile = before.open;
        platformCalls().open = [](const char* path, int flags, unsigned mode) {
            if (!std::string_view(path).ends_with("BackUp_Polygon.dat") || left-- <= 0) return openFile(path, flags, mode);
            errno = EEXIST;
            return -1;
        };
        sendPage(*writer, std::string(8, '\0'));
        platformCalls() = before;
    }
    EXPECT_EQ(messagesFrom("!!! "), Strings{});
    writer->Complete();
    EXPECT_EQ(commandsOf(finished(*writer)), "<DrawPolygon: 1;255;0;0;1;1>");
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
}

TEST_F(MciColours, without_a_backup_of_the_vectors_the_job_is_not_given_away) {
    const auto writer = begin(3);
    polygon(*writer, {1}, {1});
    makeFolder(inSpool(TEXT("BackUp_Polygon.dat")));
    sendPage(*writer, std::string(8, '\0'));
    EXPECT_TRUE(logged("!!! SpoolFile Error BackUpPolygon"));
    writer->Complete();
    EXPECT_FALSE(spooled(TEXT("Plan.tsf")));
}

}  // namespace morvil::test
