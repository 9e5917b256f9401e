// XmlNode.h - the tree of an XML document: one record for every kind of node, with owned attributes and children.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/common/Text.h"

namespace morvil {

enum class XmlType : std::uint32_t {
    Root = 1,
    Element = 2,
    Text = 3,
    CData = 4,
    Comment = 5,
    ProcessingInstruction = 6,
    Include = 7,
    DocumentType = 8,
    Entity = 9,
    AttributeList = 10,
    ElementDeclaration = 11,
    Notation = 12
};

struct XmlAttribute {
    WString name;
    std::optional<WString> value;  // none: written as a bare name
};

struct XmlNode {
    XmlType type = XmlType::Element;
    std::optional<WString> name;
    std::vector<XmlAttribute> attributes;
    std::vector<std::unique_ptr<XmlNode>> children;
    std::optional<WString> value;
    XmlNode* parent = nullptr;
};

}  // namespace morvil
