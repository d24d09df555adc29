// The real chooser on the fake provider manager, operated by a UI driver on a second thread.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "OBCore/chooser/SelectDefaultCloudDialog.h"
#include "OBCore/modules/DialogIds.h"
#include "OBCore/options/OBAttachJob.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/FakeModules.h"
#include "tests/support/WindowKit.h"

namespace obtest {

using Lines = std::vector<std::wstring>;

// The visible chooser of this process, or null.
HWND FindChooser();

// What the UI driver sees and does. On the driver's thread; each call returns after the dialog has
// dealt with it.
struct Chooser {
    explicit Chooser(HWND window);

    HWND Item(int id) const { return GetDlgItem(dialog, id); }
    HWND Button() const { return Item(OB_CHOOSER_CONTINUE); }
    bool ButtonIsEnabled() const { return IsWindowEnabled(Button()) != FALSE; }
    std::wstring ButtonText() const { return TextOf(Button()); }
    bool IsDefaultChecked() const;

    Lines Rows() const;
    std::vector<int> Ticked() const; // numbers of the ticked rows
    void SetTick(int row, bool ticked) const;
    void Tick(int row) const { SetTick(row, true); }
    // Clicks into a row's check box with the mouse.
    void ClickTick(int row) const;
    // The window that has the keyboard; types a key into it.
    HWND Focus() const;
    void Type(WPARAM key) const;

    void Press(int id) const { SendMessageW(Item(id), BM_CLICK, 0, 0); }
    void Cancel() const { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); }
    bool IsOpen() const { return obtest::IsOpen(dialog); }
    bool Closes() const { return WaitUntilClosed(dialog); }
    // Returns when the dialog has dealt with every key that was typed before.
    void Settle() const;

    HWND dialog;
    HWND list;
};

class ChooserFixture : public testing::Test {
protected:
    static void SetUpTestSuite();
    ChooserFixture();
    void SetUp() override;

    static void Answer(const std::wstring& key, const std::wstring& answer) {
        FakeModules::Answer(key, answer);
    }
    // Provider 7 with accounts "label|key;label|key", all logged in where `loggedIn` is true.
    static void OneProvider(const std::wstring& accounts, bool loggedIn = true);

    // Shows the chooser and lets `use` operate it; a chooser that is still open then is cancelled.
    bool Show(const std::function<void(const Chooser&)>& use);
    // The rows that it shows.
    Lines RowsShown();
    // Calls since the chooser was opened.
    static Lines CallsOf(const Lines& names) { return FakeModules::CallsOf(names); }
    std::wstring ChosenKey() const { return job_.SelectedStorageProvider.accountKey; }

    static std::wstring LoginText();    // string 138
    static std::wstring ContinueText(); // string 139

    ObLib::UniqueWindow owner_;
    obcore::OBAttachJob job_;
};

} // namespace obtest
