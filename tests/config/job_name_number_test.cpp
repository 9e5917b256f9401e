// The numbers of job names, and what a file name may hold.
#include "config/JobNameTest.h"
#include "support/System.h"

namespace morvil::test {

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
