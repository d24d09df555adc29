// Ticks of the rows, and what they make of the main button.
#include <commctrl.h>

#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/WebVellant/OBCore/chooser/ChooserFixture.h"

namespace {

using obtest::Chooser;
using obtest::FakeModules;
using obtest::Lines;
using Rows = std::vector<int>;

class ChooserTicks : public obtest::ChooserFixture {
protected:
    // Operates the chooser and then cancels it.
    void Use(const std::function<void(const Chooser&)>& use) {
        EXPECT_FALSE(Show([&use](const Chooser& chooser) {
            use(chooser);
            chooser.Cancel();
        }));
    }
    static void ExpectButton(const Chooser& chooser, bool enabled, const std::wstring& text) {
        EXPECT_EQ(chooser.ButtonIsEnabled(), enabled);
        EXPECT_EQ(chooser.ButtonText(), text);
    }
};

TEST_F(ChooserTicks, AreNoneAtFirstAndTheButtonIsDisabled) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const Chooser& chooser) {
        EXPECT_EQ(chooser.Ticked(), Rows{});
        ExpectButton(chooser, false, LoginText());
    });
    EXPECT_TRUE(CallsOf({L"IsAccountLoggedIn"}).empty());
}

TEST_F(ChooserTicks, LeaveTheButtonDisabledWithoutARow) {
    Use([](const Chooser& chooser) { ExpectButton(chooser, false, LoginText()); });
}

TEST_F(ChooserTicks, EnableTheButtonForAnAccountThatIsLoggedIn) {
    OneProvider(L"Ann|ann");
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        ExpectButton(chooser, true, ContinueText());
    });
    EXPECT_EQ(CallsOf({L"IsAccountLoggedIn"}), Lines{L"IsAccountLoggedIn(provider7, \"ann\")"});
}

TEST_F(ChooserTicks, AskForALoginOfAnAccountThatIsLoggedOut) {
    OneProvider(L"Ann|ann", false);
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        ExpectButton(chooser, true, LoginText());
    });
}

TEST_F(ChooserTicks, AskForALoginWithoutAnAccountAndWithoutAskingTheProvider) {
    OneProvider(L"0");
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        ExpectButton(chooser, true, LoginText());
    });
    EXPECT_TRUE(CallsOf({L"IsAccountLoggedIn"}).empty());
}

TEST_F(ChooserTicks, KeepTheButtonDisabledForARowWithoutAProfile) {
    OneProvider(L"-1");
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        EXPECT_EQ(chooser.Ticked(), Rows{0});
        ExpectButton(chooser, false, LoginText());
        SendMessageW(chooser.dialog, WM_COMMAND, OB_CHOOSER_CONTINUE, 0);
        EXPECT_TRUE(chooser.IsOpen());
    });
    EXPECT_TRUE(CallsOf({L"Login2", L"SetDefaultStorageProvider"}).empty());
}

TEST_F(ChooserTicks, AreLikeRadioButtons) {
    OneProvider(L"Ann|ann;Bob|bob;Cid|cid");
    Answer(L"provider7.IsAccountLoggedIn.bob", L"0");
    Use([](const Chooser& chooser) {
        chooser.Tick(2);
        EXPECT_EQ(chooser.Ticked(), Rows{2});
        chooser.Tick(1);
        EXPECT_EQ(chooser.Ticked(), Rows{1});
        ExpectButton(chooser, true, LoginText());
        chooser.Tick(2);
        EXPECT_EQ(chooser.Ticked(), Rows{2});
        ExpectButton(chooser, true, ContinueText());
    });
}

TEST_F(ChooserTicks, AskForTheFirstTickedRowAtEachChange) {
    OneProvider(L"Ann|ann;Bob|bob;Cid|cid");
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        chooser.Tick(2); // two rows are ticked for a moment
    });
    const auto call = [](const wchar_t* key) {
        return std::wstring(L"IsAccountLoggedIn(provider7, \"") + key + L"\")";
    };
    EXPECT_EQ(CallsOf({L"IsAccountLoggedIn"}), (Lines{call(L"ann"), call(L"ann"), call(L"cid")}));
}

TEST_F(ChooserTicks, LeaveTheOthersAloneWhenARowWasNotUntickedBefore) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const Chooser& chooser) {
        chooser.Tick(1);
        ListView_SetItemState(chooser.list, 0, INDEXTOSTATEIMAGEMASK(3), LVIS_STATEIMAGEMASK);
        chooser.SetTick(0, true);
        EXPECT_EQ(chooser.Ticked(), (Rows{0, 1}));
    });
}

TEST_F(ChooserTicks, DisableTheButtonWhenTheOnlyOneIsTakenAway) {
    OneProvider(L"Ann|ann");
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        chooser.SetTick(0, false);
        ExpectButton(chooser, false, LoginText());
    });
}

TEST_F(ChooserTicks, AreSetByTheMouse) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const Chooser& chooser) {
        chooser.ClickTick(1);
        EXPECT_EQ(chooser.Ticked(), Rows{1});
        EXPECT_TRUE(chooser.ButtonIsEnabled());
        chooser.ClickTick(1);
        EXPECT_EQ(chooser.Ticked(), Rows{});
        EXPECT_FALSE(chooser.ButtonIsEnabled());
    });
}

TEST_F(ChooserTicks, StayWhenARowIsOnlySelected) {
    OneProvider(L"Ann|ann;Bob|bob");
    Answer(L"provider7.IsAccountLoggedIn.bob", L"0");
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        for (const int row : {1, 0, 1}) {
            ListView_SetItemState(chooser.list, row, LVIS_SELECTED | LVIS_FOCUSED,
                                  LVIS_SELECTED | LVIS_FOCUSED);
            EXPECT_EQ(chooser.Ticked(), Rows{0});
            ExpectButton(chooser, true, ContinueText());
        }
    });
}

TEST_F(ChooserTicks, CountFromTheFirstRowThatIsntUnticked) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const Chooser& chooser) {
        chooser.Tick(1);
        // Neither ticked nor unticked; such a change itself doesn't count.
        ListView_SetItemState(chooser.list, 0, INDEXTOSTATEIMAGEMASK(3), LVIS_STATEIMAGEMASK);
        FakeModules::ForgetCalls();
        chooser.SetTick(1, false);
        EXPECT_EQ(CallsOf({L"IsAccountLoggedIn"}), Lines{L"IsAccountLoggedIn(provider7, \"ann\")"});
        ExpectButton(chooser, true, ContinueText());
        // The main button wants a ticked row.
        FakeModules::ForgetCalls();
        chooser.Press(OB_CHOOSER_CONTINUE);
        EXPECT_TRUE(chooser.IsOpen());
        EXPECT_TRUE(FakeModules::Calls().empty());
    });
}

TEST_F(ChooserTicks, ShowTheAssertionWhenTheManagerHasNoInstance) {
    OneProvider(L"Ann|ann");
    Answer(L"GetProviderInstance.7", L"0");
    const obtest::MessageBoxWatcher boxes;
    Use([](const Chooser& chooser) {
        chooser.Tick(0);
        ExpectButton(chooser, true, LoginText());
    });
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].caption, L"Assert Error");
    EXPECT_NE(boxes.Seen()[0].text.find(L"Expr: provider != NULL\nFile: "
                                        L"OBCore\\OBSelectDefaultCloudDialog\nLine: "),
              std::wstring::npos)
        << testing::PrintToString(boxes.Seen()[0].text);
    EXPECT_TRUE(CallsOf({L"IsAccountLoggedIn"}).empty());
}

} // namespace
