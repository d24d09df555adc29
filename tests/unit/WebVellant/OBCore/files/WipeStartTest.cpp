// Where the wipe program is found, and how it is started.
#include <windows.h>

#include <gtest/gtest.h>

#include "OBCore/files/Wipe.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/OBCore/files/WipeProgram.h"

namespace {

using obcore::StartWipeProcess;
using obtest::PlacedWipeProgram;
using obtest::ProgramFolder;

constexpr wchar_t kAppPathKey[] =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ombrix.exe";
constexpr DWORD kEndLimit = 20000; // milliseconds

bool RunsToItsEnd(const ObLib::UniqueKernelHandle& process) {
    return process && WaitForSingleObject(process.Get(), kEndLimit) == WAIT_OBJECT_0;
}

class WipeStart : public testing::Test {
protected:
    void TearDown() override {
        RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kAppPathKey, KEY_WOW64_64KEY, 0);
        SetCurrentDirectoryW(ProgramFolder().c_str());
    }

    void Register(const std::wstring& value) {
        obtest::SetValue(HKEY_LOCAL_MACHINE, kAppPathKey, L"", value);
    }
    void RegisterRaw(DWORD type, const std::wstring& value, DWORD size) {
        obtest::SetRawValue(HKEY_LOCAL_MACHINE, kAppPathKey, L"", type, value.data(), size);
    }
    DWORD Bytes(const std::wstring& text) { return static_cast<DWORD>(text.size() * 2); }

    // Starts the program in the product's folder and returns whether that one ran.
    void ExpectProductProgramStarts() {
        const PlacedWipeProgram program(product_.Path());
        ASSERT_TRUE(program.Ok());
        EXPECT_TRUE(RunsToItsEnd(StartWipeProcess(L"x")));
        EXPECT_EQ(program.Runs().size(), 1u);
    }
    void ExpectNothingStarts() {
        const PlacedWipeProgram program(product_.Path());
        ASSERT_TRUE(program.Ok());
        EXPECT_FALSE(StartWipeProcess(L"x"));
    }

    obtest::TestFolder product_;
};

TEST_F(WipeStart, StartsNothingWithoutTheProgram) {
    EXPECT_FALSE(StartWipeProcess(L"/timeout:120 \"C:\\a\""));
}

TEST_F(WipeStart, StartsTheProgramBesideTheLibrary) {
    const PlacedWipeProgram program(ProgramFolder());
    ASSERT_TRUE(program.Ok());
    ASSERT_TRUE(RunsToItsEnd(StartWipeProcess(L"/timeout:120 \"C:\\a b\" \"C:\\c\\\"")));
    const auto runs = program.Runs();
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].commandLine, L"\"\" /timeout:120 \"C:\\a b\" \"C:\\c\\\"");
    EXPECT_EQ(runs[0].currentDirectory, ProgramFolder());
}

TEST_F(WipeStart, RunsInTheFolderOfTheProgramAndNotInTheCurrentOne) {
    const PlacedWipeProgram program(ProgramFolder());
    ASSERT_TRUE(SetCurrentDirectoryW(product_.Path().c_str()));
    ASSERT_TRUE(RunsToItsEnd(StartWipeProcess(L"x")));
    ASSERT_EQ(program.Runs().size(), 1u);
    EXPECT_EQ(program.Runs()[0].currentDirectory, ProgramFolder());
}

TEST_F(WipeStart, TakesTheProgramOfTheRegisteredProduct) {
    Register(product_ / L"ombrix.exe");
    const PlacedWipeProgram program(product_.Path());
    ASSERT_TRUE(RunsToItsEnd(StartWipeProcess(L"arguments")));
    const auto runs = program.Runs();
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].commandLine, L"\"\" arguments");
    EXPECT_EQ(runs[0].currentDirectory, product_.Path());
}

TEST_F(WipeStart, PrefersTheProgramBesideTheLibrary) {
    Register(product_ / L"ombrix.exe");
    const PlacedWipeProgram registered(product_.Path());
    const PlacedWipeProgram beside(ProgramFolder());
    ASSERT_TRUE(RunsToItsEnd(StartWipeProcess(L"x")));
    EXPECT_EQ(beside.Runs().size(), 1u);
    EXPECT_TRUE(registered.Runs().empty());
}

TEST_F(WipeStart, StartsNothingWhenTheRegisteredFolderHasNoProgram) {
    Register(product_ / L"ombrix.exe");
    EXPECT_FALSE(StartWipeProcess(L"x"));
}

TEST_F(WipeStart, FindsNoProgramByARegistrationInQuotationMarks) {
    Register(L"\"" + (product_ / L"ombrix.exe") + L"\"");
    ExpectNothingStarts();
}

TEST_F(WipeStart, TakesTheRegisteredFolderUpToTheLastBackslash) {
    Register(product_.Path() + L"\\");
    ExpectProductProgramStarts();
    Register(product_.Path());
    ExpectNothingStarts();
}

TEST_F(WipeStart, RunsInTheRootOfADriveWhenTheProductIsInstalledThere) {
    Register(L"C:\\ombrix.exe");
    const PlacedWipeProgram program(L"C:");
    ASSERT_TRUE(program.Ok());
    ASSERT_TRUE(RunsToItsEnd(StartWipeProcess(L"x")));
    ASSERT_EQ(program.Runs().size(), 1u);
    EXPECT_EQ(program.Runs()[0].currentDirectory, L"C:\\");
}

TEST_F(WipeStart, TakesTextOnly) {
    const std::wstring path = product_ / L"ombrix.exe";
    RegisterRaw(REG_EXPAND_SZ, path + L'\0', Bytes(path) + 2);
    ExpectNothingStarts();
    RegisterRaw(REG_BINARY, path, Bytes(path));
    ExpectNothingStarts();
}

// The system would store a NUL past the given bytes as well, so other text is there.
TEST_F(WipeStart, TerminatesARegistrationThatIsNot) {
    const std::wstring path = product_ / L"ombrix.exe";
    RegisterRaw(REG_SZ, path + L"more", Bytes(path));
    ExpectProductProgramStarts();
}

TEST_F(WipeStart, ReadsARegistrationOf520BytesAndNoMore) {
    std::wstring path = product_ / L"";
    path.resize(300, L'x');
    RegisterRaw(REG_SZ, path, 520);
    ExpectProductProgramStarts();
    RegisterRaw(REG_SZ, path, 522);
    ExpectNothingStarts();
}

TEST_F(WipeStart, NeverTakesAProgramFromTheCurrentFolder) {
    ASSERT_TRUE(SetCurrentDirectoryW(product_.Path().c_str()));
    Register(L"ombrix.exe");
    ExpectNothingStarts();
    Register(L"");
    ExpectNothingStarts();
}

// What CreateProcessW was given.
struct StartCall {
    std::wstring application;
    std::wstring commandLine;
    std::wstring currentDirectory;
    BOOL inherits = TRUE;
    DWORD flags = 1;
    void* environment = &flags;
    STARTUPINFOW startup = {};
    PROCESS_INFORMATION started = {};
} startCall;
decltype(&CreateProcessW) realCreateProcess = nullptr;

BOOL WINAPI NotedStart(LPCWSTR application, LPWSTR commandLine, LPSECURITY_ATTRIBUTES process,
                       LPSECURITY_ATTRIBUTES thread, BOOL inherits, DWORD flags, LPVOID environment,
                       LPCWSTR currentDirectory, LPSTARTUPINFOW startup,
                       LPPROCESS_INFORMATION started) {
    startCall.application = application ? application : L"(none)";
    startCall.commandLine = commandLine;
    startCall.currentDirectory = currentDirectory ? currentDirectory : L"(none)";
    startCall.inherits = inherits;
    startCall.flags = flags;
    startCall.environment = environment;
    startCall.startup = *startup;
    const BOOL result = realCreateProcess(application, commandLine, process, thread, inherits,
                                          flags, environment, currentDirectory, startup, started);
    startCall.started = *started;
    return result;
}

bool IsOpen(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != 0;
}

TEST_F(WipeStart, GivesTheSystemTheProgramApartFromTheCommandLine) {
    const PlacedWipeProgram program(ProgramFolder());
    obtest::ImportPatch<decltype(&CreateProcessW)> start("kernel32.dll", "CreateProcessW",
                                                         &NotedStart);
    ASSERT_TRUE(start.Ok());
    realCreateProcess = start.Real();
    {
        const ObLib::UniqueKernelHandle process = StartWipeProcess(L"arguments");
        ASSERT_TRUE(RunsToItsEnd(process));
        EXPECT_EQ(process.Get(), startCall.started.hProcess);
        EXPECT_FALSE(IsOpen(startCall.started.hThread));
    }
    EXPECT_FALSE(IsOpen(startCall.started.hProcess));
    EXPECT_EQ(startCall.application, ProgramFolder() + L"\\obwipe64.exe");
    EXPECT_EQ(startCall.commandLine, L"\"\" arguments");
    EXPECT_EQ(startCall.currentDirectory, ProgramFolder());
    EXPECT_FALSE(startCall.inherits);
    EXPECT_EQ(startCall.flags, 0u);
    EXPECT_EQ(startCall.environment, nullptr);
    STARTUPINFOW zeroed = {sizeof(zeroed)};
    EXPECT_EQ(memcmp(&startCall.startup, &zeroed, sizeof(zeroed)), 0);
}

TEST_F(WipeStart, StartsNothingWhenTheFileIsNoProgram) {
    obtest::WriteFileContent(ProgramFolder() + L"\\obwipe64.exe", "no program");
    EXPECT_FALSE(StartWipeProcess(L"x"));
    EXPECT_TRUE(DeleteFileW((ProgramFolder() + L"\\obwipe64.exe").c_str()));
}

} // namespace
