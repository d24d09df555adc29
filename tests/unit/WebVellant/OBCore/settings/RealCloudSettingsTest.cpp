// The cloud settings on the real provider manager: its providers, and the life of two folders.
#include <commctrl.h>

#include "services/providers/folder/FolderDialogIds.h"
#include "services/providers/storage/ProviderIds.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/WebVellant/OBCore/settings/CloudFixture.h"

namespace {

using obtest::CloudSettings;
using obtest::Lines;
using obtest::ProfileOfRowIn;

class RealCloudSettings : public obtest::CloudFixture {
protected:
    void SetUp() override {
        obtest::ClearProductRegistry();
        CloudFixture::SetUp();
    }
    // Presses an account button and gives the page that opens this folder.
    void EnterFolder(const CloudSettings& settings, int button, const std::wstring& folder) {
        const Lines before = settings.Rows();
        obtest::Click(settings.Item(button));
        const HWND page = obtest::WaitForTopWindow(
            [](HWND window) { return GetDlgItem(window, OB_FOLDER_PATH) != nullptr; },
            GetCurrentProcessId());
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(GetWindow(page, GW_OWNER), settings.dialog);
        obtest::SetText(GetDlgItem(page, OB_FOLDER_PATH), folder);
        obtest::SetText(GetDlgItem(page, OB_FOLDER_PATTERN), L"https://files.example/{path}");
        obtest::PressCommand(page, IDOK);
        EXPECT_TRUE(obtest::WaitUntilClosed(page));
        EXPECT_TRUE(obtest::WaitUntil([&] { return settings.Rows() != before; }));
    }
    obtest::TestFolder folder_;
};

TEST_F(RealCloudSettings, ShowTheProvidersOfTheManagerWithTheirPictures) {
    Use([](const CloudSettings& settings) {
        ASSERT_EQ(settings.Rows().size(), 2u);
        EXPECT_EQ(ProfileOfRowIn(settings.list, 0)->providerId, providers::kNetworkFolderId);
        EXPECT_EQ(ProfileOfRowIn(settings.list, 1)->providerId, providers::kWebDavId);
        for (const std::wstring& row : settings.Rows()) {
            EXPECT_FALSE(row.empty());
            EXPECT_FALSE(row.ends_with(L" (account)"));
        }
        EXPECT_EQ(ImageList_GetImageCount(ListView_GetImageList(settings.list, LVSIL_SMALL)), 2);
        settings.Select(0);
        EXPECT_EQ(settings.Buttons(), (std::vector<int>{OB_CLOUD_LOGIN, OB_CLOUD_SET_DEFAULT}));
    });
}

TEST_F(RealCloudSettings, TakeAFolderThroughItsLife) {
    Use([this](const CloudSettings& settings) {
        const std::wstring provider = settings.Rows()[0];
        const std::wstring dav = settings.Rows()[1];
        settings.Select(0);
        EnterFolder(settings, OB_CLOUD_LOGIN, folder_.Folder(L"First"));
        EXPECT_EQ(settings.Rows(), (Lines{provider + L" (account)", dav}));
        EXPECT_EQ(settings.Selected(), 0);
        EXPECT_EQ(settings.Buttons(),
                  (std::vector<int>{OB_CLOUD_LOGOUT, OB_CLOUD_SET_DEFAULT, OB_CLOUD_ADD_ACCOUNT}));

        EnterFolder(settings, OB_CLOUD_ADD_ACCOUNT, folder_.Folder(L"Second"));
        EXPECT_EQ(settings.Rows(), (Lines{L"First (account)", L"Second (account)", dav}));
        settings.Select(1);
        EXPECT_TRUE(settings.IsEnabled(OB_CLOUD_MANAGE));

        settings.Press(OB_CLOUD_SET_DEFAULT);
        EXPECT_EQ(settings.Rows(), (Lines{L"Second (account)", L"First (account)", dav}));
        EXPECT_EQ(settings.Selected(), 0);

        settings.Select(1);
        settings.Press(OB_CLOUD_LOGOUT);
        EXPECT_EQ(settings.Rows(), (Lines{provider + L" (account)", dav}));
        settings.Select(0);
        settings.Press(OB_CLOUD_LOGOUT);
        EXPECT_EQ(settings.Rows(), (Lines{provider, dav}));
        EXPECT_EQ(settings.Buttons(), (std::vector<int>{OB_CLOUD_LOGIN, OB_CLOUD_SET_DEFAULT}));
    });
}

TEST_F(RealCloudSettings, KeepTheRowOfALoginThatIsCancelled) {
    Use([](const CloudSettings& settings) {
        const Lines before = settings.Rows();
        settings.Select(0);
        obtest::Click(settings.Item(OB_CLOUD_LOGIN));
        const HWND page = obtest::WaitForTopWindow(
            [](HWND window) { return GetDlgItem(window, OB_FOLDER_PATH) != nullptr; },
            GetCurrentProcessId());
        ASSERT_NE(page, nullptr);
        EXPECT_FALSE(IsWindowEnabled(settings.dialog));
        obtest::PressCommand(page, IDCANCEL);
        EXPECT_TRUE(obtest::WaitUntilClosed(page));
        EXPECT_TRUE(obtest::WaitUntil([&] { return settings.Selected() == 0; }));
        EXPECT_EQ(settings.Rows(), before);
        EXPECT_EQ(settings.Buttons(), (std::vector<int>{OB_CLOUD_LOGIN, OB_CLOUD_SET_DEFAULT}));
    });
}

} // namespace
