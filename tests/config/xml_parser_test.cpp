// What the parser makes of text: markup of every kind, white space, and damage.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "config/XmlDump.h"
#include "config/XmlParser.h"

namespace morvil {
namespace {

using test::dump;
using test::parsed;

struct Reading {
    const WCHAR* text;
    const char* tree;
};

void expectReadings(std::span<const Reading> readings) {
    for (const Reading& reading : readings) EXPECT_EQ(parsed(reading.text), reading.tree) << toUtf8(reading.text);
}

constexpr Reading kDamaged[] = {
    {TEXT(""), ""},
    {TEXT("  \r\n\t "), ""},
    {TEXT("\uFEFF"), ""},
    {TEXT("plain"), "text 'plain'\n"},
    {TEXT("<"), "text '<'\n"},
    {TEXT("<<<"), "text '<<<'\n"},
    {TEXT("a < b<"), "text 'a < b<'\n"},
    {TEXT("<!DOCTYPE a [ x < y ]>z"), "doctype a\n  text 'x < y'\ntext 'z'\n"},
    {TEXT("< a/>"), "text '< a/>'\n"},
    {TEXT("</>x"), "text 'x'\n"},
    {TEXT("</a>x"), "text 'x'\n"},
    {TEXT("<!unknown words>x"), "text 'x'\n"},
    {TEXT("<!unknown <a/>"), "element a\n"},
    {TEXT("<? x ?>y"), "text 'y'\n"},
    {TEXT("<a"), ""},
    {TEXT("<a x"), ""},
    {TEXT("<a x="), ""},
    {TEXT("<a x=\"1"), ""},
    {TEXT("<a x=\"1\""), ""},
    {TEXT("<a x=\"1\"/"), ""},
    {TEXT("<?xml version=\"1.0\"?"), ""},
    {TEXT("<!ENTITY a \"b\""), ""},
    {TEXT("<!ENTITY a \"b>c"), ""},
    {TEXT("<a>"), "element a\n"},
    {TEXT("<a><b><c>"), "element a\n  element b\n    element c\n"},
    {TEXT("<a x=\"1\"><b y=\"2"), "element a x='1'\n"},
    {TEXT("<a x <b/>"), "element a x\n  element b\n"},
    {TEXT("<a x=1 y=\"2\"/>"), "element a x 1 y='2'\n"},
    {TEXT("<a = \"q\" x='2'/>"), "element a q x='2'\n"},
    {TEXT("<a / x='2'>b</a>"), "element a x='2'\n  text 'b'\n"},
    {TEXT("<a></b></c><d/>"), "element a\nelement d\n"},
    {TEXT("<a></a <b/>"), "element a\nelement b\n"},
    {TEXT("<a><!-- never closed <b/>"), "element a\n  comment 'never closed <b/>'\n"},
    {TEXT("<a><![CDATA[never ] closed"), "element a\n  cdata 'never ] closed'\n"},
    {TEXT("<?xml version=\"1.0\"><a/>"), "instruction xml version='1.0'\nelement a\n"},
    {TEXT("<!DOCTYPE a [ <!ELEMENT b ANY> <a/>"), "doctype a\n  element-declared b 'ANY'\nelement a\n"},
    {TEXT("<!DOCTYPE a <b/>"), "doctype a\nelement b\n"},
    {TEXT("<!DOCTYPE a \"never closed <b/>"), "doctype a\n"},
    {TEXT("<![INCLUDE[ <b> <![INCLUDE[ <c/> ]]> <d/>"), "include ' <b> <![INCLUDE[ <c/> '\n  element b\n    element c\nelement d\n"},
    {TEXT("<![INCLUDE[<a/><b x=\"1]]><c y=\"2\"/>"), "include '<a/><b x=\"1'\n  element a\nelement c y='2'\n"},
    {TEXT("<![INCLUDE[<a/><b x='1 2]]>3'<c/>"), "include '<a/><b x='1 2'\n  element a\ntext '3''\nelement c\n"},
    {TEXT("<![OTHER[ x ]]>"), ""},
};

TEST(XmlParser, damaged_text_is_skipped_or_kept_as_text) { expectReadings(kDamaged); }

TEST(XmlParser, elements_nest_and_close) {
    constexpr Reading readings[] = {
        {TEXT("<a x=\"1\"/>"), "element a x='1'\n"},
        {TEXT("<a x=\"1\"></a>"), "element a x='1'\n"},
        {TEXT("<a x = '1'\n\ty=\"it's\" ></a >"), "element a x='1' y='it's'\n"},
        {TEXT("<a><b/><b/></a><c/>"), "element a\n  element b\n  element b\nelement c\n"},
        {TEXT("<a>one<b>two</b>three</a>"), "element a\n  text 'one'\n  element b\n    text 'two'\n  text 'three'\n"},
        {TEXT("<_a:b-c.d9 x1/>"), "element _a:b-c.d9 x1\n"},
        {TEXT("<1/>"), "element 1\n"},
        {TEXT("<Gr\u00F6\u00DFe \u0391=\"\u03A9\"/>"), "element Größe Α='Ω'\n"},
        {TEXT("<a x=\"\"/>"), "element a x=''\n"},
        {TEXT("<a x=\"1\" x=\"2\"/>"), "element a x='1' x='2'\n"},
        {TEXT("<a x=\"b>c</a>\"/>"), "element a x='b>c</a>'\n"},
        {TEXT("<A/><a/>"), "element A\nelement a\n"},
    };
    expectReadings(readings);
}

TEST(XmlParser, blanks_are_trimmed_and_runs_become_one_space) {
    constexpr Reading readings[] = {
        {TEXT("<a x=\"  a \t\r\n b  \"/>"), "element a x='a b'\n"},
        {TEXT("<a>  a \t\r\n b  c </a>"), "element a\n  text 'a b c'\n"},
        {TEXT("<a>one two</a>"), "element a\n  text 'one two'\n"},
        {TEXT("<a>one\ttwo</a>"), "element a\n  text 'one two'\n"},
        {TEXT("<!--  a \n b -->"), "comment 'a b'\n"},
        {TEXT("<![CDATA[ a  <b> ]]>"), "cdata 'a <b>'\n"},
        {TEXT("<a x=\"  \"/>"), "element a x=''\n"},
        {TEXT("<a>\x01 x \x1F\x20 y\x7F</a>"), "element a\n  text 'x y\x7F'\n"},
        {TEXT("<a>\u00A0x\u00A0</a>"), "element a\n  text '\u00A0x\u00A0'\n"},
    };
    expectReadings(readings);
}

TEST(XmlParser, entities_stay_as_they_stand) {
    EXPECT_EQ(parsed(TEXT("<a x=\"&amp;\">&lt;&#65;</a>")), "element a x='&amp;'\n  text '&lt;&#65;'\n");
}

TEST(XmlParser, comments_sections_and_instructions_become_nodes) {
    constexpr Reading readings[] = {
        {TEXT("<!-- <a/> -- - -->x"), "comment '<a/> -- -'\ntext 'x'\n"},
        {TEXT("<!---->"), "comment ''\n"},
        {TEXT("<![CDATA[<a x=\"1\">]] ]>]]>"), "cdata '<a x=\"1\">]] ]>'\n"},
        {TEXT("<?xml version=\"1.0\" encoding='UTF-8'?><a/>"), "instruction xml version='1.0' encoding='UTF-8'\nelement a\n"},
        {TEXT("<a><?do it now > ?></a>"), "element a\n  instruction do it now\n"},
        {TEXT("<![INCLUDE[<a x=\"1\"/>text<!ELEMENT b ANY>]]><c/>"),
         "include '<a x=\"1\"/>text<!ELEMENT b ANY>'\n  element a x='1'\n  text 'text'\n  element-declared b 'ANY'\nelement c\n"},
    };
    expectReadings(readings);
}

TEST(XmlParser, document_type_keeps_words_and_the_declarations_of_its_subset) {
    constexpr Reading readings[] = {
        {TEXT("<!DOCTYPE a>"), "doctype a\n"},
        {TEXT("<!DOCTYPE a SYSTEM 'a [>] \"b\".dtd' ><a/>"), "doctype a SYSTEM 'a [>] \"b\".dtd'\nelement a\n"},
        {TEXT("<!DOCTYPE a PUBLIC \"-//X//Y\" \"y.dtd\" [\n<!ELEMENT a (b, c*)>\n<!ATTLIST a x CDATA \"1>2\" >\n<!ENTITY e 'v > w'>\n"
              "<!ENTITY  %  p SYSTEM \"p.ent\">\n<!NOTATION n PUBLIC \"n\">\n<!-- note ] -->\n<?go on?>\n%p;\n<![INCLUDE[<!ELEMENT d "
              "ANY>]]>\n] ><a/>"),
         "doctype a PUBLIC \"-//X//Y\" \"y.dtd\"\n"
         "  element-declared a '(b, c*)'\n"
         "  attlist a 'x CDATA \"1>2\"'\n"
         "  entity e ''v > w''\n"
         "  entity % p 'SYSTEM \"p.ent\"'\n"
         "  notation n 'PUBLIC \"n\"'\n"
         "  comment 'note ]'\n"
         "  instruction go on\n"
         "  text '%p;'\n"
         "  include '<!ELEMENT d ANY>'\n"
         "    element-declared d 'ANY'\n"
         "element a\n"},
        {TEXT("<!DOCTYPE a []><a/>"), "doctype a\nelement a\n"},
        {TEXT("<!ELEMENT b ANY><a/>"), "element-declared b 'ANY'\nelement a\n"},
    };
    expectReadings(readings);
}

TEST(XmlParser, a_byte_order_mark_in_front_is_no_text) { EXPECT_EQ(parsed(TEXT("\uFEFF<a/>")), "element a\n"); }

constexpr WStringView kWhole = TEXT(
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE PrinterDriver [\n\t<!ENTITY e \"x > y\">\n]>\n<!-- kept -->\n<PrinterDriver>\n"
    "\t<Configuration>\n\t\t<Layers value=\"200\" old='12'/>\n\t\t<![CDATA[ <raw/> ]]>\n\t\t<Name value=\"Some name\">text</Name>\n"
    "\t</Configuration>\n</PrinterDriver>\n");

void collectValues(const XmlNode& node, std::set<WString>& values) {
    for (const XmlNode& child : node.children) {
        for (const XmlAttribute& attribute : child.attributes) {
            if (attribute.value) values.insert(WString(attribute.name) + TEXT("=") + WString(*attribute.value));
        }
        collectValues(child, values);
    }
}

TEST(XmlParser, a_file_cut_anywhere_never_yields_half_a_value) {
    std::set<WString> whole;
    collectValues(parseXml(WString(kWhole))->root(), whole);
    ASSERT_EQ(whole.size(), 5U);
    for (std::size_t length = 0; length <= kWhole.size(); ++length) {
        std::set<WString> values;
        const auto document = parseXml(WString(kWhole.substr(0, length)));
        ASSERT_NE(document, nullptr);
        collectValues(document->root(), values);
        for (const WString& value : values) EXPECT_TRUE(whole.contains(value)) << length << ": " << toUtf8(value);
    }
}

TEST(XmlParser, a_text_that_starts_anywhere_is_read_to_its_end) {
    for (std::size_t start = 0; start <= kWhole.size(); ++start) ASSERT_NE(parseXml(WString(kWhole.substr(start))), nullptr);
}

std::size_t deepest(const XmlNode& node) {
    std::size_t depth = 0;
    for (const XmlNode* at = node.children.first(); at != nullptr; at = at->children.first()) ++depth;
    return depth;
}

TEST(XmlParser, a_million_nested_elements_do_not_overflow_the_stack) {
    constexpr std::size_t kDepth = 1'000'000;
    WString text;
    for (std::size_t i = 0; i < kDepth; ++i) text += TEXT("<a>");
    EXPECT_EQ(deepest(parseXml(text)->root()), kDepth);
    WString sections;
    for (std::size_t i = 0; i < kDepth; ++i) sections += TEXT("<![INCLUDE[");
    EXPECT_EQ(deepest(parseXml(sections)->root()), 1U);
    WString types;
    for (std::size_t i = 0; i < kDepth; ++i) types += TEXT("<!DOCTYPE[");
    EXPECT_EQ(deepest(parseXml(types)->root()), 1U);
}

// Openings that nothing closes are where a parser would look through the rest of the text again and again; with millions of
// them that would not end within a day.
TEST(XmlParser, millions_of_openings_are_read_in_one_pass) {
    for (const WStringView opening : {TEXT("<!-- "), TEXT("<![CDATA["), TEXT("<?a "), TEXT("<a x='"), TEXT("<!ENTITY \""),
                                      TEXT("<!DOCTYPE "), TEXT("<! "), TEXT("</a "), TEXT("]]>[<"), TEXT("<")}) {
        WString text;
        text.reserve(5'000'000 + opening.size());
        while (text.size() < 5'000'000) text += opening;
        EXPECT_NE(parseXml(std::move(text)), nullptr);
    }
}

TEST(XmlParser, fifty_megabytes_of_noise_are_read_in_one_pass) {
    std::mt19937 random(1);
    WString bytes(50'000'000, WCHAR{0});
    for (WCHAR& unit : bytes) unit = static_cast<WCHAR>(random() & 0xFF);
    const auto document = parseXml(bytes);
    ASSERT_NE(document, nullptr);
    EXPECT_FALSE(document->root().children.empty());
}

TEST(XmlParser, noise_made_of_markup_is_read_to_its_end) {
    constexpr WStringView kPieces[] = {
        TEXT("<"),   TEXT(">"),         TEXT("/"),   TEXT("a"),    TEXT("\""),          TEXT("'"),  TEXT("="),         TEXT("<!--"),
        TEXT("-->"), TEXT("<![CDATA["), TEXT("]]>"), TEXT("?"),    TEXT("<?x"),         TEXT(" "),  TEXT("<!DOCTYPE"), TEXT("["),
        TEXT("]"),   TEXT("<!ENTITY "), TEXT("%"),   TEXT("</a>"), TEXT("<![INCLUDE["), TEXT("\n"), TEXT("<!ELEMENT"), TEXT("<b c='d'>")};
    std::mt19937 random(2);
    for (int round = 0; round < 20'000; ++round) {
        WString text;
        for (auto count = random() % 20; count > 0; --count) text += kPieces[random() % std::size(kPieces)];
        const auto document = parseXml(text);
        ASSERT_NE(document, nullptr);
        dump(*document);  // checks the parent of every node
    }
}

}  // namespace
}  // namespace morvil
