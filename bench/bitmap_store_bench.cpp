// bitmap_store_bench.cpp - operations of the bitmap store on a 4000 x 4000 page of 8 bits in a file, in bytes per second; for
// each, the bare read or write of the same bytes in blocks of 1 MB bounds what is possible.
//   BitmapStore/Read, /Write  the bare calls
//   BitmapStore/Fill          the page filled with white
//   BitmapStore/BoundingBox   of a page with content in every row
//   BitmapStore/UsedIndices   of that page in memory, 200 of the 256 indices in use
//   BitmapStore/ReadPart, /WritePart  all but one column of the page
//   BitmapStore/Border        the edges looked at, nothing to complete
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "jobfile/BorderCompletion.h"
#include "platform/posix/HostPath.h"
#include "raster/CBM.h"

namespace {

using namespace morvil;

constexpr std::uint32_t kSide = 4000;
constexpr std::size_t kBlock = std::size_t{1} << 20;

class BitmapStore : public benchmark::Fixture {
  public:
    void SetUp(benchmark::State&) override {
        const std::filesystem::path file = std::filesystem::temp_directory_path() / "morvil-bench-page.bmp";
        m_path = windowsPathOf(file.string());
        stream.open(m_path.c_str(), OpenMode::Create);
        store.setStream(&stream);
        store.CreateBitmap(kGreyRamp, kSide, kSide);
        image.assign(store.imageSize(), 255);
        for (std::size_t row = 0; row < kSide; ++row) {
            for (std::size_t i = 500; i < 1500; ++i) image[row * store.stride() + i + row / 8] = static_cast<std::uint8_t>(i * row % 200);
        }
        store.WriteBitmap(image.data());
    }
    void TearDown(benchmark::State& state) override {
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * store.imageSize());
        stream.close();
        DeleteFileW(m_path.c_str());
    }

    FileStream stream;
    CBM store;
    std::vector<std::uint8_t> image;

  private:
    WString m_path;
};

BENCHMARK_F(BitmapStore, Read)(benchmark::State& state) {
    std::vector<std::uint8_t> block(kBlock);
    for (auto unused : state) {
        stream.seek(store.pixelPosition());
        while (stream.read(block) != 0) benchmark::DoNotOptimize(block.data());
    }
}

BENCHMARK_F(BitmapStore, Write)(benchmark::State& state) {
    for (auto unused : state) {
        stream.seek(store.pixelPosition());
        for (std::size_t at = 0; at < image.size(); at += kBlock)
            stream.write(std::span(image).subspan(at, std::min(kBlock, image.size() - at)));
    }
}

BENCHMARK_F(BitmapStore, Fill)(benchmark::State& state) {
    for (auto unused : state) store.Fill(kWhite);
}

BENCHMARK_F(BitmapStore, BoundingBox)(benchmark::State& state) {
    for (auto unused : state) {
        ContentBox box{};
        store.GetBoundingBox(box);
        benchmark::DoNotOptimize(box);
    }
}

BENCHMARK_F(BitmapStore, UsedIndices)(benchmark::State& state) {
    std::vector<std::uint8_t> list;
    for (auto unused : state) {
        store.GetUsedIndices8BPP(image.data(), list);
        benchmark::DoNotOptimize(list.data());
    }
}

BENCHMARK_F(BitmapStore, ReadPart)(benchmark::State& state) {
    std::uint32_t firstBit = 0;
    for (auto unused : state) store.ReadBitmapPart8BPP(image.data(), firstBit, kSide - 1, kSide, 1, 0);
}

BENCHMARK_F(BitmapStore, WritePart)(benchmark::State& state) {
    for (auto unused : state) store.WriteBitmapPart8BPP(image.data(), 0, kSide - 1, kSide, 1, 0);
}

BENCHMARK_F(BitmapStore, Border)(benchmark::State& state) {
    for (auto unused : state) BorderCompletion(store).run();
}

}  // namespace
