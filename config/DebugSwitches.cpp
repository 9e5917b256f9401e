#include "config/DebugSwitches.h"

#include "driver/log/Log.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

bool hasDebugIni(const WString& folder) { return !folder.empty() && fileExists(WString(folder).append(TEXT("\\mvDebug.ini")).c_str()); }

}  // namespace

DebugSwitches::DebugSwitches() : m_present(hasDebugIni(logState().baseFolder)) {}

int DebugSwitches::value(const WCHAR* key) const { return m_present ? getDebugValue(key) : -1; }

}  // namespace morvil
