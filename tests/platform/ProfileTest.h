// ProfileTest.h - one private profile file on a data root of its own, read and written as programs do.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/posix/HostState.h"
#include "support/TempHome.h"

namespace morvil::test {

inline constexpr const WCHAR* kProfile = TEXT("C:\\a.ini");

class ProfileTest : public testing::Test {
  protected:
    static std::string read(const WCHAR* section, const WCHAR* key, const WCHAR* fallback = TEXT("none")) {
        std::array<WCHAR, 200> out{};
        const DWORD count = GetPrivateProfileStringW(section, key, fallback, out.data(), static_cast<DWORD>(out.size()), kProfile);
        EXPECT_EQ(count, viewOf(out).size());
        return toUtf8(viewOf(out));
    }
    static bool write(const WCHAR* section, const WCHAR* key, const WCHAR* value) {
        return WritePrivateProfileStringW(section, key, value, kProfile) != FALSE;
    }

    TempHome home;
};

}  // namespace morvil::test
