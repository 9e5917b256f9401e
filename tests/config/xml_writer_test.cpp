// How each kind of node is written, and that what is read back is the same tree.
#include <gtest/gtest.h>

#include <random>

#include "config/XmlDump.h"
#include "config/XmlWriter.h"

namespace morvil {
namespace {

using test::dump;
using test::parsed;

std::string written(const XmlNode& node, unsigned indentation, bool pretty) {
    WString out;
    writeXml(node, out, indentation, pretty);
    return toUtf8(out);
}

std::string rewritten(WStringView text, bool pretty = false) { return written(parseXml(WString(text))->root(), 0, pretty); }

TEST(XmlWriter, every_kind_has_its_form) {
    const struct {
        const WCHAR* text;
        const char* form;
    } cases[] = {
        {TEXT(""), ""},
        {TEXT("<a></a>"), "<a/>"},
        {TEXT("<a x='1'   y/>"), "<a x=\"1\" y/>"},
        {TEXT("<a x=''/>"), "<a x=\"\"/>"},
        {TEXT("<a> text </a>"), "<a>text</a>"},
        {TEXT("<a><b/>text</a>"), "<a><b/>text</a>"},
        {TEXT("<![CDATA[ <x> ]]>"), "<![CDATA[<x>]]>"},
        {TEXT("<!-- x -->"), "<!--x-->"},
        {TEXT("<?xml version='1.0' standalone ?>"), "<?xml version=\"1.0\" standalone?>"},
        {TEXT("<![INCLUDE[<a/> <b/>]]>"), "<![INCLUDE[<a/> <b/>]]>"},
        {TEXT("<!DOCTYPE a SYSTEM \"x\">"), "<!DOCTYPE a SYSTEM \"x\">"},
        {TEXT("<!DOCTYPE a [ <!ENTITY b \"c\"> ] >"), "<!DOCTYPE a [<!ENTITY b \"c\">]>"},
        {TEXT("<!ENTITY  %  b  \"c\" >"), "<!ENTITY % b \"c\">"},
        {TEXT("<!ATTLIST a b CDATA #IMPLIED>"), "<!ATTLIST a b CDATA #IMPLIED>"},
        {TEXT("<!ELEMENT a (b)>"), "<!ELEMENT a (b)>"},
        {TEXT("<!NOTATION a SYSTEM 'b'>"), "<!NOTATION a SYSTEM 'b'>"},
    };
    for (const auto& entry : cases) EXPECT_EQ(rewritten(entry.text), entry.form);
}

TEST(XmlWriter, an_element_without_a_name_is_anonymous) {
    XmlDocument document;
    XmlNode* const node = document.addChild(document.root(), XmlType::Element);
    EXPECT_EQ(written(document.root(), 0, false), "<anonymous/>");
    document.addChild(*node, XmlType::Element);
    EXPECT_EQ(written(document.root(), 0, false), "<anonymous><anonymous/></anonymous>");
}

TEST(XmlWriter, nothing_is_escaped) { EXPECT_EQ(rewritten(TEXT("<a x='&amp;\"&lt;'>&gt;</a>")), "<a x=\"&amp;\"&lt;\">&gt;</a>"); }

TEST(XmlWriter, pretty_puts_each_node_on_a_line_with_a_tab_for_each_level) {
    EXPECT_EQ(rewritten(TEXT("<?xml version='1.0'?><a><b><c value='1'/><d>text</d>mixed</b><!--e--></a>"), true),
              "<?xml version=\"1.0\"?>\n<a>\n\t<b>\n\t\t<c value=\"1\"/>\n\t\t<d>text</d>\n\t\tmixed\n\t</b>\n\t<!--e-->\n</a>\n");
    EXPECT_EQ(rewritten(TEXT("<!DOCTYPE a [<!ELEMENT a ANY><!-- x -->]><a/>"), true),
              "<!DOCTYPE a [\n\t<!ELEMENT a ANY>\n\t<!--x-->\n]>\n<a/>\n");
}

TEST(XmlWriter, a_part_of_a_tree_is_written_from_its_own_indentation_on) {
    const auto document = parseXml(TEXT("<a><b><c/></b><d/></a>"));
    const XmlNode& b = *document->root().children.first()->children.first();
    EXPECT_EQ(written(b, 2, true), "\t\t<b>\n\t\t\t<c/>\n\t\t</b>\n");
    EXPECT_EQ(written(*b.next, 1, true), "\t<d/>\n");
    EXPECT_EQ(written(b, 5, false), "<b><c/></b>");
}

bool hasNeighbouringTexts(const XmlNode& node) {
    for (const XmlNode& child : node.children) {
        if (child.type == XmlType::Text && child.next != nullptr && child.next->type == XmlType::Text) return true;
        if (hasNeighbouringTexts(child)) return true;
    }
    return false;
}

WString prettyText(const XmlDocument& document) {
    WString out;
    writeXml(document.root(), out, 0, true);
    return out;
}

TEST(XmlWriter, what_is_written_reads_back_as_the_same_tree) {
    constexpr WStringView kPieces[] = {TEXT("<a>"),
                                       TEXT("</a>"),
                                       TEXT("<b x='1' y>"),
                                       TEXT("</b>"),
                                       TEXT("text  of\nmine"),
                                       TEXT("<c/>"),
                                       TEXT("<!-- d -->"),
                                       TEXT("<![CDATA[ <e>  ]]>"),
                                       TEXT("<?f g='h'?>"),
                                       TEXT("<i"),
                                       TEXT("< "),
                                       TEXT("<!DOCTYPE j [<!ENTITY k 'l > m'> %n; ]>"),
                                       TEXT("<![INCLUDE[<o/>]]>"),
                                       TEXT("<!ELEMENT p (q)>")};
    std::mt19937 random(3);
    for (int round = 0; round < 5'000; ++round) {
        WString text;
        for (auto count = random() % 16; count > 0; --count) text += kPieces[random() % std::size(kPieces)];
        const auto document = parseXml(text);
        const WString once = prettyText(*document);
        // Texts between which damage was skipped become one: then the tree is the same from the second time on.
        if (!hasNeighbouringTexts(document->root())) {
            ASSERT_EQ(parsed(once), dump(*document)) << toUtf8(text);
        }
        ASSERT_EQ(parsed(prettyText(*parseXml(once))), parsed(once)) << toUtf8(text);
    }
}

TEST(XmlWriter, a_million_levels_are_written_without_recursion_and_in_little_space) {
    constexpr std::size_t kDepth = 1'000'000;
    WString text;
    for (std::size_t i = 0; i < kDepth; ++i) text += TEXT("<a>");
    const auto document = parseXml(text);
    WString out;
    writeXml(document->root(), out, 0, true);
    EXPECT_LT(out.size(), kDepth * 60);
    EXPECT_TRUE(out.ends_with(TEXT("\n\t</a>\n</a>\n")));
}

}  // namespace
}  // namespace morvil
