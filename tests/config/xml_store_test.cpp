// The configuration store: items by dotted path, the texts it sends, and what it does without a file.
#include "config/CXml.h"
#include "config/StoreTest.h"

namespace morvil {
namespace {

using test::readBytes;
using test::writeBytes;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const WCHAR* kFile = TEXT("C:\\store.xml");
constexpr const char* kFileBytes =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<PrinterDriver>\r\n\t<Flags>\r\n\t\t<FL_1 "
    "value=\"one\"/>\r\n\t</Flags>\r\n</PrinterDriver>\r\n";

class Store : public test::StoreTest {
  protected:
    // The value of an item; "(none)" when it cannot be read.
    static std::string item(CXml& xml, const WCHAR* path, const WCHAR* attribute = TEXT("value")) {
        WCHAR value[CXml::kValueCharacters] = TEXT("(none)");
        const bool read = xml.getItem(path, value, attribute);
        EXPECT_EQ(read, toUtf8(value) != "(none)");
        return toUtf8(value);
    }

    // Texts of the store itself, without those of the mutex.
    [[nodiscard]] std::vector<std::string> storeTexts() const {
        std::vector<std::string> own;
        for (const std::string& text : texts()) {
            if (text.find("MvMutex::") == std::string::npos) own.push_back(text);
        }
        return own;
    }
};

TEST_F(Store, a_missing_empty_or_oversized_file_leaves_no_document) {
    const auto expectNothing = [this] {
        m_debug.clear();
        CXml xml(kFile);
        EXPECT_FALSE(xml.isLoaded());
        EXPECT_THAT(storeTexts(), ElementsAre("CXml::CXml 2\n", "CXml::reload", " CXml::reload, got Mutex\n"));
        EXPECT_FALSE(xml.reload());
        m_debug.clear();
        EXPECT_EQ(item(xml, TEXT("PrinterDriver.Flags.FL_1")), "(none)");
        EXPECT_THAT(storeTexts(), ElementsAre("CXml::readAttribute, node is emppty\n"));
        m_debug.clear();
        EXPECT_FALSE(xml.putItem(TEXT("PrinterDriver.Flags.FL_1"), TEXT("x")));
        EXPECT_THAT(storeTexts(), ElementsAre("CXml::putItem, invalid Item (PrinterDriver.Flags.FL_1)\n"));
        EXPECT_EQ(xml.first(TEXT("PrinterDriver")), nullptr);
        EXPECT_EQ(xml.next(), nullptr);
        EXPECT_FALSE(xml.removeItem(TEXT("PrinterDriver")));
        EXPECT_FALSE(xml.archive());
    };
    expectNothing();
    EXPECT_FALSE(test::exists(kFile));
    writeBytes(kFile, "");
    expectNothing();
    EXPECT_EQ(readBytes(kFile), "");
    const std::string large = "<PrinterDriver><Flags><FL_1 value=\"one\"/></Flags>" + std::string((8U << 20), ' ');
    writeBytes(kFile, large);
    expectNothing();
    EXPECT_EQ(readBytes(kFile).size(), large.size());
}

TEST_F(Store, noise_is_a_document_without_items) {
    std::string noise;
    for (unsigned i = 0; i < 2'000'000; ++i) noise.push_back(static_cast<char>(i * 2654435761U >> 13));
    writeBytes(kFile, noise);
    CXml xml(kFile);
    EXPECT_EQ(item(xml, TEXT("PrinterDriver.Flags.FL_1")), "(none)");
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.Flags.FL_1"), TEXT("x")));
    EXPECT_EQ(item(xml, TEXT("PrinterDriver.Flags.FL_1")), "x");
}

TEST_F(Store, a_null_path_or_value_and_a_path_of_261_characters_are_refused) {
    writeBytes(kFile, kFileBytes);
    CXml xml(kFile);
    m_debug.clear();
    const WString path260 = TEXT("PrinterDriver.") + WString(246, TEXT('a'));
    const WString path261 = path260 + TEXT("a");
    EXPECT_FALSE(xml.putItem(nullptr, TEXT("1")));
    EXPECT_FALSE(xml.putItem(TEXT("PrinterDriver.A"), nullptr));
    EXPECT_FALSE(xml.putItem(path261.c_str(), TEXT("1")));
    EXPECT_EQ(readBytes(kFile), kFileBytes);
    EXPECT_THAT(storeTexts(), IsEmpty());
    EXPECT_TRUE(xml.putItem(path260.c_str(), TEXT("1")));
    EXPECT_EQ(item(xml, path261.c_str()), "(none)");
    EXPECT_EQ(item(xml, nullptr), "(none)");
    EXPECT_FALSE(xml.getItem(TEXT("PrinterDriver.Flags.FL_1"), nullptr));
}

TEST_F(Store, a_path_without_a_name_is_no_item) {
    writeBytes(kFile, kFileBytes);
    CXml xml(kFile);
    m_debug.clear();
    EXPECT_FALSE(xml.putItem(TEXT(""), TEXT("1")));
    EXPECT_FALSE(xml.putItem(TEXT(".."), TEXT("1")));
    EXPECT_THAT(storeTexts(), ElementsAre("CXml::putItem, invalid Item ()\n", "CXml::putItem, invalid Item (..)\n"));
    EXPECT_FALSE(xml.removeItem(TEXT("")));
    EXPECT_EQ(readBytes(kFile), kFileBytes);
}

TEST_F(Store, reading_what_is_not_there_tells_why_and_leaves_the_buffer) {
    writeBytes(kFile, "<PrinterDriver><A bare x=\"1\"/></PrinterDriver>");
    CXml xml(kFile);
    const struct {
        const WCHAR* path;
        const WCHAR* attribute;
        const char* text;
    } cases[] = {{TEXT("PrinterDriver.B"), TEXT("x"), "CXml::readAttribute, node is emppty\n"},
                 {TEXT("printerdriver.A"), TEXT("x"), "CXml::readAttribute, node is emppty\n"},
                 {TEXT(""), TEXT("x"), "CXml::readAttribute, node is emppty\n"},
                 {TEXT("PrinterDriver.A"), TEXT("X"), "CXml::readAttribute, AttributeName doesn't exist (X)\n"},
                 {TEXT("PrinterDriver.A"), TEXT("value"), "CXml::readAttribute, AttributeName doesn't exist (value)\n"},
                 {TEXT("PrinterDriver.A"), TEXT("bare"), "CXml::readAttribute, invalid AttributeName (bare)\n"}};
    for (const auto& entry : cases) {
        m_debug.clear();
        EXPECT_EQ(item(xml, entry.path, entry.attribute), "(none)");
        EXPECT_THAT(storeTexts(), ElementsAre(entry.text));
    }
    EXPECT_EQ(item(xml, TEXT("PrinterDriver.A"), TEXT("x")), "1");
}

TEST_F(Store, a_node_without_a_name_has_no_attributes_to_read) {
    CXml xml(kFile);
    WCHAR value[CXml::kValueCharacters] = {};
    const XmlNode unnamed;
    m_debug.clear();
    EXPECT_FALSE(xml.readAttribute(&unnamed, value));
    EXPECT_FALSE(xml.readAttribute(nullptr, value));
    EXPECT_THAT(storeTexts(), ElementsAre("CXml::readAttribute, node is emppty\n", "CXml::readAttribute, node is emppty\n"));
}

TEST_F(Store, a_value_longer_than_the_buffer_is_cut) {
    writeBytes(kFile, "<A value=\"" + std::string(300, 'v') + "\"/>");
    CXml xml(kFile);
    EXPECT_EQ(item(xml, TEXT("A")), std::string(259, 'v'));
}

TEST_F(Store, opening_and_closing_send_their_texts) {
    writeBytes(kFile, kFileBytes);
    { const CXml xml(kFile); }
    EXPECT_THAT(texts(), ElementsAre("CXml::CXml 2\n", "MvMutex::MvMutex create new mutex (H), processID=N, threadID=N, msTimeOut=10000\n",
                                     "CXml::reload", "MvMutex::wait got mutex (H), processID=N, threadID=N, msTimeOut=10000\n",
                                     " CXml::reload, got Mutex\n", "MvMutex::release 1 mutex (H), processID=N, threadID=N\n",
                                     "MvMutex::release 2 mutex (H), processID=N, threadID=N\n", "CXml::reload finished\n", "CXml::~CXml\n",
                                     "MvMutex::~MvMutex close mutex, processID=N, threadID=N\n"));
}

TEST_F(Store, without_a_path_it_stands_on_the_printer_drivers_file) {
    const CXml xml;
    EXPECT_EQ(toUtf8(xml.path()), toUtf8(CMvConfig().configurationFile()));
    EXPECT_THAT(storeTexts(), Contains("CXml::CXml 1\n"));
}

TEST_F(Store, archive_sends_its_texts_in_order) {
    writeBytes(kFile, kFileBytes);
    CXml xml(kFile);
    m_debug.clear();
    EXPECT_TRUE(xml.archive());
    EXPECT_THAT(texts(), ElementsAre("MvMutex::wait got mutex (H), processID=N, threadID=N, msTimeOut=10000\n",
                                     " CXml::archive, got Mutex\n", "MvMutex::release 1 mutex (H), processID=N, threadID=N\n",
                                     "MvMutex::release 2 mutex (H), processID=N, threadID=N\n", "CXml::archive finishedd\n"));
    EXPECT_EQ(readBytes(kFile), kFileBytes);
}

TEST_F(Store, debug_switches_lengthen_the_time_under_the_lock) {
    writeBytes(kFile, kFileBytes);
    noteSleeps();
    CXml xml(kFile);
    EXPECT_TRUE(xml.archive());
    EXPECT_THAT(slept(), IsEmpty());
    setDebugValue(TEXT("MvXmlSleep1"), TEXT("30"));
    setDebugValue(TEXT("MvXmlSleep2"), TEXT("70"));
    EXPECT_TRUE(xml.reload());
    EXPECT_TRUE(xml.archive());
    EXPECT_THAT(slept(), ElementsAre(30, 70));
    setDebugValue(TEXT("MvXmlSleep1"), TEXT("0"));
    setDebugValue(TEXT("MvXmlSleep2"), TEXT("-3"));
    EXPECT_TRUE(xml.reload());
    EXPECT_TRUE(xml.archive());
    EXPECT_EQ(slept().size(), 2U);
}

TEST_F(Store, create_default_writes_the_declaration_and_an_empty_top) {
    CXml xml(kFile);
    EXPECT_FALSE(xml.createDefault());
    EXPECT_EQ(readBytes(kFile), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<PrinterDriver/>\r\n");
    EXPECT_TRUE(xml.isLoaded());
    writeBytes(kFile, kFileBytes);
    m_debug.clear();
    EXPECT_FALSE(xml.createDefault());
    EXPECT_EQ(readBytes(kFile), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<PrinterDriver/>\r\n");
    EXPECT_THAT(storeTexts(), ElementsAre(" CXml::archive, got Mutex\n", "CXml::archive finishedd\n", "CXml::reload",
                                          " CXml::reload, got Mutex\n", "CXml::reload finished\n"));
}

TEST_F(Store, putting_into_a_missing_chain_makes_every_element) {
    writeBytes(kFile, "<PrinterDriver/>");
    CXml xml(kFile);
    m_debug.clear();
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.Configuration.Print.ID"), TEXT("1000")));
    EXPECT_THAT(storeTexts(), ElementsAre("CXml::putItem, new node (Configuration) created\n", "CXml::putItem, new node (Print) created\n",
                                          "CXml::putItem, new node (ID) created\n", "CXml::putItem, attribute (value) has been added\n",
                                          " CXml::archive, got Mutex\n", "CXml::archive finishedd\n"));
    EXPECT_EQ(readBytes(kFile),
              "<PrinterDriver>\r\n\t<Configuration>\r\n\t\t<Print>\r\n\t\t\t<ID "
              "value=\"1000\"/>\r\n\t\t</Print>\r\n\t</Configuration>\r\n</PrinterDriver>\r\n");
    EXPECT_EQ(item(xml, TEXT("PrinterDriver.Configuration.Print.ID")), "1000");
    CXml other(kFile);
    EXPECT_EQ(item(other, TEXT("PrinterDriver.Configuration.Print.ID")), "1000");
}

TEST_F(Store, a_changed_attribute_moves_to_the_end_and_stays_single) {
    writeBytes(kFile, "<A value=\"1\" from=\"2\" to=\"3\"/>");
    CXml xml(kFile);
    EXPECT_TRUE(xml.putItem(TEXT("A"), TEXT("4")));
    EXPECT_EQ(readBytes(kFile), "<A from=\"2\" to=\"3\" value=\"4\"/>\r\n");
    EXPECT_TRUE(xml.putItem(TEXT("A"), TEXT("4")));
    EXPECT_EQ(readBytes(kFile), "<A from=\"2\" to=\"3\" value=\"4\"/>\r\n");
    m_debug.clear();
    EXPECT_TRUE(xml.putItem(TEXT("A"), TEXT("5"), TEXT("from")));
    EXPECT_EQ(readBytes(kFile), "<A to=\"3\" value=\"4\" from=\"5\"/>\r\n");
    EXPECT_THAT(storeTexts(), ElementsAre(" CXml::archive, got Mutex\n", "CXml::archive finishedd\n"));
    EXPECT_TRUE(xml.putItem(TEXT("A"), TEXT(""), TEXT("to")));
    EXPECT_EQ(readBytes(kFile), "<A value=\"4\" from=\"5\" to=\"\"/>\r\n");
}

TEST_F(Store, an_attribute_name_that_cannot_be_means_value) {
    writeBytes(kFile, "<A value=\"old\"/>");
    CXml xml(kFile);
    const WString name19(19, TEXT('n'));
    const WString name20(20, TEXT('n'));
    EXPECT_TRUE(xml.putItem(TEXT("A"), TEXT("1"), name20.c_str()));
    EXPECT_EQ(readBytes(kFile), "<A value=\"1\"/>\r\n");
    EXPECT_EQ(item(xml, TEXT("A"), name20.c_str()), "1");
    EXPECT_EQ(item(xml, TEXT("A"), TEXT("")), "1");
    EXPECT_EQ(item(xml, TEXT("A"), nullptr), "1");
    EXPECT_TRUE(xml.putItem(TEXT("A"), TEXT("2"), name19.c_str()));
    EXPECT_EQ(item(xml, TEXT("A"), name19.c_str()), "2");
    EXPECT_EQ(item(xml, TEXT("A")), "1");
}

TEST_F(Store, names_are_cut_at_19_characters_and_paths_at_ten_names) {
    writeBytes(kFile, "<?xml version='1.0'?>");
    CXml xml(kFile);
    EXPECT_TRUE(xml.putItem(TEXT("TakeFromApplication.TakeFromApplicationX"), TEXT("1")));
    EXPECT_EQ(readBytes(kFile),
              "<?xml version=\"1.0\"?>\r\n<TakeFromApplication>\r\n\t<TakeFromApplication value=\"1\"/>\r\n</TakeFromApplication>\r\n");
    EXPECT_EQ(item(xml, TEXT("TakeFromApplicationY.TakeFromApplicationZ")), "1");
    EXPECT_TRUE(xml.putItem(TEXT("a.b.c.d.e.f.g.h.i.j.k.l"), TEXT("deep")));
    EXPECT_EQ(item(xml, TEXT("a.b.c.d.e.f.g.h.i.j")), "deep");
    EXPECT_EQ(item(xml, TEXT("a.b.c.d.e.f.g.h.i")), "(none)");
}

TEST_F(Store, removing_an_item_takes_everything_below_it) {
    writeBytes(kFile, kFileBytes);
    CXml xml(kFile);
    m_debug.clear();
    EXPECT_FALSE(xml.removeItem(TEXT("PrinterDriver.Flag")));
    EXPECT_THAT(storeTexts(), ElementsAre("CXml::removeItem, pItem (PrinterDriver.Flag)\n"));
    EXPECT_EQ(readBytes(kFile), kFileBytes);
    EXPECT_TRUE(xml.removeItem(TEXT("PrinterDriver.Flags")));
    EXPECT_EQ(readBytes(kFile), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<PrinterDriver/>\r\n");
    EXPECT_EQ(item(xml, TEXT("PrinterDriver.Flags.FL_1")), "(none)");
}

TEST_F(Store, first_and_next_walk_the_elements_of_one_name_in_order) {
    writeBytes(kFile,
               "<MciColors><Colors><Color ID=\"1\"/><!-- no --><Other ID=\"x\"/><Color ID=\"2\"/>text<Color ID=\"3\"/></Colors>"
               "<Colors><Color ID=\"4\"/></Colors></MciColors>");
    CXml xml(kFile);
    EXPECT_EQ(xml.next(), nullptr);
    EXPECT_EQ(xml.first(TEXT("MciColors.Colors.Colour")), nullptr);
    EXPECT_EQ(xml.next(), nullptr);
    std::string ids;
    WCHAR id[CXml::kValueCharacters];
    for (const XmlNode* node = xml.first(TEXT("MciColors.Colors.Color")); node != nullptr; node = xml.next()) {
        ASSERT_TRUE(xml.readAttribute(node, id, TEXT("ID")));
        ids += toUtf8(id) + " ";
    }
    EXPECT_EQ(ids, "1 2 3 ");
    EXPECT_EQ(xml.next(), nullptr);
    EXPECT_NE(xml.first(TEXT("MciColors.Colors.Color")), nullptr);
}

TEST_F(Store, reload_sees_what_another_store_wrote) {
    writeBytes(kFile, kFileBytes);
    CXml one(kFile);
    CXml two(kFile);
    EXPECT_TRUE(two.putItem(TEXT("PrinterDriver.Flags.FL_1"), TEXT("two")));
    EXPECT_EQ(item(one, TEXT("PrinterDriver.Flags.FL_1")), "one");
    EXPECT_TRUE(one.reload());
    EXPECT_EQ(item(one, TEXT("PrinterDriver.Flags.FL_1")), "two");
}

TEST_F(Store, each_change_between_begin_and_end_writes_the_file_and_the_disk_has_it_at_the_end) {
    writeBytes(kFile, kFileBytes);
    static int flushes = 0;
    flushes = 0;
    platformCalls().flush = [](int file) { return ++flushes, systemCalls().flush(file); };
    CXml xml(kFile);
    m_debug.clear();
    xml.beginChanges();
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("1")));
    EXPECT_NE(readBytes(kFile).find("<A value=\"1\"/>"), std::string::npos);
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.B"), TEXT("2")));
    EXPECT_NE(readBytes(kFile).find("<B value=\"2\"/>"), std::string::npos);
    EXPECT_TRUE(xml.removeItem(TEXT("PrinterDriver.Flags")));
    EXPECT_EQ(readBytes(kFile).find("<Flags"), std::string::npos);
    EXPECT_EQ(flushes, 0);
    EXPECT_TRUE(xml.endChanges());
    EXPECT_EQ(flushes, 1);
    EXPECT_EQ(m_debug.count("CXml::archive finishedd\n"), 3U);
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("3")));
    EXPECT_GT(flushes, 1) << "a change outside of a row waits for nothing";
}

TEST_F(Store, a_disk_that_refuses_the_end_of_a_row_is_told_and_leaves_the_file_whole) {
    writeBytes(kFile, kFileBytes);
    CXml xml(kFile);
    xml.beginChanges();
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("1")));
    const std::string written = readBytes(kFile);
    {
        test::FailingCalls faults(1, test::Fault::Persistent, "flush");
        EXPECT_FALSE(xml.endChanges());
    }
    EXPECT_EQ(readBytes(kFile), written);
    xml.beginChanges();
    EXPECT_TRUE(xml.endChanges()) << "nothing was changed";
}

TEST_F(Store, a_document_that_cannot_be_stored_ends_with_the_last_line_as_well) {
    CXml xml(WString(261, TEXT('a')).c_str());
    m_debug.clear();
    EXPECT_FALSE(xml.archive());
    EXPECT_TRUE(m_debug.texts().back() == "CXml::archive finishedd\n") << m_debug.texts().back();
    EXPECT_EQ(m_debug.count("MvMutex::release 2 mutex"), 0U);
}

TEST_F(Store, comments_and_a_document_type_survive_a_change) {
    const std::string bytes =
        "<?xml version=\"1.0\"?>\r\n<!DOCTYPE PrinterDriver SYSTEM \"a.dtd\" [\r\n\t<!ELEMENT PrinterDriver ANY>\r\n\t<!-- inside "
        "-->\r\n]>\r\n<!-- kept -->\r\n"
        "<PrinterDriver>\r\n\t<![CDATA[<raw>]]>\r\n\t<A value=\"1\"/>\r\n</PrinterDriver>\r\n";
    writeBytes(kFile, bytes);
    CXml xml(kFile);
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("1")));
    std::string expected = bytes;
    for (const char* blank : {"<!-- inside -->", "<!-- kept -->"}) {
        const std::size_t at = expected.find(blank);
        expected.erase(at + 4, 1);
        expected.erase(expected.find(" -->", at), 1);
    }
    EXPECT_EQ(readBytes(kFile), expected);
}

TEST_F(Store, characters_that_latin1_lacks_are_written_as_question_marks) {
    writeBytes(kFile, "<A/>");
    CXml xml(kFile);
    EXPECT_TRUE(xml.putItem(TEXT("A"), TEXT("Gr\u00FC\u00DFe \u03A9\u20AC.")));
    EXPECT_EQ(readBytes(kFile),
              "<A value=\"Gr\xFC\xDF"
              "e ??.\"/>\r\n");
}

TEST_F(Store, a_file_that_is_cut_anywhere_is_read_without_half_values) {
    std::string whole =
        "<?xml version=\"1.0\"?>\r\n<PrinterDriver>\r\n\t<A value=\"whole\"/>\r\n\t<B value=\"other\"></B>\r\n</PrinterDriver>\r\n";
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        writeBytes(kFile, whole.substr(0, length));
        CXml xml(kFile);
        for (const WCHAR* path : {TEXT("PrinterDriver.A"), TEXT("PrinterDriver.B")}) {
            const std::string value = item(xml, path);
            EXPECT_TRUE(value == "(none)" || value == (path == WStringView(TEXT("PrinterDriver.A")) ? "whole" : "other"))
                << length << " " << value;
        }
    }
}

}  // namespace
}  // namespace morvil
