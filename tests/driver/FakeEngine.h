// FakeEngine.h - stands in for the graphics engine: grants or refuses what the driver asks for as the test says, and records
// every call. One at a time, reached by the engine services of this program.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace morvil::test {

struct BitmapRequest {
    SIZEL size;
    LONG rowBytes;
    ULONG format;
    FLONG flags;
};

struct PaletteRequest {
    ULONG mode;
    std::vector<ULONG> entries;
};

struct FakeSurface {
    SURFOBJ object{};
    std::vector<std::uint8_t> bits;
};

// A path as the engine hands it over.
struct PathRecord {
    FLONG flags;
    std::vector<POINTFIX> points;
};
struct FakePath : PATHOBJ {
    explicit FakePath(std::vector<PathRecord> pathRecords = {});
    std::vector<PathRecord> records;
    std::size_t next = 0;
    int walks = 0;
};
POINTFIX fixedPoint(int x, int y);

struct FakeBrush : BRUSHOBJ {
    explicit FakeBrush(ULONG rgb) : BRUSHOBJ{0, nullptr, 0}, colour(rgb) {}
    ULONG colour;
};

struct FakeTranslation : XLATEOBJ {
    FakeTranslation() : XLATEOBJ{} {}
    std::vector<ULONG> table;
    std::vector<ULONG> sourcePalette;
};

class FakeEngine {
  public:
    FakeEngine();
    ~FakeEngine();
    FakeEngine(const FakeEngine&) = delete;
    FakeEngine& operator=(const FakeEngine&) = delete;

    // What the engine grants.
    std::function<bool(const BitmapRequest&)> grantsBitmap;  // empty: every bitmap that has pixels
    bool grantsPalettes = true;
    bool marksBanding = true;
    bool associates = true;
    bool locks = true;
    bool aborted = false;
    bool throws = false;      // the next service throws, to try the driver's border
    std::size_t refuses = 0;  // the how-manieth call from now on of a service that can fail will; 0: none
    BOOL result = TRUE;       // of the drawing services
    DHPDEV dhpdev = nullptr;  // put into surfaces when they are associated

    // What it was asked for.
    std::string refused;  // the service that failed, because it was told to
    std::vector<std::string> calls;
    std::vector<BitmapRequest> bitmaps;
    std::vector<PaletteRequest> palettes;
    std::vector<const void*> arguments;  // of the latest drawing service, in order
    ULONG lastNumber = 0;                // its last number: mode, mix and options, or raster operation
    FLONG lastOptions = 0;
    FLONG hooks = 0;
    HDEV associatedDevice = nullptr;

    [[nodiscard]] std::size_t count(const std::string& call) const;
    [[nodiscard]] bool called(const std::string& call) const { return count(call) != 0; }

    std::map<HSURF, std::unique_ptr<FakeSurface>> surfaces;
    std::size_t livePalettes = 0;
    std::size_t locked = 0;
};

FakeEngine& fakeEngine();

}  // namespace morvil::test
