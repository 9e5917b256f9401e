// Whole job files, byte for byte. The golden jobs lie in tests/data/golden; each was looked at (morvil preview) before it was
// put there. They hold no text, so they do not hang on the fonts of a machine. To make them anew after a change that is meant:
//     MORVIL_WRITE_GOLDEN=1 build/native/tests/test_tool --gtest_filter='*Golden*'
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "config/CMvConfig.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

constexpr const char* kResolution = "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5";  // 125 dpi keeps them small
constexpr const char* kMode = "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=";

constexpr const char* kFirstFlag = "PrinterDriver.Flags.FL_1=";
constexpr const char* kMargin = "PrinterDriver.BoundingBox.Offset.";
constexpr const char* kOption = "PrinterDriver.Configuration.Print.Process.ProcessOption.";

// A file of the partner programs that the job depends on.
struct PartnerFile {
    const WCHAR* (CMvConfig::*path)() const;  // the file, or with a name the folder that it lies in
    const WCHAR* name;
    const char* bytes;
};

struct GoldenCase {
    const char* name;
    const char* file;
    std::vector<std::string> settings;
    std::vector<PartnerFile> files = {};
    bool halftone = false;
};

class Golden : public PrintFixture, public testing::WithParamInterface<GoldenCase> {};

std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_P(Golden, job_is_the_same_byte_for_byte) {
    const GoldenCase& golden = GetParam();
    std::vector<std::string> arguments{"--title", golden.name, "--quiet", "--set", kResolution};
    for (const std::string& setting : golden.settings) arguments.insert(arguments.end(), {"--set", setting});
    if (golden.halftone) arguments.push_back("--halftone");
    arguments.push_back(sample(golden.file));
    for (const PartnerFile& partner : golden.files) {
        const CMvConfig folders;
        const WString path = (folders.*partner.path)();
        test::writeBytes(partner.name == nullptr ? path : path + TEXT("\\") + partner.name, partner.bytes);
    }
    const Outcome run = print(arguments);
    ASSERT_EQ(run.status, kDone) << run.err;
    const std::string made = bytesOf(job(std::string(golden.name) + ".tsf"));
    const std::filesystem::path kept = std::filesystem::path(MORVIL_TEST_DATA) / "golden" / (std::string(golden.name) + ".tsf");
    if (std::getenv("MORVIL_WRITE_GOLDEN") != nullptr) {
        std::filesystem::create_directories(kept.parent_path());
        std::ofstream(kept, std::ios::binary) << made;
    }
    const std::string expected = bytesOf(kept);
    ASSERT_FALSE(expected.empty()) << kept;
    const auto difference = std::mismatch(made.begin(), made.end(), expected.begin(), expected.end());
    EXPECT_EQ(made.size(), expected.size());
    EXPECT_EQ(difference.first, made.end()) << "first difference at byte " << difference.first - made.begin() << " of " << kept;
}

constexpr const char* kCatalogue =
    "<MciColors Version=\"2.0\"><Colors>"
    "<Color ID=\"1\" Target=\"10\" Level=\"deep\" Red=\"0\" Green=\"0\" Blue=\"0\" Version=\"1.0\"><Name Lang=\"en\" value=\"black\"/></Color>"
    "<Color ID=\"2\" Target=\"20\" Level=\"half\" Red=\"20\" Green=\"40\" Blue=\"160\" Version=\"1.0\"><Name Lang=\"en-GB\" value=\"ocean\"/></Color>"
    "</Colors></MciColors>";
constexpr const char* kCustomerColours =
    "<MciColors Version=\"1.4\"><Colors>"
    "<Color ID=\"C1\" Target=\"30\" Level=\"flat\" Red=\"200\" Green=\"30\" Blue=\"30\" Version=\"1.0\"><Name Lang=\"en\" value=\"house red\"/></Color>"
    "</Colors></MciColors>";
constexpr const char* kTemplates =
    "[BDSIZETEMPLATE]\r\nSIZETEMPLATECOUNT=1\r\nSIZETEMPLATE[1].Name=Badge\r\nSIZETEMPLATE[1].Width=36\r\nSIZETEMPLATE[1].Height=24\r\n"
    "SIZETEMPLATE[1].MCI_ID=17\r\n";
constexpr const char* kMeasurementPoints =
    "<MeasurementPoints><MeasurementPoint ID=\"11\" Identifier=\"laser power\"/><MeasurementPoint ID=\"12\" Identifier=\"head speed\"/>"
    "<MeasurementPoint ID=\"13\" Identifier=\"table height\"/></MeasurementPoints>";
const std::vector<PartnerFile> kColourFiles{{&CMvConfig::jobApplicationFolder, TEXT("ColorsGaspen.xml"), kCatalogue},
                                            {&CMvConfig::jobApplicationFolder, TEXT("ColorsCustomer.xml"), kCustomerColours},
                                            {&CMvConfig::commonFiles, TEXT("MvTemplate.ini"), kTemplates}};
const std::string kShrink = std::string(kFirstFlag) + "MV_FL_SHRINK_TO_BOUNDING_BOX";

const std::string kPatternSize = "PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize=";

const GoldenCase kGolden[] = {
    {"nameplate", "nameplate.emf", {}},
    {"bracket", "bracket.emf", {}},
    {"photoplate", "photoplate.emf", {}},
    {"pens", "pens.emf", {}},
    {"bracket-relief", "bracket.emf", {std::string(kMode) + "4000"}},
    {"bracket-layer", "bracket.emf", {std::string(kMode) + "5000"}},
    {"bracket-stamp", "bracket.emf", {std::string(kMode) + "2000"}},
    {"bracket-vectors", "bracket.emf", {"PrinterDriver.Configuration.Print.Process.ProcessOption.VectorJob=1"}},
    {"colourstamp", "badge.emf", {std::string(kMode) + "3000"}, kColourFiles},
    {"colourstamp-shrunk", "badge.emf", {std::string(kMode) + "3000", kShrink, std::string(kMargin) + "Left=2"}, kColourFiles},
    {"shrunk", "badge.emf", {kShrink, std::string(kMargin) + "Left=5", std::string(kMargin) + "Top=10", std::string(kMargin) + "Right=15", std::string(kMargin) + "Bottom=20"}},
    {"shrunk-stamp", "badge.emf", {std::string(kMode) + "2000", kShrink}},
    {"shrunk-vectors", "badge.emf", {kShrink, std::string(kOption) + "VectorJob=1", std::string(kMargin) + "Top=3"}},
    {"mirrored-stamp", "badge.emf", {std::string(kMode) + "2000", std::string(kFirstFlag) + "MV_FL_IMAGEOP_FLIP_HORIZONTAL", std::string(kOption) + "Shoulder.Name=steep"}},
    {"grey-relief", "shades.emf", {std::string(kMode) + "4000"}},
    {"grey-layers", "shades.emf", {std::string(kMode) + "5000", std::string(kOption) + "Layers=7", std::string(kOption) + "ZAdjustment=1.25"}},
    {"rotary", "badge.emf", {std::string(kOption) + "Rotary.Enabled=1", std::string(kOption) + "Rotary.Diameter=42.5", std::string(kOption) + "Autoposition=1"}},
    {"diagnostic",
     "badge.emf",
     {"PrinterDriver.Diagnostic.Enable=1", "PrinterDriver.Diagnostic.Signals.FL_0=0", "PrinterDriver.Diagnostic.Signals.FL_1=2"},
     {{&CMvConfig::diagnosticsFile, nullptr, kMeasurementPoints}}},
    {"test1", "badge.emf", {std::string(kMode) + "6000"}, {}},
    {"test2", "badge.emf", {std::string(kMode) + "7000"}, {}},
    {"banded-test3", "badge.emf", {std::string(kMode) + "8000", std::string(kFirstFlag) + "MV_FL_BITMAP_BANDING"}},
    {"banded-halftone-test3", "badge.emf", {std::string(kMode) + "8000", std::string(kFirstFlag) + "MV_FL_BITMAP_BANDING"}, {}, true},
    {"halftone-standard", "shades.emf", {}, {}, true},
    {"halftone-test2", "shades.emf", {std::string(kMode) + "7000"}, {}, true},
    {"halftone-test3-4x4", "shades.emf", {std::string(kMode) + "8000", kPatternSize + "2"}, {}, true},
    {"halftone-test3-8x8", "shades.emf", {std::string(kMode) + "8000", kPatternSize + "1"}, {}, true},
    {"halftone-test4", "shades.emf", {std::string(kMode) + "9000"}, {}, true},
    {"halftone-test5", "shades.emf", {std::string(kMode) + "10000"}, {}, true},
    {"halftone-test6", "shades.emf", {std::string(kMode) + "11000"}, {}, true},
    {"halftone-test7", "shades.emf", {std::string(kMode) + "12000"}, {}, true},
};
INSTANTIATE_TEST_SUITE_P(Jobs, Golden, testing::ValuesIn(kGolden), [](const auto& tested) {
    std::string name = tested.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
}  // namespace morvil::tool
