// What is there after the cloud settings have closed.
#include <commctrl.h>

#include "OBCore/settings/ObConfigureCloudServiceDialog.h"
#include "tests/support/Openings.h"
#include "tests/support/ProcessResources.h"
#include "tests/unit/WebVellant/OBCore/settings/CloudFixture.h"

namespace {

using obtest::FakeModules;

constexpr ULONGLONG kLimit = 4000; // milliseconds

// Closes itself as soon as it is open, after a press of a button.
class BriefSettings : public obcore::OBConfigureCloudDialogImp {
public:
    using OBConfigureCloudDialogImp::OBConfigureCloudDialogImp;
    bool OnInitDialog() override {
        const bool result = OBConfigureCloudDialogImp::OnInitDialog();
        const HWND list = GetItem(OB_CLOUD_ACCOUNTS, true);
        images = ListView_GetImageList(list, LVSIL_SMALL);
        ListView_SetItemState(list, 0, LVIS_SELECTED, LVIS_SELECTED);
        PostMessageW(window, WM_COMMAND, OB_CLOUD_LOGIN, 0);
        PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
        return result;
    }
    HIMAGELIST images = nullptr;
};

bool IsAlive(HIMAGELIST images) {
    int width = 0;
    int height = 0;
    return ImageList_GetIconSize(images, &width, &height) != FALSE;
}

class CloudSettingsObjects : public obtest::CloudFixture {
protected:
    void OpenOnce() {
        FakeModules::ForgetCalls(); // their file would grow
        BriefSettings dialog(owner_.Get(), context_);
        ASSERT_EQ(dialog.DoModal(), IDCANCEL);
        ASSERT_FALSE(IsAlive(dialog.images));
    }
    void OpenMany() {
        for (int round = 0; round < 5; ++round) OpenOnce();
        const auto before = obtest::ProcessResources::Now();
        obtest::Openings openings(kLimit);
        while (openings.More()) {
            OpenOnce();
            openings.Made();
        }
        openings.Print();
        obtest::ExpectNoMoreThan(before);
    }
};

TEST_F(CloudSettingsObjects, AreGoneAfterManyOpenings) { OpenMany(); }

TEST_F(CloudSettingsObjects, AreGoneWhenAccountsWereShownAnew) {
    OneProvider(L"Ann|ann;Bob|bob");
    Answer(L"provider7.GetBitmap", L"1");
    OpenMany();
}

} // namespace
