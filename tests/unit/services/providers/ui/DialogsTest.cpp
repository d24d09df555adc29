// The module's dialogs, operated as a user does.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "services/providers/ui/PersonalDataDialog.h"
#include "services/providers/ui/PersonalDataDialogIds.h"
#include "services/providers/ui/ReceiptDialog.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "services/providers/ui/SaveList.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;

namespace {

class PersonalDataDialog : public testing::Test {
protected:
    // Shows the settings, presses these buttons, and gives what the dialog answered.
    bool Ask(std::initializer_list<int> buttons) {
        DialogUiDriver user(OB_PERSONAL_DATA_RECEIPT, [&](HWND dialog) {
            for (const int button : buttons) DialogUiDriver::Press(dialog, button);
        });
        return AskForSettings(nullptr, settings_);
    }

    PersonalDataSettings settings_;
};

TEST_F(PersonalDataDialog, KeepsWhatItShowsAfterOk) {
    for (const PersonalDataSettings stored :
         {PersonalDataSettings{true, false}, {false, true}, {false, false}, {true, true}}) {
        settings_ = stored;
        EXPECT_TRUE(Ask({IDOK}));
        EXPECT_EQ(settings_, stored);
    }
}

TEST_F(PersonalDataDialog, TakesWhatTheUserChose) {
    EXPECT_TRUE(Ask({OB_PERSONAL_DATA_RECEIPT, OB_PERSONAL_DATA_STOP, IDOK}));
    EXPECT_EQ(settings_, (PersonalDataSettings{false, false}));
    EXPECT_TRUE(Ask({OB_PERSONAL_DATA_ASK, IDOK}));
    EXPECT_EQ(settings_, (PersonalDataSettings{false, true}));
}

TEST_F(PersonalDataDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Ask({OB_PERSONAL_DATA_RECEIPT, OB_PERSONAL_DATA_STOP, IDCANCEL}));
    EXPECT_EQ(settings_, PersonalDataSettings());
}

class ReceiptDialog : public testing::Test {
protected:
    bool Show(const std::function<void(HWND)>& use) {
        DialogUiDriver user(OB_RECEIPT_LIST, use);
        return ShowReceipt(nullptr, files_, false);
    }
    static DWORD DefaultButton(HWND dialog) {
        return LOWORD(SendMessageW(dialog, DM_GETDEFID, 0, 0));
    }

    std::vector<ReceiptFile> files_{{L"photo.jpg", WorkResult::Changed, {{"position", 1}}}};
};

TEST_F(ReceiptDialog, LetsTheFilesGoWithEnterWhenAllAreClean) {
    EXPECT_TRUE(Show([](HWND dialog) {
        EXPECT_EQ(DefaultButton(dialog), static_cast<DWORD>(IDOK));
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, OB_RECEIPT_ICON)));
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_RECEIPT_HEADLINE)),
                  L"Personal data was removed from your file.");
        DialogUiDriver::Press(dialog, IDOK);
    }));
}

TEST_F(ReceiptDialog, StopsWithEnterWhenThereIsAQuestion) {
    files_.push_back({L"notes.doc", WorkResult::NotSupported, {}});
    EXPECT_FALSE(Show([](HWND dialog) {
        EXPECT_EQ(DefaultButton(dialog), static_cast<DWORD>(IDCANCEL));
        EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, OB_RECEIPT_ICON)));
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, IDOK)), L"&Attach anyway");
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    }));
}

TEST(ReceiptFile, IsSavedAsTextUnderANameThatIsFree) {
    const obtest::TestFolder folder;
    EXPECT_TRUE(SaveListAs(folder / L"list.txt", L"Removed from K\u00f6ln.jpg.", L"a\r\nb\r\n"));
    EXPECT_EQ(obtest::ReadFileContent(folder / L"list.txt"),
              "\xef\xbb\xbfRemoved from K\xc3\xb6ln.jpg.\r\n\r\na\r\nb\r\n");
}

TEST(ReceiptFile, NeverReplacesAFile) {
    const obtest::TestFolder folder;
    const std::wstring theirs = folder.File(L"theirs.txt", "theirs");
    EXPECT_FALSE(SaveListAs(theirs, L"headline", L"list"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_EXISTS));
    EXPECT_EQ(obtest::ReadFileContent(theirs), "theirs");
    EXPECT_FALSE(SaveListAs(folder / L"missing\\list.txt", L"headline", L"list"));
}

} // namespace
