// guard.h - the border towards the engine: an entry point's work runs inside guarded(), which turns every exception (a failed
// allocation too) into a log line, a last error and the entry point's failing result. The job that was being written is then
// not given to the job application: a call that ended half-way has left something out of it.
#pragma once

#include "platform/platform.h"

namespace morvil {

// Logs the exception being handled and sets the last error: 8 for a failed allocation, 31 for any other.
void reportException(const WCHAR* entryPoint) noexcept;

template <typename Result, typename Body>
Result guarded(const WCHAR* entryPoint, Result failure, const Body& body) noexcept {
    try {
        return body();
    } catch (...) {
        reportException(entryPoint);
    }
    return failure;
}

template <typename Body>
void guarded(const WCHAR* entryPoint, const Body& body) noexcept {
    try {
        body();
    } catch (...) {
        reportException(entryPoint);
    }
}

}  // namespace morvil
