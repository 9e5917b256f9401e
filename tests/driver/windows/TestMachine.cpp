// A printer in the system's own spooler, installed with the shipped driver file when it is not there; and the system's folder.
#include "driver/TestMachine.h"

#include <gtest/gtest.h>

#include "host/Printer.h"

namespace morvil::test {

HANDLE openTestPrinter() {
    std::wstring name = L"Morvil";
    const std::string failure = host::installPrinter(name, MORVIL_DLL);
    EXPECT_EQ(failure, "");
    HANDLE printer = nullptr;
    OpenPrinterW(name.data(), &printer, nullptr);
    EXPECT_NE(printer, nullptr) << GetLastError();
    return printer;
}

const WCHAR* libraryFolder() { return L"C:\\windows\\system32"; }

}  // namespace morvil::test
