// FakeMemoryDc.h - stands in for memory device contexts and bitmap sections: keeps their bits, refuses the calls that a test
// names, records what was asked and what is still alive. Surfaces of the fake engine can be read through it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace morvil::test {

struct FakeBitmap {
    BITMAPINFOHEADER header{};
    std::vector<RGBQUAD> palette;
    std::vector<std::uint8_t> bits;
};

struct StretchRequest {
    HDC to;
    HDC from;
    int x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight;
    DWORD rop;
    int mode;
    COLORADJUSTMENT adjustment;
};

// One at a time; made by the fixture and reached by the calls of this program.
class FakeMemoryDc {
  public:
    FakeMemoryDc();
    ~FakeMemoryDc();
    FakeMemoryDc(const FakeMemoryDc&) = delete;
    FakeMemoryDc& operator=(const FakeMemoryDc&) = delete;

    // The n-th call (from 1) of a name fails, with last error 1400; 0: none.
    std::string failingCall;
    int failingNumber = 0;
    std::vector<RGBQUAD> surfacePalette;  // what the engine's surfaces of up to 8 bits give

    std::vector<StretchRequest> stretches;
    std::map<std::string, int> calls;

    struct Context {
        HBITMAP selected = nullptr;
        int mode = BLACKONWHITE;
        COLORADJUSTMENT adjustment{};
    };
    std::map<HDC, Context> contexts;  // alive
    std::map<HBITMAP, std::unique_ptr<FakeBitmap>> sections;

    // Counts the call; whether it fails now.
    bool refuses(const char* call);
};

FakeMemoryDc& fakeMemoryDc();

}  // namespace morvil::test
