// halftone_bench.cpp - halftoning of an 8-bit page, against a memory copy of the same page in the same run:
//   halftone_copy             the memory copy
//   halftone/METHOD/LEVEL     page to one bit, with plain loops, registers of 128 bits and of 256 bits (where the processor has them);
//                             counters: ns for each pixel, and `copies`, the time in copies of the page. A copy is made beside each
//                             run, so that both meet the same machine; the quickest of each counts
// To hold, in copies, with 128 and 256 bits: ordered 2.5 and 1.5, Floyd-Steinberg 6 and 3, Jarvis and Stucki 7 and 4.5, Burkes 5 and
// 3.5. The page is 600 x 400 mm at 1000 dpi, 372 million pixels; MORVIL_BENCH_ROWS in the environment takes fewer rows of it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "raster/CxImage.h"

namespace morvil::bench {

namespace {

constexpr std::uint32_t kWidth = 23623;
constexpr std::uint32_t kRowBytes = 23624;

std::uint32_t rows() {
    const char* const wanted = std::getenv("MORVIL_BENCH_ROWS");
    return wanted == nullptr ? 15749 : static_cast<std::uint32_t>(std::clamp(std::atoi(wanted), 1, 15749));
}

// A motif of edges, ramps and noise, repeated over the page; and room for its copy.
struct Page {
    std::vector<std::uint8_t> pixels;
    std::vector<std::uint8_t> copy;
    std::vector<std::uint8_t> bits;  // beside the page, so that each run finds the same one

    Page() : pixels(std::size_t{kRowBytes} * rows()), copy(pixels.size()), bits(pixels.size() / 7) {
        constexpr std::size_t kMotifBytes = std::size_t{kRowBytes} * 192;
        std::uint32_t noise = 1;
        for (std::size_t i = 0; i < std::min(kMotifBytes, pixels.size()); ++i) {
            noise = noise * 1664525 + 1013904223;
            const std::size_t x = i % kRowBytes;
            const std::size_t y = i / kRowBytes;
            pixels[i] = static_cast<std::uint8_t>((x / 64 + y / 64) % 3 == 0 ? x / 8 : (y / 4) ^ (noise >> 27));
        }
        for (std::size_t at = kMotifBytes; at < pixels.size(); at += kMotifBytes) {
            std::memcpy(pixels.data() + at, pixels.data(), std::min(kMotifBytes, pixels.size() - at));
        }
        makeCopy();
    }
    void makeCopy() {
        std::memcpy(copy.data(), pixels.data(), pixels.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
};

double seconds(auto&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double pixelCount() { return static_cast<double>(kWidth) * rows(); }

void halftone_copy(benchmark::State& state) {
    Page page;
    double best = std::numeric_limits<double>::max();
    for (auto unused : state) {
        const double taken = seconds([&] { page.makeCopy(); });
        state.SetIterationTime(taken);
        best = std::min(best, taken);
    }
    state.counters["ns_per_pixel"] = best * 1e9 / pixelCount();
}
BENCHMARK(halftone_copy)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

constexpr unsigned kOrdered = 100;  // and the pattern size; others are methods of CxImage::Dither

void halftone(benchmark::State& state, unsigned method, CpuLevel level) {
    if (level != CpuLevel::Plain && wideHalftone(level) == nullptr) {
        state.SkipWithError("this processor has no such registers");
        return;
    }
    Page page;
    double best = std::numeric_limits<double>::max();
    double bestCopy = best;
    for (auto unused : state) {
        bestCopy = std::min(bestCopy, seconds([&] { page.makeCopy(); }));
        CxImage image;
        image.SetCpuLevel(level);
        const double taken = seconds([&] {
            image.AttachArray(page.pixels.data(), kWidth, rows(), 8, kRowBytes, page.bits.data());
            const bool done = method < kOrdered ? image.Dither(method) : image.DitherOrdered(method - kOrdered);
            if (!done) state.SkipWithError("not halftoned");
        });
        state.SetIterationTime(taken);
        best = std::min(best, taken);
    }
    state.counters["ns_per_pixel"] = best * 1e9 / pixelCount();
    state.counters["copies"] = best / bestCopy;
}

struct Method {
    const char* name;
    unsigned number;
};
constexpr Method kMethods[] = {{"ordered2x2", kOrdered}, {"ordered4x4", kOrdered + 2}, {"ordered8x8", kOrdered + 1}, {"FloydSteinberg", 0},
                               {"Jarvis", 4},            {"Stucki", 3},                {"Burkes", 2},                {"Sierra", 5},
                               {"StevensonArce", 6}};
struct Level {
    const char* name;
    CpuLevel level;
    int iterations;
};
constexpr Level kLevels[] = {{"plain", CpuLevel::Plain, 1}, {"128bit", CpuLevel::Wide128, 5}, {"256bit", CpuLevel::Wide256, 5}};

const bool kRegistered = [] {
    for (const Level& level : kLevels) {
        for (const Method& method : kMethods) {
            if (level.level != CpuLevel::Plain && (method.number == 5 || method.number == 6)) continue;  // plain alone
            const std::string name = std::string("halftone/") + method.name + "/" + level.name;
            benchmark::RegisterBenchmark(name.c_str(), halftone, method.number, level.level)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->Iterations(level.iterations);
        }
    }
    return true;
}();

}  // namespace

}  // namespace morvil::bench
