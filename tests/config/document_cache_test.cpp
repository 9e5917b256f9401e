// The cache of the parsed document: the file is read each time, parsed when its bytes changed, and never changed by a store.
#include "config/CXml.h"
#include "config/ParsedDocumentCache.h"
#include "config/StoreTest.h"

namespace morvil {
namespace {

using test::readBytes;
using test::writeBytes;

class DocumentCache : public test::StoreTest {
  protected:
    DocumentCache() : m_file(m_cache.path()) {}

    static std::string itemA(CXml& xml) {
        WCHAR value[CXml::kValueCharacters] = TEXT("(none)");
        xml.getItem(TEXT("PrinterDriver.A"), value);
        return toUtf8(value);
    }

    ParsedDocumentCache m_cache;
    WString m_file;
};

TEST_F(DocumentCache, stands_on_the_printer_drivers_file) { EXPECT_EQ(m_file, CMvConfig().configurationFile()); }

TEST_F(DocumentCache, a_missing_file_gives_no_document_until_it_is_there) {
    {
        CXml xml(m_cache);
        EXPECT_FALSE(xml.isLoaded());
        EXPECT_FALSE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("1")));
    }
    writeBytes(m_file, "<PrinterDriver><A value=\"1\"/></PrinterDriver>");
    {
        CXml xml(m_cache);
        EXPECT_EQ(itemA(xml), "1");
    }
    DeleteFileW(m_file.c_str());
    CXml xml(m_cache);
    EXPECT_FALSE(xml.isLoaded());
}

TEST_F(DocumentCache, the_same_bytes_are_parsed_once_and_read_every_time) {
    writeBytes(m_file, "<PrinterDriver><A value=\"1\"/></PrinterDriver>");
    const XmlNode* node = nullptr;
    {
        CXml xml(m_cache);
        node = xml.first(TEXT("PrinterDriver.A"));
    }
    const std::uint64_t generation = m_cache.generation();
    static int reads = 0;
    reads = 0;
    platformCalls().read = [](int file, void* bytes, std::size_t count) { return ++reads, systemCalls().read(file, bytes, count); };
    m_debug.clear();
    {
        CXml xml(m_cache);
        EXPECT_EQ(xml.first(TEXT("PrinterDriver.A")), node);
        EXPECT_EQ(itemA(xml), "1");
    }
    EXPECT_GT(reads, 0);
    EXPECT_EQ(m_cache.generation(), generation);
    EXPECT_THAT(texts(), testing::ElementsAre("CXml::CXml 1\n",
                                              "MvMutex::MvMutex use existing mutex (H), processID=N, threadID=N, msTimeOut=10000\n",
                                              "CXml::reload", "MvMutex::wait got mutex (H), processID=N, threadID=N, msTimeOut=10000\n",
                                              " CXml::reload, got Mutex\n", "MvMutex::release 1 mutex (H), processID=N, threadID=N\n",
                                              "MvMutex::release 2 mutex (H), processID=N, threadID=N\n", "CXml::reload finished\n",
                                              "CXml::~CXml\n", "MvMutex::~MvMutex close mutex, processID=N, threadID=N\n"));
}

// Same length, one character other: neither size nor time tells.
TEST_F(DocumentCache, changed_bytes_are_seen_at_the_next_load) {
    writeBytes(m_file, "<PrinterDriver><A value=\"1\"/></PrinterDriver>");
    CXml xml(m_cache);
    const std::uint64_t generation = m_cache.generation();
    writeBytes(m_file, "<PrinterDriver><A value=\"2\"/></PrinterDriver>");
    EXPECT_EQ(itemA(xml), "1");
    EXPECT_TRUE(xml.reload());
    EXPECT_EQ(itemA(xml), "2");
    EXPECT_EQ(m_cache.generation(), generation + 1);
}

// Each of these has the bytes of the one before at its start, or is the start of it.
TEST_F(DocumentCache, a_file_that_grew_or_shrank_is_seen_at_the_next_load) {
    const std::string plain = "<PrinterDriver><A value=\"1\"/></PrinterDriver>";
    writeBytes(m_file, plain);
    CXml xml(m_cache);
    const std::uint64_t generation = m_cache.generation();
    writeBytes(m_file, plain + " ");
    EXPECT_TRUE(xml.reload());
    EXPECT_EQ(m_cache.generation(), generation + 1);
    writeBytes(m_file, plain);
    EXPECT_TRUE(xml.reload());
    EXPECT_EQ(m_cache.generation(), generation + 2);
    writeBytes(m_file, "");
    EXPECT_FALSE(xml.reload());
    EXPECT_EQ(m_cache.generation(), generation + 3);
}

TEST_F(DocumentCache, a_debug_switch_that_is_set_meanwhile_counts_after_a_tenth_of_a_second) {
    writeBytes(m_file, "<PrinterDriver><A value=\"1\"/></PrinterDriver>");
    CXml xml(m_cache);
    EXPECT_TRUE(xml.reload());
    setDebugValue(TEXT("MvXmlSleep1"), TEXT("7"));
    Sleep(110);
    noteSleeps();
    EXPECT_TRUE(xml.reload());
    EXPECT_THAT(slept(), testing::ElementsAre(7));
}

TEST_F(DocumentCache, asks_for_the_file_of_debug_switches_once_in_a_row_of_loads) {
    writeBytes(m_file, "<PrinterDriver><A value=\"1\"/></PrinterDriver>");
    logState().baseFolder = TEXT("C:\\base");
    CXml xml(m_cache);
    static int questions = 0;
    questions = 0;
    platformCalls().status = [](const char* path, struct stat* out) {
        if (std::string_view(path).ends_with("mvDebug.ini")) ++questions;
        return systemCalls().status(path, out);
    };
    const DWORD start = GetTickCount();
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(xml.reload());
    EXPECT_LE(questions, 1 + static_cast<int>((GetTickCount() - start) / 100));
    EXPECT_GE(questions, 1);
}

TEST_F(DocumentCache, a_change_leaves_the_shared_document_alone) {
    writeBytes(m_file, "<PrinterDriver>\r\n\t<A value=\"1\"/>\r\n</PrinterDriver>\r\n");
    CXml reader(m_cache);
    CXml writer(m_cache);
    EXPECT_TRUE(writer.putItem(TEXT("PrinterDriver.A"), TEXT("2")));
    EXPECT_EQ(itemA(writer), "2");
    EXPECT_EQ(itemA(reader), "1");
    EXPECT_TRUE(writer.putItem(TEXT("PrinterDriver.A"), TEXT("3")));
    EXPECT_EQ(readBytes(m_file), "<PrinterDriver>\r\n\t<A value=\"3\"/>\r\n</PrinterDriver>\r\n");
    EXPECT_TRUE(reader.reload());
    EXPECT_EQ(itemA(reader), "3");
    EXPECT_TRUE(writer.removeItem(TEXT("PrinterDriver.A")));
    EXPECT_EQ(itemA(reader), "3");
}

TEST_F(DocumentCache, a_default_file_replaces_the_shared_document) {
    writeBytes(m_file, "<PrinterDriver><A value=\"1\"/></PrinterDriver>");
    CXml xml(m_cache);
    EXPECT_FALSE(xml.createDefault());
    EXPECT_EQ(itemA(xml), "(none)");
    EXPECT_TRUE(xml.isLoaded());
}

}  // namespace
}  // namespace morvil
