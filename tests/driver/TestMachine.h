// TestMachine.h - what the tests need of the machine that they run on: a printer whose driver is installed, and a folder in
// which libraries are found by their bare names.
#pragma once

#include "platform/platform.h"

namespace morvil::test {

// An open handle, to be closed with ClosePrinter; null with a test failure when there is none.
HANDLE openTestPrinter();

// As a Windows path.
const WCHAR* libraryFolder();

}  // namespace morvil::test
