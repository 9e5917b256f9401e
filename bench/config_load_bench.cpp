// config_load - what loading the configuration costs, against pugixml's parse of the same bytes.
//   PugixmlParse/N   pugixml parses the bytes from memory into a new document. Nothing is opened, locked or converted.
//   StoreLoad/N      a store that is there reads anew: is there a file of debug switches, lock, open, read, close, parse into the
//                    old document's memory, unlock.
//   ConfigReload/N   a configuration object that is there fills the record: StoreLoad, two ini files are asked whether they are as
//                    they were, and some fifty items are looked up and converted.
//   ConfigLoad/N     the same with a new object: it first looks for the shared folders (six questions to the system), opens the
//                    mutex (four), and begins with a document without memory.
// N stored configurations lie in the file beside the active one: 0, 20 and 200 are 2, 25 and 240 KB. The file lies in memory
// (/dev/shm) where the machine offers that.
// The counter times_pugixml is the processor time of a pass divided by that of a PugixmlParse, each the best of forty rounds that
// take turns; 5 is the limit. The calls of the system cost much the same for every file: lock, open, read, close and
// unlock alone take as long as four parses of the 2 KB. What runs beside the benchmark on the same core slows the parse
// down and the system's calls less, so a busy machine shows too small a figure.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "config/CPrinterConfig.h"
#include "config/CXml.h"
#include "platform/common/FileStream.h"
#include "platform/common/Format.h"
#include "platform/posix/HostState.h"

namespace {

using namespace morvil;
namespace fs = std::filesystem;

// A data root of its own with a configuration in it. The files lie in memory where the machine offers that.
class BenchHome {
  public:
    explicit BenchHome(int storedConfigurations) {
        const fs::path memory = "/dev/shm";
        std::string pattern = (fs::is_directory(memory) ? memory : fs::temp_directory_path()) / "morvil-bench-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_folder = pattern;
        resetHostState();
        hostState().home = m_folder;
        const ConfigurationRecord defaults = CPrinterConfig::defaultConfiguration();
        CPrinterConfig config;
        if (storedConfigurations > 0) config.setConfig(TEXT("Material_0"), defaults);
        config.setConfig(TEXT(""), defaults);
        if (storedConfigurations > 1) multiply(storedConfigurations);
        std::this_thread::sleep_for(std::chrono::milliseconds(200));  // a load finds files that somebody wrote some time ago
    }
    ~BenchHome() {
        resetHostState();
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    BenchHome(const BenchHome&) = delete;
    BenchHome& operator=(const BenchHome&) = delete;

  private:
    // Repeats the element of the first stored configuration under other names; storing them one by one would take long, as each
    // item that is stored writes the file.
    static void multiply(int count) {
        const WString path(CMvConfig().configurationFile());
        std::string text = textOf(path);
        const std::string closing = "</Material_0>\r\n";
        const std::size_t begin = text.rfind("\r\n", text.find("<Material_0>")) + 2;
        const std::size_t end = text.find(closing) + closing.size();
        const std::string element = text.substr(begin, end - begin);
        std::string others;
        for (int n = 1; n < count; ++n) {
            std::string other = element;
            const std::string name = "Material_" + std::to_string(n);
            other.replace(other.find("Material_0"), 10, name).replace(other.rfind("Material_0"), 10, name);
            others += other;
        }
        text.insert(end, others);
        FileStream file(path.c_str(), OpenMode::Create);
        if (!file.write(text)) throw std::runtime_error("the disk is full");
    }
    static std::string textOf(const WString& path) {
        FileStream file(path.c_str(), OpenMode::Read);
        const std::vector<std::uint8_t> bytes = file.readAll(std::uint64_t{1} << 30).value_or(std::vector<std::uint8_t>());
        return {bytes.begin(), bytes.end()};
    }

    fs::path m_folder;
};

std::vector<std::uint8_t> configurationBytes() {
    FileStream file(CMvConfig().configurationFile(), OpenMode::Read);
    return file.readAll(std::uint64_t{1} << 30).value_or(std::vector<std::uint8_t>());
}

void parseWithPugixml(const std::vector<std::uint8_t>& bytes) {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(bytes.data(), bytes.size());
    if (!result) throw std::runtime_error(result.description());
    benchmark::DoNotOptimize(document.first_child());
}

// Processor time of each of `passes` calls. The clock does not count while others run.
template <typename Pass>
double secondsOf(Pass pass, int passes) {
    const std::clock_t begin = std::clock();
    for (int i = 0; i < passes; ++i) pass();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC / passes;
}

// Runs `pass` for the benchmark, then rounds of it and of pugixml in turn: the ratio is that of the best round of each, so that
// what slows the machine down for a while slows both down.
template <typename Pass>
void measure(benchmark::State& state, Pass pass) {
    constexpr int kRounds = 40;
    for (auto _ : state) pass();
    const std::vector<std::uint8_t> bytes = configurationBytes();
    const int passes = static_cast<int>(std::max<std::size_t>(10, 5'000'000 / (10'000 + bytes.size())));
    double own = 1.0e9;
    double pugixml = 1.0e9;
    for (int round = 0; round < kRounds; ++round) {
        own = std::min(own, secondsOf(pass, passes));
        pugixml = std::min(pugixml, secondsOf([&] { parseWithPugixml(bytes); }, passes));
    }
    state.counters["file_bytes"] = static_cast<double>(bytes.size());
    state.counters["times_pugixml"] = own / pugixml;
}

void load(CPrinterConfig& config) {
    ConfigurationRecord record{};
    if (!config.getConfig(TEXT(""), record)) throw std::runtime_error("the load failed");
    benchmark::DoNotOptimize(record);
}

void BM_ConfigLoad(benchmark::State& state) {
    const BenchHome home(static_cast<int>(state.range(0)));
    measure(state, [] {
        CPrinterConfig config;
        load(config);
    });
}

void BM_ConfigReload(benchmark::State& state) {
    const BenchHome home(static_cast<int>(state.range(0)));
    CPrinterConfig config;
    measure(state, [&] { load(config); });
}

void BM_StoreLoad(benchmark::State& state) {
    const BenchHome home(static_cast<int>(state.range(0)));
    const CMvConfig folders;
    CXml store(folders.configurationFile());
    measure(state, [&] {
        if (!store.reload()) throw std::runtime_error("the load failed");
    });
}

void BM_PugixmlParse(benchmark::State& state) {
    const BenchHome home(static_cast<int>(state.range(0)));
    const std::vector<std::uint8_t> bytes = configurationBytes();
    measure(state, [&] { parseWithPugixml(bytes); });
}

BENCHMARK(BM_PugixmlParse)->Name("PugixmlParse")->Arg(0)->Arg(20)->Arg(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StoreLoad)->Name("StoreLoad")->Arg(0)->Arg(20)->Arg(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConfigReload)->Name("ConfigReload")->Arg(0)->Arg(20)->Arg(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConfigLoad)->Name("ConfigLoad")->Arg(0)->Arg(20)->Arg(200)->Unit(benchmark::kMicrosecond);

}  // namespace
