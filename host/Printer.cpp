#include "host/Printer.h"

#include <array>

namespace morvil::host {

namespace {

namespace fs = std::filesystem;

constexpr DWORD kUserModeDriver = 3;

std::string failed(const char* call) { return std::string(call) + " failed, error " + std::to_string(GetLastError()); }

std::wstring driverFolder() {
    std::array<BYTE, MAX_PATH * sizeof(wchar_t)> folder{};
    DWORD needed = 0;
    if (GetPrinterDriverDirectoryW(nullptr, nullptr, 1, folder.data(), static_cast<DWORD>(folder.size()), &needed) == FALSE) return {};
    return reinterpret_cast<const wchar_t*>(folder.data());
}

bool setText(HKEY key, const wchar_t* name, const std::wstring& text) {
    return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

// The spooler's own record of a queue. AddPrinter asks the user interface for a device mode first, and that has a package of
// its own.
std::string registerQueue(const std::wstring& printer) {
    const std::wstring path = L"System\\CurrentControlSet\\Control\\Print\\Printers\\" + printer;
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS) return failed("RegCreateKeyEx");
    const DWORD attributes = PRINTER_ATTRIBUTE_LOCAL;
    const bool written = setText(key, L"Name", printer) && setText(key, L"Printer Driver", printer) && setText(key, L"Port", L"MORVIL:") &&
                         setText(key, L"Print Processor", L"winprint") && setText(key, L"Datatype", L"RAW") && setText(key, L"Description", L"") &&
                         setText(key, L"Location", L"") && setText(key, L"Parameters", L"") && setText(key, L"Separator File", L"") && setText(key, L"Share Name", L"") &&
                         RegSetValueExW(key, L"Attributes", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&attributes), sizeof(attributes)) == ERROR_SUCCESS;
    RegCloseKey(key);
    return written ? std::string() : failed("RegSetValueEx");
}

}  // namespace

std::string installDriver(const std::wstring& name, const fs::path& driverFile) {
    const std::wstring folder = driverFolder();
    if (folder.empty()) return failed("GetPrinterDriverDirectory");
    std::error_code error;
    fs::create_directories(folder, error);
    fs::copy_file(driverFile, fs::path(folder) / L"morvil.dll", fs::copy_options::overwrite_existing, error);
    if (error) return "the driver file cannot be copied: " + error.message();

    std::wstring driverName = name;
    std::wstring environment = L"Windows x64";
    std::wstring driver = L"morvil.dll";
    DRIVER_INFO_3W info{};
    info.cVersion = kUserModeDriver;
    info.pName = driverName.data();
    info.pEnvironment = environment.data();
    info.pDriverPath = driver.data();
    info.pDataFile = driver.data();
    info.pConfigFile = driver.data();  // the user interface has a package of its own; only its name matters here
    return AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&info), APD_COPY_ALL_FILES) == FALSE ? failed("AddPrinterDriverEx") : std::string();
}

std::string installPrinter(const std::wstring& name, const fs::path& driverFile) {
    std::wstring printer = name;
    if (HANDLE there = nullptr; OpenPrinterW(printer.data(), &there, nullptr) != FALSE) {
        ClosePrinter(there);
        return {};
    }
    if (std::string failure = installDriver(name, driverFile); !failure.empty()) return failure;
    return registerQueue(printer);
}

}  // namespace morvil::host
