// The mail page as a program, with the real library and a scripted host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/AbsentModule.h"
#include "tests/support/TestFolder.h"

namespace {

using obtest::BesideProgram;
using obtest::HostScript;
using testing::IsEmpty;

std::wstring Quoted(const std::wstring& text) { return L"\"" + text + L"\""; }

class MailPageProgram : public testing::Test {
protected:
    // Runs the page to its end; what it was given, or why there is nothing.
    std::string Attach(const std::wstring& options) {
        const std::wstring path = BesideProgram(L"mailpage.exe");
        std::wstring line = Quoted(path) + L" --auto --result " + Quoted(folder_ / L"result.txt") +
                            L" --outbox " + Quoted(folder_ / L"outbox") + L" " + options;
        STARTUPINFOW startup{.cb = sizeof(STARTUPINFOW)};
        PROCESS_INFORMATION info{};
        if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                            &startup, &info)) {
            return "not started";
        }
        const ObLib::UniqueKernelHandle process(info.hProcess);
        const ObLib::UniqueKernelHandle thread(info.hThread);
        if (WaitForSingleObject(process.Get(), 30000) != WAIT_OBJECT_0) {
            TerminateProcess(process.Get(), 1);
            return "not ended";
        }
        GetExitCodeProcess(process.Get(), &exitCode_);
        return obtest::ReadFileContent(folder_ / L"result.txt").value_or("no result");
    }

    static std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

    obtest::TestFolder folder_;
    DWORD exitCode_ = 99;
};

TEST_F(MailPageProgram, TakesFilesFromTheLibraryAndSendsThem) {
    const std::wstring a = folder_.File(L"a.txt", "first");
    const std::wstring b = folder_.File(L"b.txt", "second");
    HostScript::Play(L"status 3\nresult 1\nslot " + Quoted(folder_.Path() + L"\\") +
                     L" \"a.txt\" \"b.txt\"");
    EXPECT_EQ(Attach(L""), Narrow(L"answer=1\npath=" + a + L"\npath=" + b + L"\n"));
    EXPECT_EQ(exitCode_, 0u);
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"outbox\\b.txt"), "second");
}

TEST_F(MailPageProgram, TakesFilesOnTheDialogPath) {
    const std::wstring a = folder_.File(L"a.txt");
    const std::wstring b = folder_.File(L"b.txt");
    HostScript::Play(L"poke32 28 76\npoke32 32 78\nlist 78 " + Quoted(a) + L" " + Quoted(b) +
                     L"\nstatus 4\nresult 0");
    EXPECT_EQ(Attach(L"--entry dialog"),
              Narrow(L"answer=0x00000000\npath=" + a + L"\npath=" + b + L"\n"));
}

TEST_F(MailPageProgram, TakesOneFileOnTheDialogPath) {
    const std::wstring a = folder_.File(L"a.txt");
    HostScript::Play(L"poke32 28 76\npoke32 32 78\nlist 78 " + Quoted(a) + L"\nstatus 4\nresult 0");
    EXPECT_EQ(Attach(L"--entry dialog --single"), Narrow(L"answer=0x00000000\npath=" + a + L"\n"));
}

TEST_F(MailPageProgram, ReportsACancelOfTheUser) {
    HostScript::Play(L"result 0x800704C7");
    EXPECT_EQ(Attach(L"--entry dialog"), "answer=0x800704C7\n");
    HostScript::Play(L"status 3");
    EXPECT_EQ(Attach(L""), "answer=0\n");
}

TEST_F(MailPageProgram, TakesALinkText) {
    HostScript::Play(L"text 76 \"https://cloud.example/1\"\npoke32 24 76\nstatus 2");
    EXPECT_EQ(Attach(L""), "answer=0\nlink=https://cloud.example/1\n");
}

TEST_F(MailPageProgram, RemovesTheTemporaryFolderAfterSending) {
    const std::wstring run = folder_.Folder(L"run");
    const std::wstring zip = folder_.File(L"run\\mail.zip", "PK");
    HostScript::Play(L"status 3\nresult 1\nslot " + Quoted(zip) + L"\ntext 20000 " + Quoted(run) +
                     L"\npoke32 16 20000\ntext 30000 " + Quoted(zip) + L"\npoke32 20 30000");
    EXPECT_EQ(Attach(L""), Narrow(L"answer=1\npath=" + zip + L"\ncleanup-folder=" + run +
                                  L"\ncleanup-file=" + zip + L"\n"));
    EXPECT_FALSE(obtest::FileExists(zip));
    EXPECT_EQ(GetFileAttributesW(run.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"outbox\\mail.zip"), "PK");
}

TEST_F(MailPageProgram, IsLeftToItsOwnDialogOnAnotherPage) {
    HostScript::Play(L"exit 0");
    EXPECT_EQ(Attach(L"--url https://www.example.com/ --no-fallback-dialog"),
              "answer=0\nbrowser-dialog=yes\n");
    EXPECT_EQ(Attach(L"--url https://www.example.com/ --no-fallback-dialog --entry dialog"),
              "answer=0x800704C7\nbrowser-dialog=yes\n");
    EXPECT_THAT(HostScript::Record(), IsEmpty());
}

TEST_F(MailPageProgram, OwnsTheHostsDialogThroughALayerWindow) {
    HostScript::Play(L"owner\nstatus 3");
    EXPECT_EQ(Attach(L""), "answer=0\n");
    EXPECT_EQ(HostScript::RecordOf(L"start").size(), 1u);
    ASSERT_EQ(HostScript::RecordOf(L"owner").size(), 1u);
    EXPECT_NE(HostScript::RecordOf(L"owner")[0].find(L"WebVellantLayer"), std::wstring::npos)
        << Narrow(HostScript::RecordOf(L"owner")[0]);
}

TEST_F(MailPageProgram, EndsWithItsOwnCodeWithoutTheLibrary) {
    const obtest::AbsentModule library(L"obwmcore64.dll");
    ASSERT_TRUE(library.Ok());
    EXPECT_EQ(Attach(L""), "no result");
    EXPECT_EQ(exitCode_, 3u);
}

} // namespace
