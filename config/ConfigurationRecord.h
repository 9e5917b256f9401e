// ConfigurationRecord.h - the plain typed record that a configuration is loaded into: one process-wide working copy, one copy
// per device instance and one inside each private devmode, so its layout is a contract (1752 bytes, 4-byte aligned).
// Texts are zero-terminated UTF-16. A record of zeros means "nothing loaded yet". Filled by CPrinterConfig.
#pragma once

#include <array>
#include <cstddef>

#include "driver/log/Log.h"
#include "platform/platform.h"

namespace morvil {

enum Unit : DWORD { kMillimetres = 0, kInches = 1 };

enum ProcessMode : WORD {
    kModeStandard = 1000,
    kModeStamp = 2000,
    kModeColourStamp = 3000,
    kModeRelief = 4000,
    kModeLayer = 5000,
    kModeTest1 = 6000,   // "Test 1 (s/w)"
    kModeTest2 = 7000,   // "Test 2 (Tracer)"
    kModeTest3 = 8000,   // "Test 3 (Banding)"
    kModeTest4 = 9000,   // "Test 4 (F/S)"
    kModeTest5 = 10000,  // "Test 5 (Jarvis)"
    kModeTest6 = 11000,  // "Test 6 (Stucki)"
    kModeTest7 = 12000   // "Test 7 (Burkes)"
};

enum ConfigurationFlag : DWORD {
    MV_FL_TMPJOB = 0x1,
    MV_FL_IMAGEOP_COLORADJUSTMENT = 0x2,
    MV_FL_IMAGEOP_FLIP_VERTICAL = 0x4,
    MV_FL_IMAGEOP_FLIP_HORIZONTAL = 0x8,
    MV_FL_IMAGEOP_INVERT = 0x10,
    MV_FL_IMAGEOP_BOTTOM_UP = 0x20,
    MV_FL_GEOMETRICWIDE = 0x40,
    MV_FL_BITMAP_BANDING = 0x80,
    MV_FL_JOBNAME_FROM_CONFIG = 0x100,
    MV_FL_SHRINK_TO_BOUNDING_BOX = 0x200,
    MV_FL_IMAGEOP_COLORADJUSTMENT_DIS = 0x400,
    MV_FL_POLYGON_CLIPPING = 0x800,
    kHalftoningBit = 0x1000,  // has no name: only a devmode's configuration copy can carry it
    MV_FL_DIAGNOSTIC = 0x2000,
    MV_FL_IMAGEOP_DUMMY_1 = 0x10000,
    MV_FL_IMAGEOP_DUMMY_2 = 0x20000,
    MV_FL_IMAGEOP_DUMMY_3 = 0x40000,
    MV_FL_IMAGEOP_RA_FS = 0x80000,
    MV_FL_IMAGEOP_RA_JARVIS = 0x100000,
    MV_FL_IMAGEOP_RA_STUCKI = 0x200000,
    MV_FL_IMAGEOP_RA_BURKES = 0x400000
};

inline constexpr std::size_t kNameCharacters = 50;  // job, material and template names with their terminator

struct SizeTemplate {
    FLOAT width;   // millimetres
    FLOAT height;  // millimetres
    WORD pixelWidth;
    WORD pixelHeight;
    WORD index;
    WORD reserved;
    DWORD takeFromApplication;
    WCHAR name[kNameCharacters];
};

struct VectorColour {  // strokes within distance 20 of an entry with mode 1 are not written as vectors
    BYTE red;
    BYTE green;
    BYTE blue;
    BYTE reserved;
    WORD mode;
};
inline constexpr std::size_t kVectorColours = 16;

struct HalftoneBlock {
    DWORD enabled;
    DWORD algorithm;
    DWORD patternSize;  // the engine's number: 0 is 2x2, 2 is 4x4, others 8x8
    COLORADJUSTMENT adjustment;
    COLORINFO colourInfo;
};

inline constexpr std::size_t kFormatCount = 4;
inline constexpr std::size_t kFormatCharacters = 56;

struct JobIdentification {
    LONG index;
    LONG number;
    DWORD nameMode;  // 1: the document's title names the job
    WCHAR name[kNameCharacters];
    WCHAR formats[kFormatCount][kFormatCharacters];  // executable names, each followed by ";", that select a naming rule
};

// Settings of the job application that the driver heeds.
enum JobApplicationFlag : DWORD { kShoulderByIndex = 0x2 };

// Names of the files that go with the driver; folders come from CMvConfig.
struct FileNames {
    DWORD jobApplicationFlags;  // JobApplicationFlag bits
    WCHAR processColourIni[16];
    WCHAR templateIni[16];
    WCHAR materialLibrary[16];
    WCHAR jobApplication[16];
};

struct BezierBlock {
    WORD mode;
    WORD accuracy;
    DWORD step;
    WCHAR library[16];
};

struct PrintingApplication {
    DWORD processId;
    WCHAR name[kNameCharacters];
};

struct DiagnosticBlock {
    WORD enabled;
    WORD reserved;
    BYTE signals[32];  // bit k % 8 of byte k / 8: measurement point at position k
};

struct ConfigurationRecord {
    DWORD unit;
    SizeTemplate size;
    WCHAR materialGroup[kNameCharacters];
    WCHAR materialName[kNameCharacters];
    WORD processMode;
    WORD processKind;    // process mode / 1000 - 1
    WORD processColour;  // 0 to 2; 2: Standard prints an 8-bit colour bitmap
    WORD pageCounter;
    WCHAR processName[20];
    DWORD raster;  // raster process: the page is prepared for pure black and white
    DWORD mciVersion;
    WORD resolution;  // dots per inch
    SHORT cutLineIndex;
    WCHAR cutLineName[16];
    WCHAR shoulderName[20];
    LONG shoulderIndex;
    WORD layers;
    WORD colourCount;  // entries of `colours` that the configuration lists; the others are zero
    FLOAT zAdjustment;
    DWORD rotaryEnabled;
    FLOAT rotaryDiameter;
    DWORD autoPosition;
    DWORD vectorJob;     // the job has no bitmap section
    DWORD ppoThreshold;  // paths with more curves go through the path recorder
    VectorColour colours[kVectorColours];
    HalftoneBlock halftone;
    WORD driverView;
    WORD driverViewMaximum;
    DWORD quickPrint;
    JobIdentification job;
    FileNames files;
    BezierBlock bezier;
    PrintingApplication application;
    LoggingBlock logging;
    DWORD flags;  // ConfigurationFlag bits
    DiagnosticBlock diagnostic;
    DWORD dumpBitmaps;
    DWORD timeStamp;  // ((hour * 256 + minute) * 256 + second) * 256 + milliseconds; identifies the instance in the log
    BYTE reserved2[108];
};
static_assert(sizeof(VectorColour) == 6);
static_assert(sizeof(ConfigurationRecord) == 1752);
static_assert(alignof(ConfigurationRecord) == 4);

}  // namespace morvil
