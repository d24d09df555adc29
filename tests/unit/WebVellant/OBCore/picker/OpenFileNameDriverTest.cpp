#include <algorithm>
#include <cwchar>
#include <memory>
#include <stdexcept>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/picker/Drivers.h"
#include "OBCore/picker/ShellDialog.h"
#include "OBCore/picker/Win7Dlg.h"
#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/picker/FakePlanning.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;
using namespace obcore;
using namespace obtest;

int processesStarted = 0;
int comInitialised = 0;
int comUninitialised = 0;
HRESULT comAnswer = S_OK;

BOOL WINAPI CountProcess(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD,
                         LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION) {
    ++processesStarted;
    RecordCall(L"CreateProcessW()");
    return FALSE;
}

HRESULT WINAPI CountInitialise(LPVOID) {
    ++comInitialised;
    RecordCall(L"CoInitialize()");
    return comAnswer;
}

void WINAPI CountUninitialise() {
    ++comUninitialised;
    RecordCall(L"CoUninitialize()");
}

// One request of the open-file-name entry point, as the host has taken it.
class OpenFileNameRun : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        ASSERT_TRUE(process.Ok());
        processesStarted = 0;
        page.lStructSize = sizeof(page);
        page.nMaxFile = 1000;
        shell.script.results = {L"C:\\in\\one.txt"};
    }

    BOOL Run() {
        *block = ExchangeBlock{};
        WriteOpenFileNameRequest(*block, page);
        block->UploadBlocked = uploadBlocked;
        block->Status = ExchangeStatus::OpenFileNameTaken;
        OPENFILENAMEW request = ReadOpenFileNameRequest(*block, owner);
        FakeModules::ForgetCalls();
        return OpenFileNameDriver(&request, *block);
    }

    // The result of the pipeline is one zip of this name.
    static void AnswerWithArchive(const std::wstring& path) {
        FakePlanning::process = [path](OBOpenFileNameDlg& dialog, const Calls&) {
            dialog.AttachRecord->ResultIsArchive = true;
            dialog.AttachRecord->ResultPath = path;
            return 1;
        };
    }

    std::unique_ptr<ExchangeBlock> block = std::make_unique<ExchangeBlock>();
    OPENFILENAMEW page{};
    std::uint8_t uploadBlocked = 0;
    HWND owner = GetDesktopWindow();
    const std::wstring ownerText = std::to_wstring(reinterpret_cast<INT_PTR>(owner));
    ImportPatch<decltype(&CreateProcessW)> process{"kernel32.dll", "CreateProcessW", &CountProcess};
};

TEST_F(OpenFileNameRun, TakesItsStepsInOrder) {
    page.lpstrFilter = L"Text\0*.txt\0All\0*.*\0";
    page.lpstrTitle = L"Choose";
    page.lpstrInitialDir = L"C:\\in";
    page.lpstrDefExt = L"txt";
    page.nFilterIndex = 2;
    EXPECT_EQ(Run(), 1);
    ExpectOrder({
        L"CreateObExtensionsManager()",
        L"Init(manager, ",
        L"AllowedEncryptMethods()",
        L"dialog.created()",
        L"dialog.SetOptions(0x1A40)",
        L"dialog.SetFileTypes(2, \"Text\", \"*.txt\", \"All\", \"*.*\")",
        L"dialog.Advise()",
        L"dialog.StartVisualGroup(100",
        L"dialog.SetControlState(1012",
        L"dialog.Show(" + ownerText + L")",
        L"dialog.GetResults()",
        L"ProcessPickedFiles(\"C:\\in\\one.txt\")",
        L"FillOpenFileNameBuffer(",
        L"dialog.Unadvise(42)",
        L"dialog.destroyed()",
        L"Deinit(manager)",
        L"DeleteObExtensionsManager(manager)",
    });
    // Title, folder, extension and index of the page aren't used.
    EXPECT_FALSE(WasCalled(L"dialog.unexpected"));
    EXPECT_FALSE(WasCalled(L"dialog.SetFolder"));
    EXPECT_EQ(FakeFileDialog::LiveObjects(), 0);
}

TEST_F(OpenFileNameRun, SetsNoFileTypesFromAnOddOrMissingList) {
    Run();
    EXPECT_FALSE(WasCalled(L"dialog.SetFileTypes"));
    page.lpstrFilter = L"Text\0*.txt\0All\0";
    Run();
    EXPECT_FALSE(WasCalled(L"dialog.SetFileTypes"));
}

TEST_F(OpenFileNameRun, AnswersNoWhenTheUserCancels) {
    shell.script.showResult = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    EXPECT_EQ(Run(), 0);
    EXPECT_FALSE(WasCalled(L"dialog.GetResults"));
    EXPECT_FALSE(WasCalled(L"ProcessPickedFiles"));
    ExpectOrder({L"dialog.Show(", L"dialog.Unadvise(42)", L"dialog.destroyed()", L"Deinit(manager)",
                 L"DeleteObExtensionsManager(manager)"});
    EXPECT_EQ(block->Status, ExchangeStatus::OpenFileNameTaken);
    EXPECT_EQ(ReadFileList(*block).find_first_not_of(L'\0'), std::wstring::npos);
}

TEST_F(OpenFileNameRun, EndsTheManagerAlsoWithoutADialog) {
    shell.script.failures = {{L"CoCreateInstance", E_FAIL}};
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(FakeFileDialog::Calls(), Calls{});
    ExpectOrder({L"Init(manager, ", L"Deinit(manager)", L"DeleteObExtensionsManager(manager)"});
}

TEST_F(OpenFileNameRun, PassesTheRoomInTheBlockToTheWriterOfTheList) {
    for (const int answer : {1, 0}) {
        FakePlanning::fillAnswer = answer;
        EXPECT_EQ(Run(), answer);
        const std::int32_t room = (65536 - block->Request.FileListOffset) / 2;
        EXPECT_TRUE(WasCalled(L"FillOpenFileNameBuffer(" + std::to_wstring(room) + L")"));
    }
}

TEST_F(OpenFileNameRun, WritesTheArchiveWithTwoNuls) {
    AnswerWithArchive(L"C:\\out\\a.zip");
    // Other bytes were in the slot before, so that only the run itself can write the two NULs.
    shell.script.onShow = [this](RecordingFileDialog&) {
        std::fill(std::begin(block->TextArea), std::end(block->TextArea), std::uint8_t{0xAA});
    };
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(ReadFileList(*block), std::wstring(L"C:\\out\\a.zip\0\0", 14));
    EXPECT_FALSE(WasCalled(L"FillOpenFileNameBuffer"));
    EXPECT_EQ(block->Status, ExchangeStatus::OpenFileNameTaken);
}

TEST_F(OpenFileNameRun, AnswersNoWhenTheArchiveDoesNotFitWhatThePageHas) {
    AnswerWithArchive(L"C:\\a.zip"); // 8 characters
    page.nMaxFile = 10;
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(ReadText(*block, block->Request.FileListOffset), L"");
    page.nMaxFile = 11;
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(ReadText(*block, block->Request.FileListOffset), L"C:\\a.zip");
}

TEST_F(OpenFileNameRun, NeverWritesTheArchivePastTheEndOfTheBlock) {
    page.nMaxFile = 0x7FFFFFFF;
    AnswerWithArchive(std::wstring(32728, L'x')); // with two NULs exactly from 76 to the end
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(ReadText(*block, 76).size(), 32728U);
    AnswerWithArchive(std::wstring(32729, L'x'));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(ReadText(*block, 76), L"");
}

TEST_F(OpenFileNameRun, AnswersNoWhenThePipelineStops) {
    FakePlanning::process = [](OBOpenFileNameDlg&, const Calls&) { return 0; };
    EXPECT_EQ(Run(), 0);
    EXPECT_FALSE(WasCalled(L"FillOpenFileNameBuffer"));
    EXPECT_EQ(block->Status, ExchangeStatus::OpenFileNameTaken);
}

TEST_F(OpenFileNameRun, PassesAnEmptyListOnWhenThereAreNoResults) {
    shell.script.failures = {{L"GetResults", E_FAIL}};
    Run();
    EXPECT_TRUE(WasCalled(L"ProcessPickedFiles()"));
}

TEST_F(OpenFileNameRun, LeavesOutItemsThatAreNoFiles) {
    shell.script.results = {L"C:\\a", L"", L"C:\\b", L""};
    Run();
    EXPECT_TRUE(WasCalled(L"ProcessPickedFiles(\"C:\\a\", \"C:\\b\")"));
    EXPECT_EQ(FakeFileDialog::LiveObjects(), 0);
}

TEST_F(OpenFileNameRun, WritesALinkWithTheDriversResultBesideIt) {
    for (const int answer : {0, 1}) {
        FakePlanning::process = [answer](OBOpenFileNameDlg& dialog, const Calls&) {
            dialog.LinkText = L"https://link";
            return answer;
        };
        EXPECT_EQ(Run(), answer);
        EXPECT_EQ(block->Status, ExchangeStatus::LinkAnswer);
        EXPECT_EQ(block->Link.LinkOffset, 76);
        EXPECT_EQ(ReadText(*block, 76), L"https://link");
    }
}

TEST_F(OpenFileNameRun, CutsALinkAtTheBlocksEnd) {
    FakePlanning::process = [](OBOpenFileNameDlg& dialog, const Calls&) {
        dialog.LinkText.assign(40000, L'l');
        return 0;
    };
    Run();
    EXPECT_EQ(ReadText(*block, 76), std::wstring(32729, L'l')); // and its NUL
    EXPECT_EQ(block->TextArea[sizeof(block->TextArea) - 2], 0);
    EXPECT_EQ(block->TextArea[sizeof(block->TextArea) - 1], 0);
}

TEST_F(OpenFileNameRun, NotesWhatTheRunLeavesToCleanUp) {
    FakePlanning::process = [](OBOpenFileNameDlg& dialog, const Calls&) {
        dialog.AttachRecord->ResultIsArchive = true;
        dialog.AttachRecord->ResultPath = L"C:\\t\\a.zip";
        dialog.AttachRecord->CleanupFolder = L"C:\\t\\";
        dialog.AttachRecord->CleanupFile = L"C:\\t\\a.zip";
        return 1;
    };
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(ReadText(*block, block->CleanupFolderOffset), L"C:\\t\\");
    EXPECT_EQ(ReadText(*block, block->CleanupFileOffset), L"C:\\t\\a.zip");
    // After the answer, which is unchanged.
    EXPECT_EQ(ReadFileList(*block), std::wstring(L"C:\\t\\a.zip\0\0", 12));
}

TEST_F(OpenFileNameRun, NotesEmptyNamesWhenNothingIsLeft) {
    Run();
    EXPECT_GT(block->CleanupFolderOffset, 76);
    EXPECT_GT(block->CleanupFileOffset, block->CleanupFolderOffset);
    EXPECT_EQ(ReadText(*block, block->CleanupFolderOffset), L"");
    EXPECT_EQ(ReadText(*block, block->CleanupFileOffset), L"");
}

TEST_F(OpenFileNameRun, KnowsThatCloudLinksAreForbidden) {
    for (const std::uint8_t blocked : {0, 1}) {
        uploadBlocked = blocked;
        bool seen = !blocked;
        FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const Calls&) {
            seen = dialog.AttachRecord->UploadBlocked;
            return 1;
        };
        Run();
        EXPECT_EQ(seen, blocked != 0);
    }
}

TEST_F(OpenFileNameRun, RefusesSeveralFilesOnlyWhenThePageTakesOne) {
    shell.script.results = {L"C:\\a", L"C:\\b"};
    for (const bool several : {false, true}) {
        page.Flags = several ? OFN_ALLOWMULTISELECT : OFN_EXPLORER;
        HRESULT refused = E_FAIL;
        shell.script.onShow = [&](RecordingFileDialog& dialog) {
            dialog.ChooseItem(999, 1002);
            refused = dialog.PressOk();
        };
        MessageBoxWatcher boxes;
        Run();
        EXPECT_EQ(refused, several ? S_OK : S_FALSE);
        EXPECT_EQ(boxes.Seen().size(), several ? 0U : 1U);
    }
}

TEST_F(OpenFileNameRun, PassesTheChoicesOfTheUserToThePipeline) {
    shell.script.onShow = [](RecordingFileDialog& dialog) { dialog.ChooseItem(998, 1001); };
    bool encrypt = false;
    bool zip = true;
    FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const Calls&) {
        encrypt = dialog.Options->AutoEncrypt;
        zip = dialog.Options->SendItem;
        return 1;
    };
    Run();
    EXPECT_TRUE(encrypt);
    EXPECT_FALSE(zip);
}

TEST_F(OpenFileNameRun, StartsTheUpdateCheckerEachTimeBeforeTheDialogIsMade) {
    for (const int runs : {1, 2}) {
        Run();
        EXPECT_EQ(processesStarted, runs);
        ExpectOrder({L"Init(manager, ", L"CreateProcessW()", L"dialog.created()"});
    }
}

TEST_F(OpenFileNameRun, AsksTheServiceOnThePagesWindowAboutEncryption) {
    SetUserValue(L"AutoEncrypt", L"1");
    Run();
    EXPECT_TRUE(WasCalled(L"TryToShowWarningOrErrorMessage(" + ownerText + L", 0, 1)"));
}

TEST_F(OpenFileNameRun, GoesOnWithoutEventsWhenTheDialogDoesNotTakeThem) {
    shell.script.failures = {{L"Advise", E_FAIL}};
    EXPECT_EQ(Run(), 1);
    ExpectOrder({L"dialog.Show(", L"ProcessPickedFiles(", L"dialog.Unadvise(0)"});
}

TEST_F(OpenFileNameRun, ReleasesEverythingWhenAnExceptionPasses) {
    FakePlanning::process = [](OBOpenFileNameDlg&, const Calls&) -> int {
        throw std::runtime_error("full");
    };
    EXPECT_THROW(Run(), std::runtime_error);
    ExpectOrder({L"ProcessPickedFiles(", L"dialog.Unadvise(42)", L"dialog.destroyed()",
                 L"Deinit(manager)", L"DeleteObExtensionsManager(manager)"});
    EXPECT_EQ(FakeFileDialog::LiveObjects(), 0);
}

// COM's own calls are replaced only while no dialog is made.
TEST_F(OpenFileNameRun, LeavesComAsItFoundIt) {
    const ImportPatch<decltype(&CoInitialize)> initialise("ole32.dll", "CoInitialize",
                                                          &CountInitialise);
    const ImportPatch<decltype(&CoUninitialize)> uninitialise("ole32.dll", "CoUninitialize",
                                                              &CountUninitialise);
    ASSERT_TRUE(initialise.Ok());
    ASSERT_TRUE(uninitialise.Ok());
    shell.script.failures = {{L"CoCreateInstance", E_FAIL}};
    struct {
        HRESULT answer;
        int balance;
    } const rows[] = {{S_OK, 1}, {S_FALSE, 1}, {RPC_E_CHANGED_MODE, 0}};
    for (const auto& row : rows) {
        comInitialised = comUninitialised = 0;
        comAnswer = row.answer;
        ForgetTrace();
        Run();
        EXPECT_EQ(comInitialised, 1);
        EXPECT_EQ(comUninitialised, row.balance);
        EXPECT_EQ(std::ranges::count(TraceLines(), "CoUninitialize and return."), row.balance);
        ExpectOrder({L"AllowedEncryptMethods()", L"CoInitialize()", L"Deinit(manager)"});
        if (row.balance == 0) continue;
        ExpectOrder(
            {L"Deinit(manager)", L"CoUninitialize()", L"DeleteObExtensionsManager(manager)"});
    }
}

TEST_F(OpenFileNameRun, RemembersTheLastFileThatWasCollected) {
    shell.script.results = {L"C:\\a", L"C:\\b", L""};
    std::wstring last;
    FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const Calls&) {
        last = dynamic_cast<Win7Dlg&>(dialog).LastPickedPath;
        return 1;
    };
    Run();
    EXPECT_EQ(last, L"C:\\b");
}

TEST_F(OpenFileNameRun, AppendsWhatWasCollectedToTheList) {
    const auto dialog = shell.Make();
    shell.script.results = {L"C:\\a", L"C:\\b", L""};
    Calls paths = {L"before"};
    std::wstring last;
    EXPECT_TRUE(CollectPickedPaths(*dialog.Get(), paths, last));
    EXPECT_EQ(paths, (Calls{L"before", L"C:\\a", L"C:\\b"}));
    EXPECT_EQ(last, L"C:\\b");
    shell.script.failures = {{L"GetResults", E_FAIL}};
    EXPECT_FALSE(CollectPickedPaths(*dialog.Get(), paths, last));
}

} // namespace
