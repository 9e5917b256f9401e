// JobNumber.h - finds the number that tells a job from earlier ones of the same name in a folder. Reads the folder anew for
// every question, as the job application takes jobs away at any time.
#pragma once

#include "platform/common/Text.h"

namespace morvil {

// 0: no job of that name lies there. Otherwise 1, or one more than the largest number found. `folder` ends in a backslash; an
// empty one holds no jobs.
int nextFreeNumber(const WString& folder, WStringView name);

// The name, a blank and the number in four digits (more from 10000 on), at most kLongestJobName characters together: the name
// is cut for the number, never the number.
WString numberedName(WStringView name, int number);

}  // namespace morvil
