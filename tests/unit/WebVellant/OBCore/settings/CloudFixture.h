// The real cloud settings on the fake provider manager, operated by a UI driver on a second thread.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "OBCore/options/OBOptions.h"
#include "OBCore/settings/CloudCommands.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ProviderManager.h"
#include "tests/support/FakeModules.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/WindowKit.h"

namespace obtest {

using Lines = std::vector<std::wstring>;

// Texts of the rows of a list view; its selected row, -1 for none.
Lines RowsOf(HWND list);
int SelectedRowOf(HWND list);
obcontract::ProviderProfile* ProfileOfRowIn(HWND list, int row);

// "label 0|key0;label 1|key1" and so on.
std::wstring ManyAccounts(int count);

// The visible cloud settings of this process, or null.
HWND FindCloudSettings();

// What the UI driver sees and does. On the driver's thread; each call returns after the dialog has
// dealt with it.
struct CloudSettings {
    explicit CloudSettings(HWND window);

    HWND Item(int id) const { return GetDlgItem(dialog, id); }
    bool IsEnabled(int id) const { return IsWindowEnabled(Item(id)) != FALSE; }
    bool IsChecked(int id) const;
    // The account buttons that are enabled, in the order of their ids.
    std::vector<int> Buttons() const;

    Lines Rows() const { return RowsOf(list); }
    int Selected() const { return SelectedRowOf(list); }
    void Select(int row) const;
    void Unselect() const;
    void DoubleClick(int row) const;

    void Press(int id) const { SendMessageW(Item(id), BM_CLICK, 0, 0); }
    // What a button that isn't enabled would send.
    void Command(int id, int code = 0) const;
    void SetField(int id, const std::wstring& text) const;
    void LeaveField(int id) const { Command(id, EN_KILLFOCUS); }
    std::wstring Field(int id) const { return ItemText(dialog, id); }
    HWND Focus() const;
    void SetFocusTo(int id) const;

    void Ok() const { SendMessageW(dialog, WM_COMMAND, IDOK, 0); }
    void Cancel() const { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); }
    bool IsOpen() const { return obtest::IsOpen(dialog); }

    HWND dialog;
    HWND list;
};

class CloudFixture : public testing::Test {
protected:
    static void SetUpTestSuite();
    CloudFixture();
    ~CloudFixture() override;
    void SetUp() override;

    static void Answer(const std::wstring& key, const std::wstring& answer) {
        FakeModules::Answer(key, answer);
    }
    static Lines CallsOf(const Lines& names) { return FakeModules::CallsOf(names); }
    // Provider 7, "Shelf", with accounts "label|key;label|key", all logged in where that is true.
    static void OneProvider(const std::wstring& accounts, bool loggedIn = true);

    // Shows the settings and lets `use` operate them; those that are still open then are cancelled.
    // The dialog's result.
    int Show(const std::function<void(const CloudSettings&)>& use);
    // The same, cancelled at the end.
    void Use(const std::function<void(const CloudSettings&)>& use);

    ObLib::UniqueWindow owner_;
    obcontract::ProviderManagerHandle manager_;
    obcore::OBOptions options_;
    obcore::ConfigureCloudContext context_;
};

} // namespace obtest
