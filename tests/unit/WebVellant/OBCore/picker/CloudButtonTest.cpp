#include <cstdio>
#include <map>
#include <stdexcept>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "tests/support/FakeModules.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/WebVellant/OBCore/picker/CloudButtonFixture.h"

namespace obtest {
namespace {

using obcore::CloudButtonHook;

// What an older hook of the thread sees: the number of its calls by their codes.
std::map<int, int> seenByOlderHook;

LRESULT CALLBACK CountCalls(int code, WPARAM wParam, LPARAM lParam) {
    ++seenByOlderHook[code];
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

class CloudButtonHookTest : public CloudButtonFixture {};

TEST_F(CloudButtonHookTest, TakesTheFirstDialogAndIsGoneThen) {
    CloudButtonScope scope;
    EXPECT_TRUE(scope.record.hook);
    const ObLib::UniqueWindow other(CreateWindowExW(0, L"Static", L"no dialog", WS_OVERLAPPEDWINDOW,
                                                    0, 0, 50, 50, nullptr, nullptr, nullptr,
                                                    nullptr));
    EXPECT_TRUE(scope.record.hook);
    SyntheticDialog form;
    EXPECT_TRUE(ButtonOf(form.Create()));
    EXPECT_FALSE(scope.record.hook);
    EXPECT_EQ(scope.record.dialog, form.dialog);
    EXPECT_FALSE(NextDialogGetsAButton());
}

TEST_F(CloudButtonHookTest, DoesNothingAfterItsRecordIsRemoved) {
    { const CloudButtonScope scope; }
    EXPECT_FALSE(NextDialogGetsAButton());
    // A hook that outlives the record, as one that the system can't remove would.
    const ObLib::UniqueWindowHook hook = HookThread(&obcore::CloudButtonHookProcedure);
    EXPECT_FALSE(NextDialogGetsAButton());
}

TEST_F(CloudButtonHookTest, PassesEveryCallOn) {
    const auto callsOf = [](bool hooked) {
        seenByOlderHook.clear();
        const ObLib::UniqueWindowHook older = HookThread(&CountCalls);
        // A button would be one window more.
        const ObLib::UniqueWindowHook hook =
            hooked ? HookThread(&obcore::CloudButtonHookProcedure) : ObLib::UniqueWindowHook();
        SyntheticDialog form;
        form.Create();
        return seenByOlderHook;
    };
    const auto without = callsOf(false);
    EXPECT_GT(without.size(), 1U);
    EXPECT_EQ(callsOf(true), without);
}

TEST_F(CloudButtonHookTest, PassesTheCallOnWithWhichItIsRemoved) {
    seenByOlderHook.clear();
    const ObLib::UniqueWindowHook older = HookThread(&CountCalls);
    CloudButtonScope scope;
    SyntheticDialog form;
    form.Create();
    // The dialog, its controls and the button; a box of this class makes controls of its own.
    EXPECT_GE(seenByOlderHook[HCBT_CREATEWND], 5);
}

class CloudButton : public CloudButtonFixture {};

TEST_F(CloudButton, IsAButtonWithTextAndFontOfTheDialog) {
    FakeCloudPick::hasProvider = [](auto manager) {
        return manager == reinterpret_cast<obcontract::ProviderManagerHandle>(7);
    };
    CloudButtonScope scope;
    scope.record.providerManager = reinterpret_cast<obcontract::ProviderManagerHandle>(7);
    SyntheticDialog form;
    const ObLib::UniqueFont font(CreateFontW(-17, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, L""));
    form.onMessage = [&](HWND, UINT message, WPARAM) {
        if (message == WM_INITDIALOG) {
            SendMessageW(form.ok, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
        }
    };
    const HWND button = ButtonOf(form.Create());
    ASSERT_TRUE(button);
    EXPECT_EQ(scope.record.button, button);
    EXPECT_EQ(scope.record.ok_button_, form.ok);
    EXPECT_EQ(scope.record.combobox_, form.nameBox);
    EXPECT_EQ(ClassOf(button), L"Button");
    EXPECT_EQ(TextOf(button), obcore::LoadText(obcore::TextId{183}));
    EXPECT_EQ(TextOf(button), L"&Cloud...");
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(button, GWL_STYLE)), 0x54010F00U);
    EXPECT_EQ(SendMessageW(button, WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(font.Get()));
    EXPECT_EQ(fontsGiven.back().window, button);
    EXPECT_TRUE(fontsGiven.back().redraws);
    EXPECT_TRUE(IsWindowEnabled(button));
}

TEST_F(CloudButton, IsDisabledWithoutAProvider) {
    CloudButtonScope scope;
    SyntheticDialog form;
    const HWND button = ButtonOf(form.Create());
    ASSERT_TRUE(button);
    EXPECT_FALSE(IsWindowEnabled(button));
    EXPECT_TRUE(IsWindowVisible(button));
}

void ExpectAssertions(const std::vector<SeenBox>& boxes, const std::vector<std::wstring>& ends) {
    ASSERT_EQ(boxes.size(), ends.size());
    for (std::size_t index = 0; index < ends.size(); ++index) {
        EXPECT_EQ(boxes[index].caption, L"Assert Error");
        EXPECT_TRUE(boxes[index].text.ends_with(ends[index])) << index;
    }
}

TEST_F(CloudButton, IsAddedWithAnAssertionWhereTheDialogLacksAControl) {
    const std::wstring noOk = L"Expr: ok_button_ != NULL\nFile: OBCore\\CloudButtonHook\nLine: 187";
    const std::wstring noBox = L"Expr: combobox_ != NULL\nFile: OBCore\\CloudButtonHook\nLine: 188";
    struct {
        bool ok, box;
        std::vector<std::wstring> boxes;
    } const rows[] = {{false, true, {noOk}}, {true, false, {noBox}}, {false, false, {noOk, noBox}}};
    for (const auto& row : rows) {
        MessageBoxWatcher boxes;
        CloudButtonScope scope;
        SyntheticDialog form;
        form.hasOk = row.ok;
        form.hasBox = row.box;
        EXPECT_TRUE(ButtonOf(form.Create()));
        EXPECT_EQ(scope.record.ok_button_, form.ok);
        EXPECT_EQ(scope.record.combobox_, form.nameBox);
        ExpectAssertions(boxes.Seen(), row.boxes);
    }
}

TEST_F(CloudButton, GivesThePickItsRecordAndTheDialog) {
    CloudButtonScope scope;
    SyntheticDialog form;
    form.Create();
    Press(form.dialog);
    ASSERT_EQ(FakeCloudPick::picks.size(), 1U);
    EXPECT_EQ(FakeCloudPick::picks[0].record, &scope.record);
    EXPECT_EQ(FakeCloudPick::picks[0].dialog, form.dialog);
    // Whatever the button reports; and no other control.
    SendMessageW(form.dialog, WM_COMMAND, MAKEWPARAM(3011, BN_SETFOCUS), 0);
    SendMessageW(form.dialog, WM_COMMAND, MAKEWPARAM(3010, BN_CLICKED), 0);
    EXPECT_EQ(FakeCloudPick::picks.size(), 2U);
}

TEST_F(CloudButton, HandsItsCommandToTheDialogAfterThePick) {
    CloudButtonScope scope;
    SyntheticDialog form;
    std::vector<std::size_t> picksBefore;
    form.onMessage = [&](HWND, UINT message, WPARAM wParam) {
        if (message != WM_COMMAND || LOWORD(wParam) != 3011) return;
        picksBefore.push_back(FakeCloudPick::picks.size());
    };
    form.Create();
    Press(form.dialog);
    EXPECT_EQ(picksBefore, std::vector<std::size_t>{1});
}

// Calls of the provider manager's exports.
std::vector<std::wstring> CallsOfManager() {
#define OB_NAME_OF(name, result, arguments) L## #name,
    static const std::vector<std::wstring> names{OB_PROVIDER_MANAGER_ENTRIES(OB_NAME_OF)};
#undef OB_NAME_OF
    return FakeModules::CallsOf(names);
}

TEST_F(CloudButton, LoadsTheOptionsWithoutAManagerBeforeThePick) {
    ASSERT_TRUE(obcore::LoadProviderManager()); // so that it could be asked
    bool keysThere = false;
    FakeCloudPick::pick = [&](CloudButtonHook&, HWND) {
        keysThere = KeyExists(HKEY_CURRENT_USER, kUserKey);
        EXPECT_EQ(CallsOfManager(), std::vector<std::wstring>{});
        return false;
    };
    CloudButtonScope scope;
    SyntheticDialog form;
    form.Create();
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, kUserKey));
    FakeModules::ForgetCalls();
    Press(form.dialog);
    EXPECT_TRUE(keysThere);
    EXPECT_EQ(FakeCloudPick::picks.size(), 1U);
}

constexpr UINT kEndUnlessEnded = WM_APP + 1;
constexpr INT_PTR kStillOpen = 77;

// The dialog's result after a click on the button.
INT_PTR ResultAfterClick() {
    CloudButtonScope scope;
    SyntheticDialog form;
    form.onMessage = [](HWND dialog, UINT message, WPARAM) {
        if (message == WM_INITDIALOG) {
            PostMessageW(dialog, WM_COMMAND, 3011, 0);
            PostMessageW(dialog, kEndUnlessEnded, 0, 0);
        }
        if (message == kEndUnlessEnded) EndDialog(dialog, kStillOpen);
    };
    return form.Run();
}

TEST_F(CloudButton, LeavesTheDialogOpenWhenThePickGivesNoLink) {
    EXPECT_EQ(ResultAfterClick(), kStillOpen);
    EXPECT_EQ(FakeCloudPick::picks.size(), 1U);
}

TEST_F(CloudButton, EndsTheDialogWithZeroWhenThePickGivesALink) {
    FakeCloudPick::pick = [](CloudButtonHook& record, HWND) {
        record.linkText = L"https://cloud/1";
        return true;
    };
    EXPECT_EQ(ResultAfterClick(), 0);
}

TEST_F(CloudButton, IsNotAddedToADialogOfThePick) {
    bool second = true;
    FakeCloudPick::pick = [&](CloudButtonHook&, HWND) {
        second = NextDialogGetsAButton();
        return false;
    };
    CloudButtonScope scope;
    SyntheticDialog form;
    form.Create();
    Press(form.dialog);
    EXPECT_FALSE(second);
}

TEST_F(CloudButton, StopsAnExceptionOfThePickAndLeavesTheDialogOpen) {
    FakeCloudPick::pick = [](CloudButtonHook&, HWND) -> bool { throw std::runtime_error("pick"); };
    EXPECT_EQ(ResultAfterClick(), kStillOpen);
}

TEST_F(CloudButton, StopsAnExceptionWhileItIsAdded) {
    FakeCloudPick::hasProvider = [](auto) -> bool { throw std::runtime_error("provider"); };
    CloudButtonScope scope;
    SyntheticDialog form;
    EXPECT_TRUE(form.Create());
    EXPECT_TRUE(form.fileTypes);
}

TEST_F(CloudButton, SubclassesTheDialogOnceAndReleasesItWhenItIsDestroyed) {
    const SubclassRecord record;
    ASSERT_TRUE(record.Ok());
    CloudButtonScope scope;
    SyntheticDialog form;
    form.Create();
    const SubclassRecord::Entries expected{{form.dialog, 0}};
    EXPECT_EQ(SubclassRecord::Added(), expected);
    EXPECT_TRUE(SubclassRecord::Removed().empty());
    DestroyWindow(form.dialog);
    EXPECT_EQ(SubclassRecord::Removed(), expected);
}

} // namespace
} // namespace obtest
