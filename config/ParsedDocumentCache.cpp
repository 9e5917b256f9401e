#include "config/ParsedDocumentCache.h"

#include <algorithm>

#include "config/CMvConfig.h"
#include "config/MvMutex.h"
#include "config/XmlFile.h"
#include "config/XmlParser.h"
#include "platform/common/FileStream.h"

namespace morvil {

std::shared_ptr<XmlDocument> parseFileBytes(const std::vector<std::uint8_t>& bytes, std::shared_ptr<XmlDocument> spent) {
    if (bytes.empty()) return nullptr;
    if (spent == nullptr) spent = std::make_shared<XmlDocument>();
    const std::span<WCHAR> text = spent->startText(bytes.size());
    if (text.empty()) return nullptr;
    spent->endText(text.first(decodeFileBytes(bytes, text) / sizeof(WCHAR)));
    parseXml(*spent);
    return spent;
}

const WCHAR* ParsedDocumentCache::path() {
    if (m_path.empty()) m_path = CMvConfig().configurationFile();
    return m_path.c_str();
}

// One byte more is asked for than was there, so that a single call tells a file that has grown as well.
bool ParsedDocumentCache::readsTheSame() {
    FileStream file(path(), OpenMode::Read);
    m_fresh.resize(m_bytes.size() + 1);
    return file.readOnce(m_fresh) == m_bytes.size() && std::equal(m_bytes.begin(), m_bytes.end(), m_fresh.begin());
}

std::shared_ptr<const XmlDocument> ParsedDocumentCache::load() {
    if (m_keptOpen == nullptr) m_keptOpen.reset(OpenMutexW(SYNCHRONIZE, FALSE, kConfigurationMutex));
    if (m_document != nullptr && readsTheSame()) return m_document;
    readFileBytes(path(), kLargestConfigurationFile, m_fresh);
    if (m_document != nullptr && m_fresh == m_bytes) return m_document;
    m_document.reset();  // first: bytes and document must belong together even if parsing runs out of memory
    ++m_generation;
    m_bytes.swap(m_fresh);
    m_document = parseFileBytes(m_bytes);
    return m_document;
}

const DebugSwitches& ParsedDocumentCache::switches() {
    constexpr DWORD kGoodFor = 100;  // milliseconds
    const DWORD now = GetTickCount();
    if (!m_switches || now - m_switchesTick >= kGoodFor) {
        m_switches.emplace();
        m_switchesTick = now;
    }
    return *m_switches;
}

std::shared_ptr<XmlDocument> ParsedDocumentCache::copy() const { return parseFileBytes(m_bytes); }

}  // namespace morvil
