// main.cpp - hands the command line and the driver's one entry point to the tool.
#include <unistd.h>

#include <iostream>

#include "platform/platform.h"
#include "tool/Commands.h"
#include "tool/Interrupts.h"

int main(int count, char** arguments) {
    morvil::tool::prepareProcess();
    const std::vector<std::string> list(arguments + 1, arguments + count);
    return morvil::tool::runTool(list, &DrvEnableDriver, {std::cout, std::cerr, isatty(STDERR_FILENO) != 0});
}
