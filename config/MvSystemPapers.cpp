#include "config/MvSystemPapers.h"

#include <vector>

#include "driver/log/Log.h"

namespace morvil {

namespace {

// The local print server, whose forms all printers share.
class LocalPrintServer {
  public:
    LocalPrintServer() {
        if (OpenPrinterW(nullptr, &m_handle, nullptr) == FALSE) m_handle = nullptr;
    }
    ~LocalPrintServer() {
        if (m_handle != nullptr) ClosePrinter(m_handle);
    }
    LocalPrintServer(const LocalPrintServer&) = delete;
    LocalPrintServer& operator=(const LocalPrintServer&) = delete;

    [[nodiscard]] HANDLE get() const { return m_handle; }

  private:
    HANDLE m_handle = nullptr;
};

// Forms with the texts that they point to, in one block as the spooler fills it.
struct FormList {
    std::vector<FORM_INFO_1W> block;
    DWORD count = 0;
};

FormList enumerateForms() {
    const LocalPrintServer server;
    FormList forms;
    if (server.get() == nullptr) return forms;
    DWORD bytes = 0;
    EnumFormsW(server.get(), 1, nullptr, 0, &bytes, &forms.count);
    forms.count = 0;
    forms.block.resize((bytes + sizeof(FORM_INFO_1W) - 1) / sizeof(FORM_INFO_1W));
    if (forms.block.empty()) return forms;
    auto* const out = reinterpret_cast<LPBYTE>(forms.block.data());
    if (EnumFormsW(server.get(), 1, out, bytes, &bytes, &forms.count) == FALSE) forms.count = 0;
    return forms;
}

}  // namespace

bool MvSystemPapers::getSizeDimensions(int index, int* width, int* height) {
    static constexpr int kThousandths = 1000;
    if (index < 1 || width == nullptr || height == nullptr) {
        debugPrint(TEXT("MvSystemPapers::getSizeDimensions, invalid parameters\n"));
        return false;
    }
    const FormList forms = enumerateForms();
    const bool found = static_cast<DWORD>(index) < forms.count;
    SIZEL size{};
    if (found) {
        size = forms.block[static_cast<std::size_t>(index) - 1].Size;
        *width = static_cast<int>(size.cx / kThousandths);
        *height = static_cast<int>(size.cy / kThousandths);
    }
    debugPrint(TEXT("MvSystemPapers::getSizeDimensions, iIndex=%d, width=%d, height=%d, bRet=%d\n"), index, size.cx / kThousandths,
               size.cy / kThousandths, found ? 1 : 0);
    return found;
}

}  // namespace morvil
