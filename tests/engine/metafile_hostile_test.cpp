// Whole metafiles, good and spoiled: every kind of record that real files hold is played, and no change of bytes does harm.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>

#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

using engine::Metafile;
using engine::MetafileError;

std::vector<std::uint8_t> readFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::filesystem::path> metafilesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> found;
    if (!std::filesystem::is_directory(folder)) return found;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".emf") found.push_back(entry.path());
    }
    std::ranges::sort(found);
    return found;
}

// The project's own drawings, and metafiles from elsewhere where they lie beside the project.
std::vector<std::filesystem::path> ownFiles() { return metafilesIn(MORVIL_SAMPLES); }
std::vector<std::filesystem::path> foreignFiles() { return metafilesIn(std::filesystem::path(MORVIL_SAMPLES) / "../../shared/emf"); }
std::vector<std::filesystem::path> allFiles() {
    auto files = ownFiles();
    for (const auto& file : foreignFiles()) files.push_back(file);
    return files;
}

struct Outcome {
    std::size_t calls = 0;
    std::map<ULONG, ULONG> skipped;
    std::optional<MetafileError> damage;
};

Outcome playFile(std::shared_ptr<Metafile> metafile, LONG size) {
    engine::MetafilePage page(std::move(metafile), {0, 0, size - 1, size - 1});
    RecordingCanvas canvas({size, size});
    page.play(canvas);
    return {canvas.calls.size(), page.skipped(), page.damage()};
}

void expectPlayedWhole(const std::vector<std::filesystem::path>& files) {
    for (const auto& file : files) {
        MetafileError error;
        auto metafile = Metafile::parse(readFile(file), error);
        ASSERT_NE(metafile, nullptr) << file << ": " << error.reason;
        const Outcome outcome = playFile(metafile, 800);
        EXPECT_GT(outcome.calls, 0U) << file;
        EXPECT_FALSE(outcome.damage) << file << ": " << outcome.damage->reason;
        for (const auto& [type, count] : outcome.skipped)
            EXPECT_EQ(type, engine::emr::kEXTFLOODFILL) << file << ": " << engine::recordName(type);
    }
}

TEST(MetafileFiles, ownSamples_arePlayedWhole) {
    ASSERT_FALSE(ownFiles().empty());
    expectPlayedWhole(ownFiles());
}

TEST(MetafileFiles, foreignFiles_arePlayedWhole) {
    if (foreignFiles().empty()) GTEST_SKIP() << "no metafiles from elsewhere beside the project";
    expectPlayedWhole(foreignFiles());
}

TEST(MetafileFiles, cutAnywhere_areRefused) {
    for (const auto& file : allFiles()) {
        const auto bytes = readFile(file);
        const std::size_t step = std::max<std::size_t>(1, bytes.size() / 400);
        for (std::size_t length = 0; length < bytes.size(); length += step) {
            MetafileError error;
            EXPECT_EQ(Metafile::parse({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}, error), nullptr)
                << file << ' ' << length;
            EXPECT_FALSE(error.reason.empty());
            EXPECT_LE(error.position, length);
        }
    }
}

// Bytes of single records overwritten: the chain stays whole, or the file is refused; either way the call comes back.
TEST(MetafileFiles, spoiledBytes_doNoHarm) {
    std::mt19937 random(20);
    const std::uint32_t values[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFF, 0x7F800000, 100};
    for (const auto& file : ownFiles()) {
        const auto bytes = readFile(file);
        for (int round = 0; round < 25; ++round) {
            auto spoiled = bytes;
            for (int i = 0; i < 12; ++i) {
                const std::size_t at = 108 + random() % (spoiled.size() - 112) / 4 * 4;
                const std::uint32_t value = values[random() % std::size(values)];
                for (std::size_t k = 0; k < 4; ++k) spoiled[at + k] = static_cast<std::uint8_t>(value >> (8 * k));
            }
            MetafileError error;
            auto metafile = Metafile::parse(std::move(spoiled), error);
            if (metafile) playFile(std::move(metafile), 100);
        }
    }
}

}  // namespace
}  // namespace morvil::test
