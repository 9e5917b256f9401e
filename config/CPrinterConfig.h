// CPrinterConfig.h - turns the items of PrinterDriver.xml into the typed configuration record and writes values back, repairs
// a missing or invalid file and updates an older one. What each key means stands in CPrinterConfigKeys.h.
// The store is opened at the first use and read once for each load. An object serves one thread, for one pass of reading or
// writing. Raises only ConfigurationError where a caller must know; getConfig catches its own.
#pragma once

#include <memory>

#include "config/CMvConfig.h"
#include "config/ConfigurationRecord.h"

namespace morvil {

// Codes of the only exceptions of the system.
enum ConfigurationErrorCode : DWORD {
    kResolutionMissing = 10000,
    kColourTableWithoutConfiguration = 10001,
    kConfigurationFileMissing = 10002
};
struct ConfigurationError {
    DWORD code;
};

inline constexpr WORD kHighestBezierMode = 3;

class CSizeTemplate;

class CPrinterConfig {
  public:
    // `templates`: the reader that the process keeps, if it keeps one; else this object makes its own when it needs it.
    explicit CPrinterConfig(CSizeTemplate* templates = nullptr);
    ~CPrinterConfig();
    CPrinterConfig(const CPrinterConfig&) = delete;
    CPrinterConfig& operator=(const CPrinterConfig&) = delete;

    // Fills the record for the configuration `name` (empty or null: the active one). False when
    // - the file was missing or empty: it is created then, and the record holds the complete defaults;
    // - the store cannot be had: the record holds the complete defaults;
    // - the name is refused, or nothing valid is stored under it: the record stays as it was.
    // An active configuration that is not valid is replaced by the default one, and the load succeeds with that.
    bool getConfig(const WCHAR* name, ConfigurationRecord& record);
    // Writes every item of the record. False when the store or a setter refused something; the rest is written all the same.
    bool setConfig(const WCHAR* name, const ConfigurationRecord& record);
    // Whether anything is stored under that name.
    bool configurationExists(const WCHAR* name);
    // Brings the file up to date: items that later versions added. Sets MV_FL_POLYGON_CLIPPING in the record.
    bool doUpdate(ConfigurationRecord& record);
    bool bDumpConfig(const ConfigurationRecord& record);
    // Whether the path names an existing folder in which a file can be made.
    bool pathValid(const WCHAR* path);

    static const ConfigurationRecord& defaultConfiguration();

    // Aims the getters and setters below at a configuration; at first they work on the active one. False and unchanged for
    // a name that is refused: one with a part that reads as a whole number other than 0, or that no element could bear, and one
    // of more than three parts, which leaves no room in an item path.
    bool select(const WCHAR* name);

    // Getters answer from the document as it was last read, with the defaults and ranges of the key table.
    DWORD getUnit();
    SizeTemplate getSizeTemplate();  // without the pixel sizes, which depend on the resolution
    WString getMaterialGroup();
    WString getMaterialName();
    WORD getProcessMode();
    DWORD getMciVersion(WORD processMode);  // 0, 2 or 3; 3 for every mode but ColourStamp
    WORD getResolution();                   // dots per inch; raises kResolutionMissing
    SHORT getCutLine();
    WString getShoulderName();
    LONG getShoulderIndex();
    WORD getLayers();
    FLOAT getZAdjustment();
    bool getRotaryEnabled();
    FLOAT getRotaryDiameter();
    bool getAutoPosition();
    bool getVectorJob();
    DWORD getPpoThreshold();
    WORD getColours(VectorColour (&colours)[kVectorColours]);  // the number of entries; the others are cleared
    HalftoneBlock getHalftone();
    WORD getDriverView();
    WORD getDriverViewMaximum();
    bool getQuickPrint();
    JobIdentification getJobIdentification();
    FileNames getFileNames();
    BezierBlock getBezier();
    PrintingApplication getPrintingApplication();
    LoggingBlock getLogging();
    DWORD getFlags();
    DiagnosticBlock getDiagnostic();
    WString getVersion();
    RECT getBoundingBoxOffset();
    bool getColourMatchingEnabled();

    // Setters check the range first and write the file then. False without writing for a value out of range.
    bool setSizeTemplate(const SizeTemplate& size);
    bool setMaterialGroup(const WCHAR* group);
    bool setMaterialName(const WCHAR* name);
    bool setProcessMode(WORD processMode);
    bool setResolution(WORD index);
    bool setCutLine(SHORT index);
    bool setShoulderName(const WCHAR* name);
    bool setShoulderIndex(LONG index);
    bool setLayers(WORD layers);
    bool setZAdjustment(FLOAT adjustment);
    bool setRotaryEnabled(bool enabled);
    bool setRotaryDiameter(FLOAT diameter);
    bool setAutoPosition(bool on);
    bool setVectorJob(bool on);
    bool setColours(const VectorColour (&colours)[kVectorColours], WORD count);  // replaces the whole list
    bool setHalftone(const HalftoneBlock& halftone);
    bool setDriverView(WORD view);
    bool setQuickPrint(bool on);
    bool setJobIdentification(const JobIdentification& job);
    bool setBezier(const BezierBlock& bezier);
    bool setPrintingApplication(const PrintingApplication& application);
    bool setLogging(const LoggingBlock& logging);
    bool setFlags(DWORD flags);
    bool setDiagnostic(const DiagnosticBlock& diagnostic);
    bool setVersion(const WCHAR* version);
    bool setBoundingBoxOffset(const RECT& offset);
    bool setColourMatchingEnabled(bool enabled);

  private:
    struct Members;
    enum class Repair : std::uint8_t { Allowed, Done };

    bool load(ConfigurationRecord& record, Repair repair);
    bool createFile(ConfigurationRecord& record);
    bool useDefaults(ConfigurationRecord& record);
    bool readValid(ConfigurationRecord& record);
    void readRecord(ConfigurationRecord& record);
    bool removeShoulderName();
    // The defaults with a time stamp and what comes from ini files: unit, driver view, settings of the job application.
    ConfigurationRecord localDefaults();

    std::unique_ptr<Members> m;
};

// Name of a process mode; "none" for a value that is no process mode.
const WCHAR* processModeName(WORD processMode);

// The number of the first application list, counted from 1, that contains the executable's name; 0 when none does.
int jobNameFormatOf(const JobIdentification& job, const WCHAR* executable);
// The application list `format` (1 to kFormatCount) of a record. A list that fills its field may have been cut there: if the
// active configuration holds a longer one that begins so, that is the answer.
WString applicationList(const JobIdentification& job, int format);

// Width or height in pixels: ceiling(mm / 25.4 * dpi) in single precision. 0 when no page of that size can be made: a size
// that is not above 0, or that takes more than 65535 pixels.
WORD pixelsOf(FLOAT millimetres, WORD dpi);

}  // namespace morvil
