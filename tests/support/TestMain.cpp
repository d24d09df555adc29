#include "tests/support/TestMain.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

// Constant-initialised, so that a static initialiser of any other file may set it.
void (*g_obTestModuleAttach)(HMODULE module) = nullptr;

namespace {

// The watchdog reads this while the main thread may hang anywhere, so it is never freed and
// consists of plain characters.
constinit char g_runningTest[512] = "none yet";

class RunningTestRecorder final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        snprintf(g_runningTest, sizeof g_runningTest, "%s.%s", test.test_suite_name(), test.name());
    }
    void OnTestEnd(const testing::TestInfo& test) override {
        snprintf(g_runningTest, sizeof g_runningTest, "none (the last was %s.%s)",
                 test.test_suite_name(), test.name());
    }
};

void PrintLine(const char* format, const char* value) {
    char line[640];
    const int length = snprintf(line, sizeof line, format, value);
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), line, static_cast<DWORD>(length), &written, nullptr);
}

// Asks no window for its text, as its thread may hang.
BOOL CALLBACK PrintText(HWND window, LPARAM isChild) {
    wchar_t text[256] = L"";
    char narrow[sizeof text] = "";
    if (IsWindowVisible(window) && InternalGetWindowText(window, text, 256) > 0) {
        WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow, sizeof narrow - 1, nullptr, nullptr);
        PrintLine(isChild ? "[  WATCHDOG  ]   in it: %s\n" : "[  WATCHDOG  ] window: %s\n", narrow);
    }
    if (!isChild) EnumChildWindows(window, &PrintText, TRUE);
    return TRUE;
}

// Runs on a thread of its own. Takes no lock of the program: the main thread may own it for ever.
// The texts of the open windows show what the test waits for, a message box that nobody expected
// for instance.
DWORD WINAPI Watch(void* limit) {
    Sleep(static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(limit)));
    PrintLine("\n[  WATCHDOG  ] time is up; running: %s\n", g_runningTest);
    EnumWindows(&PrintText, FALSE);
    TerminateProcess(GetCurrentProcess(), ObTestTimeIsUp);
    return 0;
}

// The limit is that of the launcher, less what it takes to start and to say so.
void StartWatchdog() {
    const char* const text = getenv("OB_TEST_TIMEOUT");
    const long seconds = text != nullptr ? strtol(text, nullptr, 10) : 0;
    if (seconds <= 0) {
        return;
    }
    const ULONG_PTR limit = seconds > 10 ? (seconds - 5) * 1000 : seconds * 500;
    const HANDLE thread =
        CreateThread(nullptr, 0, &Watch, reinterpret_cast<void*>(limit), 0, nullptr);
    if (thread != nullptr) {
        CloseHandle(thread);
    }
}

// "Prefix/Suite/0" and "Suite/0" belong to the entry of "Suite".
bool IsKnown(const std::string& known, const char* suite) {
    const std::string full = suite;
    for (size_t begin = 0; begin <= known.size();) {
        const size_t end =
            known.find(',', begin) == std::string::npos ? known.size() : known.find(',', begin);
        const std::string name = known.substr(begin, end - begin);
        if (!name.empty() && ("/" + full + "/").find("/" + name + "/") != std::string::npos) {
            return true;
        }
        begin = end + 1;
    }
    return false;
}

// Every suite of the program must have a ctest entry, or its tests would never run.
bool AllSuitesKnown(int argc, char** argv) {
    static constexpr char option[] = "--known-suites=";
    bool all = true;
    for (int index = 1; index < argc; ++index) {
        if (strncmp(argv[index], option, sizeof option - 1) != 0) {
            continue;
        }
        const std::string known = argv[index] + sizeof option - 1;
        const testing::UnitTest& tests = *testing::UnitTest::GetInstance();
        for (int suite = 0; suite < tests.total_test_suite_count(); ++suite) {
            const char* const name = tests.GetTestSuite(suite)->name();
            if (!IsKnown(known, name)) {
                printf("No ctest entry runs the suite %s: name it under SUITES.\n", name);
                all = false;
            }
        }
    }
    return all;
}

// Where the launcher wants the exit code; empty when the program was started in another way.
// Processes that a test starts don't inherit it.
std::wstring TakeExitCodePath() {
    constexpr wchar_t kName[] = L"OB_EXIT_CODE";
    wchar_t path[MAX_PATH] = L"";
    const DWORD length = GetEnvironmentVariableW(kName, path, MAX_PATH);
    SetEnvironmentVariableW(kName, nullptr);
    return length < MAX_PATH ? std::wstring(path, length) : std::wstring();
}

// Reports the exit code in full: the launcher's own system has only its low eight bits. A program
// that ends before that leaves no file, which the launcher takes for a failure.
void ReportExitCode(const std::wstring& path, int code) {
    if (path.empty()) return;
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    const std::string text = std::to_string(static_cast<unsigned>(code));
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
}

int RunTests(int argc, wchar_t** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!AllSuitesKnown(__argc, __argv)) {
        return ObTestUnknownSuite;
    }
    testing::UnitTest& tests = *testing::UnitTest::GetInstance();
    tests.listeners().Append(new RunningTestRecorder);
    if (g_obTestModuleAttach != nullptr) {
        g_obTestModuleAttach(GetModuleHandleW(nullptr));
    }
    StartWatchdog();
    const int result = RUN_ALL_TESTS();
    if (!testing::GTEST_FLAG(list_tests) && tests.test_to_run_count() == 0) {
        printf("The filter matched no test.\n");
        return ObTestNothingMatched;
    }
    return result;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    // A pipe is fully buffered here, and what a crashed test had printed would be lost.
    setvbuf(stdout, nullptr, _IONBF, 0);
    setvbuf(stderr, nullptr, _IONBF, 0);

    const std::wstring exitCode = TakeExitCodePath();
    const int result = RunTests(argc, argv);
    ReportExitCode(exitCode, result);
    return result;
}
