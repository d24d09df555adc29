// The settings opened by a program of the product, with the real library, archive service and
// provider manager. With OB_PICTURES, a folder, the window's picture is stored there.
#include <gtest/gtest.h>

#include <string>

#include "OBCore/settings/OptionsDialogIds.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

class SettingsProgram : public testing::Test {
protected:
    static void SetUpTestSuite() { BeAwareOfTheScale(); }

    void SetUp() override { ClearProductRegistry(); }

    void Start() {
        const auto path = ObLib::PathBesideModule(nullptr, L"settings.exe");
        ASSERT_TRUE(path);
        std::wstring command = L"settings.exe";
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        ASSERT_TRUE(CreateProcessW(path->c_str(), command.data(), nullptr, nullptr, FALSE, 0,
                                   nullptr, nullptr, &startup, &started));
        CloseHandle(started.hThread);
        process_.Reset(started.hProcess);
        window_ = WaitForTopWindow(&IsDialog, started.dwProcessId);
        ASSERT_NE(nullptr, window_);
    }
    HWND Item(int id) const { return GetDlgItem(window_, id); }
    bool IsChecked(int id) const {
        return SendMessageW(Item(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
    }
    // The program's exit code after this command.
    DWORD EndWith(int id) {
        PressCommand(window_, id);
        DWORD code = 99;
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process_.Get(), kUiLimit));
        GetExitCodeProcess(process_.Get(), &code);
        return code;
    }

    ObLib::UniqueKernelHandle process_;
    HWND window_ = nullptr;
};

TEST_F(SettingsProgram, ShowsTheSettingsOfTheRealModules) {
    ASSERT_NO_FATAL_FAILURE(Start());
    SetCursorPos(0, 0); // where it was, a tip could be
    LookAt(window_, L"settings-options", 500, 380);
    for (const int id : {OB_OPTIONS_OK, static_cast<int>(IDCANCEL), OB_OPTIONS_ATTACHMENT,
                         OB_OPTIONS_CLOUD, OB_OPTIONS_UPDATE}) {
        ExpectWholeText(Item(id), AtScale(6));
    }
    // What this provider manager has, and what it hasn't.
    EXPECT_TRUE(IsWindowEnabled(Item(OB_OPTIONS_WATERMARK)));
    EXPECT_TRUE(IsWindowEnabled(Item(OB_OPTIONS_WATERMARK_SETTINGS)));
    EXPECT_FALSE(IsWindowEnabled(Item(OB_OPTIONS_SIGN_PDFS)));
    EXPECT_FALSE(IsWindowEnabled(Item(OB_OPTIONS_CONVERT_FROM_PDF_SETTINGS)));
    EXPECT_EQ(0u, EndWith(IDCANCEL));
}

TEST_F(SettingsProgram, RemembersWhatWasSavedByOk) {
    ASSERT_NO_FATAL_FAILURE(Start());
    EXPECT_FALSE(IsChecked(OB_OPTIONS_COMBINE_PDFS));
    Click(Item(OB_OPTIONS_COMBINE_PDFS));
    EXPECT_TRUE(WaitUntil([&] { return IsChecked(OB_OPTIONS_COMBINE_PDFS); }));
    EXPECT_EQ(0u, EndWith(OB_OPTIONS_OK));
    EXPECT_EQ(L"1", ReadUserValue(L"AutoCombinePDFs"));
    ASSERT_NO_FATAL_FAILURE(Start());
    EXPECT_TRUE(IsChecked(OB_OPTIONS_COMBINE_PDFS));
    Click(Item(OB_OPTIONS_COMBINE_PDFS));
    EXPECT_TRUE(WaitUntil([&] { return !IsChecked(OB_OPTIONS_COMBINE_PDFS); }));
    EXPECT_EQ(0u, EndWith(IDCANCEL));
    EXPECT_EQ(L"1", ReadUserValue(L"AutoCombinePDFs"));
}

} // namespace
} // namespace obtest
