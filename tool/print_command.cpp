// print_command.cpp - prints metafiles through the driver: reads and checks every file first, then runs the document, then
// tells what came of it.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "config/CPrinterConfig.h"
#include "tool/Commands.h"
#include "tool/ConfigurationItem.h"
#include "tool/Host.h"
#include "tool/Interrupts.h"
#include "tool/NumberReading.h"
#include "tool/PageSetup.h"
#include "tool/PrintSummary.h"
#include "tool/Progress.h"

namespace morvil::tool {

namespace {

constexpr std::uintmax_t kLargestMetafile = std::uintmax_t{1} << 30;

// One metafile with its place on the page.
struct Sheet {
    std::string file;
    std::shared_ptr<engine::Metafile> metafile;
    std::shared_ptr<engine::MetafilePage> page;
    PageSetup setup;
};

class PrintCommand {
  public:
    PrintCommand(const PrintOptions& options, engine::EnableDriverFunction driver, const Streams& streams) : m_options(options), m_driver(driver), m_streams(streams) {}
    int run();

  private:
    int usage(const std::string& text) const;
    int failure(const std::string& text) const;
    int checkOptions();
    int readSheets();
    int prepareHost();
    int loadConfiguration();
    int setUpPages();
    int print();
    [[nodiscard]] engine::PrintRequest request() const;
    [[nodiscard]] WString title() const;
    [[nodiscard]] std::vector<std::string> warnings(const std::vector<std::string>& jobs) const;

    const PrintOptions& m_options;
    engine::EnableDriverFunction m_driver;
    const Streams& m_streams;
    PaperChoice m_paper;
    std::vector<Setting> m_settings;
    std::vector<Sheet> m_sheets;
    ConfigurationRecord m_record{};
};

int PrintCommand::usage(const std::string& text) const {
    m_streams.err << "morvil print: " << text << "\n";
    return kUsage;
}

int PrintCommand::failure(const std::string& text) const {
    m_streams.err << "morvil print: " << text << "\n";
    return kSystemFailed;
}

int PrintCommand::checkOptions() {
    const auto paper = parsePaper(m_options.paper);
    if (!paper) return usage("--paper takes WIDTHxHEIGHT in mm, drawing or stored, not \"" + m_options.paper + "\"");
    m_paper = *paper;
    if (m_options.copies < 1 || m_options.copies > 9999) return usage("--copies takes a number from 1 to 9999");
    for (const std::string& text : m_options.settings) {
        const auto setting = parseSetting(text);
        if (const std::size_t equals = text.find('='); !setting && equals != std::string::npos && !isStorable(text.substr(equals + 1))) {
            return usage("--set \"" + text + "\": " + notStorableText());
        }
        if (!setting) return usage("--set takes ITEM=VALUE or ITEM@ATTRIBUTE=VALUE, not \"" + text + "\"");
        m_settings.push_back(*setting);
    }
    if (std::error_code error; !m_options.spool.empty() && !std::filesystem::is_directory(m_options.spool, error)) {
        return usage("the spool folder \"" + m_options.spool + "\" " + (!error ? "is no folder" : "cannot be used: " + error.message()));
    }
    return kDone;
}

// Every file is read and checked before anything is printed: a bad third page must not leave two jobs behind.
int PrintCommand::readSheets() {
    for (const std::string& file : m_options.files) {
        std::error_code error;
        if (std::filesystem::is_other(file, error)) return usage(file + ": not a regular file");
        const std::uintmax_t size = std::filesystem::file_size(file, error);
        if (error) return usage(file + ": " + error.message());
        if (size > kLargestMetafile) return usage(file + ": " + std::to_string(size) + " bytes are more than a metafile may have (1 GB)");
        std::ifstream stream(file, std::ios::binary);
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
        stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!stream) return usage(file + ": cannot be read");
        engine::MetafileError damage;
        auto metafile = engine::Metafile::parse(std::move(bytes), damage);
        if (metafile == nullptr) return usage(file + ": byte " + std::to_string(damage.position) + ": " + damage.reason);
        if (metafile->header().plusOnly) return usage(file + ": holds only the newer plus-form of drawing (EMF+), which is not played; export it as plain or dual EMF");
        m_sheets.push_back({file, std::move(metafile), nullptr, {}});
    }
    return kDone;
}

int PrintCommand::prepareHost() {
    useHome(m_options.home);
    useApplication(m_options.application);
    if (std::string reason; !ensureConfiguration(reason)) return failure(reason);
    if (!m_options.spool.empty()) useSpoolFolder(m_options.spool);
    for (const Setting& setting : m_settings) {
        if (!store(setting)) return failure(notStoredText(setting.item));
        if (const std::string different = differentReadingText(setting); !different.empty()) m_streams.err << "morvil print: " << different << "\n";
    }
    return kDone;
}

int PrintCommand::loadConfiguration() {
    const WString name = fromUtf8(m_options.configuration);
    CPrinterConfig config;
    if (!name.empty() && !config.configurationExists(name.c_str())) return usage("there is no stored configuration \"" + m_options.configuration + "\"");
    if (!config.getConfig(name.c_str(), m_record)) return failure("the configuration cannot be loaded");
    m_record.application.processId = static_cast<DWORD>(::getpid());
    copyText(m_record.application.name, fromUtf8(m_options.application));
    if (m_options.halftone) m_record.flags |= kHalftoningBit;  // travels in the device mode alone; no configuration item sets it
    copyText(m_record.job.name, title());  // names the pages behind a change of paper, where the system passes no title
    return kDone;
}

WString PrintCommand::title() const {
    if (!m_options.title.empty()) return fromUtf8(m_options.title);
    return fromUtf8(std::filesystem::path(m_options.files.front()).stem().string());
}

int PrintCommand::setUpPages() {
    for (Sheet& sheet : m_sheets) {
        std::string reason;
        auto setup = setUpPage(m_paper, sheet.metafile->header(), m_record, kPrinterName, m_options.copies, reason);
        if (!setup) return usage(sheet.file + ": " + reason);
        sheet.page = std::make_shared<engine::MetafilePage>(sheet.metafile, setup->target);
        sheet.setup = std::move(*setup);
    }
    return kDone;
}

engine::PrintRequest PrintCommand::request() const {
    engine::PrintRequest request;
    request.enableDriver = m_driver;
    request.printerName = kPrinterName;
    request.documentName = title();
    request.abortRequested = &InterruptGuard::interrupted;
    for (const Sheet& sheet : m_sheets) request.pages.push_back({sheet.page, sheet.setup.devmode});
    return request;
}

std::vector<std::string> PrintCommand::warnings(const std::vector<std::string>& jobs) const {
    std::vector<std::string> list;
    for (const Sheet& sheet : m_sheets) {
        const engine::MetafileHeader& drawing = sheet.metafile->header();
        if (!sheet.setup.drawingFits) list.push_back(doesNotFitText(sheet.file, drawing, sheet.setup));
        if (drawing.hasPlus) list.push_back(sheet.file + ": also holds plus-form records, of which the plain ones were played");
        for (const auto& [type, number] : sheet.page->skipped()) list.push_back(sheet.file + ": " + std::to_string(number) + " x " + engine::recordName(type) + " skipped");
        if (sheet.page->damage()) list.push_back(sheet.file + ": byte " + std::to_string(sheet.page->damage()->position) + ": " + sheet.page->damage()->reason);
    }
    if (m_options.copies > 1) list.push_back(std::to_string(m_options.copies) + " copies were asked for; the machine makes one of each job");
    if (m_options.spool.empty()) return list;
    for (const std::string& job : jobs) {
        std::error_code error;
        if (!std::filesystem::equivalent(std::filesystem::path(job).parent_path(), m_options.spool, error)) {
            list.push_back("the spool folder \"" + m_options.spool + "\" cannot be written; the job went to " + job);
        }
    }
    return list;
}

int PrintCommand::print() {
    const InterruptGuard interrupts;
    const FinishedJobs finished;
    Progress progress(m_streams.err, m_streams.errIsTerminal && !m_options.quiet);
    engine::PrintRequest document = request();
    document.progress = [&progress](std::size_t page, LONG done, LONG rows) { progress.show(page, done, rows); };
    const auto start = std::chrono::steady_clock::now();
    const engine::PrintReport report = engine::printDocument(document);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    progress.clear();

    const PrintResult result{.report = report, .jobs = finished.files(), .warnings = warnings(finished.files()), .record = m_record, .seconds = seconds};
    if (m_options.json) printJson(result, m_streams.out);
    else printPaths(result, m_streams.out);
    if (!m_options.quiet) printSummary(result, m_streams.err);
    if (report.status != engine::PrintStatus::Done) return failure(report.reason);
    const bool jobsExpected = (m_record.flags & MV_FL_TMPJOB) == 0;
    if (jobsExpected && finished.files().size() < m_sheets.size()) {
        return failure(std::to_string(m_sheets.size() - finished.files().size()) + " of " + std::to_string(m_sheets.size()) +
                       " pages left no job file (is the spool folder's disk full, or the folder not writable?)");
    }
    return kDone;
}

int PrintCommand::run() {
    for (int (PrintCommand::*step)() : {&PrintCommand::checkOptions, &PrintCommand::readSheets, &PrintCommand::prepareHost, &PrintCommand::loadConfiguration,
                                        &PrintCommand::setUpPages, &PrintCommand::print}) {
        const int status = (this->*step)();
        if (status != kDone) return status;
    }
    return kDone;
}

}  // namespace

int runPrint(const PrintOptions& options, engine::EnableDriverFunction driver, const Streams& streams) { return PrintCommand(options, driver, streams).run(); }

}  // namespace morvil::tool
