// impersonation.h - the job file belongs to the user who prints. When the driver runs as the system account it takes on the
// printing application's user for the calling thread, from DrvEnablePDEV or DrvStartDoc to DrvEndDoc.
#pragma once

#include "platform/common/Text.h"
#include "platform/platform.h"

namespace morvil {

BOOL IsSystemUser();
// Two spellings only; "System" is a user like any other.
bool isSystemAccount(WStringView userName);

// Always TRUE. A token held from an earlier switch is overwritten, not closed.
BOOL SwitchToLoggedOnUser(DWORD processId);

// The switch that instance and document begin with.
void becomePrintingUser(DWORD processId);
// Back to the driver's own identity; nothing when no token is held.
void endImpersonation();

}  // namespace morvil
