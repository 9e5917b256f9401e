// The header and diagnostic groups, line by line.
#include "jobfile/JobFixture.h"
#include "jobfile/MeasurementPoints.h"
#include "support/CommaLocale.h"

namespace morvil::test {

namespace {

using JobHeader = JobFixture;
using Strings = std::vector<std::string>;

// The lines of a text, without their ends.
Strings linesOf(const std::string& text) {
    Strings lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find("\r\n", at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 2;
    }
    return lines;
}

bool hasLine(const std::string& text, const std::string& line) {
    const Strings lines = linesOf(text);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool hasKeyword(const std::string& text, const std::string& keyword) { return text.find("<" + keyword) != std::string::npos; }

void enablePoint(ConfigurationRecord& config, int k) {
    config.diagnostic.signals[k / 8] = static_cast<BYTE>(config.diagnostic.signals[k / 8] | (1 << (k % 8)));
}

}  // namespace

TEST_F(JobHeader, every_line_of_the_plainest_job) {
    EXPECT_EQ(headerOf(config),
              "<!-- Version: 6.0.0.0>\r\n"
              "<!-- PrintingApplication: draw.exe>\r\n"
              "<BegGroup: Header>\r\n"
              "<ProcessMode: Standard>\r\n"
              "<Size: 0.46;0.10>\r\n"
              "<MaterialGroup: Standard>\r\n"
              "<MaterialName: Standard>\r\n"
              "<JobName: Plan>\r\n"
              "<JobNumber: 0>\r\n"
              "<Resolution: 500>\r\n"
              "<Cutline: none>\r\n"
              "<EndGroup: Header>\r\n");
}

TEST_F(JobHeader, every_line_that_a_configuration_can_ask_for) {
    config.processMode = kModeLayer;
    copyText(config.processName, TEXT("Layer"));
    config.layers = 12;
    config.zAdjustment = 1.23456F;
    config.size.width = 609.996F;
    config.size.height = 0.005F;
    copyText(config.materialGroup, TEXT("Holz & mehr"));
    copyText(config.materialName, TEXT("T\u00FCr \u20AC"));
    config.job.number = -1;
    config.resolution = 1000;
    copyText(config.cutLineName, TEXT("rectangular"));
    config.rotaryEnabled = 1;
    config.rotaryDiameter = 123.4F;
    config.autoPosition = 1;
    config.quickPrint = 1;
    EXPECT_EQ(headerOf(config),
              "<!-- Version: 6.0.0.0>\r\n"
              "<!-- PrintingApplication: draw.exe>\r\n"
              "<BegGroup: Header>\r\n"
              "<ProcessMode: Layer>\r\n"
              "<LayerParameter: 12;1.235>\r\n"
              "<Size: 610.00;0.00>\r\n"
              "<MaterialGroup: Holz & mehr>\r\n"
              "<MaterialName: T\xFCr ?>\r\n"
              "<JobName: Plan>\r\n"
              "<JobNumber: 4294967295>\r\n"
              "<Resolution: 1000>\r\n"
              "<Cutline: rectangular>\r\n"
              "<RotaryAttachment: 123.40>\r\n"
              "<AutoPosition>\r\n"
              "<QuickPrint>\r\n"
              "<EndGroup: Header>\r\n");
}

TEST_F(JobHeader, numbers_have_a_point_in_a_country_with_a_comma_and_that_stays_set) {
    config.processMode = kModeLayer;
    config.layers = 3;
    config.zAdjustment = 1.25F;
    config.rotaryEnabled = 1;
    config.rotaryDiameter = 45.5F;
    const CommaLocale comma;
    if (!comma.isSet()) GTEST_SKIP() << "no country with a decimal comma";
    const std::string header = headerOf(config);
    EXPECT_TRUE(hasLine(header, "<LayerParameter: 3;1.250>"));
    EXPECT_TRUE(hasLine(header, "<Size: 0.46;0.10>"));
    EXPECT_TRUE(hasLine(header, "<RotaryAttachment: 45.50>"));
    EXPECT_TRUE(comma.isSet());
}

TEST_F(JobHeader, process_modes_write_their_name_and_their_own_lines) {
    struct Case {
        WORD mode;
        const char* name;
        bool shoulder;
        bool layer;
    };
    for (const Case& given :
         {Case{1000, "Standard", false, false}, Case{2000, "Stamp", true, false}, Case{3000, "ColourStamp", true, false},
          Case{4000, "Relief", false, false}, Case{5000, "Layer", false, true}, Case{6000, "Test 1 (s/w)", false, false},
          Case{7000, "Test 2 (Tracer)", false, false}, Case{8000, "Test 3 (Banding)", false, false},
          Case{9000, "Test 4 (F/S)", false, false}, Case{10000, "Test 5 (Jarvis)", false, false},
          Case{11000, "Test 6 (Stucki)", false, false}, Case{12000, "Test 7 (Burkes)", false, false}}) {
        config.processMode = given.mode;
        copyText(config.processName, processModeName(given.mode));
        const std::string header = headerOf(config);
        EXPECT_TRUE(hasLine(header, std::string("<ProcessMode: ") + given.name + ">"));
        EXPECT_EQ(hasKeyword(header, "StampShoulder:"), given.shoulder) << given.name;
        EXPECT_EQ(hasKeyword(header, "LayerParameter:"), given.layer) << given.name;
    }
}

TEST_F(JobHeader, the_shoulder_goes_by_index_only_when_the_job_application_says_so) {
    struct Case {
        DWORD flags;
        LONG index;
        const char* expected;
    };
    config.processMode = kModeStamp;
    copyText(config.shoulderName, TEXT("own text"));
    for (const Case& given :
         {Case{2, 0, "flat"}, Case{2, 1, "medium"}, Case{2, 2, "steep"}, Case{2, 3, "own text"}, Case{2, -1, "own text"},
          Case{0, 1, "own text"}, Case{1, 1, "own text"}, Case{4, 1, "own text"}, Case{7, 1, "medium"}}) {
        config.files.jobApplicationFlags = given.flags;
        config.shoulderIndex = given.index;
        EXPECT_TRUE(hasLine(headerOf(config), std::string("<StampShoulder: ") + given.expected + ">")) << given.flags << ' ' << given.index;
    }
}

TEST_F(JobHeader, line_ends_inside_a_text_do_not_end_the_line) {
    copyText(config.materialName, TEXT("a\r\nb\tc"));
    EXPECT_TRUE(hasLine(headerOf(config), "<MaterialName: a__b_c>"));
}

TEST_F(JobHeader, the_bitmap_section_is_opened_without_a_line_end) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    EXPECT_TRUE(bytesOf(writer).ends_with("<EndGroup: Header>\r\n<BegGroup: Bitmap>\r\n<STBmp: 0;0>"));
}

TEST_F(JobHeader, a_job_without_a_bitmap_section_ends_with_the_header) {
    config.vectorJob = 1;
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    EXPECT_TRUE(bytesOf(writer).ends_with("<EndGroup: Header>\r\n"));
}

TEST_F(JobHeader, logs_flags_shoulder_and_name) {
    config.files.jobApplicationFlags = 6;
    config.shoulderIndex = 2;
    headerOf(config);
    EXPECT_TRUE(logged("WriteHeader, PKConfig-Flags=6, usShoulder=2"));
    EXPECT_TRUE(logged("WriteHeader, JobName=Plan"));
}

TEST_F(JobHeader, without_a_name_nothing_is_written) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    EXPECT_TRUE(writer.WriteHeader());
    EXPECT_TRUE(logged("!!! Error BuildSpoolFile"));
    EXPECT_EQ(spoolFiles(), Strings{});
    EXPECT_FALSE(writer.WriteVectorSection());
}

TEST_F(JobHeader, a_file_that_cannot_be_made_is_reported_and_every_later_step_fails_by_itself) {
    makeFolder(inSpool(TEXT("Plan.tsa")));
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    EXPECT_TRUE(writer.WriteHeader());
    EXPECT_TRUE(logged("!!! Error Open SpoolFile dwError=5"));
    writer.CreateBitmap(3);
    EXPECT_TRUE(logged("!!! CreateBitmap Fehler"));
    EXPECT_TRUE(writer.WriteVectorSection());
    std::int32_t x = 1;
    EXPECT_TRUE(writer.WritePolygon(&x, &x, 1, 0, false));
    EXPECT_TRUE(logged("!!! Error WritePolygon"));
    EXPECT_TRUE(writer.WriteBezier(&x, &x, 1, 0));
    EXPECT_TRUE(logged("!!! Error WriteBezier"));
    EXPECT_TRUE(writer.WriteArc({}, 0));
    EXPECT_TRUE(logged("!!! Error WriteArc"));
    const std::string page(8, '\0');
    EXPECT_FALSE(writer.WriteBitmap(reinterpret_cast<const std::uint8_t*>(page.data()), page.size()));
    EXPECT_FALSE(writer.WriteBitmapBand(reinterpret_cast<const std::uint8_t*>(page.data()), 8, 0));
    EXPECT_TRUE(writer.Complete());
    EXPECT_TRUE(logged("!!! Error renaming Tsf"));
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsa"});  // the folder that was there
}

// ---- measurement points ---------------------------------------------------------------------------------------------------

TEST(MeasurementPointMask, positions_beyond_the_mask_are_never_enabled) {
    std::array<std::uint8_t, 32> mask{};
    mask.fill(0xFF);
    EXPECT_FALSE(MeasurementPoints::isEnabled(mask, -1));
    EXPECT_FALSE(MeasurementPoints::isEnabled(mask, 256));
    EXPECT_TRUE(MeasurementPoints::isEnabled(mask, 0));
    EXPECT_TRUE(MeasurementPoints::isEnabled(mask, 255));
    mask = {};
    EXPECT_FALSE(MeasurementPoints::isEnabled(mask, 9));
    mask[1] = 2;
    EXPECT_TRUE(MeasurementPoints::isEnabled(mask, 9));
    EXPECT_FALSE(MeasurementPoints::isEnabled(mask, 8));
}

TEST_F(JobHeader, diagnostic_group_is_written_in_mode_1_alone) {
    for (const WORD mode : {WORD{0}, WORD{1}, WORD{2}}) {
        config.diagnostic.enabled = mode;
        CSpoolFile writer;
        writer.SetPrinterConfig(&config);
        writer.SetJobName(TEXT("Plan"));
        writer.WriteHeader();
        const bool has = bytesOf(writer).find(
                             "<EndGroup: Header>\r\n<BegGroup: Diagnostic>\r\n<Version: v0.1>\r\n<Type: DIAG1>\r\n<EndGroup: "
                             "Diagnostic>\r\n<BegGroup: Bitmap>") != std::string::npos;
        EXPECT_EQ(has, mode == 1) << mode;
        EXPECT_EQ(hasKeyword(bytesOf(writer), "BegGroup: Diagnostic"), mode == 1) << mode;
    }
}

TEST_F(JobHeader, a_measurement_point_without_a_number_is_reported_and_left_out) {
    config.diagnostic.enabled = 1;
    enablePoint(config, 0);
    writeBytes(CMvConfig().diagnosticsFile(), "<MeasurementPoints><MeasurementPoint Identifier=\"none\"/></MeasurementPoints>");
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    const DebugCapture debug;
    writer.WriteHeader();
    EXPECT_EQ(debug.count("CMvString::asUnsignedInt, Error parameter"), 1U);
    EXPECT_FALSE(hasKeyword(bytesOf(writer), "MeasurePoint:"));
}

TEST_F(JobHeader, measurement_points_go_by_position_and_print_their_number) {
    config.diagnostic.enabled = 1;
    for (const int k : {0, 2, 3, 4, 5, 6, 9}) enablePoint(config, k);
    writeBytes(CMvConfig().diagnosticsFile(),
               "<MeasurementPoints>"
               "<MeasurementPoint ID=\"17\" Identifier=\"Laser power\"/>"
               "<MeasurementPoint ID=\"18\" Identifier=\"off\"/>"
               "<MeasurementPoint ID=\"3\" Identifier=\"Lid\"/>"
               "<MeasurementPoint Identifier=\"no number\"/>"
               "<MeasurementPoint ID=\"20\"/>"
               "<MeasurementPoint ID=\"x5\" Identifier=\"bad number\"/>"
               "<MeasurementPoint ID=\"0\" Identifier=\"zero\"/>"
               "<MeasurementPoint ID=\"21\" Identifier=\"off\"/>"
               "</MeasurementPoints>");
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    EXPECT_NE(bytesOf(writer).find("<Type: DIAG1>\r\n<MeasurePoint: 17; 1; Laser power>\r\n<MeasurePoint: 3; 1; Lid>\r\n<MeasurePoint: 0; "
                                   "1; zero>\r\n<EndGroup: Diagnostic>\r\n"),
              std::string::npos)
        << bytesOf(writer);
}

TEST_F(JobHeader, measurement_points_come_from_the_configuration_when_there_is_no_diagnostics_file) {
    config.diagnostic.enabled = 1;
    enablePoint(config, 0);
    writeBytes(CMvConfig().configurationFile(),
               "<MeasurementPoints><MeasurementPoint ID=\"1\" Identifier=\"Configured\"/></MeasurementPoints>");
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    EXPECT_TRUE(hasLine(bytesOf(writer), "<MeasurePoint: 1; 1; Configured>"));
    writeBytes(CMvConfig().diagnosticsFile(),
               "<MeasurementPoints><MeasurementPoint ID=\"2\" Identifier=\"Diagnostics\"/></MeasurementPoints>");
    writer.WriteHeader();
    EXPECT_TRUE(hasLine(bytesOf(writer), "<MeasurePoint: 2; 1; Diagnostics>"));
    EXPECT_FALSE(hasLine(bytesOf(writer), "<MeasurePoint: 1; 1; Configured>"));
}

TEST_F(JobHeader, no_more_than_256_measurement_points_are_walked) {
    config.diagnostic.enabled = 1;
    std::fill(std::begin(config.diagnostic.signals), std::end(config.diagnostic.signals), BYTE{0xFF});
    std::string document = "<MeasurementPoints>";
    for (int i = 0; i < 300; ++i) document += "<MeasurementPoint ID=\"" + std::to_string(i) + "\" Identifier=\"p\"/>";
    writeBytes(CMvConfig().diagnosticsFile(), document + "</MeasurementPoints>");
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    EXPECT_TRUE(hasLine(bytesOf(writer), "<MeasurePoint: 255; 1; p>"));
    EXPECT_FALSE(hasLine(bytesOf(writer), "<MeasurePoint: 256; 1; p>"));
}

}  // namespace morvil::test
