// page_bench.cpp - whole pages and the log:
//   page_600x400mm_1000dpi   an unbanded 8-bit page of 23,622 x 15,748 pixels from the start of the document to the renamed job
//                            file; the counter peak_above_surface_MB is the process's peak memory less the surface
//   page_600x400mm_1000dpi_halftoned  the same page reduced to one bit by Floyd-Steinberg before it is stored
//   log_switched_off         a log call while logging is off
// To hold: peak memory of the page at most the surface plus 64 MB.
#include <benchmark/benchmark.h>

#include <cstring>
#include <fstream>
#include <string>

#include "Workplace.h"
#include "driver/State.h"
#include "driver/log/Log.h"
#include "engine/Document.h"
#include "engine/EngineState.h"

namespace morvil::bench {

namespace {

constexpr double kMegabyte = 1024.0 * 1024.0;

// From now on the process's peak memory counts afresh, so that benchmarks before do not show.
void forgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

double peakMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0.0;
        if (word == "VmHWM:" && status >> kilobytes) return kilobytes / 1024.0;
    }
    return 0.0;
}

// A frame to cut and a filled field.
class Drawing : public engine::PageSource {
  public:
    void play(engine::Canvas& canvas) override {
        engine::Path frame;
        const FIX right = (canvas.pageSize().cx - 10) * engine::kFixOne;
        const FIX bottom = (canvas.pageSize().cy - 10) * engine::kFixOne;
        frame.moveTo({160, 160});
        frame.lineTo({right, 160});
        frame.lineTo({right, bottom});
        frame.lineTo({160, bottom});
        frame.close();
        canvas.strokePath(frame, engine::Pen{}, XFORM{1, 0, 0, 1, 0, 0}, 13);
        engine::Brush grey;
        grey.colour = 0x808080;
        canvas.fillPath(frame, grey, engine::FillMode::Alternate, 13);
    }
};

// The device mode of a page with this configuration: public part, 12 bytes, the configuration, 24 bytes.
std::vector<std::uint8_t> devmodeOf(const ConfigurationRecord& record) {
    DEVMODEW mode{};
    mode.dmSize = sizeof(DEVMODEW);
    mode.dmDriverExtra = 1788;
    std::vector<std::uint8_t> block(sizeof(mode) + 1788U);
    std::memcpy(block.data(), &mode, sizeof(mode));
    std::memcpy(block.data() + sizeof(mode) + 12, &record, sizeof(record));
    return block;
}

void printLargePage(benchmark::State& run, DWORD flags) {
    forgetPeak();
    Workplace place;
    ConfigurationRecord& record = place.configuration;
    record.processMode = kModeRelief;
    record.flags |= flags;
    record.halftone.algorithm = 3;
    record.resolution = 1000;
    record.size.width = 600.0F;
    record.size.height = 400.0F;
    record.size.pixelWidth = 23623;
    record.size.pixelHeight = 15749;
    record.size.takeFromApplication = 0;
    engine::PrintRequest request;
    request.enableDriver = &DrvEnableDriver;
    request.printerName = TEXT("Morvil");
    request.documentName = TEXT("Page");
    request.pages.push_back({std::make_shared<Drawing>(), devmodeOf(record)});
    for (auto step : run) {
        const engine::PrintReport report = engine::printDocument(request);
        if (report.status != engine::PrintStatus::Done) run.SkipWithError(report.reason.c_str());
    }
    const double surface = 23624.0 * 15749.0 / kMegabyte;
    run.counters["surface_MB"] = surface;
    run.counters["peak_above_surface_MB"] = peakMegabytes() - surface;
    resetState();
    engine::resetEngineState();
}

void page_600x400mm_1000dpi(benchmark::State& run) { printLargePage(run, 0); }
BENCHMARK(page_600x400mm_1000dpi)->Unit(benchmark::kMillisecond)->Iterations(1);

void page_600x400mm_1000dpi_halftoned(benchmark::State& run) { printLargePage(run, kHalftoningBit); }
BENCHMARK(page_600x400mm_1000dpi_halftoned)->Unit(benchmark::kMillisecond)->Iterations(1);

void log_switched_off(benchmark::State& run) {
    const LoggingBlock off{};
    logState().settings = &off;
    int x = 0;
    for (auto step : run) {
        benchmark::DoNotOptimize(++x);
        logMorvil(1, kInformation, TEXT("DrvStrokePath cStyle=%d"), x, kLogEnd);
    }
    logState().settings = nullptr;
}
BENCHMARK(log_switched_off);

}  // namespace

}  // namespace morvil::bench
