#include "jobfile/MeasurementPoints.h"

#include "config/CMvString.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

constexpr WCHAR kElements[] = TEXT("MeasurementPoints.MeasurementPoint");

const WCHAR* fileOf(const CMvConfig& folders) {
    return fileExists(folders.diagnosticsFile()) ? folders.diagnosticsFile() : folders.configurationFile();
}

}  // namespace

MeasurementPoints::MeasurementPoints(const CMvConfig& folders) : m_document(fileOf(folders)) {}

bool MeasurementPoints::isEnabled(std::span<const std::uint8_t, 32> mask, int k) {
    if (k < 0 || k > 255) return false;
    const auto position = static_cast<std::size_t>(k);
    return ((mask[position / 8] >> (position % 8)) & 1) != 0;
}

bool MeasurementPoints::first() {
    m_element = m_document.first(kElements);
    return m_element != nullptr;
}

bool MeasurementPoints::next() {
    m_element = m_document.next();
    return m_element != nullptr;
}

bool MeasurementPoints::getId(std::uint32_t& id) {
    Text text{};
    const bool found = getAttribute(TEXT("ID"), text);
    id = CMvString().asUnsignedInt(found ? text.data() : nullptr);
    return found && (id != 0 || viewOf(text.data()) == TEXT("0"));  // 0 also stands for a text that is no number
}

bool MeasurementPoints::getAttribute(const WCHAR* name, Text& value) {
    return m_element != nullptr && m_document.readAttribute(m_element, value.data(), name);
}

}  // namespace morvil
