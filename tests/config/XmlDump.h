// XmlDump.h - a tree as readable text, one node per line, so that a test can say what a document must become.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "config/XmlDocument.h"
#include "config/XmlParser.h"

namespace morvil::test {

inline const char* kindOf(XmlType type) {
    static constexpr const char* kNames[] = {"?",           "root",    "element", "text",   "cdata",   "comment",
                                             "instruction", "include", "doctype", "entity", "attlist", "element-declared",
                                             "notation"};
    return kNames[static_cast<unsigned>(type)];
}

// "element a x='1' bare" / "text 'b'", indented by the depth; the root is not shown.
inline void dumpInto(std::string& out, const XmlNode& node, std::size_t depth) {
    for (const XmlNode& child : node.children) {
        EXPECT_EQ(child.parent, &node);
        out.append(depth * 2, ' ').append(kindOf(child.type));
        if (child.name) out.append(" ").append(toUtf8(*child.name));
        if (child.value) out.append(" '").append(toUtf8(*child.value)).append("'");
        for (const XmlAttribute& attribute : child.attributes) {
            out.append(" ").append(toUtf8(attribute.name));
            if (attribute.value) out.append("='").append(toUtf8(*attribute.value)).append("'");
        }
        out += "\n";
        dumpInto(out, child, depth + 1);
    }
}

inline std::string dump(const XmlDocument& document) {
    std::string out;
    dumpInto(out, document.root(), 0);
    return out;
}

inline std::string parsed(WStringView text) {
    const auto document = parseXml(WString(text));
    return document == nullptr ? "no document" : dump(*document);
}

}  // namespace morvil::test
