// AnyFont.h - a font that the machine has, whichever it is; tests that need one skip where there is none.
#pragma once

#include <gtest/gtest.h>

#include "engine/text/FontLibrary.h"
#include "platform/common/Text.h"

namespace morvil::test {

inline LOGFONTW sans(LONG height = -100) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = 400;
    copyText(font.lfFaceName, TEXT("Arial"));
    return font;
}

// Skips where the machine has no font.
#define REQUIRE_FONT(fonts)                                                         \
    if (!(fonts).typeface(sans()) || (fonts).typeface(sans())->glyphOf('H') == 0) { \
        GTEST_SKIP() << "this machine has no font";                                 \
    }

}  // namespace morvil::test
