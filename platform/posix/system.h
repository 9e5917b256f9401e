// system.h - the platform's names away from Windows, in one include. See the single headers for what each group promises.
#pragma once

#include "platform/posix/base_types.h"
#include "platform/posix/kernel.h"
#include "platform/posix/security.h"
#include "platform/posix/spooler.h"
#include "platform/posix/gdi.h"
#include "platform/posix/ddi.h"
