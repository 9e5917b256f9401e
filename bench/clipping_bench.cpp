// clipping_bench.cpp - clipping an outline to a job of 24,000 x 16,000 pixels:
//   clip_inside/N    N points inside the job: only checked and split
//   clip_crossing/N  every second point outside: two crossings for each segment, a duplicate test for each crossing
// To hold: the cost of a point does not grow with the number of points.
#include <benchmark/benchmark.h>

#include <vector>

#include "jobfile/MvPolygonClipping.h"

namespace morvil::bench {

namespace {

constexpr std::int32_t kWidth = 24000;
constexpr std::int32_t kHeight = 16000;

struct Outline {
    std::vector<std::int32_t> xs;
    std::vector<std::int32_t> ys;
};

Outline outline(std::int64_t points, bool crossing) {
    Outline out;
    for (std::int64_t i = 0; i < points; ++i) {
        const auto step = static_cast<std::int32_t>(i);
        out.xs.push_back(crossing && i % 2 == 1 ? kWidth + 100 + step % 977 : 100 + step % 7919);
        out.ys.push_back(step % kHeight);
    }
    return out;
}

void clip(benchmark::State& state, bool crossing) {
    const Outline given = outline(state.range(0), crossing);
    MvPolygonClipping clipper;
    for ([[maybe_unused]] auto _ : state) {
        clipper.setJobArea(kWidth, kHeight);
        clipper.setPoints(given.xs.data(), given.ys.data(), static_cast<std::uint32_t>(given.xs.size()));
        benchmark::DoNotOptimize(clipper.getCntPolygons());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void clip_inside(benchmark::State& state) { clip(state, false); }
void clip_crossing(benchmark::State& state) { clip(state, true); }
BENCHMARK(clip_inside)->Arg(5)->Arg(1000)->Arg(100000);
BENCHMARK(clip_crossing)->Arg(5)->Arg(1000)->Arg(100000);

}  // namespace

}  // namespace morvil::bench
