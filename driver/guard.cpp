#include "driver/guard.h"

#include <new>

#include "config/CPrinterConfig.h"
#include "driver/State.h"
#include "driver/log/Log.h"

namespace morvil {

namespace {

DWORD logException(const WCHAR* entryPoint) {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        logMorvil(1, kError, TEXT("%s not enough memory"), entryPoint, kLogEnd);
        return ERROR_NOT_ENOUGH_MEMORY;
    } catch (const ConfigurationError& error) {
        logMorvil(1, kError, TEXT("%s configuration error %d"), entryPoint, error.code, kLogEnd);
        return ERROR_GEN_FAILURE;
    } catch (...) {
        logMorvil(1, kError, TEXT("%s unexpected exception"), entryPoint, kLogEnd);
        return ERROR_GEN_FAILURE;
    }
}

}  // namespace

void reportException(const WCHAR* entryPoint) noexcept {
    DWORD error = ERROR_NOT_ENOUGH_MEMORY;
    try {
        error = logException(entryPoint);
    } catch (...) {  // the log line itself found no memory
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    // What the interrupted call should have put into the job is missing there.
    if (state().spoolFile) state().spoolFile->MarkDamaged();
    SetLastError(error);
}

}  // namespace morvil
