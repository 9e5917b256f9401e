// The file stream: modes, positions, texts, and what it reports when the system fails.
#include <gtest/gtest.h>

#include "platform/common/FileStream.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "support/FailingCalls.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr const WCHAR* kFile = TEXT("C:\\file.txt");

struct FileStreamTest : testing::Test {
    TempHome home;
};

}  // namespace

TEST_F(FileStreamTest, missingFile) {
    FileStream file;
    EXPECT_FALSE(file.open(kFile, OpenMode::Read));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(file.open(kFile, OpenMode::Update));
    EXPECT_FALSE(file.open(TEXT("C:\\nowhere\\file.txt"), OpenMode::Create));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(file.open(nullptr, OpenMode::Read));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(file.isOpen());
}

TEST_F(FileStreamTest, closedStream_refusesEverything) {
    FileStream file;
    std::array<std::uint8_t, 4> bytes{};
    EXPECT_EQ(file.read(bytes), 0U);
    EXPECT_FALSE(file.write(std::string_view("a")));
    EXPECT_FALSE(file.seek(0));
    EXPECT_FALSE(file.seekToEnd());
    EXPECT_EQ(file.sizeAtEnd(), -1);
    EXPECT_EQ(file.readOnce(bytes), 0U);
    EXPECT_FALSE(file.failed());
    EXPECT_EQ(file.tell(), -1);
    EXPECT_EQ(file.size(), -1);
    EXPECT_FALSE(file.truncateHere());
    EXPECT_FALSE(file.flushToDisk());
    EXPECT_FALSE(file.readAll(10).has_value());
    EXPECT_TRUE(file.close());
}

TEST_F(FileStreamTest, createNew_refusesAnExistingFile) {
    writeBytes(kFile, "old");
    FileStream file;
    EXPECT_FALSE(file.open(kFile, OpenMode::CreateNew));
    EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS);
    EXPECT_EQ(readBytes(kFile), "old");
}

TEST_F(FileStreamTest, readAll_refusesMoreThanItsLimit) {
    writeBytes(kFile, "12345");
    FileStream file(kFile, OpenMode::Read);
    EXPECT_FALSE(file.readAll(4).has_value());
    EXPECT_EQ(file.readAll(5), (std::vector<std::uint8_t>{'1', '2', '3', '4', '5'}));
}

TEST_F(FileStreamTest, readOnlyStream_doesNotWrite) {
    writeBytes(kFile, "old");
    FileStream file(kFile, OpenMode::Read);
    EXPECT_FALSE(file.write(std::string_view("new")));
    EXPECT_TRUE(file.failed());
    EXPECT_FALSE(file.truncateHere());
    EXPECT_EQ(readBytes(kFile), "old");
}

TEST_F(FileStreamTest, fullDisk_isAFailedWrite) {
    FileStream file(kFile, OpenMode::Create);
    {
        const FailingCalls faults(1, Fault::Persistent, "write");
        EXPECT_FALSE(file.write(std::string_view("text")));
        EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    }
    EXPECT_TRUE(file.failed());
    EXPECT_TRUE(file.open(kFile, OpenMode::Update));
    EXPECT_FALSE(file.failed()) << "a new opening starts afresh";
}

TEST_F(FileStreamTest, failingRead_isTold) {
    writeBytes(kFile, "text");
    FileStream file(kFile, OpenMode::Read);
    std::array<std::uint8_t, 4> bytes{};
    {
        const FailingCalls faults(1, Fault::Transient, "read");
        EXPECT_EQ(file.read(bytes), 0U);
    }
    EXPECT_TRUE(file.failed());
    file.open(kFile, OpenMode::Read);
    const FailingCalls faults(1, Fault::Transient, "read");
    EXPECT_FALSE(file.readAll(100).has_value());
}

TEST_F(FileStreamTest, failingClose_isToldAndClosed) {
    FileStream file(kFile, OpenMode::Create);
    const FailingCalls faults(1, Fault::Transient, "close");
    EXPECT_FALSE(file.close());
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(outstanding().files, 0U);
}

TEST_F(FileStreamTest, modes) {
    {
        FileStream file(kFile, OpenMode::Create);
        EXPECT_TRUE(file.write(std::string_view("0123456789")));
    }
    {
        FileStream file(kFile, OpenMode::Update);
        EXPECT_EQ(file.tell(), 0);
        EXPECT_TRUE(file.seek(3));
        EXPECT_TRUE(file.write(std::string_view("xyz")));
        EXPECT_EQ(file.tell(), 6);
        EXPECT_EQ(file.size(), 10);
    }
    EXPECT_EQ(readBytes(kFile), "012xyz6789");
    {
        FileStream file(kFile, OpenMode::Append);
        EXPECT_TRUE(file.seek(0));
        EXPECT_TRUE(file.write(std::string_view("end"))) << "at the end, wherever the position is";
        EXPECT_TRUE(file.seek(0));
        std::array<std::uint8_t, 3> bytes{};
        EXPECT_EQ(file.read(bytes), 3U);
        EXPECT_EQ(bytes, (std::array<std::uint8_t, 3>{'0', '1', '2'}));
    }
    EXPECT_EQ(readBytes(kFile), "012xyz6789end");
    {
        FileStream file(kFile, OpenMode::Create);
        EXPECT_EQ(file.size(), 0);
    }
    DeleteFileW(kFile);
    {
        FileStream file(kFile, OpenMode::Append);
        EXPECT_TRUE(file.isOpen());
    }
    EXPECT_EQ(readBytes(kFile), "");
}

TEST_F(FileStreamTest, truncatesAndExtendsAtThePosition) {
    FileStream file(kFile, OpenMode::Create);
    EXPECT_TRUE(file.write(std::string_view("0123456789")));
    EXPECT_TRUE(file.seek(4));
    EXPECT_TRUE(file.truncateHere());
    EXPECT_EQ(readBytes(kFile), "0123");
    EXPECT_TRUE(file.seek(6));
    EXPECT_TRUE(file.truncateHere());
    EXPECT_EQ(readBytes(kFile), std::string("0123\0\0", 6));
    EXPECT_TRUE(file.seekToEnd());
    EXPECT_EQ(file.tell(), 6);
    EXPECT_TRUE(file.flushToDisk());
    EXPECT_FALSE(file.seek(-1));
}

TEST_F(FileStreamTest, readStopsAtTheEnd) {
    writeBytes(kFile, "abc");
    FileStream file(kFile, OpenMode::Read);
    std::array<std::uint8_t, 8> bytes{};
    EXPECT_EQ(file.read(bytes), 3U);
    EXPECT_EQ(file.read(bytes), 0U);
    EXPECT_FALSE(file.failed());
}

TEST_F(FileStreamTest, moving_handsTheFileOver) {
    FileStream first(kFile, OpenMode::Create);
    FileStream second(std::move(first));
    EXPECT_FALSE(first.isOpen());  // NOLINT(bugprone-use-after-move): this is what is tested
    EXPECT_TRUE(second.write(std::string_view("a")));
    FileStream third;
    third = std::move(second);
    EXPECT_TRUE(third.write(std::string_view("b")));
    third.close();
    EXPECT_EQ(readBytes(kFile), "ab");
}

TEST_F(FileStreamTest, texts_areLatin1WithFullLineEnds) {
    FileStream file(kFile, OpenMode::Create);
    EXPECT_TRUE(file.writeText(TEXT("a\x00E4\n\x20AC\n\n")));
    EXPECT_EQ(readBytes(kFile), "a\xE4\r\n?\r\n\r\n");
    EXPECT_EQ(toFileBytes(TEXT("\r\n")), "\r\r\n") << "as the platform's text mode does";
}

TEST_F(FileStreamTest, fileAndFolderTests) {
    writeBytes(kFile, "");
    makeFolder(TEXT("C:\\folder"));
    EXPECT_TRUE(fileExists(kFile));
    EXPECT_FALSE(folderExists(kFile));
    EXPECT_TRUE(folderExists(TEXT("C:\\folder")));
    EXPECT_FALSE(fileExists(TEXT("C:\\folder")));
    EXPECT_FALSE(fileExists(TEXT("C:\\nothing")));
    EXPECT_FALSE(folderExists(TEXT("C:\\nothing")));
    EXPECT_FALSE(fileExists(nullptr));
}

TEST_F(FileStreamTest, sizeAtEnd_leavesThePositionThere) {
    writeBytes(kFile, "12345");
    FileStream file(kFile, OpenMode::Update);
    EXPECT_EQ(file.sizeAtEnd(), 5);
    EXPECT_EQ(file.tell(), 5);
    EXPECT_TRUE(file.write(std::string_view("67")));
    EXPECT_EQ(readBytes(kFile), "1234567");
}

TEST_F(FileStreamTest, readOnce_asksTheSystemOnce) {
    writeBytes(kFile, "12345");
    FileStream file(kFile, OpenMode::Read);
    std::array<std::uint8_t, 8> bytes{};
    static int reads = 0;
    reads = 0;
    platformCalls().read = [](int descriptor, void* out, std::size_t count) {
        ++reads;
        return systemCalls().read(descriptor, out, count);
    };
    EXPECT_EQ(file.readOnce(bytes), 5U);
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(file.readOnce(bytes), 0U);
    platformCalls() = systemCalls();
    EXPECT_FALSE(file.failed());
    FailingCalls faults(1, Fault::Persistent, "read");
    EXPECT_EQ(file.readOnce(bytes), 0U);
    EXPECT_TRUE(file.failed());
}

}  // namespace morvil::test
