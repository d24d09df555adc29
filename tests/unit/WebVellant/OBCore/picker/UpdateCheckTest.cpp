#include "OBCore/picker/UpdateCheck.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <iterator>

#include "OBCore/modules/OwnModule.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/RecordedTrace.h"

namespace {

using obcore::IsUpdateCheckDue;
using obcore::OBOptions;

std::time_t LocalMidnight(int year, int month, int day) {
    std::tm midnight{};
    midnight.tm_year = year - 1900;
    midnight.tm_mon = month - 1;
    midnight.tm_mday = day;
    return std::mktime(&midnight);
}

constexpr std::time_t kDay = 24 * 60 * 60;

TEST(UpdateCheckDue, WhenMoreThanTheIntervalHasPassedSinceTheLastOne) {
    const std::time_t last = LocalMidnight(2026, 3, 5);
    for (const std::uint32_t days : {1U, 7U}) {
        EXPECT_FALSE(IsUpdateCheckDue(L"3/5/2026", days, last));
        EXPECT_FALSE(IsUpdateCheckDue(L"3/5/2026", days, last - 100 * kDay));
        EXPECT_FALSE(IsUpdateCheckDue(L"3/5/2026", days, last + days * kDay));
        EXPECT_TRUE(IsUpdateCheckDue(L"3/5/2026", days, last + days * kDay + 1));
    }
}

TEST(UpdateCheckDue, ReadsMonthDayAndYearInThisOrder) {
    EXPECT_FALSE(IsUpdateCheckDue(L"12/31/2025", 1, LocalMidnight(2025, 12, 31) + kDay));
    EXPECT_TRUE(IsUpdateCheckDue(L"12/31/2025", 1, LocalMidnight(2025, 12, 31) + kDay + 1));
    EXPECT_FALSE(IsUpdateCheckDue(L"03/05/2026 and more", 1, LocalMidnight(2026, 3, 5)));
}

TEST(UpdateCheckDue, WheneverTheTextIsNoDate) {
    const std::time_t now = LocalMidnight(2026, 3, 5);
    for (const wchar_t* const text : {L"", L"3/5", L"3/5/", L"2026-03-05", L"today", L"a/b/c"}) {
        EXPECT_TRUE(IsUpdateCheckDue(text, 7, now)) << testing::PrintToString(text);
    }
}

TEST(UpdateCheckDue, EndsWellForNumbersThatAreNoDate) {
    const std::time_t now = LocalMidnight(2026, 3, 5);
    EXPECT_TRUE(IsUpdateCheckDue(L"1/1/-2147483648", 7, now));
    EXPECT_TRUE(IsUpdateCheckDue(L"-2147483648/1/2026", 7, now));
}

TEST(UpdateCheckDue, CountsTheHoursOfTheIntervalIn32Bits) {
    const std::time_t now = LocalMidnight(2026, 3, 5);
    // 178956971 * 24 is 8 beyond 32 bits: eight hours remain of it.
    EXPECT_FALSE(IsUpdateCheckDue(L"3/5/2026", 178956971, now + 8 * 60 * 60));
    EXPECT_TRUE(IsUpdateCheckDue(L"3/5/2026", 178956971, now + 8 * 60 * 60 + 1));
}

TEST(UpdateCheckDue, KnowsTheTime) {
    EXPECT_LE(std::time(nullptr) - obcore::CurrentTime(), 1);
    EXPECT_GE(obcore::CurrentTime(), std::time(nullptr) - 1);
}

struct Started {
    int count = 0;
    bool fails = false;
    bool applicationGiven = true;
    std::wstring commandLine;
    BOOL inherits = TRUE;
    DWORD flags = 1;
    STARTUPINFOW startup{};
    HANDLE handles[2] = {};
} started;

BOOL WINAPI RecordProcess(LPCWSTR application, LPWSTR commandLine, LPSECURITY_ATTRIBUTES,
                          LPSECURITY_ATTRIBUTES, BOOL inherits, DWORD flags, LPVOID, LPCWSTR,
                          LPSTARTUPINFOW startup, LPPROCESS_INFORMATION process) {
    ++started.count;
    started.applicationGiven = application != nullptr;
    started.commandLine = commandLine;
    started.inherits = inherits;
    started.flags = flags;
    started.startup = *startup;
    if (started.fails) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    for (HANDLE& handle : started.handles) handle = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    process->hProcess = started.handles[0];
    process->hThread = started.handles[1];
    return TRUE;
}

bool IsClosed(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) == FALSE;
}

class UpdateCheckStart : public testing::Test {
protected:
    void SetUp() override {
        started = {};
        ASSERT_TRUE(process.Ok());
    }
    obtest::ImportPatch<decltype(&CreateProcessW)> process{"kernel32.dll", "CreateProcessW",
                                                           &RecordProcess};
    OBOptions options;
};

TEST_F(UpdateCheckStart, StartsTheCheckerBesideTheLibraryUnquotedAndDoesNotWait) {
    obcore::RunUpdateCheck(options, obcore::CurrentTime());
    EXPECT_EQ(started.count, 1);
    EXPECT_FALSE(started.applicationGiven);
    EXPECT_EQ(started.commandLine, obcore::PathBesideOwnModule(L"CheckUpdater.exe").value());
    EXPECT_FALSE(started.commandLine.starts_with(L'"'));
    EXPECT_FALSE(started.inherits);
    EXPECT_EQ(started.flags, 0U);
    STARTUPINFOW zeroed{};
    zeroed.cb = 104;
    EXPECT_EQ(memcmp(&started.startup, &zeroed, sizeof(zeroed)), 0);
    EXPECT_TRUE(IsClosed(started.handles[0]));
    EXPECT_TRUE(IsClosed(started.handles[1]));
}

TEST_F(UpdateCheckStart, OnlyTracesACheckerThatDoesNotStart) {
    started.fails = true;
    obtest::ForgetTrace();
    obcore::RunUpdateCheck(options, obcore::CurrentTime());
    EXPECT_EQ(started.count, 1);
    EXPECT_EQ(obtest::TraceLines(),
              std::vector<std::string>{"CreateProcess CheckUpdater.exe failed 2"});
}

TEST_F(UpdateCheckStart, StartsNothingWhenChecksAreOffOrNoneIsDue) {
    options.UpdateCheckEnabled = false;
    obcore::RunUpdateCheck(options, obcore::CurrentTime());
    EXPECT_EQ(started.count, 0);
    options.UpdateCheckEnabled = true;
    options.LastUpdateCheck = L"3/5/2026";
    options.UpdateCheckIntervalDays = 7;
    obcore::RunUpdateCheck(options, LocalMidnight(2026, 3, 5) + 7 * kDay);
    EXPECT_EQ(started.count, 0);
    obcore::RunUpdateCheck(options, LocalMidnight(2026, 3, 5) + 7 * kDay + 1);
    EXPECT_EQ(started.count, 1);
}

} // namespace
