// The forms of the system's own spooler: each is given by its number in whole millimetres, the last never.
#include <gtest/gtest.h>

#include <vector>

#include "config/MvSystemPapers.h"

namespace morvil::test {

TEST(FormsOfTheSystem, are_given_by_their_number) {
    HANDLE server = nullptr;
    ASSERT_NE(OpenPrinterW(nullptr, &server, nullptr), FALSE) << GetLastError();
    DWORD bytes = 0;
    DWORD count = 0;
    EnumFormsW(server, 1, nullptr, 0, &bytes, &count);
    std::vector<BYTE> block(bytes);
    ASSERT_NE(EnumFormsW(server, 1, block.data(), bytes, &bytes, &count), FALSE) << GetLastError();
    ClosePrinter(server);
    ASSERT_GT(count, 1U);
    const auto* const forms = reinterpret_cast<const FORM_INFO_1W*>(block.data());
    for (DWORD i = 0; i < count; ++i) {
        int width = -1;
        int height = -1;
        const bool last = i + 1 == count;
        EXPECT_EQ(MvSystemPapers::getSizeDimensions(static_cast<int>(i + 1), &width, &height), !last) << i;
        EXPECT_EQ(width, last ? -1 : forms[i].Size.cx / 1000) << i;
        EXPECT_EQ(height, last ? -1 : forms[i].Size.cy / 1000) << i;
    }
}

}  // namespace morvil::test
