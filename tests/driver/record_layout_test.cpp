// Sizes and offsets of the driver's own records, which it shares with the user interface and with itself in other processes by
// the private devmode, and with the curve-fitting library: they are the same on every host and in every build.
#include "driver/Pdev.h"
#include "jobfile/PolygonPoints.h"
#include "support/Layout.h"

namespace morvil {
namespace {

using test::expectLayout;

TEST(DriverRecords, SizeTemplate) {
    expectLayout("SizeTemplate", sizeof(SizeTemplate), 120,
                 {
                     MEMBER(SizeTemplate, width, 0, 4),
                     MEMBER(SizeTemplate, height, 4, 4),
                     MEMBER(SizeTemplate, pixelWidth, 8, 2),
                     MEMBER(SizeTemplate, pixelHeight, 10, 2),
                     MEMBER(SizeTemplate, index, 12, 2),
                     MEMBER(SizeTemplate, reserved, 14, 2),
                     MEMBER(SizeTemplate, takeFromApplication, 16, 4),
                     MEMBER(SizeTemplate, name, 20, 100),
                 });
}

TEST(DriverRecords, VectorColour) {
    expectLayout("VectorColour", sizeof(VectorColour), 6,
                 {
                     MEMBER(VectorColour, red, 0, 1),
                     MEMBER(VectorColour, green, 1, 1),
                     MEMBER(VectorColour, blue, 2, 1),
                     MEMBER(VectorColour, reserved, 3, 1),
                     MEMBER(VectorColour, mode, 4, 2),
                 });
}

TEST(DriverRecords, HalftoneBlock) {
    expectLayout("HalftoneBlock", sizeof(HalftoneBlock), 156,
                 {
                     MEMBER(HalftoneBlock, enabled, 0, 4),
                     MEMBER(HalftoneBlock, algorithm, 4, 4),
                     MEMBER(HalftoneBlock, patternSize, 8, 4),
                     MEMBER(HalftoneBlock, adjustment, 12, 24),
                     MEMBER(HalftoneBlock, colourInfo, 36, 120),
                 });
}

TEST(DriverRecords, JobIdentification) {
    expectLayout("JobIdentification", sizeof(JobIdentification), 560,
                 {
                     MEMBER(JobIdentification, index, 0, 4),
                     MEMBER(JobIdentification, number, 4, 4),
                     MEMBER(JobIdentification, nameMode, 8, 4),
                     MEMBER(JobIdentification, name, 12, 100),
                     MEMBER(JobIdentification, formats, 112, 448),
                 });
}

TEST(DriverRecords, FileNames) {
    expectLayout("FileNames", sizeof(FileNames), 132,
                 {
                     MEMBER(FileNames, jobApplicationFlags, 0, 4),
                     MEMBER(FileNames, processColourIni, 4, 32),
                     MEMBER(FileNames, templateIni, 36, 32),
                     MEMBER(FileNames, materialLibrary, 68, 32),
                     MEMBER(FileNames, jobApplication, 100, 32),
                 });
}

TEST(DriverRecords, BezierBlock) {
    expectLayout("BezierBlock", sizeof(BezierBlock), 40,
                 {
                     MEMBER(BezierBlock, mode, 0, 2),
                     MEMBER(BezierBlock, accuracy, 2, 2),
                     MEMBER(BezierBlock, step, 4, 4),
                     MEMBER(BezierBlock, library, 8, 32),
                 });
}

TEST(DriverRecords, PrintingApplication) {
    expectLayout("PrintingApplication", sizeof(PrintingApplication), 104,
                 {
                     MEMBER(PrintingApplication, processId, 0, 4),
                     MEMBER(PrintingApplication, name, 4, 100),
                 });
}

TEST(DriverRecords, DiagnosticBlock) {
    expectLayout("DiagnosticBlock", sizeof(DiagnosticBlock), 36,
                 {
                     MEMBER(DiagnosticBlock, enabled, 0, 2),
                     MEMBER(DiagnosticBlock, reserved, 2, 2),
                     MEMBER(DiagnosticBlock, signals, 4, 32),
                 });
}

TEST(DriverRecords, ConfigurationRecord) {
    expectLayout("ConfigurationRecord", sizeof(ConfigurationRecord), 1752,
                 {
                     MEMBER(ConfigurationRecord, unit, 0, 4),
                     MEMBER(ConfigurationRecord, size, 4, 120),
                     MEMBER(ConfigurationRecord, materialGroup, 124, 100),
                     MEMBER(ConfigurationRecord, materialName, 224, 100),
                     MEMBER(ConfigurationRecord, processMode, 324, 2),
                     MEMBER(ConfigurationRecord, processKind, 326, 2),
                     MEMBER(ConfigurationRecord, processColour, 328, 2),
                     MEMBER(ConfigurationRecord, pageCounter, 330, 2),
                     MEMBER(ConfigurationRecord, processName, 332, 40),
                     MEMBER(ConfigurationRecord, raster, 372, 4),
                     MEMBER(ConfigurationRecord, mciVersion, 376, 4),
                     MEMBER(ConfigurationRecord, resolution, 380, 2),
                     MEMBER(ConfigurationRecord, cutLineIndex, 382, 2),
                     MEMBER(ConfigurationRecord, cutLineName, 384, 32),
                     MEMBER(ConfigurationRecord, shoulderName, 416, 40),
                     MEMBER(ConfigurationRecord, shoulderIndex, 456, 4),
                     MEMBER(ConfigurationRecord, layers, 460, 2),
                     MEMBER(ConfigurationRecord, colourCount, 462, 2),
                     MEMBER(ConfigurationRecord, zAdjustment, 464, 4),
                     MEMBER(ConfigurationRecord, rotaryEnabled, 468, 4),
                     MEMBER(ConfigurationRecord, rotaryDiameter, 472, 4),
                     MEMBER(ConfigurationRecord, autoPosition, 476, 4),
                     MEMBER(ConfigurationRecord, vectorJob, 480, 4),
                     MEMBER(ConfigurationRecord, ppoThreshold, 484, 4),
                     MEMBER(ConfigurationRecord, colours, 488, 96),
                     MEMBER(ConfigurationRecord, halftone, 584, 156),
                     MEMBER(ConfigurationRecord, driverView, 740, 2),
                     MEMBER(ConfigurationRecord, driverViewMaximum, 742, 2),
                     MEMBER(ConfigurationRecord, quickPrint, 744, 4),
                     MEMBER(ConfigurationRecord, job, 748, 560),
                     MEMBER(ConfigurationRecord, files, 1308, 132),
                     MEMBER(ConfigurationRecord, bezier, 1440, 40),
                     MEMBER(ConfigurationRecord, application, 1480, 104),
                     MEMBER(ConfigurationRecord, logging, 1584, 12),
                     MEMBER(ConfigurationRecord, flags, 1596, 4),
                     MEMBER(ConfigurationRecord, diagnostic, 1600, 36),
                     MEMBER(ConfigurationRecord, dumpBitmaps, 1636, 4),
                     MEMBER(ConfigurationRecord, timeStamp, 1640, 4),
                     MEMBER(ConfigurationRecord, reserved2, 1644, 108),
                 });
}

TEST(DriverRecords, LoggingBlock) {
    expectLayout("LoggingBlock", sizeof(LoggingBlock), 12,
                 {
                     MEMBER(LoggingBlock, enabled, 0, 4),
                     MEMBER(LoggingBlock, debugLevel, 4, 2),
                     MEMBER(LoggingBlock, reserved, 6, 2),
                     MEMBER(LoggingBlock, maxBytes, 8, 4),
                 });
}

TEST(DriverRecords, ArcRecord) {
    expectLayout("ArcRecord", sizeof(ArcRecord), 56,
                 {
                     MEMBER(ArcRecord, coordinates, 0, 24),
                     MEMBER(ArcRecord, unused, 24, 8),
                     MEMBER(ArcRecord, values, 32, 16),
                     MEMBER(ArcRecord, sixth, 48, 4),
                 });
}

TEST(DriverRecords, PlotDM) {
    expectLayout("PlotDM", sizeof(PlotDM), 2008,
                 {
                     MEMBER(PlotDM, dm, 0, 220),
                     MEMBER(PlotDM, privateHead, 220, 12),
                     MEMBER(PlotDM, configuration, 232, 1752),
                     MEMBER(PlotDM, privateTail, 1984, 24),
                 });
}

TEST(DriverRecords, PDEV) {
    expectLayout("PDEV", sizeof(PDEV), 2120,
                 {
                     MEMBER(PDEV, magic, 0, 4),
                     MEMBER(PDEV, size, 4, 4),
                     MEMBER(PDEV, flags, 8, 4),
                     MEMBER(PDEV, hdev, 16, 8),
                     MEMBER(PDEV, otherSurface, 24, 8),
                     MEMBER(PDEV, hBitmap, 32, 8),
                     MEMBER(PDEV, hPalette, 40, 8),
                     MEMBER(PDEV, pso, 48, 8),
                     MEMBER(PDEV, hPrinter, 56, 8),
                     MEMBER(PDEV, plotDM, 64, 2008),
                     MEMBER(PDEV, dpi, 2072, 4),
                     MEMBER(PDEV, reserved, 2076, 40),
                     MEMBER(PDEV, trailer, 2116, 4),
                 });
}

}  // namespace
}  // namespace morvil
