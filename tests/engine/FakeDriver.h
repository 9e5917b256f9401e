// FakeDriver.h - a driver that only remembers how it was called, for tests of the engine's side of the interface. Its answers
// are set before a print. One fake at a time: the interface passes no context to a driver's functions.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/Document.h"

namespace morvil::engine {

struct FakeDriver {
    FakeDriver();
    ~FakeDriver();
    FakeDriver(const FakeDriver&) = delete;
    FakeDriver& operator=(const FakeDriver&) = delete;

    // What the driver is.
    SIZEL page{40, 30};
    LONG bandHeight = 0;  // 0: unbanded
    FLONG graphicsCaps = GCAPS_ALTERNATEFILL;
    FLONG hooks = HOOK_BITBLT | HOOK_STRETCHBLT | HOOK_TEXTOUT | HOOK_STROKEPATH | HOOK_FILLPATH | HOOK_COPYBITS | HOOK_STROKEANDFILLPATH;
    ULONG format = BMF_24BPP;
    USHORT dither = 8;

    // What it answers. A call named in `refuses` answers FALSE or null; in `errors` DDI_ERROR.
    std::vector<std::string> refuses;
    std::vector<std::string> errors;
    ULONG ditherAnswer = DCR_HALFTONE;
    std::function<void()> atStartPage;
    bool lastBandAnswersFalse = true;
    std::vector<POINTL> bandOrigins;  // overrides the origins that DrvNextBand gives, when not empty

    // What happened, one text a call: "DrvStartDoc name=Plan job=7".
    std::vector<std::string> calls;
    [[nodiscard]] std::size_t count(const std::string& prefix) const;
    [[nodiscard]] std::vector<std::string> names() const;  // the calls without their arguments

    static BOOL enable(ULONG version, ULONG size, DRVENABLEDATA* data);
};

}  // namespace morvil::engine
