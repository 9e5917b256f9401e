// Printers, their drivers and forms as this host's spooler has them.
#include <cstring>

#include "platform/HostTest.h"
#include "platform/common/LocalBlock.h"

namespace morvil::test {

namespace {

struct PrinterHandle {
    explicit PrinterHandle(const WCHAR* name) {
        WString text(viewOf(name));
        EXPECT_TRUE(OpenPrinterW(name == nullptr ? nullptr : text.data(), &handle, nullptr));
    }
    ~PrinterHandle() { ClosePrinter(handle); }
    PrinterHandle(const PrinterHandle&) = delete;
    PrinterHandle& operator=(const PrinterHandle&) = delete;
    HANDLE handle = nullptr;
};

}  // namespace

TEST_F(HostTest, printer_errors) {
    HANDLE printer = nullptr;
    WString unknown = TEXT("nobody");
    EXPECT_FALSE(OpenPrinterW(unknown.data(), &printer, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PRINTER_NAME);
    DWORD needed = 0x55;
    DWORD returned = 0x55;
    EXPECT_FALSE(GetPrinterW(nullptr, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(GetPrinterDriverW(nullptr, nullptr, 2, nullptr, 0, &needed));
    EXPECT_FALSE(EnumFormsW(nullptr, 1, nullptr, 0, &needed, &returned));
    EXPECT_FALSE(ClosePrinter(nullptr));
    const PrinterHandle server(nullptr);
    EXPECT_FALSE(GetPrinterW(server.handle, 2, nullptr, 0, &needed)) << "a server is no printer";
    EXPECT_FALSE(EnumFormsW(server.handle, 2, nullptr, 0, &needed, &returned));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_LEVEL);
    const PrinterHandle engraver(TEXT("Morvil"));
    EXPECT_FALSE(GetPrinterW(engraver.handle, 1, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_LEVEL);
    EXPECT_EQ(needed, 0x55U);
}

TEST_F(HostTest, printer_information) {
    hostState().printers = {{.name = TEXT("Engraver"),
                             .server = TEXT("\\\\workshop"),
                             .share = TEXT("laser"),
                             .port = TEXT("LPT1:"),
                             .driver = TEXT("Morvil"),
                             .comment = {},
                             .separatorFile = TEXT("sep.txt"),
                             .processor = TEXT("winprint"),
                             .dataType = TEXT("RAW"),
                             .attributes = PRINTER_ATTRIBUTE_DIRECT,
                             .jobs = 3}};
    const PrinterHandle printer(TEXT("ENGRAVER"));
    DWORD needed = 0;
    EXPECT_FALSE(GetPrinterW(printer.handle, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    LocalBlock<BYTE> buffer(needed);
    EXPECT_FALSE(GetPrinterW(printer.handle, 2, buffer.get(), needed - 1, &needed));
    ASSERT_TRUE(GetPrinterW(printer.handle, 2, buffer.get(), needed, &needed));
    PRINTER_INFO_2W info{};
    std::memcpy(&info, buffer.get(), sizeof(info));
    EXPECT_EQ(viewOf(info.pServerName), TEXT("\\\\workshop"));
    EXPECT_EQ(viewOf(info.pPrinterName), TEXT("Engraver"));
    EXPECT_EQ(viewOf(info.pShareName), TEXT("laser"));
    EXPECT_EQ(viewOf(info.pPortName), TEXT("LPT1:"));
    EXPECT_EQ(viewOf(info.pDriverName), TEXT("Morvil"));
    EXPECT_EQ(viewOf(info.pSepFile), TEXT("sep.txt"));
    EXPECT_EQ(viewOf(info.pPrintProcessor), TEXT("winprint"));
    EXPECT_EQ(viewOf(info.pDatatype), TEXT("RAW"));
    EXPECT_EQ(viewOf(info.pParameters), TEXT(""));
    EXPECT_EQ(reinterpret_cast<BYTE*>(info.pParameters) + sizeof(WCHAR), buffer.get() + needed) << "the size is exact";
    EXPECT_EQ(info.Attributes, PRINTER_ATTRIBUTE_DIRECT);
    EXPECT_EQ(info.cJobs, 3U);

    EXPECT_FALSE(GetPrinterDriverW(printer.handle, nullptr, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    buffer = LocalBlock<BYTE>(needed);
    ASSERT_TRUE(GetPrinterDriverW(printer.handle, nullptr, 2, buffer.get(), needed, &needed));
    DRIVER_INFO_2W driver{};
    std::memcpy(&driver, buffer.get(), sizeof(driver));
    EXPECT_EQ(viewOf(driver.pName), TEXT("Morvil"));
    EXPECT_EQ(viewOf(driver.pDataFile), TEXT("C:\\Windows\\System32\\spool\\drivers\\x64\\3\\morvil.dll"));
    EXPECT_EQ(reinterpret_cast<BYTE*>(driver.pConfigFile + viewOf(driver.pConfigFile).size() + 1), buffer.get() + needed);
}

TEST_F(HostTest, forms_letterFirstAndA4Ninth) {
    const PrinterHandle server(nullptr);
    DWORD needed = 0;
    DWORD returned = 0x55;
    EXPECT_FALSE(EnumFormsW(server.handle, 1, nullptr, 0, &needed, &returned));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(returned, 0U);
    LocalBlock<BYTE> buffer(needed);
    ASSERT_TRUE(EnumFormsW(server.handle, 1, buffer.get(), needed, &needed, &returned));
    ASSERT_EQ(returned, 118U);
    const auto form = [&](std::size_t number) {
        FORM_INFO_1W info{};
        std::memcpy(&info, buffer.get() + (number - 1) * sizeof(info), sizeof(info));
        return info;
    };
    EXPECT_EQ(viewOf(form(1).pName), TEXT("Letter"));
    EXPECT_EQ(form(1).Size.cx, 215900);
    EXPECT_EQ(form(1).Size.cy, 279400);
    EXPECT_EQ(viewOf(form(9).pName), TEXT("A4"));
    EXPECT_EQ(form(9).Size.cx, 210000);
    EXPECT_EQ(form(9).Size.cy, 297000);
    EXPECT_EQ(form(9).ImageableArea.right, 210000);
    EXPECT_EQ(viewOf(form(77).pName), TEXT("A4 Rotated"));
    EXPECT_EQ(form(77).Size.cx, 297000);
    EXPECT_EQ(viewOf(form(118).pName), TEXT("PRC Envelope #10 Rotated"));
    EXPECT_EQ(reinterpret_cast<BYTE*>(form(118).pName + viewOf(form(118).pName).size() + 1), buffer.get() + needed) << "the size is exact";
}

}  // namespace morvil::test
