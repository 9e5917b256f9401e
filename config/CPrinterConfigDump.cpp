// The record as lines of the log, for whoever reads a customer's log.
#include "config/CMvString.h"
#include "config/CPrinterConfigMembers.h"

namespace morvil {

namespace {

template <typename... Args>
void line(const WCHAR* text, const Args&... arguments) {
    logMorvil(1, kInformation, text, arguments..., kLogEnd);
}

// The application list that selects the naming rule; empty when none does.
WString selectedFormat(const ConfigurationRecord& record) {
    const int format = jobNameFormatOf(record.job, record.application.name);
    return format == 0 ? WString() : applicationList(record.job, format);
}

}  // namespace

// The file is read only for a list that fills its field.
WString applicationList(const JobIdentification& job, int format) {
    const std::span<const WCHAR> field(job.formats[format - 1]);
    if (viewOf(field).size() + 1 < field.size()) return WString(viewOf(field));
    CXml store;
    const ItemPath root(keys::kActiveRoot);
    ConfigurationItems items(store, root);
    return items.uncut(items.element(keys::kJobFormat, format - 1), field);
}

int jobNameFormatOf(const JobIdentification& job, const WCHAR* executable) {
    if (viewOf(executable).empty()) return 0;
    for (int format = 1; format <= static_cast<int>(kFormatCount); ++format) {
        if (CMvString().find(applicationList(job, format).c_str(), executable) != nullptr) return format;
    }
    return 0;
}

bool CPrinterConfig::bDumpConfig(const ConfigurationRecord& record) {
    const SizeTemplate& size = record.size;
    line(TEXT("CPrinterConfig::bDumpConfig"));
    line(TEXT("Unit=%d"), record.unit);
    line(TEXT("fWidth=%f, fHeight=%f, usWidth=%d, usHeight=%d, usIndex=%d, bTakeFromApplication=%d, wcName=%s"), size.width, size.height,
         size.pixelWidth, size.pixelHeight, size.index, size.takeFromApplication, viewOf(size.name));
    line(TEXT("MaterialGroup=%s, MaterialName=%s"), viewOf(record.materialGroup), viewOf(record.materialName));
    line(TEXT("ProcessModeValue=%d, bRaster=%d"), record.processMode, record.raster);
    line(TEXT("HalftoneOff=%d"), record.halftone.enabled == 0 ? 1 : 0);
    line(TEXT("QuickPrint=%d"), record.quickPrint);
    line(TEXT("DriverView=%d"), record.driverView);
    line(TEXT("JobName=%s, JobNameFormat=%s"), viewOf(std::span<const WCHAR>(record.job.name)), selectedFormat(record));
    line(TEXT("ConfigIni=%s, PathAppData=%s, PlotkeepeRExecutable=%s, Flags=%d"), m->folders.jobApplicationIni(), m->folders.dataRoot(),
         viewOf(record.files.jobApplication), record.files.jobApplicationFlags);
    line(TEXT("AppName=%s, ProcessID=%d"), viewOf(record.application.name), record.application.processId);
    line(TEXT("Flags=%d"), record.flags);
    return true;
}

}  // namespace morvil
