// processes.cpp - who runs. Promises: the numbers of this process and thread are the system's own.
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/posix/kernel.h"

DWORD GetCurrentProcessId() { return static_cast<DWORD>(::getpid()); }
DWORD GetCurrentThreadId() { return static_cast<DWORD>(::syscall(SYS_gettid)); }
HANDLE GetCurrentProcess() { return INVALID_HANDLE_VALUE; }  // the platform's pseudo-handle has this value, too
