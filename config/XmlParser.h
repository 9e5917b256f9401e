// XmlParser.h - reads a text into a tree. A single scan from left to right that looks at each character a bounded number of
// times and keeps no stack, so that neither the size nor the nesting of a damaged file can hurt. It does not stop at malformed
// input: what cannot be read as markup is skipped or kept as text, an unclosed element is closed at the end of the text, and a
// tag, declaration or quoted value that the text ends in is dropped, so that no value is ever half a value.
#pragma once

#include <memory>

#include "config/XmlDocument.h"

namespace morvil {

// Null when there is no memory for a document. Character entities stay as they stand.
std::unique_ptr<XmlDocument> parseXml(WStringView text);
// Reads the text of a document that has no tree yet.
void parseXml(XmlDocument& document);

}  // namespace morvil
