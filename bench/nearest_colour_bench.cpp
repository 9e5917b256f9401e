// nearest_colour_bench.cpp - palette look-ups of the bitmap store, 256 entries.
//   NearestColour/Repeated   the colour of the last look-up again: answered without a search
//   NearestColour/New        a colour other than the last: the whole table is searched
//   NearestColour/PlainNew   the same search with a single-precision root for each entry, for comparison
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <random>

#include "raster/cColorTable.h"

namespace {

using namespace morvil;

std::array<std::uint32_t, 4096> randomColours() {
    std::mt19937 random(3);
    std::array<std::uint32_t, 4096> colours{};
    for (std::uint32_t& colour : colours) colour = static_cast<std::uint32_t>(random() & kWhite);
    return colours;
}

float distance(std::uint32_t a, std::uint32_t b) {
    float sum = 0.0F;
    for (const unsigned shift : {0U, 8U, 16U}) {
        const float difference = static_cast<float>(a >> shift & 0xFFU) - static_cast<float>(b >> shift & 0xFFU);
        sum += difference * difference;
    }
    return std::sqrt(sum);
}

void repeated(benchmark::State& state) {
    cColorTable table;
    table.BuildTable(kGreyRamp);
    std::uint32_t colour = 0x336699;
    for (auto unused : state) {
        benchmark::DoNotOptimize(colour);
        benchmark::DoNotOptimize(table.getNearestIndex(colour));
    }
}

void newColours(benchmark::State& state) {
    cColorTable table;
    table.BuildTable(kGreyRamp);
    const auto colours = randomColours();
    std::size_t i = 0;
    for (auto unused : state) benchmark::DoNotOptimize(table.getNearestIndex(colours[i++ % colours.size()]));
}

void plainNewColours(benchmark::State& state) {
    cColorTable table;
    table.BuildTable(kGreyRamp);
    const auto colours = randomColours();
    std::size_t i = 0;
    for (auto unused : state) {
        const std::uint32_t colour = colours[i++ % colours.size()];
        float best = 9999.0F;
        int index = -1;
        for (int entry = 0; const std::uint32_t candidate : table.entries()) {
            const float at = distance(candidate, colour);
            if (at < best) {
                best = at;
                index = entry;
            }
            ++entry;
        }
        benchmark::DoNotOptimize(index);
    }
}

BENCHMARK(repeated)->Name("NearestColour/Repeated");
BENCHMARK(newColours)->Name("NearestColour/New");
BENCHMARK(plainNewColours)->Name("NearestColour/PlainNew");

}  // namespace
