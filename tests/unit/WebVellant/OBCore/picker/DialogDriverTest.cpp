#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/PickedFiles.h"
#include "OBCore/picker/Drivers.h"
#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/WebVellant/OBCore/picker/FakePlanning.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;
using obcontract::kCancelled;
using namespace obcore;
using namespace obtest;

int unwantedCalls = 0;

BOOL WINAPI CountUnwantedProcess(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES,
                                 BOOL, DWORD, LPVOID, LPCWSTR, LPSTARTUPINFOW,
                                 LPPROCESS_INFORMATION) {
    ++unwantedCalls;
    return FALSE;
}

HRESULT WINAPI CountUnwantedInitialise(LPVOID) {
    ++unwantedCalls;
    return S_OK;
}

// One request of the dialog entry point.
class DialogRunTest : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        shell.script.results = {L"C:\\in\\one.txt", L"C:\\other\\two.txt"};
    }

    HRESULT Run() {
        *block = ExchangeBlock{};
        block->Status = ExchangeStatus::DialogRequest;
        block->DialogOptions = options;
        // Other bytes are in the text area before, so that only the run itself can write a NUL.
        std::fill(std::begin(block->TextArea), std::end(block->TextArea), std::uint8_t{0xAA});
        block->UploadBlocked = 1; // the dialog entry point neither writes nor reads it
        FakeModules::ForgetCalls();
        shown = nullptr;
        shell.script.onShow = [this](RecordingFileDialog& dialog) {
            shown = &dialog;
            if (act) act(dialog);
        };
        const HRESULT result = DialogDriver(owner, *block);
        ReleaseWhatTheRunKept();
        return result;
    }

    // The driver keeps its dialog, and only the reference that it got when it made it.
    void ReleaseWhatTheRunKept() {
        EXPECT_FALSE(WasCalled(L"dialog.destroyed()"));
        EXPECT_EQ(FakeFileDialog::LiveObjects(), 0);
        if (!shown) return;
        EXPECT_EQ(shown->References(), 1U);
        shown->Release();
    }

    Calls AnsweredFiles() const {
        PickedFiles picked;
        ReadDialogResult(*block, picked);
        return picked.paths;
    }

    std::unique_ptr<ExchangeBlock> block = std::make_unique<ExchangeBlock>();
    DWORD options = FOS_FORCEFILESYSTEM;
    HWND owner = GetDesktopWindow();
    const std::wstring ownerText = std::to_wstring(reinterpret_cast<INT_PTR>(owner));
    std::function<void(RecordingFileDialog&)> act;
    RecordingFileDialog* shown = nullptr;
};

class DialogRun : public DialogRunTest {};

TEST_F(DialogRun, TakesItsStepsInOrder) {
    EXPECT_EQ(Run(), S_OK);
    ExpectOrder({
        L"dialog.created()",
        L"CreateObExtensionsManager()",
        L"Init(manager, -2147483647, \"Software\\Tavi Ren Computing\\Ombrix\\PVX\")",
        L"AllowedEncryptMethods()",
        L"dialog.SetFileTypes(1, " + QuotedText(140) + L", \"*.*\")",
        L"dialog.SetOptions(0x40)",
        L"dialog.GetOptions()",
        L"dialog.SetOptions(0x240)",
        L"dialog.Advise()",
        L"dialog.StartVisualGroup(100",
        L"dialog.SetControlState(1012",
        L"dialog.SetFolder(null)",
        L"dialog.Show(" + ownerText + L")",
        L"dialog.GetResults()",
        L"ProcessPickedFiles(\"C:\\in\\one.txt\", \"C:\\other\\two.txt\")",
        L"dialog.Unadvise(42)",
        L"Deinit(manager)",
        L"DeleteObExtensionsManager(manager)",
    });
    EXPECT_FALSE(WasCalled(L"dialog.unexpected"));
}

TEST_F(DialogRun, AnswersWithFullPathsByteForByte) {
    Run();
    EXPECT_EQ(block->Status, ExchangeStatus::DialogAnswer);
    EXPECT_EQ(block->Dialog.FolderOffset, 76);
    EXPECT_EQ(block->Dialog.PathListOffset, 78);
    // The empty folder text, the paths, the closing NUL; the two empty names to clean up.
    constexpr std::wstring_view kArea(L"\0C:\\in\\one.txt\0C:\\other\\two.txt\0\0\0\0", 35);
    const auto* const area = reinterpret_cast<const wchar_t*>(block->TextArea);
    EXPECT_EQ(std::wstring_view(area, kArea.size()), kArea);
    EXPECT_EQ(block->CleanupFolderOffset, 76 + 2 * 33);
    EXPECT_EQ(block->CleanupFileOffset, 76 + 2 * 34);
    EXPECT_EQ(AnsweredFiles(), (Calls{L"C:\\in\\one.txt", L"C:\\other\\two.txt"}));
}

TEST_F(DialogRun, AnswersWithTheArchiveAlone) {
    FakePlanning::process = [](OBOpenFileNameDlg& dialog, const Calls& picked) {
        dialog.AttachRecord->Files = picked;
        dialog.AttachRecord->ResultIsArchive = true;
        dialog.AttachRecord->ResultPath = L"C:\\t\\a.zip";
        return 1;
    };
    EXPECT_EQ(Run(), S_OK);
    EXPECT_EQ(AnsweredFiles(), Calls{L"C:\\t\\a.zip"});
}

TEST_F(DialogRun, GivesTheFailureOfADialogThatCannotBeMadeAndDoesNothingElse) {
    shell.script.failures = {{L"CoCreateInstance", E_ACCESSDENIED}};
    EXPECT_EQ(Run(), E_ACCESSDENIED);
    EXPECT_EQ(FakeModules::Calls(), Calls{});
    EXPECT_EQ(block->Status, ExchangeStatus::DialogRequest);
}

TEST_F(DialogRun, GivesTheResultOfACancelledDialogAndLeavesTheStatus) {
    for (const HRESULT result : {HRESULT{kCancelled}, E_FAIL}) {
        shell.script.showResult = result;
        EXPECT_EQ(Run(), result);
        EXPECT_FALSE(WasCalled(L"dialog.GetResults"));
        EXPECT_FALSE(WasCalled(L"ProcessPickedFiles"));
        EXPECT_EQ(block->Status, ExchangeStatus::DialogRequest);
        EXPECT_EQ(block->CleanupFolderOffset, 0);
        EXPECT_EQ(block->CleanupFileOffset, 0);
        ExpectOrder(
            {L"dialog.Unadvise(42)", L"Deinit(manager)", L"DeleteObExtensionsManager(manager)"});
    }
}

TEST_F(DialogRun, KeepsASuccessOfTheDialogAsItIs) {
    shell.script.showResult = S_FALSE;
    EXPECT_EQ(Run(), S_FALSE);
    EXPECT_EQ(block->Status, ExchangeStatus::DialogAnswer);
}

TEST_F(DialogRun, IsCancelledWhenThePipelineStops) {
    FakePlanning::process = [](OBOpenFileNameDlg&, const Calls&) { return 0; };
    EXPECT_EQ(Run(), kCancelled);
    EXPECT_EQ(block->Status, ExchangeStatus::DialogRequest);
}

TEST_F(DialogRun, IsCancelledWithoutProcessingWhenThereAreNoResults) {
    shell.script.failures = {{L"GetResults", E_FAIL}};
    EXPECT_EQ(Run(), kCancelled);
    EXPECT_FALSE(WasCalled(L"ProcessPickedFiles"));
    EXPECT_EQ(block->Status, ExchangeStatus::DialogRequest);
}

TEST_F(DialogRun, AnswersWithALinkWhateverThePipelineReturns) {
    for (const int answer : {0, 1}) {
        FakePlanning::process = [answer](OBOpenFileNameDlg& dialog, const Calls&) {
            dialog.LinkText = L"https://link";
            return answer;
        };
        EXPECT_EQ(Run(), answer ? S_OK : kCancelled);
        EXPECT_EQ(block->Status, ExchangeStatus::LinkAnswer);
        EXPECT_EQ(block->Link.LinkOffset, 76);
        EXPECT_EQ(ReadText(*block, 76), L"https://link");
    }
}

TEST_F(DialogRun, NotesWhatTheRunLeavesToCleanUp) {
    FakePlanning::process = [](OBOpenFileNameDlg& dialog, const Calls&) {
        dialog.AttachRecord->Files = {L"C:\\t\\a.pdf"};
        dialog.AttachRecord->CleanupFolder = L"C:\\t\\";
        return 1;
    };
    Run();
    EXPECT_EQ(ReadText(*block, block->CleanupFolderOffset), L"C:\\t\\");
    EXPECT_NE(block->CleanupFileOffset, 0);
    EXPECT_EQ(ReadText(*block, block->CleanupFileOffset), L"");
    EXPECT_EQ(AnsweredFiles(), Calls{L"C:\\t\\a.pdf"});
}

TEST_F(DialogRun, RunsWithoutLimitOfUploads) {
    bool blocked = true;
    FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const Calls&) {
        blocked = dialog.AttachRecord->UploadBlocked;
        EXPECT_EQ(dialog.Request, nullptr);
        return 1;
    };
    Run();
    EXPECT_FALSE(blocked);
}

TEST_F(DialogRun, AllowsSeveralFilesOnlyAsThePageDid) {
    for (const bool several : {false, true}) {
        options = several ? FOS_ALLOWMULTISELECT | FOS_FILEMUSTEXIST : FOS_FILEMUSTEXIST;
        HRESULT refused = E_FAIL;
        act = [&](RecordingFileDialog& dialog) {
            dialog.ChooseItem(999, 1002);
            refused = dialog.PressOk();
        };
        MessageBoxWatcher boxes;
        Run();
        EXPECT_EQ(refused, several ? S_OK : S_FALSE);
        EXPECT_EQ(boxes.Seen().size(), several ? 0U : 1U);
        EXPECT_TRUE(WasCalled(L"dialog.SetOptions(0x1200)"));
    }
}

TEST_F(DialogRun, AsksTheServiceOnTheOwnerAboutEncryption) {
    SetUserValue(L"AutoEncrypt", L"1");
    Run();
    EXPECT_TRUE(WasCalled(L"TryToShowWarningOrErrorMessage(" + ownerText + L", 0, 1)"));
}

TEST_F(DialogRun, RunsWithoutItsControlsWhenTheDialogCannotHaveThem) {
    shell.script.failures = {{L"QueryInterface(IFileDialogCustomize)", E_NOINTERFACE}};
    EXPECT_EQ(Run(), S_OK);
    EXPECT_FALSE(WasCalled(L"dialog.StartVisualGroup"));
    EXPECT_EQ(block->Status, ExchangeStatus::DialogAnswer);
}

TEST_F(DialogRun, EmptiesTheResultsOfEarlierRuns) {
    Results()[1].paths = {L"C:\\old"};
    Run();
    EXPECT_TRUE(Results().empty());
}

TEST_F(DialogRun, NeitherChecksForUpdatesNorInitialisesCom) {
    unwantedCalls = 0;
    const ImportPatch<decltype(&CreateProcessW)> process("kernel32.dll", "CreateProcessW",
                                                         &CountUnwantedProcess);
    const ImportPatch<decltype(&CoInitialize)> initialise("ole32.dll", "CoInitialize",
                                                          &CountUnwantedInitialise);
    ASSERT_TRUE(process.Ok());
    ASSERT_TRUE(initialise.Ok());
    Run();
    EXPECT_EQ(unwantedCalls, 0);
}

TEST_F(DialogRun, EndsTheManagerWhenAnExceptionPasses) {
    FakePlanning::process = [](OBOpenFileNameDlg&, const Calls&) -> int {
        throw std::runtime_error("full");
    };
    EXPECT_THROW(Run(), std::runtime_error);
    ExpectOrder({L"ProcessPickedFiles(", L"dialog.Unadvise(42)", L"Deinit(manager)",
                 L"DeleteObExtensionsManager(manager)"});
    ReleaseWhatTheRunKept();
}

// The folder is remembered by the process, so this suite has one to itself.
class DialogRunFolder : public DialogRunTest {};

TEST_F(DialogRunFolder, IsThatOfTheLastFileOfTheRunBefore) {
    const TestFolder folder;
    shell.script.results = {L"C:\\one", folder.File(L"two.txt")};
    Run();
    EXPECT_TRUE(WasCalled(L"dialog.SetFolder(null)"));

    shell.script.failures = {{L"SetFolder", E_FAIL}}; // which the run survives
    EXPECT_EQ(Run(), S_OK);
    EXPECT_TRUE(WasCalled(L"dialog.SetFolder(" + Quoted(folder.Path().c_str()) + L")"));

    // A cancelled run leaves it as it is, a run without results empties it.
    shell.script.failures = {};
    shell.script.showResult = kCancelled;
    Run();
    shell.script.showResult = S_OK;
    shell.script.failures = {{L"GetResults", E_FAIL}};
    Run();
    EXPECT_TRUE(WasCalled(L"dialog.SetFolder(" + Quoted(folder.Path().c_str()) + L")"));
    Run();
    EXPECT_TRUE(WasCalled(L"dialog.SetFolder(null)"));

    // Of a longer path the first 259 characters count, and of those the folder.
    shell.script.failures = {};
    const std::wstring deep = folder.Path() + L"\\" + std::wstring(150, L'd');
    ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr));
    ASSERT_LT(deep.size(), 259U);
    shell.script.results = {deep + L"\\" + std::wstring(400, L'x') + L"\\file"};
    Run();
    Run();
    EXPECT_TRUE(WasCalled(L"dialog.SetFolder(" + Quoted(deep.c_str()) + L")"));

    // A folder that is gone counts as none.
    shell.script.failures = {};
    shell.script.results = {L"C:\\no such folder\\file"};
    Run();
    Run();
    EXPECT_TRUE(WasCalled(L"dialog.SetFolder(null)"));
}

} // namespace
