// HeaderWriter.cpp - the header and diagnostic groups, up to the opening of the bitmap section.
#include <algorithm>

#include "config/CMvFsServices.h"
#include "config/MvOperatingSystem.h"
#include "driver/log/Log.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/MeasurementPoints.h"
#include "jobfile/SpoolFileMembers.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr WCHAR kNoVersion[] = TEXT("0.0.0.0");
constexpr DWORD kShoulderByIndex = 2;  // bit of the job application's flags

WString shoulderName(const ConfigurationRecord& config) {
    const bool byIndex = (config.files.jobApplicationFlags & kShoulderByIndex) != 0;
    if (byIndex && config.shoulderIndex >= 0 && static_cast<std::size_t>(config.shoulderIndex) < kShoulderNames.size()) {
        return kShoulderNames[static_cast<std::size_t>(config.shoulderIndex)];
    }
    return lineText(config.shoulderName);
}

// The version of the driver file that this machine prints with; a file without one does not count.
WString installedDriverVersion() {
    const WString folder = MvOperatingSystem().getPrinterDriverSubPath();
    if (folder.empty()) return kDefaultDriverVersion;
    const WString version = CMvFsServices().getFileVersion(format(TEXT("%s\\morvil.dll"), folder).c_str());
    return version.empty() || version == kNoVersion ? WString(kDefaultDriverVersion) : version;
}

std::int64_t fileBytes(WStringView text) { return static_cast<std::int64_t>(toFileBytes(text).size()); }

}  // namespace

WString lineText(std::span<const WCHAR> buffer) {
    WString text(viewOf(buffer));
    std::replace_if(
        text.begin(), text.end(), [](WCHAR unit) { return unit < TEXT(' '); }, TEXT('_'));
    return text;
}

bool CSpoolFile::WriteHeader() {
    m->announceHeader();
    const WString jobName = m->jobName;
    if (!BuildSpoolFileName(jobName.c_str())) {
        logMorvil(1, kError, TEXT("Error BuildSpoolFile"), kLogEnd);
        return true;
    }
    m->isWhole = m->writeHeaderFile();
    return true;
}

void CSpoolFile::Members::announceHeader() const {
    logMorvil(1, kInformation, TEXT("WriteHeader, PKConfig-Flags=%d, usShoulder=%d"), config.files.jobApplicationFlags,
              config.shoulderIndex, kLogEnd);
    logMorvil(1, kInformation, TEXT("WriteHeader, JobName=%s"), jobName, kLogEnd);
}

bool CSpoolFile::Members::writeHeaderFile() {
    if (fileExists(jobFile.c_str())) DeleteFileW(jobFile.c_str());
    FileStream file(jobFile.c_str(), OpenMode::Create);
    if (!file.isOpen()) {
        logMorvil(1, kError, TEXT("Error Open SpoolFile dwError=%d"), GetLastError(), kLogEnd);
        return false;
    }
    state = JobState::Unfinished;

    driverVersion = installedDriverVersion();
    std::size_t headerStartCharacters = 0;
    WString lines = headerLines(headerStartCharacters);
    headerStart = fileBytes(WStringView(lines).substr(0, headerStartCharacters));
    appendDiagnosticGroup(lines);
    headerEnd = fileBytes(lines);
    if (hasBitmapSection()) {
        lines += format(kTextLine, kBeginKeyword, kBitmapGroup);
        lines += kBitmapOpening;
    }
    const bool written = file.writeText(lines);
    const std::int64_t end = fileBytes(lines);
    bitmapStart = end;
    bitmapPixel = end;
    bitmapEnd = end;
    vectors.placeAt(end);
    return file.close() && written;
}

WString CSpoolFile::Members::headerLines(std::size_t& headerStartCharacters) const {
    WString lines = format(kCommentLine, kVersionKeyword, driverVersion);
    lines += format(kApplicationLine, lineText(config.application.name));
    lines += format(kTextLine, kBeginKeyword, kHeaderGroup);
    headerStartCharacters = lines.size();

    lines += format(kTextLine, kProcessModeKeyword, lineText(config.processName));
    if (config.processMode == kModeStamp || config.processMode == kModeColourStamp)
        lines += format(kTextLine, kShoulderKeyword, shoulderName(config));
    if (config.processMode == kModeLayer) lines += format(kLayerLine, kLayerKeyword, config.layers, config.zAdjustment);
    lines += format(kSizeLine, kSizeKeyword, config.size.width, config.size.height);
    lines += format(kTextLine, kMaterialGroupKeyword, lineText(config.materialGroup));
    lines += format(kTextLine, kMaterialNameKeyword, lineText(config.materialName));
    lines += format(kTextLine, kJobNameKeyword, lineText(jobName));
    lines += format(kNumberLine, kJobNumberKeyword, config.job.number);
    lines += format(kNumberLine, kResolutionKeyword, config.resolution);
    lines += format(kTextLine, kCutlineKeyword, lineText(config.cutLineName));
    if (config.rotaryEnabled != 0) lines += format(kRotaryLine, kRotaryKeyword, config.rotaryDiameter);
    if (config.autoPosition != 0) lines += format(kBareLine, kAutoPositionKeyword);
    if (config.quickPrint != 0) lines += format(kBareLine, kQuickPrintKeyword);
    lines += format(kTextLine, kEndKeyword, kHeaderGroup);
    return lines;
}

void CSpoolFile::Members::appendDiagnosticGroup(WString& lines) const {
    if (config.diagnostic.enabled != 1) return;
    lines += format(kTextLine, kBeginKeyword, kDiagnosticGroup);
    lines += format(kDiagnosticVersionLine, kVersionKeyword);
    lines += format(kDiagnosticTypeLine, kTypeKeyword);
    MeasurementPoints points(folders);
    bool more = points.first();
    for (int k = 0; more && k < kMeasurementPoints; ++k, more = points.next()) {
        std::uint32_t id = 0;
        MeasurementPoints::Text identifier{};
        if (!MeasurementPoints::isEnabled(config.diagnostic.signals, k) || !points.getId(id)) continue;
        if (points.getAttribute(TEXT("Identifier"), identifier))
            lines += format(kMeasurePointLine, kMeasurePointKeyword, id, lineText(identifier));
    }
    lines += format(kTextLine, kEndKeyword, kDiagnosticGroup);
}

}  // namespace morvil
