// Escapes: codes, sizes and contents, and the configurations that they load and probe.
#include "driver/DriverFixture.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr ULONG kLoad = 9100;
constexpr ULONG kSupported = 9101;

class Escapes : public DriverTest {
  protected:
    Escapes() {
        enableSurface();
        clearLogs();
    }
    ULONG escape(ULONG code, const std::string& input) {
        std::string bytes = input;
        return DrvEscape(pso, code, static_cast<ULONG>(bytes.size()), bytes.data(), 0, nullptr);
    }
    ULONG query(ULONG code) { return DrvEscape(pso, 8, sizeof(code), &code, 0, nullptr); }
    static void store(const WCHAR* name, WORD layers) {
        ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
        record.layers = layers;
        CPrinterConfig().setConfig(name, record);
    }
};

TEST_F(Escapes, an_invalid_instance_is_refused) {
    SURFOBJ stranger{};
    EXPECT_EQ(DrvEscape(&stranger, 8, 0, nullptr, 0, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvEscape iEsc=8", "!!! DrvEscape invalid PDEV"));
}

TEST_F(Escapes, unknown_codes_are_refused) {
    for (const ULONG code : {0U, 7U, 9099U, 9102U, 0xFFFFFFFFU}) {
        clearLogs();
        SetLastError(0xdeadbeef);
        EXPECT_EQ(DrvEscape(pso, code, 0, nullptr, 0, nullptr), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_FUNCTION);
        EXPECT_EQ(morvilLog().back(), toUtf8(format(TEXT("DrvEscape Unsupported EscapeCode: %d"), code)));
    }
}

TEST_F(Escapes, passing_through_is_refused_silently) {
    for (const ULONG code : {19U, 20U, 4115U}) {
        clearLogs();
        SetLastError(0xdeadbeef);
        EXPECT_EQ(escape(code, "data"), 0U);
        EXPECT_EQ(GetLastError(), 0xdeadbeefU);
        EXPECT_THAT(morvilLog(), ElementsAre("DrvEscape iEsc=" + std::to_string(code)));
    }
}

TEST_F(Escapes, a_query_needs_four_bytes) {
    ULONG code[2] = {8, 0};
    for (const ULONG size : {0U, 1U, 2U, 3U, 5U, 8U}) EXPECT_EQ(DrvEscape(pso, 8, size, code, 0, nullptr), 0U) << size;
    EXPECT_EQ(DrvEscape(pso, 8, 4, nullptr, 0, nullptr), 0U);
    EXPECT_EQ(DrvEscape(pso, 8, 4, code, 0, nullptr), 1U);
}

TEST_F(Escapes, queries_by_code) {
    static const struct {
        ULONG code;
        ULONG supported;
        const char* line;
    } codes[] = {{8, 1, nullptr},
                 {17, 1, nullptr},
                 {19, 0, nullptr},
                 {20, 0, nullptr},
                 {4115, 0, "DrvEscape QUERYESCAPESUPPORT for POSTSCRIPT_PASSTHROUGH"},
                 {9100, 1, "DrvEscape QUERYESCAPESUPPORT"},
                 {9101, 0, "DrvEscape QUERYESCAPESUPPORT for default pdwIn=9101"},
                 {0, 0, "DrvEscape QUERYESCAPESUPPORT for default pdwIn=0"}};
    for (const auto& entry : codes) {
        clearLogs();
        EXPECT_EQ(query(entry.code), entry.supported) << entry.code;
        std::vector<std::string> lines{"DrvEscape iEsc=8"};
        if (entry.line != nullptr) lines.emplace_back(entry.line);
        EXPECT_EQ(morvilLog(), lines) << entry.code;
    }
}

TEST_F(Escapes, without_a_count_no_copies_are_set) {
    pdev->plotDM.dm.dmCopies = 3;
    DWORD out = 0x55;
    DWORD zero = 0;
    DWORD five = 5;
    EXPECT_EQ(DrvEscape(pso, 17, 4, nullptr, 4, &out), 0U);
    EXPECT_EQ(DrvEscape(pso, 17, 4, &zero, 4, &out), 0U);
    EXPECT_EQ(DrvEscape(pso, 17, 3, &five, 4, &out), 0U);
    EXPECT_EQ(out, 0x55U);
    EXPECT_EQ(pdev->plotDM.dm.dmCopies, 3);
    EXPECT_THAT(morvilLog(), Contains("DrvEscape SETCOPYCOUNT"));
}

TEST_F(Escapes, five_copies_are_one) {
    DWORD five = 5;
    DWORD out = 0x55;
    EXPECT_EQ(DrvEscape(pso, 17, 4, &five, 4, &out), 1U);
    EXPECT_EQ(out, 1U);
    EXPECT_EQ(pdev->plotDM.dm.dmCopies, 1);
    EXPECT_EQ(DrvEscape(pso, 17, 4, &five, 0, nullptr), 1U);
    out = 0xFFFFFFFF;
    EXPECT_EQ(DrvEscape(pso, 17, 4, &five, 2, &out), 1U);
    EXPECT_EQ(out, 0xFFFF0001U);
    DWORD room[2] = {0, 0x77};
    EXPECT_EQ(DrvEscape(pso, 17, 4, &five, 8, room), 1U);
    EXPECT_EQ(room[1], 0x77U);
}

TEST_F(Escapes, loading_nothing_loads_nothing) {
    state().configuration.layers = 9;
    EXPECT_EQ(escape(kLoad, ""), 0U);
    EXPECT_EQ(escape(kLoad, std::string(4, '\0')), 0U);
    EXPECT_EQ(DrvEscape(pso, kLoad, 4, nullptr, 0, nullptr), 0U);
    EXPECT_EQ(state().configuration.layers, 9);
    EXPECT_THAT(morvilLog(),
                AllOf(Contains("DrvEscape MV_CONFIGURATION_LOAD cjIn=0, wcConfigName="),
                      Contains("DrvEscape MV_CONFIGURATION_LOAD cjIn=4, wcConfigName="), Not(Contains("CPrinterConfig::bDumpConfig"))));
}

TEST_F(Escapes, names_that_do_not_fit_are_refused_whole) {
    store(WString(259, TEXT('n')).c_str(), 33);
    state().configuration.layers = 9;
    for (const std::size_t size : {260U, 100'000U}) {
        EXPECT_EQ(escape(kLoad, std::string(size, 'n')), 0U) << size;
        EXPECT_EQ(escape(kSupported, std::string(size, 'n')), 0U) << size;
    }
    EXPECT_EQ(state().configuration.layers, 9);
}

// 259 characters reach the store, which has no room for items below so long a name.
TEST_F(Escapes, a_name_may_have_one_character_and_259_are_too_many_for_the_store) {
    const std::string longest(259, 'n');
    store(TEXT("n"), 31);
    store(fromUtf8(longest).c_str(), 32);
    state().configuration.layers = 9;
    EXPECT_EQ(escape(kSupported, longest), 0U);
    EXPECT_EQ(escape(kLoad, longest), 0U);
    EXPECT_EQ(state().configuration.layers, 9);
    EXPECT_THAT(morvilLog(), Contains("DrvEscape MV_CONFIGURATION_LOAD cjIn=259, wcConfigName=" + longest));
    EXPECT_EQ(escape(kSupported, "n"), 1U);
    EXPECT_EQ(escape(kLoad, "n"), 1U);
    EXPECT_EQ(state().configuration.layers, 31);
}

TEST_F(Escapes, a_name_that_the_store_refuses_changes_nothing) {
    state().configuration.layers = 9;
    EXPECT_EQ(escape(kLoad, "2"), 0U);  // a number names no configuration
    EXPECT_EQ(state().configuration.layers, 9);
    EXPECT_THAT(morvilLog(), Contains("CPrinterConfig::bDumpConfig"));
}

TEST_F(Escapes, a_stored_configuration_is_loaded_and_becomes_the_current_one) {
    store(TEXT("Wood"), 33);
    clearLogs();
    EXPECT_EQ(escape(kLoad, "Wood"), 1U);
    EXPECT_EQ(state().configuration.layers, 33);
    EXPECT_THAT(morvilLog(),
                AllOf(Contains("DrvEscape MV_CONFIGURATION_LOAD cjIn=4, wcConfigName=Wood"), Contains("CPrinterConfig::bDumpConfig")));
    ConfigurationRecord current{};
    EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), current));
    EXPECT_EQ(current.layers, 33);
}

TEST_F(Escapes, a_terminator_ends_the_name) {
    store(TEXT("Wood"), 33);
    EXPECT_EQ(escape(kLoad, std::string("Wood\0Stone", 10)), 1U);
    EXPECT_EQ(state().configuration.layers, 33);
}

TEST_F(Escapes, stored_names_are_told_from_others) {
    store(TEXT("Wood"), 33);
    clearLogs();
    EXPECT_EQ(escape(kSupported, "Stone"), 0U);
    EXPECT_EQ(escape(kSupported, ""), 0U);
    EXPECT_EQ(escape(kSupported, "Woo"), 0U);
    EXPECT_EQ(escape(kSupported, "Wood"), 1U);
    EXPECT_THAT(morvilLog(), AllOf(Contains("DrvEscape MV_CONFIGURATION_SUPPORTED wcConfigName=Stone"),
                                   Contains("DrvEscape MV_CONFIGURATION_SUPPORTED wcConfigName=Wood")));
    EXPECT_NE(state().configuration.layers, 33);
}

}  // namespace
}  // namespace morvil::test
