#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/picker/PickerControls.h"
#include "tests/support/FakeModules.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"
#include "tests/ui/picker/RealPickerFixture.h"

namespace {

using obcontract::ExchangeStatus;
using namespace obcore;
using namespace obtest;

using Paths = std::vector<std::wstring>;

// A text of the product as the dialog shows it.
std::wstring Shown(UINT id) {
    std::wstring text = LoadText(TextId{id});
    std::erase(text, L'&');
    return text;
}

bool WasCalled(const std::wstring& start) {
    return std::ranges::any_of(FakeModules::Calls(),
                               [&](const std::wstring& call) { return call.starts_with(start); });
}

// One request after the other in the real dialog. The UI driver collects what it finds, and the
// test's own thread checks that.
class RealPicker : public RealPickerFixture {
protected:
    void SetUp() override {
        RealPickerFixture::SetUp();
        FakePlanning::process = [this](OBOpenFileNameDlg& dialog, const Paths& paths) {
            picked = paths;
            sendItem = dialog.Options->SendItem;
            autoEncrypt = dialog.Options->AutoEncrypt;
            dialog.AttachRecord->Files = paths;
            return 1;
        };
    }
    static void Support(std::uint32_t transform) {
        FakeModules::Answer(L"IsProviderSupport." + std::to_wstring(transform) + L".4", L"1");
    }

    TestFolder folder;
    Paths picked;
    bool sendItem = false;
    bool autoEncrypt = false;
};

TEST_F(RealPicker, ShowsChoicesAndTransformsInTheirStates) {
    Support(2);
    SetMachinePolicy(L"AdminSendItem", L"3");
    std::vector<std::wstring> texts;
    std::vector<bool> enabled;
    std::vector<bool> checked;
    const UINT ids[] = {101, 102, 103, 182, 184, 185, 181, 180, 188, 186, 187};
    const HRESULT result = RunDialog(FOS_FORCEFILESYSTEM, [&](OpenPicker& picker) {
        WaitUntil([&] { return picker.ChoiceTexts().size() >= std::size(ids); });
        texts = picker.ChoiceTexts();
        for (const UINT id : ids) {
            enabled.push_back(picker.IsEnabled(Shown(id)));
            checked.push_back(picker.IsChecked(Shown(id)));
        }
        picker.PressCancel();
    });
    EXPECT_EQ(result, static_cast<HRESULT>(0x800704c7));
    EXPECT_EQ(texts.size(), std::size(ids));
    for (const UINT id : ids) {
        EXPECT_EQ(std::ranges::count(texts, Shown(id)), 1) << id;
    }
    // Zip is chosen and forced. Of the transforms only resizing is supported.
    const std::vector<bool> expectedChecks = {true,  false, false, false, false, false,
                                              false, false, false, false, false};
    EXPECT_EQ(checked, expectedChecks);
    ASSERT_EQ(enabled.size(), std::size(ids));
    EXPECT_TRUE(enabled[0]);
    EXPECT_TRUE(enabled[1]);
    EXPECT_FALSE(enabled[2]);
    EXPECT_TRUE(enabled[3]);
    for (std::size_t index = 4; index < enabled.size(); ++index) EXPECT_FALSE(enabled[index]);
    EXPECT_EQ(block->Status, ExchangeStatus::DialogRequest);
}

TEST_F(RealPicker, GivesOneFileOnTheOpenFileNamePath) {
    const std::wstring file = folder.File(L"one.txt");
    EXPECT_EQ(RunOpenFileName(OFN_EXPLORER,
                              [&](OpenPicker& picker) {
                                  picker.TypeNames(file);
                                  picker.PressOk();
                              }),
              1);
    EXPECT_EQ(picked, Paths{file});
    EXPECT_TRUE(sendItem);
}

TEST_F(RealPicker, GivesSeveralFilesOnTheDialogPath) {
    const Paths files = {folder.File(L"one.txt"), folder.File(L"two words.txt"),
                         folder.File(L"\u00e9\u4e2d.txt")};
    const HRESULT result = RunDialog(FOS_FORCEFILESYSTEM, [&](OpenPicker& picker) {
        picker.TypeNames(OpenPicker::QuotedNames(files));
        picker.PressOk();
    });
    EXPECT_EQ(result, S_OK);
    EXPECT_EQ(picked, files);
    PickedFiles answered;
    ReadDialogResult(*block, answered);
    EXPECT_EQ(answered.paths, files);
}

TEST_F(RealPicker, StaysOpenWhenAPageOfOneFileIsGivenTwo) {
    const Paths files = {folder.File(L"one.txt"), folder.File(L"two.txt")};
    MessageBoxWatcher boxes;
    bool stayed = false;
    HWND window = nullptr;
    const BOOL result = RunOpenFileName(OFN_EXPLORER, [&](OpenPicker& picker) {
        window = picker.Window();
        picker.Click(Shown(103));
        picker.TypeNames(OpenPicker::QuotedNames(files));
        picker.PressOk();
        if (!boxes.WaitFor(1)) return;
        stayed = picker.IsOpen();
        picker.Click(Shown(101));
        picker.PressOk();
    });
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(stayed);
    ASSERT_EQ(boxes.Seen().size(), 1U);
    EXPECT_EQ(boxes.Seen().front().caption, L"Ombrix Vellant");
    EXPECT_EQ(boxes.Seen().front().text, LoadText(TextId::OneFileOnly));
    EXPECT_EQ(boxes.Seen().front().owner, window);
    EXPECT_EQ(picked, files);
    EXPECT_TRUE(sendItem);
}

TEST_F(RealPicker, TakesTheChoiceThatWasClicked) {
    const std::wstring file = folder.File(L"one.txt");
    struct {
        UINT text;
        bool sendItem, autoEncrypt;
    } const rows[] = {{103, false, false}, {102, false, true}, {101, true, false}};
    for (const auto& row : rows) {
        RunDialog(FOS_FORCEFILESYSTEM, [&](OpenPicker& picker) {
            picker.Click(Shown(row.text));
            picker.TypeNames(file);
            picker.PressOk();
        });
        EXPECT_EQ(sendItem, row.sendItem) << row.text;
        EXPECT_EQ(autoEncrypt, row.autoEncrypt) << row.text;
    }
}

TEST_F(RealPicker, UnticksATransformThatTheManagerRefuses) {
    Support(2);
    Support(5);
    FakeModules::Answer(L"SelectProviders.2", L"0");
    bool refusedTick = true;
    bool acceptedTick = false;
    RunDialog(FOS_FORCEFILESYSTEM, [&](OpenPicker& picker) {
        picker.Click(Shown(182));
        WaitUntil([] { return WasCalled(L"SelectProviders(manager, 2, 2, 4)"); });
        WaitUntil([&] { return !picker.IsChecked(Shown(182)); }, 3000);
        refusedTick = picker.IsChecked(Shown(182));
        picker.Click(Shown(181));
        WaitUntil([] { return WasCalled(L"SelectProviders(manager, 2, 5, 4)"); });
        acceptedTick = picker.IsChecked(Shown(181));
        picker.PressCancel();
    });
    EXPECT_FALSE(refusedTick);
    EXPECT_TRUE(acceptedTick);
}

// The second run of the process opens in the folder of the first one's file, where three are.
TEST_F(RealPicker, DisablesTheTransformsWhileSeveralFilesAreSelectedWithoutZip) {
    Support(2);
    const std::wstring file = folder.File(L"one.txt");
    folder.File(L"three.txt");
    folder.File(L"two.txt");
    RunDialog(FOS_FORCEFILESYSTEM, [&](OpenPicker& picker) {
        picker.TypeNames(file);
        picker.PressOk();
    });
    std::vector<bool> reached;
    RunDialog(FOS_FORCEFILESYSTEM, [&](OpenPicker& picker) {
        const auto becomes = [&](bool enabled) {
            reached.push_back(
                WaitUntil([&] { return picker.IsEnabled(Shown(182)) == enabled; }, 5000));
        };
        picker.Click(Shown(103));
        becomes(true);
        reached.push_back(WaitUntil([&] { return picker.SelectInList({0, 1}); }));
        becomes(false);
        picker.SelectInList({2});
        becomes(true);
        picker.PressCancel();
    });
    EXPECT_EQ(reached, std::vector<bool>(4, true));
}

} // namespace
