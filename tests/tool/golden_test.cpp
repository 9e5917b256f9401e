// Whole job files, byte for byte. The golden jobs lie in tests/data/golden; each was looked at (morvil preview) before it was
// put there. They hold no text, so they do not hang on the fonts of a machine. To make them anew after a change that is meant:
//     MORVIL_WRITE_GOLDEN=1 build/native/tests/test_tool --gtest_filter='*Golden*'
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

constexpr const char* kResolution = "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5";  // 125 dpi keeps them small
constexpr const char* kMode = "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=";

struct GoldenCase {
    const char* name;
    const char* file;
    std::vector<std::string> settings;
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
    arguments.push_back(sample(golden.file));
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

const GoldenCase kGolden[] = {
    {"nameplate", "nameplate.emf", {}},
    {"bracket", "bracket.emf", {}},
    {"photoplate", "photoplate.emf", {}},
    {"pens", "pens.emf", {}},
    {"bracket-relief", "bracket.emf", {std::string(kMode) + "4000"}},
    {"bracket-layer", "bracket.emf", {std::string(kMode) + "5000"}},
    {"bracket-stamp", "bracket.emf", {std::string(kMode) + "2000"}},
    {"bracket-vectors", "bracket.emf", {"PrinterDriver.Configuration.Print.Process.ProcessOption.VectorJob=1"}},
};
INSTANTIATE_TEST_SUITE_P(Jobs, Golden, testing::ValuesIn(kGolden), [](const auto& tested) {
    std::string name = tested.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
}  // namespace morvil::tool
