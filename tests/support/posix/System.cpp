#include "support/System.h"

namespace morvil::test {

void makeReadOnly(const WCHAR* path) { SetFileAttributesW(path, FILE_ATTRIBUTE_READONLY); }
void needsOptionalQuestionMarks() {}
void needsMarkThatDecides() {}

}  // namespace morvil::test
