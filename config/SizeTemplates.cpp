#include "config/SizeTemplates.h"

#include <algorithm>
#include <cmath>

#include "config/CMvString.h"
#include "platform/common/FileStream.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr const WCHAR* kSection = TEXT("BDSIZETEMPLATE");
constexpr const WCHAR* kPrefix = TEXT("SIZETEMPLATE");
constexpr const WCHAR* kCountKey = TEXT("SIZETEMPLATECOUNT");
constexpr const WCHAR* kMissing = TEXT("ERROR");  // read in place of a missing key, and so never a value
constexpr float kTolerance = 0.05F;               // millimetres
constexpr float kUnreadableSize = 100.0F;
constexpr short kNoPathSet = 10001;

// A paper index is a signed 16-bit number, and templates are numbered from 119 on in it: higher ones cannot be asked for. A
// file that claims more is not searched any further.
constexpr int kMostTemplates = 32767 - 118;

using Value = std::array<WCHAR, CSizeTemplate::kTemplateNameCharacters>;

bool within(float a, float b) { return std::fabs(a - b) <= kTolerance; }

}  // namespace

CSizeTemplate::CSizeTemplate(const WCHAR* iniName) : m_iniName(viewOf(iniName)) {}

void CSizeTemplate::setPaths(const CMvConfig* folders) {
    if (folders == nullptr) throw kNoPathSet;
    m_path = format(TEXT("%s\\%s"), folders->commonFiles(), m_iniName);
    if (!fileExists(m_path.c_str())) m_path = format(TEXT("%s\\%s"), folders->programCommonFiles(), m_iniName);
}

void CSizeTemplate::reloadPaths() {
    const CMvConfig folders;
    setPaths(&folders);
}

bool CSizeTemplate::readEntry(int index) {
    reloadPaths();
    return read(index);
}

bool CSizeTemplate::getTemplate(int index, float* width, float* height, WCHAR* name) {
    const bool valid = readEntry(index);
    if (width != nullptr) *width = valid ? m_width : kUnreadableSize;
    if (height != nullptr) *height = valid ? m_height : kUnreadableSize;
    if (name != nullptr) copyText({name, kTemplateNameCharacters}, valid ? WStringView(m_name) : viewOf(kMissing));
    return valid;
}

int CSizeTemplate::findByName(const WCHAR* name) {
    reloadPaths();
    const int before = m_index;
    const WStringView wanted = viewOf(name);
    for (int index = 1; index <= kMostTemplates && read(index); ++index) {
        if (m_name == wanted) return index;
    }
    m_index = before;
    return 0;
}

int CSizeTemplate::findBySize(float width, float height) {
    reloadPaths();
    const int before = m_index;
    const int last = std::min(count(), kMostTemplates);
    for (int index = 1; index <= last; ++index) {
        if (read(index) && matches(width, height)) return index;
    }
    m_index = before;
    return 0;
}

int CSizeTemplate::getCount() {
    reloadPaths();
    return count();
}

bool CSizeTemplate::matches(float width, float height) const { return within(m_width, width) && within(m_height, height); }

int CSizeTemplate::count() {
    Value text{};
    GetPrivateProfileStringW(kSection, kCountKey, kMissing, text.data(), static_cast<DWORD>(text.size()), m_path.c_str());
    return viewOf(text) == kMissing ? 0 : CMvString().asLong(text.data());
}

// Every key is read, whatever became of the one before.
bool CSizeTemplate::read(int index) {
    Value name{};
    Value height{};
    Value width{};
    Value mciId{};
    m_index = index;
    const bool hasName = readValue(TEXT("%s[%d].Name"), index, name);
    const bool hasHeight = readValue(TEXT("%s[%d].Height"), index, height);
    const bool hasWidth = readValue(TEXT("%s[%d].Width"), index, width);
    const bool hasMciId = readValue(TEXT("%s[%d].MCI_ID"), index, mciId);
    m_name = viewOf(name);
    m_height = hasHeight ? CMvString().asFloat(height.data()) : 0.0F;
    m_width = hasWidth ? CMvString().asFloat(width.data()) : 0.0F;
    m_mciId = hasMciId ? CMvString().asInt(mciId.data()) : -1;
    return hasName && hasHeight && hasWidth;
}

bool CSizeTemplate::readValue(const WCHAR* keyFormat, int index, std::span<WCHAR> value) const {
    const WString key = format(keyFormat, kPrefix, index);
    GetPrivateProfileStringW(kSection, key.c_str(), kMissing, value.data(), static_cast<DWORD>(value.size()), m_path.c_str());
    return viewOf(value) != kMissing;
}

}  // namespace morvil
