// One page of the gallery, which a process of its own shows for a test.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "demo/gallery/GalleryIds.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/WindowKit.h"

namespace obtest {

class GalleryFixture : public testing::Test {
protected:
    static void SetUpTestSuite() { BeAwareOfTheScale(); }

    // `name` as the gallery's command line has it; empty: all pages.
    explicit GalleryFixture(const wchar_t* name) : pageName_(name) {}

    void SetUp() override {
        const auto path = ObLib::PathBesideModule(nullptr, L"gallery.exe");
        ASSERT_TRUE(path);
        std::wstring command = L"gallery.exe " + pageName_;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        ASSERT_TRUE(CreateProcessW(path->c_str(), command.data(), nullptr, nullptr, FALSE, 0,
                                   nullptr, nullptr, &startup, &started));
        CloseHandle(started.hThread);
        process_.Reset(started.hProcess);
        page_ = WaitForTopWindow(&IsDialog, started.dwProcessId);
        ASSERT_NE(nullptr, page_);
    }
    void TearDown() override {
        if (!process_) return;
        PressCommand(page_, IDCANCEL);
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process_.Get(), kUiLimit));
        DWORD code = 99;
        GetExitCodeProcess(process_.Get(), &code);
        EXPECT_EQ(0u, code);
    }
    HWND Item(int id) const { return GetDlgItem(page_, id); }

    ObLib::UniqueKernelHandle process_;
    HWND page_ = nullptr;

private:
    std::wstring pageName_;
};

} // namespace obtest
