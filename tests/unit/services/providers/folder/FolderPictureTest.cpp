// The page of a network folder at one scale of the display: no text cut off.
#include <windows.h>

#include <gtest/gtest.h>

#include "services/providers/folder/FolderDialog.h"
#include "services/providers/folder/FolderDialogIds.h"
#include "services/providers/folder/FolderPick.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/TestFolder.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;

namespace {

class FolderPicture : public testing::Test {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    static void Look(FolderPage page, const std::wstring& name) {
        DialogUiDriver user(OB_FOLDER_PATH, [&](HWND dialog) {
            for (const int id :
                 {OB_FOLDER_INTRO, OB_FOLDER_PATH_LABEL, OB_FOLDER_BROWSE, OB_FOLDER_PATTERN_LABEL,
                  OB_FOLDER_NOTE, OB_FOLDER_PREVIEW_LABEL, OB_FOLDER_LOG_OUT,
                  static_cast<int>(IDOK), static_cast<int>(IDCANCEL)}) {
                obtest::ExpectWholeText(GetDlgItem(dialog, id));
            }
            obtest::LookAt(dialog, name, 400);
            obtest::PressCommand(dialog, IDCANCEL);
        });
        ShowFolderPage(nullptr, page);
    }
};

TEST_F(FolderPicture, OfTheLogin) {
    Look({L"Add a Network Folder", {L"\\\\files\\our share\\Sent", L""}, false, {}, nullptr},
         L"folder-login");
}

TEST_F(FolderPicture, OfTheAccountPage) {
    Look({L"Network folder",
          {L"C:\\Users\\Ann\\Cloud",
           L"https://files.example.com/remote/public/by-folder/of-everybody"
           L"/whose-name-is-long/{path}?download=1&source=mail"},
          true,
          {},
          nullptr},
         L"folder-page");
}

// The shell's own dialog, with what this provider changes in it.
TEST_F(FolderPicture, OfThePick) {
    const obtest::TestFolder cloud;
    cloud.Folder(L"Photos of the summer");
    for (const wchar_t* const name : {L"Contract.pdf", L"Minutes of the meeting.docx", L"Plan.zip"})
        cloud.File(name);
    const obtest::TestFolder other;
    const std::vector<PickableFolder> folders{
        {{L"key", L"Team"}, {cloud.Path(), L"https://files.example.com/{path}"}},
        {{L"other key", L"Archive"}, {other.Path(), L"https://archive.example.com/{path}"}}};
    obtest::PickerUiDriver user([](obtest::OpenPicker& picker) {
        EXPECT_TRUE(obtest::WaitUntil([&] { return picker.RowCount() == 4; }));
        const HWND link = GetDlgItem(picker.Window(), IDOK);
        EXPECT_EQ(obtest::TextOf(link), L"Link");
        obtest::ExpectWholeText(link);
        obtest::LookAt(picker.Window(), L"folder-pick", 400);
        picker.PressCancel();
    });
    EXPECT_TRUE(PickFromFolders(nullptr, folders, 0, L"Network folder").files.empty());
}

} // namespace
