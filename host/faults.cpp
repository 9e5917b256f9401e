#include "host/faults.h"

#include <algorithm>
#include <cstdio>

#include "host/LoadedDriver.h"
#include "host/OpenHandles.h"

namespace morvil::host {

namespace {

// The first calls of a recording, and behind them what an engine still calls for a document that it gives up. Surface and
// instance are disabled with the player.
trace::Recording cutBehind(const trace::Recording& whole, std::size_t calls) {
    trace::Recording cut = whole;
    cut.events.resize(calls);
    const auto calledFor = [](const std::vector<trace::Event>& events, ULONG function) {
        return std::find_if(events.begin(), events.end(), [function](const trace::Event& event) { return event.function == function; });
    };
    const bool open = calledFor(cut.events, INDEX_DrvStartDoc) != cut.events.end() && calledFor(cut.events, INDEX_DrvEndDoc) == cut.events.end();
    const auto end = calledFor(whole.events, INDEX_DrvEndDoc);
    if (!open || end == whole.events.end()) return cut;
    cut.events.push_back(*end);
    cut.events.back().numbers.front() = ED_ABORTDOC;
    return cut;
}

class Trials {
  public:
    Trials(const LoadedDriver& driver, const trace::Recording& recording) : m_driver(driver), m_recording(recording) {}

    void cut() {
        for (std::size_t n = 0; n < m_recording.events.size(); ++n) attempt(cutBehind(m_recording, n), {}, "cut behind call " + std::to_string(n));
    }
    void abort(std::size_t questions) {
        for (std::size_t n = 0; n < questions; ++n) attempt(m_recording, {.abortFrom = n}, "aborted at question " + std::to_string(n + 1));
    }
    void refuse(std::size_t services) {
        for (std::size_t n = 0; n < services; ++n) attempt(m_recording, {.refused = n}, "refused service " + std::to_string(n + 1));
    }
    [[nodiscard]] const std::string& failure() const { return m_failure; }

  private:
    // What the driver answers is its own affair here; that it gives back what it took is not.
    void attempt(const trace::Recording& recording, const Mishap& mishap, const std::string& what) {
        if (!m_failure.empty()) return;
        const std::size_t leftOver = m_driver.attempt(recording, mishap).leftOver;
        if (leftOver != 0) m_failure = what + ": " + std::to_string(leftOver) + " surfaces, palettes and locks were not given back";
    }

    const LoadedDriver& m_driver;
    const trace::Recording& m_recording;
    std::string m_failure;
};

}  // namespace

std::string faults(const std::filesystem::path& driverFile, const trace::Recording& recording) {
    const LoadedDriver driver(driverFile);
    if (std::string reason = driver.play(recording); !reason.empty()) return reason;
    const Attempt whole = driver.attempt(recording, {});
    Trials trials(driver, recording);
    std::size_t before = 0;
    for (int round = 1; round <= 2; ++round) {
        before = openHandles();  // in the first round the system opens some for good
        trials.cut();
        trials.abort(whole.abortQuestions);
        trials.refuse(whole.services);
    }
    const std::size_t after = openHandles();
    if (!trials.failure().empty()) return trials.failure();
    if (after > before) return std::to_string(after - before) + " handles were not closed";
    if (std::string reason = driver.play(recording); !reason.empty()) return "behind all that: " + reason;
    std::printf("cut %zu, aborted %zu, refused %zu\n", recording.events.size(), whole.abortQuestions, whole.services);
    return {};
}

}  // namespace morvil::host
