// The first printer of the substitute's spooler, and the folder that it searches besides the system's.
#include "driver/TestMachine.h"

#include "platform/common/Text.h"
#include "platform/posix/HostState.h"

namespace morvil::test {

HANDLE openTestPrinter() {
    WString name = hostState().printers.at(0).name;
    HANDLE printer = nullptr;
    OpenPrinterW(name.data(), &printer, nullptr);
    return printer;
}

const WCHAR* libraryFolder() { return TEXT("C:\\Program Files\\Morvil\\PrinterDriver"); }

}  // namespace morvil::test
