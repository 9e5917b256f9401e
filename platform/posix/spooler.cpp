// spooler.cpp - the print spooler's queries, answered from the printers and forms of the host state. Promises: the calling
// conventions of the platform (ask for the size, then for the data; records first, texts behind them); names are found
// whatever their case; no name opens the print server, which knows the forms.
// Refuses: other levels (ERROR_INVALID_LEVEL), access rights (all are granted), jobs, devmodes and security descriptors of
// printers (null).
#include "platform/posix/spooler.h"

#include <cstring>
#include <memory>
#include <optional>

#include "platform/posix/CaseFold.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HostState.h"

using namespace morvil;

namespace {

struct PrinterObject final : HandleObject {
    std::optional<SpoolerPrinter> printer;  // empty: the server
};

std::shared_ptr<PrinterObject> printerOf(HANDLE handle) { return hostState().handles.get<PrinterObject>(handle, HandleKind::Printer); }

// Lays texts into the caller's buffer, behind the records.
class TextArea {
  public:
    TextArea(LPBYTE buffer, std::size_t at) : m_next(reinterpret_cast<WCHAR*>(buffer + at)) {}
    LPWSTR put(WStringView text) {
        WCHAR* const start = m_next;
        text.copy(start, text.size());
        start[text.size()] = 0;
        m_next += text.size() + 1;
        return start;
    }
    LPWSTR putOrNull(WStringView text) { return text.empty() ? nullptr : put(text); }

  private:
    WCHAR* m_next;
};

DWORD textBytes(std::initializer_list<WStringView> texts) {
    std::size_t bytes = 0;
    for (const WStringView text : texts) bytes += (text.size() + 1) * sizeof(WCHAR);
    return static_cast<DWORD>(bytes);
}

// Tells the size; true when the buffer holds it.
bool fits(DWORD size, LPBYTE out, DWORD bytes, LPDWORD needed) {
    *needed = size;
    return (out != nullptr && bytes >= size) || failWith(ERROR_INSUFFICIENT_BUFFER) != FALSE;
}

constexpr WStringView kEnvironment = TEXT("Windows x64");
constexpr WStringView kDriverFile = TEXT("C:\\Windows\\System32\\spool\\drivers\\x64\\3\\morvil.dll");
constexpr WStringView kSettingsFile = TEXT("C:\\Windows\\System32\\spool\\drivers\\x64\\3\\MorvilUI.dll");

}  // namespace

BOOL OpenPrinterW(LPWSTR name, HANDLE* printer, PRINTER_DEFAULTSW*) {
    if (refused("OpenPrinterW")) return FALSE;
    if (printer == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    auto object = std::make_shared<PrinterObject>();
    if (name != nullptr) {
        for (const SpoolerPrinter& known : hostState().printers) {
            if (equalIgnoringCase(known.name, name)) object->printer = known;
        }
        if (!object->printer) return failWith(ERROR_INVALID_PRINTER_NAME);
    }
    const HANDLE handle = hostState().handles.add({.kind = HandleKind::Printer, .file = -1, .object = std::move(object)});
    if (handle == INVALID_HANDLE_VALUE) return failWith(ERROR_TOO_MANY_OPEN_FILES);
    *printer = handle;
    return TRUE;
}

BOOL ClosePrinter(HANDLE printer) {
    if (!printerOf(printer)) return failWith(ERROR_INVALID_HANDLE);
    hostState().handles.take(printer);
    return TRUE;
}

BOOL GetPrinterW(HANDLE printer, DWORD level, LPBYTE out, DWORD bytes, LPDWORD needed) {
    if (refused("GetPrinterW")) return FALSE;
    const auto object = printerOf(printer);
    if (!object || !object->printer) return failWith(ERROR_INVALID_HANDLE);
    if (level != 2) return failWith(ERROR_INVALID_LEVEL);
    if (needed == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    const SpoolerPrinter& from = *object->printer;
    const DWORD texts = textBytes({from.server,
                                   from.name,
                                   from.share,
                                   from.port,
                                   from.driver,
                                   from.comment,
                                   {},
                                   from.separatorFile,
                                   from.processor,
                                   from.dataType,
                                   {}});
    if (!fits(static_cast<DWORD>(sizeof(PRINTER_INFO_2W)) + texts, out, bytes, needed)) return FALSE;
    TextArea area(out, sizeof(PRINTER_INFO_2W));
    PRINTER_INFO_2W info{};
    info.pServerName = area.putOrNull(from.server);  // null for a printer of this machine
    info.pPrinterName = area.put(from.name);
    info.pShareName = area.put(from.share);
    info.pPortName = area.put(from.port);
    info.pDriverName = area.put(from.driver);
    info.pComment = area.put(from.comment);
    info.pLocation = area.put({});
    info.pSepFile = area.put(from.separatorFile);
    info.pPrintProcessor = area.put(from.processor);
    info.pDatatype = area.put(from.dataType);
    info.pParameters = area.put({});
    info.Attributes = from.attributes;
    info.Priority = 1;
    info.cJobs = from.jobs;
    std::memcpy(out, &info, sizeof(info));
    return TRUE;
}

BOOL GetPrinterDriverW(HANDLE printer, LPWSTR, DWORD level, LPBYTE out, DWORD bytes, LPDWORD needed) {
    if (refused("GetPrinterDriverW")) return FALSE;
    const auto object = printerOf(printer);
    if (!object || !object->printer) return failWith(ERROR_INVALID_HANDLE);
    if (level != 2) return failWith(ERROR_INVALID_LEVEL);
    if (needed == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    const WString& name = object->printer->driver;
    const DWORD texts = textBytes({name, kEnvironment, kDriverFile, kDriverFile, kSettingsFile});
    if (!fits(static_cast<DWORD>(sizeof(DRIVER_INFO_2W)) + texts, out, bytes, needed)) return FALSE;
    TextArea area(out, sizeof(DRIVER_INFO_2W));
    constexpr DWORD kUserModeDriver = 3;
    DRIVER_INFO_2W info{};
    info.cVersion = kUserModeDriver;
    info.pName = area.put(name);
    info.pEnvironment = area.put(kEnvironment);
    info.pDriverPath = area.put(kDriverFile);
    info.pDataFile = area.put(kDriverFile);
    info.pConfigFile = area.put(kSettingsFile);
    std::memcpy(out, &info, sizeof(info));
    return TRUE;
}

BOOL EnumFormsW(HANDLE printer, DWORD level, LPBYTE out, DWORD bytes, LPDWORD needed, LPDWORD returned) {
    if (refused("EnumFormsW")) return FALSE;
    if (!printerOf(printer)) return failWith(ERROR_INVALID_HANDLE);
    if (level != 1) return failWith(ERROR_INVALID_LEVEL);
    if (needed == nullptr || returned == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    *returned = 0;
    const auto& forms = hostState().forms;
    std::size_t texts = 0;
    for (const SpoolerForm& form : forms) texts += textBytes({form.name});
    const std::size_t records = forms.size() * sizeof(FORM_INFO_1W);
    if (!fits(static_cast<DWORD>(records + texts), out, bytes, needed)) return FALSE;
    TextArea area(out, records);
    for (std::size_t i = 0; i < forms.size(); ++i) {
        const SIZEL size = forms[i].size;
        constexpr DWORD kBuiltIn = 2;
        const FORM_INFO_1W info{
            .Flags = kBuiltIn, .pName = area.put(forms[i].name), .Size = size, .ImageableArea = {0, 0, size.cx, size.cy}};
        std::memcpy(out + i * sizeof(info), &info, sizeof(info));
    }
    *returned = static_cast<DWORD>(forms.size());
    return TRUE;
}
