// strokes_bench.cpp - what a stroke costs on a job that already holds many:
//   stroke/1000/check:1   one polygon of 5 points on a job of 1,000 (10,000, 100,000) polygons, duplicate check on (off), colour
//                         matching on, logging off; the file complete on disk after each
//   duplicate/100000      a polygon that stands in the job already and is dropped
//   bare_append           open, append and close of the same bytes by the system's own calls, with nothing around it
//   stream_append         the same through the stream that the job writer uses
// To hold: stroke/100000 at most 1.5 times stroke/1000, and at most 5 times bare_append.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string>

#include "Workplace.h"
#include "jobfile/CSpoolFile.h"
#include "platform/common/FileStream.h"

namespace morvil::bench {

namespace {

constexpr std::uint32_t kPoints = 5;
constexpr int kStrokes = 20000;  // measured; few beside what the largest job holds

constexpr std::string_view kBytes =
    "<DrawPolygon: 5;255;0;0;10100;102;10600;102;10600;402;10100;402;10100;102>\r\n<EndGroup: DrawCommands>\r\n";

// A closed rectangle, another one for each number.
struct Rectangle {
    explicit Rectangle(std::int32_t number) {
        const std::int32_t x = 100 + number % 20000;
        const std::int32_t y = 100 + number / 20000;
        xs = {x, x + 500, x + 500, x, x};
        ys = {y, y, y + 300, y + 300, y};
    }
    std::array<std::int32_t, kPoints> xs{};
    std::array<std::int32_t, kPoints> ys{};
};

class Job {
  public:
    explicit Job(std::int64_t polygons) {
        m_place.configuration.size.pixelWidth = 24000;
        m_place.configuration.size.pixelHeight = 16000;
        writer.SetPrinterConfig(&m_place.configuration);
        writer.SetJobName(TEXT("Bench"));
        writer.WriteHeader();
        writer.CreateBitmap(1);
        writer.WriteVectorSection();
        for (std::int64_t i = 0; i < polygons; ++i) stroke(false);
    }
    bool stroke(bool check) { return write(m_next++, check); }
    bool write(std::int32_t number, bool check) {
        Rectangle rectangle(number);
        return writer.WritePolygon(rectangle.xs.data(), rectangle.ys.data(), kPoints, 0x0000FF, check);
    }

  private:
    Workplace m_place;
    std::int32_t m_next = 0;

  public:
    CSpoolFile writer;
};

void stroke(benchmark::State& state) {
    Job job(state.range(0));
    const bool check = state.range(1) != 0;
    if (!job.stroke(check)) state.SkipWithError("the first stroke was dropped");
    for ([[maybe_unused]] auto _ : state) {
        if (!job.stroke(check)) state.SkipWithError("a stroke was dropped");
    }
}
BENCHMARK(stroke)->ArgNames({"polygons", "check"})->ArgsProduct({{1000, 10000, 100000}, {0, 1}})->Iterations(kStrokes);

void duplicate(benchmark::State& state) {
    Job job(state.range(0));
    std::int32_t number = 0;
    for ([[maybe_unused]] auto _ : state) {
        if (job.write(number, true)) state.SkipWithError("a duplicate was written");
        number = (number + 7919) % static_cast<std::int32_t>(state.range(0));
    }
}
BENCHMARK(duplicate)->Arg(1000)->Arg(100000)->Iterations(kStrokes);

void bare_append(benchmark::State& state) {
    Job job(0);
    const std::string file = Workplace::hostPath(job.writer.jobFilePath()).string() + ".bare";
    for ([[maybe_unused]] auto _ : state) {
        const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
        if (::write(descriptor, kBytes.data(), kBytes.size()) != static_cast<ssize_t>(kBytes.size())) state.SkipWithError("the disk is full");
        ::close(descriptor);
    }
}
BENCHMARK(bare_append)->Iterations(kStrokes);

void stream_append(benchmark::State& state) {
    Job job(0);
    const WString file = WString(job.writer.jobFilePath()) + TEXT(".bare");
    for ([[maybe_unused]] auto _ : state) {
        FileStream stream(file.c_str(), OpenMode::Append);
        if (!stream.write(kBytes)) state.SkipWithError("the disk is full");
    }
}
BENCHMARK(stream_append)->Iterations(kStrokes);

}  // namespace

}  // namespace morvil::bench
