#include "config/XmlWriter.h"

#include <algorithm>

namespace morvil {

namespace {

// No item lies deeper than ten elements. Beyond this depth lines are not indented any further, or the file of a senselessly
// deep tree would grow with the square of its depth.
constexpr unsigned kDeepestIndentation = 20;

class Writer {
  public:
    Writer(WString& out, unsigned indentation, bool pretty) : m_out(out), m_depth(indentation), m_pretty(pretty) {}

    // Walks by the links of the tree, without recursion, whatever its depth.
    void write(const XmlNode& top) {
        const XmlNode* at = &top;
        for (;;) {
            if (open(*at)) {
                at = at->children.first();
                continue;
            }
            while (at != &top && at->next == nullptr) {
                at = at->parent;
                close(*at);
            }
            if (at == &top) return;
            at = at->next;
        }
    }

  private:
    void startLine() {
        if (m_pretty) m_out.append(std::min(m_depth, kDeepestIndentation), TEXT('\t'));
    }
    void endLine() {
        if (m_pretty) m_out.push_back(TEXT('\n'));
    }

    static WStringView nameOf(const XmlNode& node) { return node.name.value_or(WStringView(TEXT("anonymous"))); }

    // Writes all of a node without children to visit, or its front; true in the second case.
    bool open(const XmlNode& node) {
        if (node.type == XmlType::Root) return !node.children.empty();
        startLine();
        const bool opened = openInLine(node);
        endLine();
        if (opened) ++m_depth;
        return opened;
    }

    bool openInLine(const XmlNode& node) {
        switch (node.type) {
            case XmlType::Element: return openElement(node);
            case XmlType::DocumentType: return openDocumentType(node);
            case XmlType::CData: put(TEXT("<![CDATA["), node, TEXT("]]>")); break;
            case XmlType::Comment: put(TEXT("<!--"), node, TEXT("-->")); break;
            case XmlType::Include: put(TEXT("<![INCLUDE["), node, TEXT("]]>")); break;
            case XmlType::ProcessingInstruction: putInstruction(node); break;
            case XmlType::Entity: putDeclaration(TEXT("<!ENTITY "), node); break;
            case XmlType::AttributeList: putDeclaration(TEXT("<!ATTLIST "), node); break;
            case XmlType::ElementDeclaration: putDeclaration(TEXT("<!ELEMENT "), node); break;
            case XmlType::Notation: putDeclaration(TEXT("<!NOTATION "), node); break;
            case XmlType::Text:
            case XmlType::Root: put({}, node, {}); break;
        }
        return false;
    }

    bool openElement(const XmlNode& node) {
        m_out.append(TEXT("<")).append(nameOf(node));
        putAttributes(node);
        if (node.children.empty()) {
            m_out.append(TEXT("/>"));
            return false;
        }
        m_out.append(TEXT(">"));
        if (!node.children.hasOne() || node.children.first()->type != XmlType::Text) return true;
        m_out.append(node.children.first()->value.value_or(WStringView()));
        putClosingTag(node);
        return false;
    }

    bool openDocumentType(const XmlNode& node) {
        m_out.append(TEXT("<!DOCTYPE"));
        putAttributes(node);
        m_out.append(node.children.empty() ? TEXT(">") : TEXT(" ["));
        return !node.children.empty();
    }

    void close(const XmlNode& node) {
        if (node.type == XmlType::Root) return;
        --m_depth;
        startLine();
        if (node.type == XmlType::DocumentType) {
            m_out.append(TEXT("]>"));
        } else {
            putClosingTag(node);
        }
        endLine();
    }

    void putClosingTag(const XmlNode& node) { m_out.append(TEXT("</")).append(nameOf(node)).append(TEXT(">")); }

    void putAttributes(const XmlNode& node) {
        for (const XmlAttribute& attribute : node.attributes) {
            m_out.append(TEXT(" ")).append(attribute.name);
            if (attribute.value) m_out.append(TEXT("=\"")).append(*attribute.value).append(TEXT("\""));
        }
    }

    void putInstruction(const XmlNode& node) {
        m_out.append(TEXT("<?")).append(node.name.value_or(WStringView()));
        putAttributes(node);
        m_out.append(TEXT("?>"));
    }

    void putDeclaration(WStringView opening, const XmlNode& node) {
        m_out.append(opening).append(node.name.value_or(WStringView())).append(TEXT(" ")).append(node.value.value_or(WStringView()));
        m_out.append(TEXT(">"));
    }

    void put(WStringView front, const XmlNode& node, WStringView back) {
        m_out.append(front).append(node.value.value_or(WStringView())).append(back);
    }

    WString& m_out;
    unsigned m_depth;
    bool m_pretty;
};

}  // namespace

void writeXml(const XmlNode& node, WString& out, unsigned indentation, bool pretty) { Writer(out, indentation, pretty).write(node); }

}  // namespace morvil
