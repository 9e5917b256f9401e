// Changing a tree: appending, replacing and removing nodes and attributes, and looking them up.
#include <gtest/gtest.h>

#include "config/XmlDocument.h"
#include "config/XmlDump.h"

namespace morvil {
namespace {

using test::dump;

TEST(XmlDocument, lookups_that_find_nothing_give_null) {
    const auto document = parseXml(TEXT("<a x=\"1\">text<!--b--><?b?></a>"));
    const XmlNode& a = *document->root().children.first();
    EXPECT_EQ(findChild(document->root(), TEXT("A")), nullptr);
    EXPECT_EQ(findChild(document->root(), TEXT("")), nullptr);
    EXPECT_EQ(findChild(a, TEXT("b")), nullptr);
    EXPECT_EQ(findAttribute(a, TEXT("X")), nullptr);
    EXPECT_EQ(findAttribute(document->root(), TEXT("x")), nullptr);
    EXPECT_EQ(nextSameElement(a), nullptr);
}

TEST(XmlDocument, lookups_give_the_first_of_a_name) {
    const auto document = parseXml(TEXT("<?a x='0'?><a x=\"1\" x=\"2\"/>text<b/><a x=\"3\"/>"));
    const XmlNode* const a = findChild(document->root(), TEXT("a"));
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->type, XmlType::Element);
    EXPECT_EQ(findAttribute(*a, TEXT("x"))->value, TEXT("1"));
    EXPECT_EQ(findAttribute(*nextSameElement(*a), TEXT("x"))->value, TEXT("3"));
}

TEST(XmlDocument, children_and_attributes_are_appended_at_the_end) {
    XmlDocument document;
    XmlNode* const a = document.addChild(document.root(), XmlType::Element);
    ASSERT_TRUE(document.setText(a->name, TEXT("a")));
    document.addAttribute(*a, TEXT("x"));
    XmlAttribute* const y = document.addAttribute(*a, TEXT("y"));
    ASSERT_TRUE(document.setText(y->value, TEXT("2")));
    XmlNode* const text = document.addChild(*a, XmlType::Text);
    document.setText(text->value, TEXT("one"));
    document.setText(document.addChild(*a, XmlType::Comment)->value, TEXT("two"));
    EXPECT_EQ(dump(document), "element a x y='2'\n  text 'one'\n  comment 'two'\n");
    document.setText(text->value, TEXT(""));
    EXPECT_EQ(dump(document), "element a x y='2'\n  text ''\n  comment 'two'\n");
}

TEST(XmlDocument, texts_are_copied) {
    XmlDocument document;
    WString name(1, TEXT('a'));
    XmlNode* const node = document.addChild(document.root(), XmlType::Element);
    document.setText(node->name, name);
    document.addAttribute(*node, name);
    name[0] = TEXT('b');
    EXPECT_EQ(dump(document), "element a a\n");
}

// What is appended afterwards comes last: the end of the list is kept up.
TEST(XmlDocument, removing_closes_the_gap_and_keeps_the_order) {
    const struct {
        const WCHAR* gone;
        const char* tree;
    } cases[] = {
        {TEXT("first"), "element top middle='2' last='3' new\n  element middle\n    element in\n  element last\n  element new\n"},
        {TEXT("middle"), "element top first='1' last='3' new\n  element first\n  element last\n  element new\n"},
        {TEXT("last"), "element top first='1' middle='2' new\n  element first\n  element middle\n    element in\n  element new\n"},
    };
    for (const auto& entry : cases) {
        const auto document = parseXml(TEXT("<top first='1' middle='2' last='3'><first/><middle><in/></middle><last/></top>"));
        XmlNode& top = *document->root().children.first();
        EXPECT_TRUE(XmlDocument::removeChild(top, *findChild(top, entry.gone)));
        EXPECT_TRUE(XmlDocument::removeAttribute(top, *findAttribute(top, entry.gone)));
        document->setText(document->addChild(top, XmlType::Element)->name, TEXT("new"));
        document->addAttribute(top, TEXT("new"));
        EXPECT_EQ(dump(*document), entry.tree);
    }
}

TEST(XmlDocument, removing_what_is_not_there_changes_nothing) {
    const auto document = parseXml(TEXT("<a/><b x='1'/>"));
    XmlNode& a = *document->root().children.first();
    XmlNode& b = *a.next;
    EXPECT_FALSE(XmlDocument::removeChild(a, b));
    EXPECT_FALSE(XmlDocument::removeAttribute(a, *findAttribute(b, TEXT("x"))));
    EXPECT_EQ(dump(*document), "element a\nelement b x='1'\n");
}

TEST(XmlDocument, removing_the_only_child_leaves_an_empty_list_to_append_to) {
    const auto document = parseXml(TEXT("<a/>"));
    EXPECT_TRUE(XmlDocument::removeChild(document->root(), *document->root().children.first()));
    EXPECT_TRUE(document->root().children.empty());
    document->addChild(document->root(), XmlType::Text);
    EXPECT_TRUE(document->root().children.hasOne());
}

// A text's place holds for it and its terminator, whatever the document held before; nothing of that is left.
TEST(XmlDocument, starting_anew_drops_the_old_tree_and_takes_a_text_of_any_length) {
    XmlDocument document(TEXT("<old/>"));
    parseXml(document);
    for (const std::size_t count : {1U, 3U, 5000U, 2U, 20000U, 20000U, 0U, 4U}) {
        WString text;
        std::string tree;
        for (std::size_t n = 0; n < count; ++n) {
            text += TEXT("<a x=' 1  2'/>");
            tree += "element a x='1 2'\n";
        }
        const std::span<WCHAR> place = document.startText(text.size() + 7);
        ASSERT_EQ(place.size(), text.size() + 7);
        EXPECT_TRUE(document.root().children.empty());
        EXPECT_EQ(document.root().type, XmlType::Root);
        std::ranges::fill(place, TEXT('x'));
        std::ranges::copy(text, place.begin());
        document.endText(place.first(text.size()));
        EXPECT_EQ(document.text().data()[text.size()], 0);
        parseXml(document);
        EXPECT_EQ(dump(document), tree) << count;
    }
}

}  // namespace
}  // namespace morvil
