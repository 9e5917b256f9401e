// HalftoneRun.h - what the two kinds of halftoning share: where the one-bit rows go, and the run's progress and escape flag.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace morvil {

// One-bit rows; a set bit is white, behind the last pixel there are zeros. They may lie over the image that they are made from, at its
// beginning, and then each is written only after the rows of the image that it covers were read. The most significant bit of a byte is its leftmost pixel.
struct BitRows {
    std::uint8_t* rows;
    std::size_t rowBytes;

    [[nodiscard]] std::uint8_t* row(std::uint32_t y) const { return rows + std::size_t{y} * rowBytes; }
};

// Another thread may look at the progress or set the escape flag.
class HalftoneRun {
  public:
    void begin() {
        progress = 0;
        escape = false;
    }
    // The next row, or the first of the next rows; false when the run is to stop.
    bool enterRow(std::uint32_t row, std::uint32_t height) {
        progress.store(static_cast<int>(std::uint64_t{row} * 100 / height), std::memory_order_relaxed);
        return !escape.load(std::memory_order_relaxed);
    }

    std::atomic<int> progress = 0;  // percent
    std::atomic<bool> escape = false;
};

// How wide the registers are that halftoning uses; the results are the same.
enum class CpuLevel : std::uint8_t { Plain, Wide128, Wide256 };

}  // namespace morvil
