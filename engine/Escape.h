// Escape.h - sends one escape to a driver, as an application does outside of any document: the driver is enabled, an instance
// with its surface made, the call handed through as it is, and everything given back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/Document.h"

namespace morvil::engine {

struct EscapeRequest {
    EnableDriverFunction enableDriver = nullptr;
    WString printerName;
    ULONG code = 0;
    std::vector<std::uint8_t> input;  // empty: no buffer is passed
    std::size_t outputBytes = 0;      // 0: no buffer is passed
};

struct EscapeReport {
    PrintStatus status = PrintStatus::Done;
    std::string reason;  // which call failed, for people
    ULONG result = 0;    // of the driver; 0 also when it has no such function
    std::vector<std::uint8_t> output;
};

EscapeReport sendEscape(const EscapeRequest& request);

}  // namespace morvil::engine
