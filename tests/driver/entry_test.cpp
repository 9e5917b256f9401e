// Loading and enabling the driver: versions, sizes, the function table; and exceptions, which never leave an entry point.
#include <new>

#include "driver/DriverFixture.h"
#include "driver/function_table.h"
#include "driver/guard.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);  // exported, but no header names it

namespace morvil::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Entry : public DriverTest {};

TEST_F(Entry, query_without_buffer_tells_the_size_and_fails) {
    SetLastError(0xdeadbeef);
    DWORD needed = 0x55;
    EXPECT_EQ(DrvQueryDriverInfo(DRVQUERY_USERMODE, nullptr, 0, &needed), FALSE);
    EXPECT_EQ(needed, 4U);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvQueryDriverInfo"));
}

TEST_F(Entry, query_with_three_bytes_fails_and_leaves_them) {
    std::array<BYTE, 4> buffer{1, 2, 3, 4};
    DWORD needed = 0;
    EXPECT_EQ(DrvQueryDriverInfo(DRVQUERY_USERMODE, buffer.data(), 3, &needed), FALSE);
    EXPECT_THAT(buffer, ElementsAre(1, 2, 3, 4));
}

TEST_F(Entry, query_for_any_other_mode_fails_and_leaves_needed) {
    for (const DWORD mode : {0U, 2U, 0xFFFFFFFFU}) {
        clearLogs();
        SetLastError(0xdeadbeef);
        DWORD needed = 0x55;
        DWORD buffer = 0x66;
        EXPECT_EQ(DrvQueryDriverInfo(mode, &buffer, sizeof(buffer), &needed), FALSE);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(needed, 0x55U);
        EXPECT_EQ(buffer, 0x66U);
        EXPECT_THAT(morvilLog(), ElementsAre("DrvQueryDriverInfo", "!!! DrvQueryDriverInfo ERROR_INVALID_PARAMETER"));
    }
}

TEST_F(Entry, query_with_four_bytes_says_user_mode) {
    DWORD needed = 0;
    DWORD buffer = 0x66;
    EXPECT_EQ(DrvQueryDriverInfo(DRVQUERY_USERMODE, &buffer, sizeof(buffer), &needed), TRUE);
    EXPECT_EQ(buffer, 1U);
    EXPECT_EQ(needed, 4U);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvQueryDriverInfo", "DrvQueryDriverInfo DRVQUERY_USERMODE"));
}

TEST_F(Entry, query_tells_no_size_to_nobody) {
    DWORD buffer = 0x66;
    EXPECT_EQ(DrvQueryDriverInfo(DRVQUERY_USERMODE, &buffer, sizeof(buffer), nullptr), TRUE);
    EXPECT_EQ(buffer, 1U);
    SetLastError(0xdeadbeef);
    EXPECT_EQ(DrvQueryDriverInfo(DRVQUERY_USERMODE, nullptr, 0, nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TEST_F(Entry, enable_refuses_old_engines_and_short_records) {
    static const struct {
        ULONG version;
        ULONG size;
        const char* line;
    } refused[] = {{0x1FFFF, 16, "!!! DrvEnableDriver BadEngineVersion"},
                   {0, 0, "!!! DrvEnableDriver BadEngineVersion"},
                   {0x20000, 15, "!!! DrvEnableDriver BadParameter"},
                   {0x20000, 0, "!!! DrvEnableDriver BadParameter"}};
    for (const auto& entry : refused) {
        clearLogs();
        SetLastError(0xdeadbeef);
        DRVENABLEDATA data{1, 2, nullptr};
        EXPECT_EQ(DrvEnableDriver(entry.version, entry.size, &data), FALSE);
        EXPECT_EQ(data.iDriverVersion, 1U);
        EXPECT_EQ(data.c, 2U);
        EXPECT_EQ(GetLastError(), 0xdeadbeefU);
        EXPECT_THAT(morvilLog(), ElementsAre("DrvEnableDriver", entry.line));
    }
}

TEST_F(Entry, enable_refuses_a_missing_record) {
    EXPECT_EQ(DrvEnableDriver(0x20000, 16, nullptr), FALSE);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvEnableDriver", "!!! DrvEnableDriver BadParameter"));
}

TEST_F(Entry, enable_hands_out_the_table_in_its_order) {
    static const ULONG order[] = {8, 0, 7, 1, 2, 3, 4, 14, 16, 15, 18, 20, 19, 37, 23, 32, 33, 35, 34, 57, 58, 24, 13};
    DRVENABLEDATA data{};
    ASSERT_EQ(DrvEnableDriver(0x20000, 16, &data), TRUE);
    EXPECT_EQ(data.iDriverVersion, 0x30000U);
    ASSERT_EQ(data.c, 23U);
    for (ULONG i = 0; i < data.c; ++i) {
        EXPECT_EQ(data.pdrvfn[i].iFunc, order[i]) << i;
        EXPECT_NE(data.pdrvfn[i].pfn, nullptr) << i;
    }
    EXPECT_EQ(reinterpret_cast<void (*)()>(data.pdrvfn[9].pfn), reinterpret_cast<void (*)()>(&DrvFillPath));
    EXPECT_EQ(reinterpret_cast<void (*)()>(data.pdrvfn[22].pfn), reinterpret_cast<void (*)()>(&DrvDitherColor));
    EXPECT_THAT(morvilLog(), ElementsAre("DrvEnableDriver"));
}

TEST_F(Entry, disable_only_logs) {
    state().spoolFile = nullptr;
    state().refCounter = 3;
    DrvDisableDriver();
    EXPECT_EQ(state().refCounter, 3U);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvDisableDriver"));
}

TEST_F(Entry, load_keeps_the_instance_and_unload_logs) {
    const auto instance = reinterpret_cast<HINSTANCE>(0x4711);
    EXPECT_EQ(DllMain(instance, DLL_THREAD_ATTACH, nullptr), TRUE);
    EXPECT_EQ(DllMain(instance, DLL_THREAD_DETACH, nullptr), TRUE);
    EXPECT_EQ(state().ghInstance, nullptr);
    EXPECT_THAT(morvilLog(), IsEmpty());
    EXPECT_EQ(DllMain(instance, DLL_PROCESS_ATTACH, nullptr), TRUE);
    EXPECT_EQ(state().ghInstance, instance);
    EXPECT_EQ(DllMain(instance, DLL_PROCESS_DETACH, nullptr), TRUE);
    EXPECT_THAT(morvilLog(), ElementsAre("DllEntryPoint DLL_PROCESS_ATTACH", "DllEntryPoint DLL_PROCESS_DETACH"));
}

TEST_F(Entry, guard_turns_exceptions_into_failures) {
    const auto run = [](auto&& thrower) {
        SetLastError(0xdeadbeef);
        return guarded(TEXT("DrvTest"), BOOL{FALSE}, [&]() -> BOOL { return thrower(); });
    };
    EXPECT_EQ(run([]() -> BOOL { throw std::bad_alloc(); }), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(run([]() -> BOOL { throw ConfigurationError{kResolutionMissing}; }), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);
    EXPECT_EQ(run([]() -> BOOL { throw 5; }), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);
    EXPECT_EQ(run([]() -> BOOL { return TRUE; }), TRUE);
    EXPECT_EQ(GetLastError(), 0xdeadbeefU);
    EXPECT_THAT(morvilLog(),
                ElementsAre("!!! DrvTest not enough memory", "!!! DrvTest configuration error 10000", "!!! DrvTest unexpected exception"));
}

TEST_F(Entry, an_exception_never_leaves_a_hook) {
    enableSurface();
    engine.throws = true;
    POINTL origin{};
    EXPECT_EQ(DrvStartPage(pso), FALSE);
    EXPECT_EQ(DrvSendPage(pso), FALSE);
    EXPECT_EQ(DrvStartDoc(pso, nullptr, 0), FALSE);
    EXPECT_EQ(DrvEndDoc(pso, 0), FALSE);
    EXPECT_EQ(DrvNextBand(pso, &origin), FALSE);
    EXPECT_EQ(DrvStrokePath(pso, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(DrvFillPath(pso, nullptr, nullptr, nullptr, nullptr, 0, 0), FALSE);
    EXPECT_EQ(DrvBitBlt(pso, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(DrvStretchBlt(pso, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(DrvCopyBits(pso, nullptr, nullptr, nullptr, nullptr, nullptr), FALSE);
    EXPECT_EQ(DrvTextOut(pso, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(DrvEscape(pso, 8, 0, nullptr, 0, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);
    EXPECT_THAT(morvilLog(), Contains("!!! DrvStartPage unexpected exception"));
}

TEST_F(Entry, a_page_that_lost_a_call_to_an_exception_makes_no_job) {
    startPage();
    engine.throws = true;
    EXPECT_EQ(DrvFillPath(pso, nullptr, nullptr, nullptr, nullptr, 0, 0), FALSE);
    engine.throws = false;
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(jobFileNames(), IsEmpty());
    EXPECT_EQ(DrvStartPage(pso), TRUE);  // the next page is a job of its own
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_EQ(jobFileNames().size(), 1U);
}

TEST_F(Entry, an_exception_never_leaves_the_instance_calls) {
    engine.throws = true;
    DEVINFO info{};
    EXPECT_EQ(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, sizeof(info), &info, nullptr, nullptr, printer), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);
    engine.throws = false;
    enable();
    engine.throws = true;
    EXPECT_EQ(DrvEnableSurface(handleOf(pdev)), nullptr);
}

TEST_F(Entry, a_fresh_state_is_empty_and_rules_the_log) {
    state().refCounter = 5;
    state().configuration.logging.enabled = 1;
    resetState();
    EXPECT_EQ(state().refCounter, 0U);
    EXPECT_EQ(state().spoolFile, nullptr);
    EXPECT_EQ(logState().settings, &state().configuration.logging);
    EXPECT_FALSE(logEnabled());
    DrvDisableDriver();
    EXPECT_THAT(morvilLog(), IsEmpty());
    state().configuration.logging = {.enabled = 1, .debugLevel = 0, .reserved = 0, .maxBytes = 1000};
    DrvDisableDriver();
    EXPECT_THAT(morvilLog(), ElementsAre("DrvDisableDriver"));
}

}  // namespace
}  // namespace morvil::test
