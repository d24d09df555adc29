// Documents converted by an office program through automation. The program is a fake that records
// what it is asked: under Wine there is no real one.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/suite/OfficeProgram.h"
#include "services/providers/suite/OfficeRun.h"
#include "services/providers/suite/SuiteProcess.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/services/providers/suite/ConversionFixture.h"

using namespace providers;
using namespace suitetest;

namespace {

// The limits that were last set for a job. Without any, a program in it outlives this process.
std::atomic<DWORD> lastLimits;
decltype(&SetInformationJobObject) realSetInformation;
BOOL WINAPI RecordLimits(HANDLE job, JOBOBJECTINFOCLASS kind, void* information, DWORD size) {
    if (kind == JobObjectExtendedLimitInformation) {
        lastLimits = static_cast<JOBOBJECT_EXTENDED_LIMIT_INFORMATION*>(information)
                         ->BasicLimitInformation.LimitFlags;
    }
    return realSetInformation(job, kind, information, size);
}

class OfficeAutomation : public ConversionFixture {
protected:
    static void SetUpTestSuite() {
        std::puts("A recording program takes the place of each office program: none is here.");
    }
    void SetUp() override {
        ConversionFixture::SetUp();
        ForgetOffice();
        InstallOffice();
        ASSERT_TRUE(limits_.Ok());
        realSetInformation = limits_.Real();
        lastLimits = 0;
    }
    void TearDown() override { ForgetOffice(); }

    SuiteOutcome Convert(const wchar_t* name, const char* mode, const SuiteLimits& limits = {}) {
        EXPECT_TRUE(obtest::WriteFileContent(InOffice(L"office.txt"), mode));
        return ConvertAs(name, limits);
    }
    static Lines AllCalls() { return LinesOf(InOffice(L"office-calls.txt")); }
    static bool IsStart(const std::wstring& line) {
        return line.starts_with(L"process ") || line == L"ready" || line == L"shown" ||
               line == L"ended";
    }
    static Lines Calls() {
        Lines lines = AllCalls();
        std::erase_if(lines, IsStart);
        return lines;
    }
    static Lines LastCalls(std::size_t count) {
        const Lines calls = Calls();
        return {calls.end() - static_cast<std::ptrdiff_t>(std::min(count, calls.size())),
                calls.end()};
    }
    static bool AwaitFreeJob() {
        for (DWORD waited = 0; waited < kLimit && lastLimits != 0; waited += 10) Sleep(10);
        return lastLimits == 0;
    }
    static bool AwaitCall(const std::wstring& begin) {
        for (DWORD waited = 0; waited < kLimit; waited += 10, Sleep(10)) {
            for (const std::wstring& line : AllCalls()) {
                if (line.starts_with(begin)) return true;
            }
        }
        return false;
    }
    // Expects that nothing is left but the target and that each program has ended.
    void ExpectNothingLeft(const char* mode) {
        Lines ids;
        for (const std::wstring& line : AllCalls()) {
            if (line.starts_with(L"process ")) ids.push_back(line.substr(8));
        }
        ExpectNothingLeftOf(ids, mode);
    }
    void ExpectFailed(const char* mode, SuiteOutcome outcome, const SuiteLimits& limits = {}) {
        EXPECT_EQ(Convert(L"letter.docx", mode, limits), outcome) << mode;
        EXPECT_EQ(Target(), "") << mode;
        ExpectNothingLeft(mode);
    }
    // Expects that the program runs, and ends it.
    static void EndProgram() {
        const Lines lines = AllCalls();
        ASSERT_FALSE(lines.empty());
        const ObLib::UniqueKernelHandle process(
            OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, std::stoul(lines[0].substr(8))));
        ASSERT_TRUE(process);
        EXPECT_EQ(WaitForSingleObject(process.Get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
        TerminateProcess(process.Get(), 0);
        WaitForSingleObject(process.Get(), kLimit);
    }
    std::wstring Document(const wchar_t* extension) const {
        return L"'" + run_ + L"\\~suite1\\document." + extension + L"'";
    }
    std::wstring Result() const { return L"'" + run_ + L"\\~suite1\\result\\document.pdf'"; }

    const obtest::ImportPatch<decltype(&SetInformationJobObject)> limits_{
        "kernel32.dll", "SetInformationJobObject", &RecordLimits};
};

TEST_F(OfficeAutomation, OpensATextReadOnlyAndClosesEverything) {
    EXPECT_EQ(Convert(L"letter.docx", "good"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    const Lines wanted = {
        L"Options.UpdateLinksAtOpen = false",
        L"application.AutomationSecurity = 3",
        L"application.DisplayAlerts = 0",
        L"Documents.Open(FileName=" + Document(L"docx") +
            L", ConfirmConversions=false, ReadOnly=true, AddToRecentFiles=false, "
            L"PasswordDocument='-', Visible=false, OpenAndRepair=false, NoEncodingDialog=true)",
        L"document.ExportAsFixedFormat(OutputFileName=" + Result() +
            L", ExportFormat=17, OpenAfterExport=false)",
        L"document.Close(SaveChanges=0)",
        L"Options.UpdateLinksAtOpen = true",
        L"application.Quit(SaveChanges=0)",
    };
    EXPECT_EQ(Calls(), wanted);
    ExpectNothingLeft("good");
}

TEST_F(OfficeAutomation, OpensATableWithoutItsLinks) {
    EXPECT_EQ(Convert(L"numbers.xls", "good"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    const Lines wanted = {
        L"application.IgnoreRemoteRequests = true",
        L"application.AutomationSecurity = 3",
        L"application.DisplayAlerts = false",
        L"application.EnableEvents = false",
        L"Workbooks.Open(FileName=" + Document(L"xls") +
            L", UpdateLinks=0, ReadOnly=true, Password='-', IgnoreReadOnlyRecommended=true, "
            L"Notify=false, AddToMru=false)",
        L"document.ExportAsFixedFormat(Filename=" + Result() + L", Type=0, OpenAfterPublish=false)",
        L"document.Close(SaveChanges=false)",
        L"application.IgnoreRemoteRequests = false",
        L"application.Quit()",
    };
    EXPECT_EQ(Calls(), wanted);
    ExpectNothingLeft("good");
}

TEST_F(OfficeAutomation, OpensSlidesWithoutAWindow) {
    EXPECT_EQ(Convert(L"slides.odp", "good"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    const Lines wanted = {
        L"application.AutomationSecurity = 3",
        L"application.DisplayAlerts = 1",
        L"Presentations.Open(FileName=" + Document(L"odp") +
            L", ReadOnly=-1, Untitled=0, WithWindow=0)",
        L"document.SaveAs(FileName=" + Result() + L", FileFormat=32)",
        L"document.Close()",
        L"application.Quit()",
    };
    EXPECT_EQ(Calls(), wanted);
    ExpectNothingLeft("good");
}

TEST_F(OfficeAutomation, ClosesAndQuitsAfterAFailure) {
    ExpectFailed("refuse", SuiteOutcome::Failed);
    ASSERT_FALSE(Calls().empty());
    EXPECT_EQ(Calls().back(), L"application.Quit(SaveChanges=0)");
    ExpectFailed("refuse-writing", SuiteOutcome::Failed);
    Lines calls = Calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[calls.size() - 3], L"document.Close(SaveChanges=0)");
    EXPECT_EQ(calls.back(), L"application.Quit(SaveChanges=0)");
}

// The program goes on as long as anybody refers to one of its objects; its job would end it after
// ten seconds.
TEST_F(OfficeAutomation, ReleasesEveryObjectOfAProgramSoThatItEnds) {
    for (const wchar_t* name : {L"letter.docx", L"numbers.xls", L"slides.odp"}) {
        EXPECT_EQ(Convert(name, "good"), SuiteOutcome::Converted);
        ASSERT_FALSE(AllCalls().empty());
        EXPECT_EQ(AllCalls().back(), L"ended") << name;
    }
    EXPECT_EQ(Convert(L"letter.docx", "refuse-closing"), SuiteOutcome::Converted);
    EXPECT_EQ(AllCalls().back(), L"ended");
}

TEST_F(OfficeAutomation, FailsWithoutAResult) {
    ExpectFailed("write-nothing", SuiteOutcome::Failed);
}

TEST_F(OfficeAutomation, SurvivesACrashOfTheProgram) {
    ExpectFailed("crash", SuiteOutcome::Failed);
}

TEST_F(OfficeAutomation, AsksAProgramAgainThatIsBusyForAMoment) {
    EXPECT_EQ(Convert(L"letter.docx", "reject-once"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
}

TEST_F(OfficeAutomation, AsksForANameAgainWhenTheProgramIsBusy) {
    EXPECT_EQ(Convert(L"letter.docx", "reject-names"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    EXPECT_EQ(Calls().back(), L"application.Quit(SaveChanges=0)");
}

TEST_F(OfficeAutomation, EndsAProgramThatHangs) {
    // Long enough for the program to start on a busy machine.
    ExpectFailed("hang", SuiteOutcome::NoAnswer, {6000, 100000});
    ExpectFailed("hang-writing", SuiteOutcome::NoAnswer, {100000, 8000});
}

TEST_F(OfficeAutomation, EndsTheProgramAtOnceWhenTheCallEnds) {
    std::thread ender([&] {
        EXPECT_TRUE(AwaitCall(L"Documents.Open"));
        SetEvent(ended_.Get());
    });
    ExpectFailed("hang", SuiteOutcome::Cancelled);
    ender.join();
}

// A document of the user's may have come to the hidden program.
TEST_F(OfficeAutomation, LeavesAProgramToTheUserThatHasAnotherDocumentOpen) {
    EXPECT_EQ(Convert(L"letter.docx", "in-use"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    const Lines wanted = {
        L"document.Close(SaveChanges=0)",  L"Options.UpdateLinksAtOpen = true",
        L"application.DisplayAlerts = -1", L"application.AutomationSecurity = 1",
        L"application.Visible = true",
    };
    EXPECT_EQ(LastCalls(wanted.size()), wanted);
    EndProgram();
}

TEST_F(OfficeAutomation, PutsEachSettingOfATableBackForTheUser) {
    EXPECT_EQ(Convert(L"numbers.xls", "in-use"), SuiteOutcome::Converted);
    const Lines wanted = {
        L"document.Close(SaveChanges=false)",  L"application.IgnoreRemoteRequests = false",
        L"application.EnableEvents = true",    L"application.DisplayAlerts = true",
        L"application.AutomationSecurity = 1", L"application.Visible = true",
    };
    EXPECT_EQ(LastCalls(wanted.size()), wanted);
    EndProgram();
}

TEST_F(OfficeAutomation, QuitsWhenOnlyItsOwnDocumentIsStillOpen) {
    EXPECT_EQ(Convert(L"letter.docx", "refuse-closing"), SuiteOutcome::Converted);
    const Lines wanted = {
        L"document.Close(SaveChanges=0)",
        L"document.Close(SaveChanges=0)",
        L"Options.UpdateLinksAtOpen = true",
        L"application.Quit(SaveChanges=0)",
    };
    EXPECT_EQ(LastCalls(wanted.size()), wanted);
    ExpectNothingLeft("refuse-closing");
}

TEST_F(OfficeAutomation, QuitsAProgramWithoutItsDocuments) {
    ExpectFailed("no-documents", SuiteOutcome::Failed);
    EXPECT_EQ(Calls().back(), L"application.Quit(SaveChanges=0)");
}

// What isn't a job takes no process, as a job of the system's own may refuse one.
TEST_F(OfficeAutomation, QuitsAProgramThatCannotBePutIntoTheJob) {
    ASSERT_TRUE(obtest::WriteFileContent(InOffice(L"office.txt"), "good"));
    const auto office = OfficeFor(DocumentKind::Text);
    ASSERT_TRUE(office);
    const auto run = std::make_shared<OfficeRun>(
        DocumentKind::Text, *office, folder_ / L"letter", folder_ / L"result.pdf",
        ObLib::UniqueKernelHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr)));
    const auto thread = OfficeRun::Start(run);
    ASSERT_TRUE(thread);
    ASSERT_EQ(WaitForSingleObject(thread.Get(), kLimit), WAIT_OBJECT_0);
    EXPECT_EQ(run->End(), OfficeEnd::NotOurs);
    EXPECT_EQ(Calls(), Lines{L"application.Quit(SaveChanges=0)"});
    EXPECT_FALSE(obtest::FileExists(folder_ / L"result.pdf"));
    ExpectNothingLeft("not ours");
}

TEST_F(OfficeAutomation, LeavesAProgramToTheUserWhoWorksInItWhenTheCallEnds) {
    std::thread ender([&] {
        EXPECT_TRUE(AwaitCall(L"shown"));
        // While the program still works on the document.
        EXPECT_TRUE(AwaitFreeJob());
        SetEvent(ended_.Get());
    });
    EXPECT_EQ(Convert(L"letter.docx", "hang-in-use"), SuiteOutcome::Cancelled);
    ender.join();
    ASSERT_TRUE(obtest::WriteFileContent(InOffice(L"office.txt"), "in-use"));
    EXPECT_TRUE(AwaitCall(L"application.Visible = true"));
    const Lines wanted = {
        L"document.Close(SaveChanges=0)",  L"Options.UpdateLinksAtOpen = true",
        L"application.DisplayAlerts = -1", L"application.AutomationSecurity = 1",
        L"application.Visible = true",
    };
    EXPECT_EQ(LastCalls(wanted.size()), wanted);
    EndProgram();
}

// What becomes of the program when this process is killed: SuiteProcessTest has the job's part.
TEST_F(OfficeAutomation, LeavesAProgramTheUserWorksInOutOfTheJobAtOnce) {
    ASSERT_TRUE(obtest::WriteFileContent(InOffice(L"office.txt"), "hang-in-use"));
    const auto office = OfficeFor(DocumentKind::Text);
    ASSERT_TRUE(office);
    const auto run =
        std::make_shared<OfficeRun>(DocumentKind::Text, *office, folder_ / L"letter",
                                    folder_ / L"result.pdf", providers::MakeSuiteJob());
    EXPECT_FALSE(run->FreeIfInUse());
    EXPECT_TRUE(lastLimits & JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE);
    const auto thread = OfficeRun::Start(run);
    ASSERT_TRUE(thread && AwaitCall(L"shown"));
    EXPECT_TRUE(run->FreeIfInUse());
    EXPECT_EQ(lastLimits, 0u);
    ASSERT_TRUE(obtest::WriteFileContent(InOffice(L"office.txt"), "in-use"));
    ASSERT_EQ(WaitForSingleObject(thread.Get(), kLimit), WAIT_OBJECT_0);
    EXPECT_EQ(run->End(), OfficeEnd::Written);
    EndProgram();
}

TEST_F(OfficeAutomation, TouchesNoProgramThatTheUserHasOpen) {
    const ObLib::UniqueKernelHandle users = StartAsUser(kText);
    ASSERT_TRUE(users);
    EXPECT_TRUE(AwaitCall(L"ready"));
    EXPECT_EQ(Convert(L"letter.docx", "good"), SuiteOutcome::Busy);
    EXPECT_EQ(Calls(), Lines());
    EXPECT_EQ(WaitForSingleObject(users.Get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_EQ(Target(), "");
    TerminateProcess(users.Get(), 0);
    WaitForSingleObject(users.Get(), kLimit);
}

TEST_F(OfficeAutomation, IsThereForEachKindOfDocumentByItself) {
    EXPECT_TRUE(IsSuiteThere());
    RegDeleteTreeW(HKEY_CLASSES_ROOT, L"Word.Application");
    EXPECT_EQ(Convert(L"letter.docx", "good"), SuiteOutcome::NoSuite);
    EXPECT_EQ(Convert(L"numbers.xls", "good"), SuiteOutcome::Converted);
    RegDeleteTreeW(HKEY_CLASSES_ROOT, L"Excel.Application");
    EXPECT_TRUE(IsSuiteThere());
    RegDeleteTreeW(HKEY_CLASSES_ROOT, L"PowerPoint.Application");
    EXPECT_FALSE(IsSuiteThere());
}

TEST_F(OfficeAutomation, ComesAfterASuiteThatIsStarted) {
    Install(kProgramFolder);
    suitetest::Register(kProgramFolder);
    ASSERT_TRUE(obtest::WriteFileContent(std::wstring(kProgramFolder) + L"\\suite.txt", "good"));
    EXPECT_EQ(Convert(L"letter.docx", "good"), SuiteOutcome::Converted);
    EXPECT_EQ(AllCalls(), Lines());
    BeginAnew();
}

TEST_F(OfficeAutomation, IsRefusedWhenItsProgramIsWhereTheUserCanWrite) {
    CopyFileW(InOffice(L"office.exe").c_str(), (folder_ / L"office.exe").c_str(), FALSE);
    for (const std::wstring& commandLine :
         {L"\"" + (folder_ / L"office.exe") + L"\" " + kText, (folder_ / L"office.exe") + L" /x",
          std::wstring(L"office.exe"), std::wstring(), std::wstring(L"\"C:\\Program Files")}) {
        SetServer(kText, commandLine);
        EXPECT_FALSE(OfficeFor(DocumentKind::Text)) << commandLine;
    }
    // A registration of the user's own comes first for the system.
    SetServer(kText, CommandLine(kText));
    EXPECT_TRUE(OfficeFor(DocumentKind::Text));
    const std::wstring own =
        std::wstring(L"Software\\Classes\\CLSID\\") + kText + L"\\LocalServer32";
    obtest::SetValue(HKEY_CURRENT_USER, own, L"", folder_ / L"office.exe");
    EXPECT_FALSE(OfficeFor(DocumentKind::Text));
    RegDeleteTreeW(HKEY_CURRENT_USER,
                   (std::wstring(L"Software\\Classes\\CLSID\\") + kText).c_str());
}

TEST_F(OfficeAutomation, IsFoundByACommandLineWithoutQuotes) {
    SetServer(kText, InOffice(L"OFFICE.EXE") + L" /Automation");
    const auto office = OfficeFor(DocumentKind::Text);
    ASSERT_TRUE(office);
    EXPECT_EQ(_wcsicmp(office->path.c_str(), InOffice(L"office.exe").c_str()), 0);
}

// The system's call that starts a program can't be given up: it would disturb other tests here.
class OfficeThatNeverStarts : public OfficeAutomation {};

TEST_F(OfficeThatNeverStarts, IsNotWaitedForOnceTheCallHasEnded) {
    std::thread ender([&] {
        EXPECT_TRUE(AwaitCall(L"process "));
        SetEvent(ended_.Get());
    });
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(Convert(L"letter.docx", "hang-at-start"), SuiteOutcome::Cancelled);
    ender.join();
    EXPECT_LT(GetTickCount64() - start, kLimit);
    EXPECT_EQ(obtest::ListTree(run_), Lines());
    EndProgram();
}

} // namespace
