// DebugCapture.cpp - takes the place of the system's function in the import table of this program, which is where everybody
// who calls it looks it up. The system itself would narrow the text to a code page on its way to a debugger.
#include "support/DebugCapture.h"

#include <algorithm>
#include <numeric>

#include "platform/common/Text.h"

namespace morvil::test {

namespace {

std::vector<std::string>* listener = nullptr;

void WINAPI take(LPCWSTR text) {
    if (listener != nullptr) listener->push_back(toUtf8(viewOf(text)));
}

}  // namespace

}  // namespace morvil::test

extern "C" {
extern void(WINAPI* const __imp_OutputDebugStringW)(LPCWSTR);
void(WINAPI* const __imp_OutputDebugStringW)(LPCWSTR) = morvil::test::take;
}

namespace morvil::test {

DebugCapture::DebugCapture() { listener = &m_texts; }
DebugCapture::~DebugCapture() { listener = nullptr; }

std::string DebugCapture::all() const { return std::accumulate(m_texts.begin(), m_texts.end(), std::string()); }
bool DebugCapture::has(const std::string& text) const { return count(text) != 0; }
std::size_t DebugCapture::count(const std::string& text) const {
    return static_cast<std::size_t>(std::count(m_texts.begin(), m_texts.end(), text));
}

}  // namespace morvil::test
