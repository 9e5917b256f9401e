// XmlWriter.h - writes a tree as text, depth first, attributes and children in their stored order; escapes nothing.
#pragma once

#include "config/XmlNode.h"

namespace morvil {

// Appends `node` and everything below it to `out`. With `pretty` each node begins on a line of its own ("\n"), indented by
// one tab for each level from `indentation` on; an element whose only child is a text stays on one line.
void writeXml(const XmlNode& node, WString& out, unsigned indentation, bool pretty);

}  // namespace morvil
