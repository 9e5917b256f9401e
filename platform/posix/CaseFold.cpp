#include "platform/posix/CaseFold.h"

#include <algorithm>

namespace morvil {

namespace {

constexpr bool within(unsigned unit, unsigned first, unsigned last) { return unit >= first && unit <= last; }

// In these blocks capital and small letter alternate, the capital at an even code.
constexpr bool alternatesFromEven(unsigned unit) {
    return within(unit, 0x100, 0x137) || within(unit, 0x14A, 0x177) || within(unit, 0x460, 0x481) || within(unit, 0x48A, 0x4BF) ||
           within(unit, 0x4D0, 0x52F) || within(unit, 0x1E00, 0x1E95) || within(unit, 0x1EA0, 0x1EFF);
}
constexpr bool alternatesFromOdd(unsigned unit) { return within(unit, 0x139, 0x148) || within(unit, 0x179, 0x17E); }

constexpr unsigned upperBeyondAscii(unsigned unit) {
    if (within(unit, 0xE0, 0xFE) && unit != 0xF7) return unit - 0x20;
    if (unit == 0xFF) return 0x178;
    if (unit == 0x131 || unit == 0x130) return unit;  // the two i of Turkish have no partner here
    if (alternatesFromEven(unit)) return unit & ~1U;
    if (alternatesFromOdd(unit)) return (unit & 1U) != 0 ? unit : unit - 1;
    if (within(unit, 0x3B1, 0x3C9) && unit != 0x3C2) return unit - 0x20;
    if (within(unit, 0x430, 0x44F)) return unit - 0x20;
    if (within(unit, 0x450, 0x45F)) return unit - 0x50;
    return unit;
}

}  // namespace

WCHAR upperOf(WCHAR unit) {
    if (unit < 0x80) return within(unit, 'a', 'z') ? static_cast<WCHAR>(unit - 0x20) : unit;
    return static_cast<WCHAR>(upperBeyondAscii(unit));
}

bool equalIgnoringCase(WStringView a, WStringView b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](WCHAR x, WCHAR y) { return x == y || upperOf(x) == upperOf(y); });
}

bool lessIgnoringCase(WStringView a, WStringView b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](WCHAR x, WCHAR y) { return upperOf(x) < upperOf(y); });
}

}  // namespace morvil
