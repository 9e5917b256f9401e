// Job names: the rules of the printing applications, unusable characters, numbers, and what a file name may hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/CJobName.h"
#include "config/CPrinterConfig.h"
#include "config/CXml.h"
#include "platform/posix/HostState.h"
#include "support/DebugCapture.h"
#include "support/LogFiles.h"
#include "support/System.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

using testing::Contains;
using testing::ElementsAre;

struct JobName : testing::Test {
    JobName() : logBefore(logState()) {
        logState().settings = &settings;
        const CMvConfig folders;
        spool = WString(folders.spoolFolder()) + TEXT("\\");
        work = WString(folders.workFolder()) + TEXT("\\");
    }
    ~JobName() override { logState() = logBefore; }

    void putJob(const WString& folder, const char* name) { writeBytes(folder + fromUtf8(name), "job"); }
    // The name that a fresh object gives.
    std::string nameOf(const char* title, const char* application = "") {
        CJobName names;
        setApplication(names, application);
        return toUtf8(names.getJobName(fromUtf8(title).c_str()));
    }
    static void setApplication(CJobName& names, const char* application) {
        ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
        copyText(record.application.name, fromUtf8(application));
        names.setPrinterConfig(&record);
    }
    std::vector<std::string> log() {
        const WString path = logState().folder + TEXT("\\log_morvil.txt");
        return exists(path) ? messagesOf(readBytes(path)) : std::vector<std::string>();
    }
    void clearLog() { DeleteFileW((logState().folder + TEXT("\\log_morvil.txt")).c_str()); }

    TempHome home;
    LoggingBlock settings{.enabled = 1, .debugLevel = 0, .reserved = 0, .maxBytes = 100'000'000};
    LogState logBefore;
    WString spool;
    WString work;
};

struct RuleCase {
    const char* title;
    const char* expected;
};

std::string letters(std::size_t count) { return std::string(count, 'x'); }

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

// ---- numbers ------------------------------------------------------------------------------------------------------------

TEST_F(JobName, nameWithoutEarlierJobs_carriesNoNumber) {
    putJob(spool, "Other.tsf");
    putJob(spool, "Plan.tsa");
    EXPECT_EQ(nameOf("Plan"), "Plan");
}

TEST_F(JobName, number_isOneMoreThanTheLargest) {
    needsOptionalQuestionMarks();
    putJob(spool, "Plan.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 0001");
    putJob(spool, "Plan 0003.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 0004");
    putJob(work, "Plan 0011.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 0012");
}

TEST_F(JobName, jobsInTheWorkFolderAlone_countAsWell) {
    needsOptionalQuestionMarks();
    putJob(work, "Plan.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 0001");
}

TEST_F(JobName, nameThatBeginsAlike_takesANumberToo) {
    needsOptionalQuestionMarks();
    putJob(spool, "Plan12.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 0001");
    putJob(spool, "Planetariums.tsf");
    EXPECT_EQ(nameOf("Planet"), "Planet") << "more than five characters behind the name";
}

TEST_F(JobName, folders_areNoJobs) {
    makeFolder(spool + TEXT("Plan 0007.tsf"));
    EXPECT_EQ(nameOf("Plan"), "Plan 0001");
}

TEST_F(JobName, lastRunOfExactlyFourDigits_isTheNumber) {
    putJob(spool, "Plan 2024.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 2025");
    putJob(spool, "12345 0002.tsf");
    EXPECT_EQ(nameOf("12345"), "12345 0003");
    putJob(spool, "Kit.tsf");
    putJob(spool, "Kit 12.tsf");
    EXPECT_EQ(nameOf("Kit"), "Kit 0001") << "two digits are no number";
}

TEST_F(JobName, digitsOfTheTitle_stayPartOfIt) {
    needsOptionalQuestionMarks();
    EXPECT_EQ(nameOf("Plan 0003"), "Plan 0003");
    putJob(spool, "Plan 0003.tsf");
    EXPECT_EQ(nameOf("Plan 0003"), "Plan 0003 0001");
}

TEST_F(JobName, threePages_countOn) {
    needsOptionalQuestionMarks();
    CJobName names;
    const auto page = [&](const WCHAR* given) {
        const WString name = names.getJobName(given);
        putJob(spool, (toUtf8(name) + ".tsf").c_str());
        return name;
    };
    const WString first = page(TEXT("Plan"));
    const WString second = page(first.c_str());
    const WString third = page(second.c_str());
    EXPECT_EQ(toUtf8(first), "Plan");
    EXPECT_EQ(toUtf8(second), "Plan 0001");
    EXPECT_EQ(toUtf8(third), "Plan 0002");
}

TEST_F(JobName, jobNamedAgainBeforeItIsWritten_keepsItsName) {
    needsOptionalQuestionMarks();
    putJob(spool, "Plan.tsf");
    CJobName names;
    const WCHAR* name = names.getJobName(TEXT("Plan"));
    EXPECT_EQ(toUtf8(name), "Plan 0001");
    name = names.getJobName(name);
    EXPECT_EQ(toUtf8(name), "Plan 0001");
    name = names.getJobName(name);
    EXPECT_EQ(toUtf8(name), "Plan 0001");
}

TEST_F(JobName, titleWithANumberOfItsOwn_losesOnlyWhatWasAdded) {
    needsOptionalQuestionMarks();
    putJob(spool, "Plan 0003.tsf");
    CJobName names;
    const WString name = names.getJobName(TEXT("Plan 0003"));
    EXPECT_EQ(toUtf8(name), "Plan 0003 0001");
    putJob(spool, "Plan 0003 0001.tsf");
    EXPECT_EQ(toUtf8(names.getJobName(name.c_str())), "Plan 0003 0002");
}

TEST_F(JobName, nameGivenBefore_isNotReducedAgain) {
    CJobName names;
    setApplication(names, "winword.exe");
    const WString name = names.getJobName(TEXT("Word - Plan - old"));
    EXPECT_EQ(toUtf8(name), "Plan - old");
    EXPECT_EQ(toUtf8(names.getJobName(name.c_str())), "Plan - old");
}

TEST_F(JobName, longTitle_isCutForTheNumber) {
    needsOptionalQuestionMarks();
    const std::string title = letters(49);
    putJob(spool, (title + ".tsf").c_str());
    EXPECT_EQ(nameOf(title.c_str()), letters(45) + " 0001");
    putJob(spool, (letters(45) + " 0001.tsf").c_str());
    EXPECT_EQ(nameOf(title.c_str()), letters(45) + " 0002");
    putJob(spool, (letters(45) + " 0002.tsf").c_str());
    const std::string other = letters(45) + "yyyy";
    putJob(spool, (other + ".tsf").c_str());
    EXPECT_EQ(nameOf(other.c_str()), letters(45) + " 0003") << "a title that is alike up to the cut";
}

TEST_F(JobName, longTitleNamedAgain_keepsItsWholeBase) {
    needsOptionalQuestionMarks();
    const std::string title = letters(49);
    CJobName names;
    const WString first = names.getJobName(fromUtf8(title).c_str());
    putJob(spool, (toUtf8(first) + ".tsf").c_str());
    const WString second = names.getJobName(first.c_str());
    EXPECT_EQ(toUtf8(second), letters(45) + " 0001");
    DeleteFileW((spool + first + TEXT(".tsf")).c_str());
    EXPECT_EQ(toUtf8(names.getJobName(second.c_str())), title) << "free again, and whole";
}

TEST_F(JobName, numbersBeyondFourDigits_goOnWithFive) {
    needsOptionalQuestionMarks();
    putJob(spool, "Plan.tsf");
    putJob(spool, "Plan 9998.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 9999");
    putJob(spool, "Plan 9999.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 10000");
    putJob(spool, "Plan 10000.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 10001");
    putJob(spool, "Plan 99999.tsf");
    EXPECT_EQ(nameOf("Plan"), "Plan 100000");
    const std::string title = letters(49);
    putJob(work, (title + ".tsf").c_str());
    putJob(work, (letters(45) + " 9999.tsf").c_str());
    EXPECT_EQ(nameOf(title.c_str()), letters(44) + " 10000");
    putJob(work, (letters(44) + " 10000.tsf").c_str());
    EXPECT_EQ(nameOf(title.c_str()), letters(44) + " 10001");
}

TEST_F(JobName, titlesThatAreNoFileNames_areSearchedByTheirFileNames) {
    needsOptionalQuestionMarks();
    putJob(spool, "a_b_.tsf");
    EXPECT_EQ(nameOf("a/b."), "a/b. 0001");
    putJob(spool, "a_b. 0001.tsf");
    EXPECT_EQ(nameOf("a/b."), "a/b. 0002");
    EXPECT_EQ(nameOf("*"), "*") << "no pattern of its own";
}

// ---- helpers ------------------------------------------------------------------------------------------------------------

TEST_F(JobName, withoutNumber_takesABlankAndFourDigits) {
    static constexpr RuleCase cases[] = {
        {"Plan 0003", "Plan"},
        {"x 0003", "x"},
        {" 0003", " 0003"},
        {"0003", "0003"},
        {"Plan0003", "Plan0003"},
        {"Plan 003", "Plan 003"},
        {"Plan 00003", "Plan 00003"},
        {"Plan 000a", "Plan 000a"},
        {"", ""},
    };
    for (const RuleCase& c : cases) EXPECT_EQ(toUtf8(CJobName::withoutNumber(fromUtf8(c.title))), c.expected) << c.title;
}

// The second job of such a name is told from the first.
TEST_F(JobName, namesOfDevices_areNumberedLikeOthers) {
    needsOptionalQuestionMarks();
    EXPECT_EQ(nameOf("NUL"), "NUL");
    putJob(spool, "NU_.tsf");
    EXPECT_EQ(nameOf("NUL"), "NUL 0001");
    putJob(spool, "NU_ 0001.tsf");
    EXPECT_EQ(nameOf("NUL"), "NUL 0002");
}

TEST_F(JobName, asFileName_replacesWhatNoFileNameMayHold) {
    static constexpr RuleCase cases[] = {
        {"Plan", "Plan"},
        {"a\\b/c:d*e?f\"g<h>i|j", "a_b_c_d_e_f_g_h_i_j"},
        {"a\tb\nc\x7F", "a_b_c_"},
        {"Plan. . ", "Plan____"},
        {"...", "___"},
        {" Plan", " Plan"},
        {".plan", ".plan"},
        {"Größe", "Größe"},
        {"", ""},
        // A file of these names would be a device, whatever follows a point.
        {"CON", "CO_"},
        {"nul", "nu_"},
        {"Aux.plan", "Au_.plan"},
        {"Prn  .x", "Pr_  .x"},
        {"lpt1", "lpt_"},
        {"COM9", "COM_"},
        {"CONIN$", "CONIN_"},
        {"conout$", "conout_"},
        {"CON 0001", "CO_ 0001"},  // as its first one
        {"CON 12345", "CO_ 12345"},
        {"CONE", "CONE"},
        {"COM", "COM"},
        {"COM10", "COM10"},
        {"a CON", "a CON"},
        {"0001", "0001"},
    };
    for (const RuleCase& c : cases) EXPECT_EQ(toUtf8(CJobName::asFileName(fromUtf8(c.title))), c.expected) << c.title;
}

}  // namespace morvil::test
