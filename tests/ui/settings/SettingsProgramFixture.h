// The settings as a program of the product opens them, in a process of their own.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "OBCore/settings/OptionsDialogIds.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowKit.h"

namespace obtest {

class SettingsProgramFixture : public testing::Test {
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

} // namespace obtest
