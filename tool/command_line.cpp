// command_line.cpp - the subcommands and their options as the command line takes them.
#include <CLI/CLI.hpp>
#include <exception>
#include <ostream>

#include "tool/Commands.h"

namespace morvil::tool {

namespace {

struct Options {
    PrintOptions print;
    ConfigOptions config;
    CheckOptions check;
    ShowOptions show;
    PreviewOptions preview;
    EscapeOptions escape;
    TraceOptions trace;
    ReplayOptions replay;
};

void addPrintOptions(CLI::App* c, PrintOptions& o) {
    c->add_option("FILE", o.files, "enhanced metafiles (.emf); several are the pages of one document")->required();
    c->add_option("--spool", o.spool, "folder for the job files (default: the configured one)")->type_name("DIR");
    c->add_option("--home", o.home, "data root in place of $MORVIL_HOME")->type_name("DIR");
    c->add_option("--title", o.title, "document name (default: the first file's name)")->type_name("TEXT");
    c->add_option("--app", o.application, "executable that prints; chooses the naming rule")->type_name("NAME.exe")->capture_default_str();
    c->add_option("--set", o.settings, "store a configuration item first; may be given again")->type_name("ITEM[@ATTRIBUTE]=VALUE")->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    c->add_option("--config", o.configuration, "print with this stored configuration")->type_name("NAME");
    c->add_option("--paper", o.paper, "page size: WxH in mm, drawing (the metafile's frame) or stored (the configuration's)")->type_name("SIZE")->capture_default_str();
    c->add_option("--copies", o.copies, "copies to ask for; the machine makes one")->type_name("N")->capture_default_str();
    c->add_flag("--halftone", o.halftone, "reduce the page to black and white by the configured halftoning; for process modes with a black and white raster");
    c->add_flag("--json", o.json, "result as JSON on standard output");
    c->add_flag("--quiet", o.quiet, "no summary and no progress");
}

CLI::App* addPrint(CLI::App& app, PrintOptions& o) {
    CLI::App* const c = app.add_subcommand("print", "Print metafiles to job files, one a page");
    addPrintOptions(c, o);
    c->footer("Standard output: the path of each job file, one a line. Standard error: a summary.\n"
              "Exit status: 0 done, 2 usage or bad input, 3 the system failed (disk, permission).");
    return c;
}

CLI::App* addTrace(CLI::App& app, TraceOptions& o) {
    CLI::App* const c = app.add_subcommand("trace", "Print metafiles and show the calls between engine and driver");
    addPrintOptions(c, o.print);
    c->add_option("--record", o.record, "keep the calls in this file, with the page's bits, instead of showing them")->type_name("OUT");
    c->footer("Standard output: a line for each call of the driver, below it what the driver asked of the engine; or with --record the path of each job file. Options and exit status as with print.");
    return c;
}

CLI::App* addReplay(CLI::App& app, ReplayOptions& o) {
    CLI::App* const c = app.add_subcommand("replay", "Make the calls of a recording to the driver again");
    c->add_option("FILE", o.file, "recording that trace --record has made")->required();
    c->add_option("--home", o.home, "data root in place of $MORVIL_HOME; the recorded settings are written there")->type_name("DIR")->required();
    c->add_option("--spool", o.spool, "folder for the job files (default: the configured one)")->type_name("DIR");
    c->add_option("--app", o.application, "executable that prints")->type_name("NAME.exe")->capture_default_str();
    c->footer("Standard output: the path of each job file.\nExit status: 0 every call answered as recorded, 1 one did not, 2 usage or bad input, 3 the system failed.");
    return c;
}

CLI::App* addConfig(CLI::App& app, ConfigOptions& o) {
    CLI::App* const c = app.add_subcommand("config", "Read and change the printer configuration");
    c->require_subcommand(1);
    const auto common = [&o](CLI::App* sub) {
        sub->add_option("--home", o.home, "data root in place of $MORVIL_HOME")->type_name("DIR");
        return sub;
    };
    const auto item = [&o](CLI::App* sub) { sub->add_option("ITEM", o.item, "dotted path, with @ATTRIBUTE when it is not \"value\"")->required(); };
    CLI::App* const get = common(c->add_subcommand("get", "Print an item's value"));
    item(get);
    get->add_flag("--json", o.json, "result as JSON");
    get->callback([&o] { o.action = ConfigOptions::Action::Get; });
    CLI::App* const set = common(c->add_subcommand("set", "Store an item's value"));
    item(set);
    set->add_option("VALUE", o.value, "text to store")->required();
    set->callback([&o] { o.action = ConfigOptions::Action::Set; });
    CLI::App* const remove = common(c->add_subcommand("remove", "Remove an item with everything below it"));
    item(remove);
    remove->callback([&o] { o.action = ConfigOptions::Action::Remove; });
    CLI::App* const dump = common(c->add_subcommand("dump", "Print every item, one a line"));
    dump->add_flag("--json", o.json, "result as JSON");
    dump->callback([&o] { o.action = ConfigOptions::Action::Dump; });
    c->footer("Exit status: 0 done, 1 the item is not there, 2 usage, 3 the system failed.");
    return c;
}

CLI::App* addCheck(CLI::App& app, CheckOptions& o) {
    CLI::App* const c = app.add_subcommand("check", "Is this a well-formed job file?");
    c->add_option("FILE", o.files, "job files (.tsf)")->required();
    c->add_flag("--json", o.json, "result as JSON");
    c->add_flag("--quiet", o.quiet, "only the exit status");
    c->footer("Names the first violations with byte position, group and rule.\nExit status: 0 well-formed, 1 not, 2 usage or unreadable file.");
    return c;
}

CLI::App* addShow(CLI::App& app, ShowOptions& o) {
    CLI::App* const c = app.add_subcommand("show", "Show what a job file holds");
    c->add_option("FILE", o.file, "job file (.tsf)")->required();
    c->add_flag("--json", o.json, "result as JSON");
    return c;
}

CLI::App* addPreview(CLI::App& app, PreviewOptions& o) {
    CLI::App* const c = app.add_subcommand("preview", "Draw a job file: its raster with the vectors over it");
    c->add_option("FILE", o.file, "job file (.tsf)")->required();
    c->add_option("-o,--output", o.output, "picture to write (PNG)")->required()->type_name("OUT.png");
    c->add_option("--scale", o.scale, "job pixels for one picture pixel (default: as few as fit 2000 pixels)")->type_name("N")->check(CLI::Range(1, 65535));
    return c;
}

CLI::App* addEscape(CLI::App& app, EscapeOptions& o) {
    CLI::App* const c = app.add_subcommand("escape", "Send the driver an escape, as applications do");
    c->add_option("CODE", o.code, "8 asks whether the code TEXT is supported, 17 asks for TEXT copies, 9100 loads the stored configuration TEXT, 9101 asks whether it exists")->required();
    c->add_option("TEXT", o.text, "what is sent: a number for 8 and 17, else text, one byte a character");
    c->add_option("--home", o.home, "data root in place of $MORVIL_HOME")->type_name("DIR");
    c->add_flag("--json", o.json, "result as JSON");
    c->footer("Standard output: the driver's result, and its answer where it gives one.\nExit status: 0 for a result other than 0, 1 for 0, 2 usage, 3 the system failed.");
    return c;
}

int parseAndRun(const std::vector<std::string>& arguments, engine::EnableDriverFunction driver, const Streams& streams) {
    Options options;
    CLI::App app("Prints drawings to job files for the laser engraver, and checks and shows job files.", "morvil");
    app.require_subcommand(1);
    app.set_version_flag("--version", "morvil 6.0.0.0");
    const CLI::App* const print = addPrint(app, options.print);
    const CLI::App* const config = addConfig(app, options.config);
    const CLI::App* const check = addCheck(app, options.check);
    const CLI::App* const show = addShow(app, options.show);
    const CLI::App* const trace = addTrace(app, options.trace);
    const CLI::App* const replay = addReplay(app, options.replay);
    const CLI::App* const escape = addEscape(app, options.escape);
    addPreview(app, options.preview);
    try {
        std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());  // the parser takes the last argument first
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, streams.out, streams.err) == 0 ? kDone : kUsage;
    }
    try {
        if (print->parsed()) return runPrint(options.print, driver, streams);
        if (config->parsed()) return runConfig(options.config, streams);
        if (check->parsed()) return runCheck(options.check, streams);
        if (trace->parsed()) return runTrace(options.trace, driver, streams);
        if (replay->parsed()) return runReplay(options.replay, driver, streams);
        if (escape->parsed()) return runEscape(options.escape, driver, streams);
        if (show->parsed()) return runShow(options.show, streams);
        return runPreview(options.preview, streams);
    } catch (const std::exception& error) {  // out of memory, a broken pipe: nothing that has an answer of its own
        streams.err << "morvil: " << error.what() << "\n";
        return kSystemFailed;
    }
}

}  // namespace

// An answer that did not arrive is no answer: scripts would go on with an empty list of jobs.
int runTool(const std::vector<std::string>& arguments, engine::EnableDriverFunction driver, const Streams& streams) {
    const int status = parseAndRun(arguments, driver, streams);
    if (streams.out.flush() || status == kUsage || status == kSystemFailed) return status;
    streams.err << "morvil: standard output cannot be written (is it closed, or its disk full?)\n";
    return kSystemFailed;
}

}  // namespace morvil::tool
