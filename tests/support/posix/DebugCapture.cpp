#include "support/DebugCapture.h"

#include <algorithm>
#include <numeric>

#include "platform/posix/HostState.h"

namespace morvil::test {

DebugCapture::DebugCapture() {
    hostState().debugListener = [this](WStringView text) { m_texts.push_back(toUtf8(text)); };
}

DebugCapture::~DebugCapture() { hostState().debugListener = {}; }

std::string DebugCapture::all() const { return std::accumulate(m_texts.begin(), m_texts.end(), std::string()); }
bool DebugCapture::has(const std::string& text) const { return count(text) != 0; }
std::size_t DebugCapture::count(const std::string& text) const {
    return static_cast<std::size_t>(std::count(m_texts.begin(), m_texts.end(), text));
}

}  // namespace morvil::test
