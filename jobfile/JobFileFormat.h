// JobFileFormat.h - the lines of the job file, each template with its arguments beside it, and the constants of the format.
// The writer, the reader of the command line tool and the tests include it; docs/job-file-format.md describes the whole.
// A template that begins "<%s" takes its keyword (below) as first argument. "\n" stands for CR LF in the file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/platform.h"

namespace morvil {

// ---- file names -------------------------------------------------------------------------------------------------------
inline constexpr WCHAR kUnfinishedExtension[] = TEXT("tsa");  // while the file is written
inline constexpr WCHAR kFinishedExtension[] = TEXT("tsf");    // complete: the job application may take it
inline constexpr WCHAR kBackupFileName[] = TEXT("BackUp_Polygon.dat");
inline constexpr WCHAR kProbeFilePath[] = TEXT("%sTest.txt");  // folder with its backslash
// Pictures of the tracing mode, in the spool folder: folder with its backslash, time of day as HHMMSS.
inline constexpr WCHAR kTracerPagePath[] = TEXT("%stracer.org.%s.bmp");
inline constexpr WCHAR kTracerExtractPath[] = TEXT("%stracer.extracted.%s.bmp");
inline constexpr WCHAR kTracerRestPath[] = TEXT("%stracer.removed.%s.bmp");

// ---- line templates ---------------------------------------------------------------------------------------------------
inline constexpr WCHAR kCommentLine[] = TEXT("<!-- %s %s>\n");                           // keyword, driver version
inline constexpr WCHAR kApplicationLine[] = TEXT("<!-- PrintingApplication: %s>\n");     // executable's name
inline constexpr WCHAR kTextLine[] = TEXT("<%s %s>\n");                                  // keyword, text
inline constexpr WCHAR kNumberLine[] = TEXT("<%s %u>\n");                                // keyword, unsigned number
inline constexpr WCHAR kBareLine[] = TEXT("<%s>\n");                                     // keyword
inline constexpr WCHAR kLayerLine[] = TEXT("<%s %d;%.3f>\n");                            // keyword, layers, Z adjustment
inline constexpr WCHAR kSizeLine[] = TEXT("<%s %.2f;%.2f>\n");                           // keyword, width, height in millimetres
inline constexpr WCHAR kRotaryLine[] = TEXT("<%s %.2f>\n");                              // keyword, diameter
inline constexpr WCHAR kDiagnosticVersionLine[] = TEXT("<%s v0.1>\n");                   // keyword
inline constexpr WCHAR kDiagnosticTypeLine[] = TEXT("<%s DIAG1>\n");                     // keyword
inline constexpr WCHAR kMeasurePointLine[] = TEXT("<%s %d; 1; %s>\n");                   // keyword, point's number, its identifier
inline constexpr WCHAR kMciIdLine[] = TEXT("<MCI_ID: %d>\n");                            // identifier of the size template
inline constexpr WCHAR kGaspenVersionLine[] = TEXT("<Version.ColorsGaspen: %s>\n");      // version of the list
inline constexpr WCHAR kCustomerVersionLine[] = TEXT("<Version.ColorsCustomer: %s>\n");  // version of the list
inline constexpr WCHAR kSystemVersionLine[] = TEXT("<Version.ColorsSystem: %s>\n");      // version of the list
inline constexpr WCHAR kParametersLine[] = TEXT("<Parameters:>\n");
inline constexpr WCHAR kMciColourLine[] = TEXT("<Color%d: %s;%d;%d;%d;%s;%s>\n");  // number; name; red; green; blue; target; level
inline constexpr WCHAR kBitmapOpening[] = TEXT("<STBmp: 0;0>");                    // no line end: the image follows at once
inline constexpr WCHAR kBitmapClosing[] = TEXT("<EOBmp>\n");
inline constexpr WCHAR kBitmapGroupClosing[] = TEXT("<EndGroup: Bitmap>\n");
inline constexpr WCHAR kVectorGroupOpening[] = TEXT("<BegGroup: DrawCommands>\n");
inline constexpr WCHAR kVectorGroupClosing[] = TEXT("<EndGroup: DrawCommands>\n");

// A polygon or Bezier line is its opening, one kPointPart for each point, and kCommandClosing.
inline constexpr WCHAR kPolygonOpening[] = TEXT("<DrawPolygon: %i;%i;%i;%i");  // point count, red, green, blue
inline constexpr WCHAR kBezierOpening[] = TEXT("<DrawBezier: %i;%i;%i;%i");    // point count, red, green, blue
inline constexpr WCHAR kPointPart[] = TEXT(";%i;%i");                          // x, y
// An arc line is its opening, the coordinates, the values, the number, and kCommandClosing.
inline constexpr WCHAR kArcOpening[] = TEXT("<DrawArc: %i;%i;%i;");  // red, green, blue
inline constexpr WCHAR kArcCoordinates[] = TEXT("%i;%i;%i;");        // second, third, first coordinate, truncated
inline constexpr WCHAR kArcValues[] = TEXT("%.2f;%.2f;");            // fourth and fifth value
inline constexpr WCHAR kArcNumber[] = TEXT("%i");                    // sixth value
inline constexpr WCHAR kCommandClosing[] = TEXT(">\n");
inline constexpr char kPolygonKeyword[] = "<DrawPolygon:";  // as bytes in the file

// ---- keywords ---------------------------------------------------------------------------------------------------------
inline constexpr WCHAR kVersionKeyword[] = TEXT("Version:");
inline constexpr WCHAR kBeginKeyword[] = TEXT("BegGroup:");
inline constexpr WCHAR kEndKeyword[] = TEXT("EndGroup:");
inline constexpr WCHAR kProcessModeKeyword[] = TEXT("ProcessMode:");
inline constexpr WCHAR kShoulderKeyword[] = TEXT("StampShoulder:");
inline constexpr WCHAR kLayerKeyword[] = TEXT("LayerParameter:");
inline constexpr WCHAR kSizeKeyword[] = TEXT("Size:");
inline constexpr WCHAR kMaterialGroupKeyword[] = TEXT("MaterialGroup:");
inline constexpr WCHAR kMaterialNameKeyword[] = TEXT("MaterialName:");
inline constexpr WCHAR kJobNameKeyword[] = TEXT("JobName:");
inline constexpr WCHAR kJobNumberKeyword[] = TEXT("JobNumber:");
inline constexpr WCHAR kResolutionKeyword[] = TEXT("Resolution:");
inline constexpr WCHAR kCutlineKeyword[] = TEXT("Cutline:");
inline constexpr WCHAR kRotaryKeyword[] = TEXT("RotaryAttachment:");
inline constexpr WCHAR kAutoPositionKeyword[] = TEXT("AutoPosition");
inline constexpr WCHAR kQuickPrintKeyword[] = TEXT("QuickPrint");
inline constexpr WCHAR kTypeKeyword[] = TEXT("Type:");
inline constexpr WCHAR kMeasurePointKeyword[] = TEXT("MeasurePoint:");

// ---- groups -----------------------------------------------------------------------------------------------------------
inline constexpr WCHAR kHeaderGroup[] = TEXT("Header");
inline constexpr WCHAR kDiagnosticGroup[] = TEXT("Diagnostic");
inline constexpr WCHAR kMciGroup[] = TEXT("Mci");
inline constexpr WCHAR kBitmapGroup[] = TEXT("Bitmap");
inline constexpr WCHAR kVectorGroup[] = TEXT("DrawCommands");

// ---- constants --------------------------------------------------------------------------------------------------------
inline constexpr WCHAR kDefaultDriverVersion[] = TEXT("6.0.0.0");
inline constexpr std::array<const WCHAR*, 3> kShoulderNames{TEXT("flat"), TEXT("medium"), TEXT("steep")};
inline constexpr std::size_t kJobNameCharacters = 50;
inline constexpr int kMeasurementPoints = 256;  // at most, one bit of the configuration's mask for each

// The closing line in bytes: every vector command is inserted this far before the end of the file.
inline constexpr std::int64_t kClosingLineBytes = sizeof("<EndGroup: DrawCommands>\r\n") - 1;
static_assert(kClosingLineBytes == 26);
static_assert(sizeof(kVectorGroupClosing) / sizeof(WCHAR) - 1 == kClosingLineBytes - 1);  // "\n" grows to CR LF

// Lines of this many characters (CR LF counting as one) or more are left out of the search for duplicates.
inline constexpr std::size_t kDuplicateLineLimit = 1'000'000;

}  // namespace morvil
