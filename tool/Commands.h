// Commands.h - the subcommands of the command line tool. Each has a record of its options, filled from the command line, and a
// function that does the work and returns the exit status. Results go to `out`, everything else to `err`.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "engine/Document.h"

namespace morvil::tool {

enum ExitStatus : int {
    kDone = 0,
    kWrong = 1,     // the thing checked is wrong
    kUsage = 2,     // usage or bad input
    kSystemFailed = 3  // disk, permission, a driver that fails
};

struct Streams {
    std::ostream& out;
    std::ostream& err;
    bool errIsTerminal = false;
};

struct PrintOptions {
    std::vector<std::string> files;
    std::string spool;
    std::string home;
    std::string title;
    std::string application = "morvil.exe";
    std::vector<std::string> settings;  // ITEM=VALUE or ITEM@ATTRIBUTE=VALUE
    std::string configuration;
    std::string paper = "drawing";  // WxH in mm, drawing or stored
    int copies = 1;
    bool halftone = false;
    bool json = false;
    bool quiet = false;
};

struct ConfigOptions {
    enum class Action { Get, Set, Remove, Dump };
    Action action = Action::Dump;
    std::string home;
    std::string item;  // ITEM or ITEM@ATTRIBUTE
    std::string value;
    bool json = false;
};

struct CheckOptions {
    std::vector<std::string> files;
    bool json = false;
    bool quiet = false;
};

struct ShowOptions {
    std::string file;
    bool json = false;
};

struct PreviewOptions {
    std::string file;
    std::string output;
    int scale = 0;  // job pixels per picture pixel; 0: as small as fits 2000 pixels
};

struct TraceOptions {
    PrintOptions print;
    std::string record;  // file for the recording; empty: the calls are printed
};

struct ReplayOptions {
    std::string file;
    std::string home;
    std::string spool;
    std::string application = "morvil.exe";
};

struct EscapeOptions {
    std::uint32_t code = 0;
    std::string text;
    std::string home;
    bool json = false;
};

int runPrint(const PrintOptions& options, engine::EnableDriverFunction driver, const Streams& streams);
int runConfig(const ConfigOptions& options, const Streams& streams);
int runCheck(const CheckOptions& options, const Streams& streams);
int runShow(const ShowOptions& options, const Streams& streams);
int runPreview(const PreviewOptions& options, const Streams& streams);
int runTrace(const TraceOptions& options, engine::EnableDriverFunction driver, const Streams& streams);
int runReplay(const ReplayOptions& options, engine::EnableDriverFunction driver, const Streams& streams);
int runEscape(const EscapeOptions& options, engine::EnableDriverFunction driver, const Streams& streams);

// Parses the arguments (without the program's name) and runs the subcommand.
int runTool(const std::vector<std::string>& arguments, engine::EnableDriverFunction driver, const Streams& streams);

}  // namespace morvil::tool
