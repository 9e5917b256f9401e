#include "config/ParsedDocumentCache.h"

#include "config/CMvConfig.h"
#include "config/MvMutex.h"
#include "config/XmlFile.h"
#include "config/XmlParser.h"

namespace morvil {

std::shared_ptr<XmlDocument> parseFileBytes(const std::vector<std::uint8_t>& bytes) {
    if (bytes.empty()) return nullptr;
    std::size_t length = 0;
    return parseXml(decodeFileBytes(bytes, length));
}

const WCHAR* ParsedDocumentCache::path() {
    if (m_path.empty()) m_path = CMvConfig().configurationFile();
    return m_path.c_str();
}

std::shared_ptr<const XmlDocument> ParsedDocumentCache::load() {
    if (m_keptOpen == nullptr) m_keptOpen.reset(OpenMutexW(SYNCHRONIZE, FALSE, kConfigurationMutex));
    readFileBytes(path(), kLargestConfigurationFile, m_fresh);
    if (m_document != nullptr && m_fresh == m_bytes) return m_document;
    m_document.reset();  // first: bytes and document must belong together even if parsing runs out of memory
    ++m_generation;
    m_bytes.swap(m_fresh);
    m_document = parseFileBytes(m_bytes);
    return m_document;
}

std::shared_ptr<XmlDocument> ParsedDocumentCache::copy() const { return parseFileBytes(m_bytes); }

}  // namespace morvil
