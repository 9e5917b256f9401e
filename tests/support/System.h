// System.h - what a case wants of the system that not every system gives: each of these leaves the case, skipped, where the
// system under it does otherwise. The substitute of the system gives all of it.
#pragma once

#include "platform/common/Text.h"

namespace morvil::test {

// Makes a file read-only in a way that keeps it from being written.
void makeReadOnly(const WCHAR* path);
// "?" at the end of a pattern's name, in front of the point, matches no character as well as one.
void needsOptionalQuestionMarks();
// A byte-order mark makes an odd number of bytes UTF-16 as well.
void needsMarkThatDecides();

}  // namespace morvil::test
