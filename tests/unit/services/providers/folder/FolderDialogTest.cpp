// The page of a network folder, operated as a user does.
#include "services/providers/folder/FolderDialog.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/FolderBrowser.h"
#include "services/providers/folder/FolderCheck.h"
#include "services/providers/folder/FolderDialogIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;
using obtest::ItemText;
using obtest::TestFolder;
using obtest::WaitUntil;

namespace {

// The check is a function, so what it does is here.
std::atomic<DWORD> checkResult;
std::atomic<int> checks;
std::atomic<HANDLE> checkWaitsFor; // null: for nothing
DWORD FakeCheck(const std::wstring&) noexcept {
    ++checks;
    if (checkWaitsFor) WaitForSingleObject(checkWaitsFor, obtest::kUiLimit);
    return checkResult;
}

class FolderDialog : public testing::Test {
protected:
    FolderDialog() {
        checkResult = 0;
        checks = 0;
        checkWaitsFor = nullptr;
    }

    FolderPageEnd Show(const std::function<void(HWND)>& use) {
        DialogUiDriver user(OB_FOLDER_PATH, use);
        return ShowFolderPage(nullptr, page_);
    }
    static void Enter(HWND dialog, const std::wstring& folder, const std::wstring& pattern) {
        SetDlgItemTextW(dialog, OB_FOLDER_PATH, folder.c_str());
        SetDlgItemTextW(dialog, OB_FOLDER_PATTERN, pattern.c_str());
    }
    // The user presses OK and reads a box; then the page is still open, with the focus in `field`.
    std::wstring RefusalOf(const std::wstring& folder, const std::wstring& pattern, int field) {
        const obtest::MessageBoxWatcher boxes;
        EXPECT_EQ(Show([&](HWND dialog) {
                      Enter(dialog, folder, pattern);
                      obtest::PressCommand(dialog, IDOK);
                      EXPECT_TRUE(boxes.WaitFor(1));
                      EXPECT_TRUE(WaitUntil([&] { return FocusIn(dialog) == field; }));
                      obtest::PressCommand(dialog, IDCANCEL);
                  }),
                  FolderPageEnd::Cancelled);
        EXPECT_EQ(boxes.Seen().size(), 1U);
        return boxes.Seen().empty() ? L"" : boxes.Seen()[0].text;
    }
    static int FocusIn(HWND dialog) {
        GUITHREADINFO info{sizeof info};
        GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
        return IsWindowEnabled(dialog) ? GetDlgCtrlID(info.hwndFocus) : 0;
    }

    FolderPage page_{L"A caption", {L"C:\\Cloud", L"https://h/{path}"}, false, {}, &FakeCheck};
};

TEST_F(FolderDialog, BeginsWithWhatIsSavedAndItsFirstField) {
    EXPECT_EQ(Show([](HWND dialog) {
                  EXPECT_EQ(obtest::TextOf(dialog), L"A caption");
                  EXPECT_EQ(ItemText(dialog, OB_FOLDER_PATH), L"C:\\Cloud");
                  EXPECT_EQ(ItemText(dialog, OB_FOLDER_PATTERN), L"https://h/{path}");
                  EXPECT_EQ(FocusIn(dialog), OB_FOLDER_PATH);
                  EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, OB_FOLDER_LOG_OUT)));
                  obtest::PressCommand(dialog, IDCANCEL);
              }),
              FolderPageEnd::Cancelled);
    EXPECT_EQ(checks, 0);
}

TEST_F(FolderDialog, SavesWhatWasCheckedInItsPlainForm) {
    EXPECT_EQ(Show([](HWND dialog) {
                  Enter(dialog, L" \"\\\\server\\share\\Sent\\\" ", L" https://x/{path} ");
                  obtest::PressCommand(dialog, IDOK);
              }),
              FolderPageEnd::Saved);
    EXPECT_EQ(page_.settings.folder, L"\\\\server\\share\\Sent");
    EXPECT_EQ(page_.settings.pattern, L"https://x/{path}");
    EXPECT_EQ(checks, 1);
}

// The label of a field comes right before the field, so that a screen reader takes it as its name.
TEST_F(FolderDialog, EachFieldFollowsItsLabel) {
    Show([](HWND dialog) {
        for (const auto& [field, label] : {std::pair{OB_FOLDER_PATH, OB_FOLDER_PATH_LABEL},
                                           std::pair{OB_FOLDER_PATTERN, OB_FOLDER_PATTERN_LABEL},
                                           std::pair{OB_FOLDER_PREVIEW, OB_FOLDER_PREVIEW_LABEL}}) {
            EXPECT_EQ(GetWindow(GetDlgItem(dialog, field), GW_HWNDPREV), GetDlgItem(dialog, label));
        }
        obtest::PressCommand(dialog, IDCANCEL);
    });
}

TEST_F(FolderDialog, ShowsWhatALinkLooksLike) {
    Show([](HWND dialog) {
        const auto shows = [dialog](const wchar_t* text) {
            return WaitUntil([=] { return ItemText(dialog, OB_FOLDER_PREVIEW) == text; });
        };
        EXPECT_TRUE(shows(L"https://h/Quillbox/20261231235959/Photos.zip"));
        Enter(dialog, L"\\\\server\\our share", L"");
        EXPECT_TRUE(shows(L"file://server/our%20share/Quillbox/20261231235959/Photos.zip"));
        Enter(dialog, L"\\\\server\\our share", L"https://");
        EXPECT_TRUE(shows(L""));
        Enter(dialog, L"C:\\Cloud", L"https://h/{path}");
        EXPECT_TRUE(shows(L"https://h/Quillbox/20261231235959/Photos.zip"));
        Enter(dialog, L"C:\\Cloud", L"");
        EXPECT_TRUE(shows(L""));
        Enter(dialog, L"not a path", L"");
        EXPECT_TRUE(shows(L""));
        obtest::PressCommand(dialog, IDCANCEL);
    });
}

TEST_F(FolderDialog, AsksForAFullPathAndAPatternWithAPlace) {
    EXPECT_EQ(RefusalOf(L"Cloud", L"", OB_FOLDER_PATH),
              L"Please enter the full path of a folder, such as \\\\server\\share\\folder or "
              L"C:\\Users\\Ann\\Cloud.");
    EXPECT_EQ(RefusalOf(L"C:\\Cloud", L"https://h/", OB_FOLDER_PATTERN),
              L"A link pattern is an address with {path} in it and without blanks, such as "
              L"https://files.example.com/{path}. Please change it.");
    page_.refuse = [](const std::wstring& folder) { return L"No: " + folder; };
    EXPECT_EQ(RefusalOf(L"C:\\Cloud\\", L"https://h/{path}", OB_FOLDER_PATH), L"No: C:\\Cloud");
    EXPECT_EQ(checks, 0);
    EXPECT_EQ(page_.settings.folder, L"C:\\Cloud");
}

// A path with a drive's letter leads others nowhere, and may name the user.
TEST_F(FolderDialog, AsksForAPatternForAFolderOnADrive) {
    EXPECT_EQ(
        RefusalOf(L"C:\\Users\\Ann\\Cloud", L" ", OB_FOLDER_PATTERN),
        L"Others can't open links to \u201CC:\\Users\\Ann\\Cloud\u201D, because its path is one "
        L"of this computer only. Please enter a link pattern, or the folder's path in the "
        L"network, such as \\\\server\\share\\folder.");
    EXPECT_EQ(checks, 0);
    EXPECT_EQ(Show([](HWND dialog) {
                  Enter(dialog, L"\\\\server\\share", L"");
                  obtest::PressCommand(dialog, IDOK);
              }),
              FolderPageEnd::Saved);
    EXPECT_EQ(page_.settings.pattern, L"");
}

TEST_F(FolderDialog, ExplainsWhyAFolderCannotBeUsed) {
    const struct {
        DWORD error;
        const wchar_t* sentence;
    } kRefusals[] = {
        {ERROR_BAD_NETPATH,
         L"The folder \u201CC:\\x\u201D can't be reached. Please check the path, "
         L"and make sure that the folder opens in Explorer."},
        {ERROR_DIRECTORY, L"\u201CC:\\x\u201D is a file. Please choose a folder."},
        {ERROR_LOGON_FAILURE, L"The folder \u201CC:\\x\u201D asks for a user name and a password. "
                              L"Please open the folder in Explorer, and try again."},
        {ERROR_ACCESS_DENIED,
         L"You aren't allowed to write to the folder \u201CC:\\x\u201D. Please "
         L"choose another folder, or ask whoever manages this one."},
        {ERROR_DISK_FULL, L"There is no room for files in the folder \u201CC:\\x\u201D. Please "
                          L"choose another folder, or free some space there."},
        {ERROR_CRC, L"No file can be stored in the folder \u201CC:\\x\u201D (error 23). Please "
                    L"choose another folder."},
    };
    for (const auto& refusal : kRefusals) {
        checkResult = refusal.error;
        EXPECT_EQ(RefusalOf(L"C:\\x", L"https://h/{path}", OB_FOLDER_PATH), refusal.sentence);
    }
}

TEST_F(FolderDialog, CanBeLeftWhileAShareDoesNotRespond) {
    const ObLib::UniqueKernelHandle responds(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    checkWaitsFor = responds.Get();
    EXPECT_EQ(
        Show([](HWND dialog) {
            obtest::PressCommand(dialog, IDOK);
            EXPECT_TRUE(WaitUntil([] { return checks == 1; }));
            EXPECT_TRUE(WaitUntil(
                [=] { return ItemText(dialog, OB_FOLDER_STATUS) == L"Checking the folder"; }));
            for (const int id : {OB_FOLDER_PATH, OB_FOLDER_PATTERN, OB_FOLDER_BROWSE, IDOK}) {
                EXPECT_TRUE(WaitUntil([=] { return !IsWindowEnabled(GetDlgItem(dialog, id)); }));
            }
            EXPECT_EQ(FocusIn(dialog), IDCANCEL);
            obtest::PressCommand(dialog, IDOK); // by the Enter key
            obtest::PressCommand(dialog, IDCANCEL);
        }),
        FolderPageEnd::Cancelled);
    EXPECT_EQ(checks, 1);
    // A result that comes late concerns no other page.
    EXPECT_EQ(Show([&](HWND dialog) {
                  obtest::PressCommand(dialog, IDOK);
                  EXPECT_TRUE(WaitUntil([] { return checks == 2; }));
                  SetEvent(responds.Get());
              }),
              FolderPageEnd::Saved);
}

TEST_F(FolderDialog, OffersToLogOutOnTheAccountPage) {
    page_.hasLogOut = true;
    EXPECT_EQ(Show([](HWND dialog) {
                  EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, OB_FOLDER_LOG_OUT)));
                  DialogUiDriver::Press(dialog, OB_FOLDER_LOG_OUT);
              }),
              FolderPageEnd::LogOut);
}

TEST_F(FolderDialog, BrowsesWithTheShellsDialog) {
    const TestFolder cloud;
    const std::wstring inside = cloud.Folder(L"Sent");
    EXPECT_EQ(Show([&](HWND dialog) {
                  Enter(dialog, cloud.Path(), L"https://h/{path}");
                  obtest::PressCommand(dialog, OB_FOLDER_BROWSE);
                  const auto browser = obtest::OpenPicker::Await(GetCurrentProcessId());
                  ASSERT_NE(browser.Window(), nullptr);
                  EXPECT_FALSE(IsWindowEnabled(dialog));
                  EXPECT_TRUE(browser.TypeNames(inside));
                  browser.PressOk();
                  EXPECT_TRUE(
                      WaitUntil([&] { return ItemText(dialog, OB_FOLDER_PATH) == inside; }));
                  EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(dialog) != FALSE; }));
                  obtest::PressCommand(dialog, IDOK);
              }),
              FolderPageEnd::Saved);
    EXPECT_EQ(page_.settings.folder, inside);
}

TEST_F(FolderDialog, KeepsTheFolderWhenBrowsingIsCancelled) {
    EXPECT_EQ(Show([&](HWND dialog) {
                  obtest::PressCommand(dialog, OB_FOLDER_BROWSE);
                  const auto browser = obtest::OpenPicker::Await(GetCurrentProcessId());
                  ASSERT_NE(browser.Window(), nullptr);
                  browser.PressCancel();
                  EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(dialog) != FALSE; }));
                  EXPECT_EQ(ItemText(dialog, OB_FOLDER_PATH), L"C:\\Cloud");
                  obtest::PressCommand(dialog, IDCANCEL);
              }),
              FolderPageEnd::Cancelled);
}

HRESULT WINAPI NoObject(REFCLSID, IUnknown*, DWORD, REFIID, void**) { return E_FAIL; }

TEST_F(FolderDialog, ExplainsABrowserThatCannotBeShown) {
    obtest::ImportPatch patch("ole32.dll", "CoCreateInstance", &NoObject);
    ASSERT_TRUE(patch.Ok());
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Show([&](HWND dialog) {
                  obtest::PressCommand(dialog, OB_FOLDER_BROWSE);
                  EXPECT_TRUE(boxes.WaitFor(1));
                  EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(dialog) != FALSE; }));
                  EXPECT_EQ(ItemText(dialog, OB_FOLDER_PATH), L"C:\\Cloud");
                  obtest::PressCommand(dialog, IDCANCEL);
              }),
              FolderPageEnd::Cancelled);
    ASSERT_EQ(boxes.Seen().size(), 1U);
    EXPECT_EQ(boxes.Seen()[0].text, L"The list of folders can't be shown. Please enter the full "
                                    L"path of the folder.");
}

TEST_F(FolderDialog, TakesNoClickBeforeTheBrowserIsOpen) {
    EXPECT_EQ(Show([&](HWND dialog) {
                  PostMessageW(dialog, WM_COMMAND, OB_FOLDER_BROWSE, 0);
                  PostMessageW(dialog, WM_COMMAND, OB_FOLDER_BROWSE, 0);
                  PostMessageW(dialog, WM_COMMAND, OB_FOLDER_LOG_OUT, 0);
                  const auto browser = obtest::OpenPicker::Await(GetCurrentProcessId());
                  ASSERT_NE(browser.Window(), nullptr);
                  EXPECT_TRUE(IsWindow(dialog));
                  browser.PressCancel();
                  EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(dialog) != FALSE; }));
                  obtest::PressCommand(dialog, IDCANCEL);
              }),
              FolderPageEnd::Cancelled);
}

TEST(FolderCheck, LeavesNothingInAFolderThatCanBeUsed) {
    const TestFolder cloud;
    EXPECT_EQ(CheckFolder(cloud.Path()), 0U);
    EXPECT_TRUE(obtest::ListTree(cloud.Path()).empty());
}

TEST(FolderCheck, RefusesWhatIsNoFolder) {
    const TestFolder cloud;
    EXPECT_EQ(CheckFolder(cloud.File(L"file")), static_cast<DWORD>(ERROR_DIRECTORY));
    EXPECT_EQ(CheckFolder(cloud / L"none"), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(CheckFolder(cloud / L"none\\none"), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_NE(CheckFolder(L"Q:\\Cloud"), 0U);
}

HANDLE WINAPI DeniedFile(const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}
BOOL WINAPI FullDisk(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST(FolderCheck, RefusesAFolderInWhichNoFileCanBeStored) {
    const TestFolder cloud;
    {
        obtest::ImportPatch patch("kernel32.dll", "CreateFileW", &DeniedFile);
        ASSERT_TRUE(patch.Ok());
        EXPECT_EQ(CheckFolder(cloud.Path()), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    }
    {
        obtest::ImportPatch patch("kernel32.dll", "WriteFile", &FullDisk);
        ASSERT_TRUE(patch.Ok());
        EXPECT_EQ(CheckFolder(cloud.Path()), static_cast<DWORD>(ERROR_DISK_FULL));
    }
    EXPECT_TRUE(obtest::ListTree(cloud.Path()).empty());
}

} // namespace
