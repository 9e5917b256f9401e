// Job names: the rules of the printing applications, unusable characters, and the folders that are looked at.
#include "config/CXml.h"
#include "config/JobNameTest.h"
#include "platform/posix/HostState.h"

namespace morvil::test {

namespace {

using testing::Contains;
using testing::ElementsAre;

}  // namespace

// ---- rules --------------------------------------------------------------------------------------------------------------

TEST_F(JobName, executable_selectsTheFormat) {
    const JobIdentification job = CPrinterConfig::defaultConfiguration().job;
    static constexpr struct {
        const WCHAR* executable;
        int format;
    } cases[] = {
        {nullptr, 0},
        {TEXT(""), 0},
        {TEXT("other.exe"), 0},
        {TEXT("WINWORD.EXE"), 0},
        {TEXT("winword.exe"), 1},
        {TEXT("notepad.exe"), 2},
        {TEXT("editor.exe"), 2},
        {TEXT("aclt.exe"), 3},
        {TEXT("pm70.exe"), 3},
        {TEXT("uedit32.exe"), 4},
        {TEXT("crazy browser.exe"), 4},
        {TEXT("firefox.exe"), 4},
        {TEXT("iexplore.exe"), 4},
    };
    for (const auto& c : cases) EXPECT_EQ(jobNameFormatOf(job, c.executable), c.format) << toUtf8(viewOf(c.executable));
}

// What a list's field has no room for stands in the file.
TEST_F(JobName, executableBehindTheFieldOfAList_selectsItsFormatAsWell) {
    const WString list = WString(46, TEXT('a')) + TEXT(".exe;cad.exe;late.exe");  // cut inside "cad.exe"
    CXml store;
    store.createDefault();
    ASSERT_TRUE(store.putItem(TEXT("PrinterDriver.Configuration.About.JobIdentification.Format_1"), list.c_str()));
    JobIdentification job{};
    ASSERT_FALSE(copyText(job.formats[1], list));
    EXPECT_EQ(jobNameFormatOf(job, TEXT("cad.exe")), 2);
    EXPECT_EQ(jobNameFormatOf(job, TEXT("late.exe")), 2);
    EXPECT_EQ(jobNameFormatOf(job, TEXT("other.exe")), 0);
    EXPECT_EQ(toUtf8(applicationList(job, 2)), toUtf8(list));
    job.formats[1][0] = TEXT('b');  // a list of its own, that only looks as long
    EXPECT_EQ(jobNameFormatOf(job, TEXT("late.exe")), 0);
}

TEST_F(JobName, format_isLogged) {
    nameOf("Plan.txt - Editor", "editor.exe");
    EXPECT_THAT(log(), Contains("CJobName::GetFileNameFromJobName, JobNameFormat=2"));
    clearLog();
    nameOf("Plan.txt - Editor", "draw.exe");
    EXPECT_THAT(log(), Contains("CJobName::GetFileNameFromJobName, JobNameFormat=0"));
}

TEST_F(JobName, otherApplications_giveTheWholeTitle) {
    EXPECT_EQ(nameOf("Word - Plan.doc"), "Word - Plan.doc");
    EXPECT_EQ(nameOf(""), "MorvilJob");
    EXPECT_EQ(nameOf(letters(49).c_str()), letters(49));
    EXPECT_EQ(nameOf(letters(50).c_str()), "MorvilJob");
    CJobName names;
    EXPECT_EQ(toUtf8(names.getJobName(nullptr)), "MorvilJob");
}

TEST_F(JobName, format1_isTheTextBehindTheDash) {
    static constexpr RuleCase cases[] = {
        {"Word - Plan.doc", "Plan.doc"},
        {"Word - Plan - old", "Plan - old"},
        {"Word-Plan", "lan"},
        {"Plan", "Plan"},
        {"-Plan", "-Plan"},
        {"Plan-", "Plan-"},
        {"- a - b", "- a - b"},
        {"W-x", "W-x"},
    };
    for (const RuleCase& c : cases) EXPECT_EQ(nameOf(c.title, "winword.exe"), c.expected) << c.title;
}

TEST_F(JobName, format2_isTheTextBeforeTheDash) {
    static constexpr RuleCase cases[] = {
        {"Plan.txt - Editor", "Plan.txt"},
        {"Plan - a - b", "Plan"},
        {"Plan-Editor", "Pla"},
        {"Plan", "Plan"},
        {"-Plan", "-Plan"},
        {"Plan-", "Plan-"},
        {"x-Editor", "x-Editor"},
    };
    for (const RuleCase& c : cases) EXPECT_EQ(nameOf(c.title, "notepad.exe"), c.expected) << c.title;
}

TEST_F(JobName, format3_isTheFileOfAPathUpToABlank) {
    static constexpr RuleCase cases[] = {
        {"C:\\Work\\Plan.dwg Model", "Plan.dwg"}, {"Plan.dwg", "Plan.dwg"},
        {"C:\\My Work\\Plan.dwg", "Plan.dwg"},    {"Plan Model Two", "Plan"},
        {" Plan Model", " Plan Model"},           {"Plan ", "Plan "},
    };
    for (const RuleCase& c : cases) EXPECT_EQ(nameOf(c.title, "aclt.exe"), c.expected) << c.title;
}

TEST_F(JobName, format4_isTheLastPartOfAnAddress) {
    static constexpr RuleCase cases[] = {
        {"a%20b/c/", "c"},
        {"http://host/my%20plan", "my plan"},
        {"C:\\Work\\notes.txt", "notes.txt"},
        {"plan?x=1&y=2", "planx=1y=2"},
        {"a:b", "ab"},
        {"%20%20x", "  x"},
        {"a//", "a//"},
        {"plain", "plain"},
    };
    for (const RuleCase& c : cases) EXPECT_EQ(nameOf(c.title, "firefox.exe"), c.expected) << c.title;
}

TEST_F(JobName, reducedNames_areCutToWhatAJobNameHolds) {
    EXPECT_EQ(nameOf((letters(60) + " - Editor").c_str(), "notepad.exe"), letters(50));
    EXPECT_EQ(nameOf(letters(300).c_str(), "notepad.exe"), letters(50));
}

TEST_F(JobName, emptyTitleOfARule_staysEmpty) {
    EXPECT_EQ(nameOf("", "winword.exe"), "");
    EXPECT_THAT(log(), testing::Not(Contains(testing::HasSubstr("Index1"))));
}

TEST_F(JobName, unusableCharacters_areReplaced) {
    static constexpr RuleCase cases[] = {
        {"日本語", "ErrorJobname"},
        {"Plan 日", "Plan _"},
        {"Plan 日本", "ErrorJobname"},
        {"Zwölf Öfen ÿ", "Zwölf Öfen ÿ"},
        {"ab", "ab"},
        {"a", "a"},
        {"a€", "ErrorJobname"},
        {"Euro12€45€789", "Euro12_45_789"},
    };
    for (const RuleCase& c : cases) EXPECT_EQ(nameOf(c.title), c.expected) << c.title;
}

// ---- folders ------------------------------------------------------------------------------------------------------------

TEST_F(JobName, directories_areLogged) {
    hostState().userName = TEXT("Erna");
    CJobName().getDirectories();
    EXPECT_THAT(log(), ElementsAre("CJobName::GetDirectories, User=Erna, mSpoolDirectory=" + toUtf8(spool)));
}

TEST_F(JobName, naming_makesNoFolderWhileTheSpoolFolderIsThere) {
    CJobName names;
    EXPECT_EQ(toUtf8(names.getJobName(TEXT("Plan"))), "Plan");
    EXPECT_FALSE(exists(WString(CMvConfig().driverDataFolder()) + TEXT("\\Spool.Default")));
}

TEST_F(JobName, missingSpoolFolder_isReplacedByTheFallback) {
    // The folders are worked out from pk.ini, which replaces a missing spool folder by itself; here the replacement fails too.
    const CMvConfig folders;
    const WString fallback = WString(folders.driverDataFolder()) + TEXT("\\Spool.Default");
    WritePrivateProfileStringW(TEXT("UserSetup"), TEXT("SpoolPath"), TEXT("C:\\Gone\\"), folders.jobApplicationIni());
    writeBytes(fallback, "a file where the folder should be");
    clearLog();
    CJobName names;
    names.getDirectories();
    EXPECT_THAT(log(), Contains("!!! CJobName::GetDirectories, can't access Spool Directory"));
    EXPECT_THAT(log(), Contains(testing::HasSubstr("mSpoolDirectory=" + toUtf8(fallback))));
    EXPECT_EQ(toUtf8(names.getJobName(TEXT("Plan"))), "Plan");
}

TEST_F(JobName, naming_logsFoldersAndIndices) {
    putJob(spool, "Plan 0003.tsf");
    putJob(work, "Plan 0006.tsf");
    CJobName names;
    names.getDirectories();
    clearLog();
    EXPECT_EQ(toUtf8(names.getJobName(TEXT("Plan"))), "Plan 0007");
    EXPECT_THAT(log(), ElementsAre("CJobName::GetFileNameFromJobName, JobNameFormat=0",
                                   "CJobName::GetJobName, Spool=" + toUtf8(spool) + ", Work=" + toUtf8(work),
                                   "CJobName::GetJobName, Index1=4, Index2=7"));
}

}  // namespace morvil::test
