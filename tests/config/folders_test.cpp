// The shared folders and files: where they lie, what is created, and what happens when that fails.
#include "config/CMvConfig.h"
#include "config/StoreTest.h"
#include "platform/common/FileStream.h"
#include "support/LogFiles.h"

namespace morvil {
namespace {

using test::exists;
using test::makeFolder;
using test::writeBytes;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const WCHAR* kRoot = TEXT("C:\\ProgramData\\Morvil");
constexpr const WCHAR* kMainIni = TEXT("C:\\ProgramData\\Morvil\\morvil.ini");
constexpr const WCHAR* kJobFolder = TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0");
constexpr const WCHAR* kJobIni = TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\pk.ini");

class Folders : public test::StoreTest {
  protected:
    static std::string iniValue(const WCHAR* ini, const WCHAR* section, const WCHAR* key) {
        std::array<WCHAR, 300> value{};
        GetPrivateProfileStringW(section, key, TEXT("(none)"), value.data(), static_cast<DWORD>(value.size()), ini);
        return toUtf8(viewOf(value));
    }
    static void setJobIni(const WCHAR* section, const WCHAR* key, const WCHAR* value) {
        makeFolder(kJobFolder);
        ASSERT_TRUE(WritePrivateProfileStringW(section, key, value, kJobIni));
    }
};

TEST_F(Folders, without_a_common_folder_every_path_of_it_stays_empty_and_is_logged) {
    const test::LogFiles log;
    hostState().refusals["SHGetFolderPathW"] = ERROR_ACCESS_DENIED;
    const CMvConfig folders;
    EXPECT_THAT(log.morvilMessages(),
                ElementsAre("!!! CMvConfig::buildPathCommon Error common", "!!! CMvConfig::createDefaultMorvilConfig Error",
                            "!!! CMvConfig::createDefaultPlotkeeperConfig Error"));
    for (const WCHAR* path :
         {folders.dataRoot(), folders.commonFiles(), folders.mainIni(), folders.debugIni(), folders.programCommonFiles(),
          folders.jobApplicationFolder(), folders.jobApplicationIni(), folders.applicationPath(), folders.spoolFolder(),
          folders.workFolder(), folders.driverDataFolder(), folders.driverVersionFolder(), folders.driverProgramFolder(),
          folders.configurationFile(), folders.coloursGaspen(), folders.coloursCustomer(), folders.diagnosticsFile()}) {
        EXPECT_EQ(toUtf8(path), "");
    }
    EXPECT_TRUE(folders.fallbackSpoolFolder().empty());
}

TEST_F(Folders, system_folders_that_cannot_be_made_leave_their_paths_empty) {
    const test::LogFiles log;
    const test::FailingCalls faults(1, test::Fault::Persistent, "makeFolder");
    const CMvConfig folders;
    EXPECT_THAT(log.morvilMessages(),
                ElementsAre("!!! CMvConfig::buildPathCommon Error common", "!!! CMvConfig::createDefaultMorvilConfig Error",
                            "!!! CMvConfig::createDefaultPlotkeeperConfig Error"));
    for (const WCHAR* path : {folders.dataRoot(), folders.programCommonFiles(), folders.driverProgramFolder()}) EXPECT_EQ(toUtf8(path), "");
}

TEST_F(Folders, a_common_folder_of_more_than_258_characters_is_logged) {
    test::LogFiles log;
    CMvConfig::Path common{};
    copyText(common, WString(259, TEXT('c')));
    EXPECT_EQ(dataRootIn(common)[0], 0);
    EXPECT_THAT(log.morvilMessages(), ElementsAre("!!! CMvConfig::buildPathCommon Error length path"));
    log.clear();
    copyText(common, WString(258, TEXT('c')));
    EXPECT_EQ(dataRootIn(common)[0], 0);  // "\\Morvil" does not fit behind it
    EXPECT_THAT(log.morvilMessages(), IsEmpty());
    copyText(common, WString(252, TEXT('c')));
    EXPECT_EQ(WString(viewOf(dataRootIn(common))), WString(252, TEXT('c')).append(TEXT("\\Morvil")));
}

TEST_F(Folders, an_ini_file_that_cannot_be_made_is_logged_and_read_as_missing) {
    const test::LogFiles log;
    makeFolder(kMainIni);  // a folder where the file should be
    makeFolder(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\ERROR\\pk.ini"));
    const CMvConfig folders;
    EXPECT_THAT(log.morvilMessages(),
                ElementsAre("!!! CMvConfig::createDefaultMorvilConfig Error", "!!! CMvConfig::createDefaultPlotkeeperConfig Error"));
    EXPECT_EQ(toUtf8(folders.jobApplicationFolder()), "C:\\ProgramData\\Morvil\\Plotkeeper\\ERROR");
    EXPECT_EQ(toUtf8(folders.driverVersionFolder()), toUtf8(folders.driverDataFolder()));
    EXPECT_EQ(toUtf8(folders.spoolFolder()), "C:\\ProgramData\\Morvil\\PrinterDriver\\Spool.Default");
    EXPECT_EQ(toUtf8(folders.workFolder()), "");
}

TEST_F(Folders, whatever_call_fails_the_constructor_ends_and_a_later_one_repairs) {
    for (int n = 1; n < 400; ++n) {
        test::FailingCalls faults(n, test::Fault::Persistent);
        { const CMvConfig folders; }
        if (faults.fired() == 0) break;
        ASSERT_LT(n, 399);
    }
    const CMvConfig folders;
    EXPECT_TRUE(exists(folders.mainIni()));
    EXPECT_TRUE(exists(folders.jobApplicationIni()));
    EXPECT_TRUE(folderExists(folders.spoolFolder()));
}

TEST_F(Folders, on_a_fresh_machine_everything_is_built_and_created) {
    const CMvConfig folders;
    const struct {
        const WCHAR* path;
        const char* expected;
        enum { Absent, File, Folder } made;
    } paths[] = {
        {folders.dataRoot(), "C:\\ProgramData\\Morvil", paths[0].Folder},
        {folders.commonFiles(), "C:\\ProgramData\\Morvil\\Common Files", paths[0].Folder},
        {folders.mainIni(), "C:\\ProgramData\\Morvil\\morvil.ini", paths[0].File},
        {folders.debugIni(), "C:\\ProgramData\\Morvil\\mvDebug.ini", paths[0].Absent},
        {folders.programCommonFiles(), "C:\\Program Files\\Morvil\\Common Files", paths[0].Absent},
        {folders.jobApplicationFolder(), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0", paths[0].Folder},
        {folders.jobApplicationIni(), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\pk.ini", paths[0].File},
        {folders.applicationPath(), "", paths[0].Absent},
        {folders.spoolFolder(), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Spool", paths[0].Folder},
        {folders.workFolder(), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Work", paths[0].Folder},
        {folders.driverDataFolder(), "C:\\ProgramData\\Morvil\\PrinterDriver", paths[0].Folder},
        {folders.driverVersionFolder(), "C:\\ProgramData\\Morvil\\PrinterDriver\\0.0.0", paths[0].Folder},
        {folders.driverProgramFolder(), "C:\\Program Files\\Morvil\\PrinterDriver", paths[0].Folder},
        {folders.configurationFile(), "C:\\ProgramData\\Morvil\\PrinterDriver\\PrinterDriver.xml", paths[0].Absent},
        {folders.coloursGaspen(), "C:\\ProgramData\\Morvil\\Common Files\\ColorsGaspen.xml", paths[0].Absent},
        {folders.coloursCustomer(), "C:\\ProgramData\\Morvil\\Common Files\\ColorsCustomer.xml", paths[0].Absent},
        {folders.diagnosticsFile(), "C:\\ProgramData\\Morvil\\Common Files\\Diagnostics.xml", paths[0].Absent},
    };
    for (const auto& entry : paths) {
        EXPECT_EQ(toUtf8(entry.path), entry.expected);
        EXPECT_EQ(fileExists(entry.path), entry.made == entry.File) << entry.expected;
        EXPECT_EQ(folderExists(entry.path), entry.made == entry.Folder) << entry.expected;
    }
    EXPECT_FALSE(exists(TEXT("C:\\ProgramData\\Morvil\\PrinterDriver\\Spool.Default")));
    EXPECT_EQ(iniValue(kMainIni, TEXT("Plotkeeper"), TEXT("actVersion")), "0.0.0");
    EXPECT_EQ(iniValue(kMainIni, TEXT("PrinterDriver"), TEXT("actVersion")), "0.0.0");
    EXPECT_EQ(iniValue(kJobIni, TEXT("UserSetup"), TEXT("SpoolPath")), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Spool\\");
    EXPECT_EQ(iniValue(kJobIni, TEXT("UserSetup"), TEXT("WorkPath")), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Work\\");
    EXPECT_THAT(texts(), Each("CMvFsServices::createDirectory SetFileSecurity success, kb\n"));
}

TEST_F(Folders, a_second_time_nothing_is_created) {
    { const CMvConfig first; }
    WritePrivateProfileStringW(TEXT("UserSetup"), TEXT("WorkPath"), TEXT("C:\\mine\\"), kJobIni);
    m_debug.clear();
    const CMvConfig second;
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_EQ(toUtf8(second.workFolder()), "C:\\mine");
    EXPECT_FALSE(exists(TEXT("C:\\mine")));
}

TEST_F(Folders, what_was_removed_since_is_made_again) {
    { const CMvConfig first; }
    for (const WCHAR* gone : {TEXT("C:\\ProgramData\\Morvil\\Common Files"), TEXT("C:\\ProgramData\\Morvil\\PrinterDriver\\0.0.0"),
                              TEXT("C:\\ProgramData\\Morvil\\PrinterDriver"), TEXT("C:\\Program Files\\Morvil\\PrinterDriver"),
                              TEXT("C:\\Program Files\\Morvil")}) {
        ASSERT_TRUE(RemoveDirectoryW(gone)) << toUtf8(gone);
    }
    const CMvConfig second;
    for (const WCHAR* path : {second.commonFiles(), second.driverVersionFolder(), second.driverProgramFolder()})
        EXPECT_TRUE(folderExists(path)) << toUtf8(path);
}

TEST_F(Folders, the_log_and_the_debug_switches_learn_their_folders) {
    logState().folder = TEXT("C:\\elsewhere");
    logState().baseFolder = TEXT("C:\\elsewhere");
    const CMvConfig folders;
    EXPECT_EQ(logState().folder, folders.driverDataFolder());
    EXPECT_EQ(logState().baseFolder, folders.dataRoot());
}

TEST_F(Folders, the_acting_versions_name_the_version_folders) {
    makeFolder(kRoot);
    WritePrivateProfileStringW(TEXT("Plotkeeper"), TEXT("actVersion"), TEXT("5.1.2"), kMainIni);
    const CMvConfig folders;
    EXPECT_EQ(toUtf8(folders.jobApplicationFolder()), "C:\\ProgramData\\Morvil\\Plotkeeper\\5.1.2");
    EXPECT_TRUE(folderExists(folders.jobApplicationFolder()));
    EXPECT_EQ(toUtf8(folders.driverVersionFolder()), toUtf8(folders.driverDataFolder()));  // the driver's is missing
    WritePrivateProfileStringW(TEXT("PrinterDriver"), TEXT("actVersion"), TEXT("6.0"), kMainIni);
    const CMvConfig later;
    EXPECT_EQ(toUtf8(later.driverVersionFolder()), "C:\\ProgramData\\Morvil\\PrinterDriver\\6.0");
    EXPECT_TRUE(folderExists(later.driverVersionFolder()));
}

TEST_F(Folders, without_pk_ini_it_is_created_with_spool_and_work) {
    { const CMvConfig first; }
    ASSERT_TRUE(DeleteFileW(kJobIni));
    ASSERT_TRUE(RemoveDirectoryW(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Spool")));
    ASSERT_TRUE(RemoveDirectoryW(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Work")));
    const CMvConfig second;
    EXPECT_TRUE(fileExists(kJobIni));
    EXPECT_TRUE(folderExists(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Spool")));
    EXPECT_TRUE(folderExists(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\Work")));
}

TEST_F(Folders, a_spool_path_that_is_missing_or_empty_yields_the_default_below_the_driver) {
    for (const WCHAR* path : {TEXT("C:\\nowhere\\"), TEXT("")}) {
        setJobIni(TEXT("UserSetup"), TEXT("SpoolPath"), path);
        const CMvConfig folders;
        EXPECT_EQ(toUtf8(folders.spoolFolder()), "C:\\ProgramData\\Morvil\\PrinterDriver\\Spool.Default");
        EXPECT_TRUE(folderExists(folders.spoolFolder()));
    }
    makeFolder(TEXT("C:\\jobs"));
    setJobIni(TEXT("UserSetup"), TEXT("SpoolPath"), TEXT("C:\\jobs\\"));
    EXPECT_EQ(toUtf8(CMvConfig().spoolFolder()), "C:\\jobs");
    setJobIni(TEXT("UserSetup"), TEXT("SpoolPath"), TEXT("C:\\jobs"));
    EXPECT_EQ(toUtf8(CMvConfig().spoolFolder()), "C:\\jobs");
}

TEST_F(Folders, the_fallback_spool_folder_is_made_when_asked_for) {
    const CMvConfig folders;
    EXPECT_EQ(toUtf8(folders.fallbackSpoolFolder()), "C:\\ProgramData\\Morvil\\PrinterDriver\\Spool.Default");
    EXPECT_TRUE(folderExists(TEXT("C:\\ProgramData\\Morvil\\PrinterDriver\\Spool.Default")));
}

TEST_F(Folders, the_application_path_loses_its_last_character_whatever_it_is) {
    const struct {
        const WCHAR* stored;
        const char* path;
    } cases[] = {{TEXT("C:\\App\\"), "C:\\App"}, {TEXT("C:\\App"), "C:\\Ap"}, {TEXT("C"), ""}, {TEXT(""), ""}};
    for (const auto& entry : cases) {
        setJobIni(TEXT("AdvancedSetup"), TEXT("ApplicationPath"), entry.stored);
        EXPECT_EQ(toUtf8(CMvConfig().applicationPath()), entry.path);
    }
}

TEST_F(Folders, the_work_path_loses_a_backslash_only) {
    for (const WCHAR* stored : {TEXT("C:\\work\\"), TEXT("C:\\work")}) {
        setJobIni(TEXT("UserSetup"), TEXT("WorkPath"), stored);
        EXPECT_EQ(toUtf8(CMvConfig().workFolder()), "C:\\work");
    }
}

TEST_F(Folders, a_data_path_takes_the_job_folders_place) {
    setJobIni(TEXT("UserSetup"), TEXT("DataPath"), TEXT("C:\\data\\"));
    EXPECT_EQ(toUtf8(CMvConfig().jobApplicationFolder()), "C:\\data");
    EXPECT_EQ(toUtf8(CMvConfig().jobApplicationIni()), toUtf8(kJobIni));  // it was read from there
    setJobIni(TEXT("UserSetup"), TEXT("DataPath"), TEXT("C:\\data"));
    EXPECT_EQ(toUtf8(CMvConfig().jobApplicationFolder()), "C:\\data");
}

TEST_F(Folders, the_customers_colours_follow_the_catalogues) {
    makeFolder(kJobFolder);
    writeBytes(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsCustomer.xml"), "<a/>");
    EXPECT_EQ(toUtf8(CMvConfig().coloursGaspen()), "C:\\ProgramData\\Morvil\\Common Files\\ColorsGaspen.xml");
    EXPECT_EQ(toUtf8(CMvConfig().coloursCustomer()), "C:\\ProgramData\\Morvil\\Common Files\\ColorsCustomer.xml");
    DeleteFileW(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsCustomer.xml"));
    writeBytes(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsGaspen.xml"), "<a/>");
    EXPECT_EQ(toUtf8(CMvConfig().coloursGaspen()), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsGaspen.xml");
    EXPECT_EQ(toUtf8(CMvConfig().coloursCustomer()), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsCustomer.xml");
}

TEST_F(Folders, the_colour_lists_are_looked_for_once_at_the_first_question) {
    const CMvConfig folders;
    writeBytes(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsGaspen.xml"), "<a/>");
    EXPECT_EQ(toUtf8(folders.coloursCustomer()), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsCustomer.xml");
    DeleteFileW(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsGaspen.xml"));
    EXPECT_EQ(toUtf8(folders.coloursGaspen()), "C:\\ProgramData\\Morvil\\Plotkeeper\\0.0.0\\ColorsGaspen.xml");
}

// The longest path that fits the buffers, and one character more.
TEST_F(Folders, a_path_that_does_not_fit_stays_empty) {
    const WString fits = WString(TEXT("C:\\")).append(259 - 3 - 17, TEXT('d'));
    setJobIni(TEXT("UserSetup"), TEXT("DataPath"), fits.c_str());
    makeFolder(fits);
    writeBytes(fits + TEXT("\\ColorsGaspen.xml"), "<a/>");
    const CMvConfig folders;
    EXPECT_EQ(toUtf8(folders.coloursGaspen()), toUtf8(fits + TEXT("\\ColorsGaspen.xml")));
    EXPECT_EQ(toUtf8(folders.coloursCustomer()), "");  // "\ColorsCustomer.xml" is longer by two
}

// A folder or file that is found tells that the folders above it are there, but not with a path that leads out of them.
TEST_F(Folders, versions_that_lead_elsewhere_leave_no_folder_out) {
    makeFolder(TEXT("C:\\ProgramData\\Morvil\\elsewhere"));
    writeBytes(TEXT("C:\\ProgramData\\Morvil\\elsewhere\\pk.ini"), "");
    WritePrivateProfileStringW(TEXT("Plotkeeper"), TEXT("actVersion"), TEXT("..\\elsewhere"), kMainIni);
    WritePrivateProfileStringW(TEXT("PrinterDriver"), TEXT("actVersion"), TEXT(".."), kMainIni);
    const CMvConfig folders;
    EXPECT_TRUE(folderExists(TEXT("C:\\ProgramData\\Morvil\\Plotkeeper")));
    EXPECT_TRUE(folderExists(folders.driverDataFolder()));
}

}  // namespace
}  // namespace morvil
