// The main button: login, default, and what the job gets.
#include <cstring>

#include "OBCore/chooser/LoginChosenProfile.h"
#include "tests/fakes/Recording.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/WebVellant/OBCore/chooser/ChooserFixture.h"

namespace {

using obcontract::ProviderProfile;
using obtest::Chooser;
using obtest::FakeModules;
using obtest::Lines;
using obtest::WindowText;

const Lines kManagerCalls = {L"Login2", L"GetAccountProfiles", L"SetDefaultStorageProvider"};

class ChooserLogin : public obtest::ChooserFixture {
protected:
    // Ticks a row and presses the main button; the chooser closes with a choice.
    bool Choose(int row) {
        return Show([row](const Chooser& chooser) {
            chooser.Tick(row);
            FakeModules::ForgetCalls();
            chooser.Press(OB_CHOOSER_CONTINUE);
        });
    }
    // The same where the manager refuses: the chooser stays open, and is cancelled.
    void ChooseInVain(int row) {
        const ProviderProfile before = job_.SelectedStorageProvider;
        EXPECT_FALSE(Show([row](const Chooser& chooser) {
            chooser.Tick(row);
            FakeModules::ForgetCalls();
            chooser.Press(OB_CHOOSER_CONTINUE);
            EXPECT_TRUE(chooser.IsOpen());
            chooser.Cancel();
        }));
        EXPECT_EQ(std::memcmp(&before, &job_.SelectedStorageProvider, sizeof before), 0);
    }
};

TEST_F(ChooserLogin, IsLeftOutForAnAccountThatIsLoggedIn) {
    OneProvider(L"Ann|ann;Bob|bob");
    EXPECT_TRUE(Choose(1));
    EXPECT_EQ(CallsOf(kManagerCalls),
              Lines{L"SetDefaultStorageProvider(manager, profile(7, \"Bob\", \"bob\"))"});
    EXPECT_EQ(job_.SelectedStorageProvider.providerId, 7u);
    EXPECT_STREQ(job_.SelectedStorageProvider.accountLabel, L"Bob");
    EXPECT_EQ(ChosenKey(), L"bob");
}

TEST_F(ChooserLogin, GetsKeyLabelAndTheDialogAsItsOwner) {
    OneProvider(L"Ann|ann", false);
    HWND dialog = nullptr;
    EXPECT_FALSE(Show([&dialog](const Chooser& chooser) {
        dialog = chooser.dialog;
        chooser.Tick(0);
        chooser.Press(OB_CHOOSER_CONTINUE);
        chooser.Cancel();
    }));
    EXPECT_EQ(CallsOf({L"Login2"}),
              Lines{L"Login2(manager, provider7, \"ann\", \"Ann\", " + WindowText(dialog) + L")"});
}

TEST_F(ChooserLogin, LeavesTheChooserOpenWithoutAMessageWhenItFails) {
    OneProvider(L"Ann|ann", false);
    const obtest::MessageBoxWatcher boxes;
    ChooseInVain(0);
    EXPECT_EQ(CallsOf(kManagerCalls).size(), 1u);
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(ChooserLogin, CanBeTriedAgain) {
    OneProvider(L"0");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        chooser.Press(OB_CHOOSER_CONTINUE);
        Answer(L"Login2", L"1");
        Answer(L"provider7.GetAccountProfiles", L"Ann|ann");
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    EXPECT_EQ(CallsOf({L"Login2"}).size(), 2u);
    EXPECT_EQ(ChosenKey(), L"ann");
}

TEST_F(ChooserLogin, TakesTheNewestAccountOfAProviderThatHadNone) {
    OneProvider(L"0");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        Answer(L"Login2", L"1");
        Answer(L"provider7.GetAccountProfiles", L"Ann|ann;Bob|bob");
        FakeModules::ForgetCalls();
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    const Lines calls = CallsOf(kManagerCalls);
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_TRUE(calls[0].starts_with(L"Login2(manager, provider7, \"\", \"\", "));
    EXPECT_EQ(calls[1], L"GetAccountProfiles(provider7, 16)");
    EXPECT_EQ(calls[2], L"SetDefaultStorageProvider(manager, profile(7, \"Bob\", \"bob\"))");
    EXPECT_EQ(ChosenKey(), L"bob");
}

TEST_F(ChooserLogin, TakesTheNewestAccountAlsoInPlaceOfTheChosenOne) {
    OneProvider(L"Ann|ann;Bob|bob", false);
    Answer(L"Login2", L"1");
    EXPECT_TRUE(Choose(0));
    EXPECT_EQ(ChosenKey(), L"bob");
}

TEST_F(ChooserLogin, TakesTheSixteenthAccountOfMore) {
    std::wstring accounts = L"0|key0";
    for (int number = 1; number < 17; ++number) {
        accounts += L";" + std::to_wstring(number) + L"|key" + std::to_wstring(number);
    }
    OneProvider(accounts, false);
    Answer(L"Login2", L"1");
    EXPECT_TRUE(Choose(3));
    EXPECT_EQ(ChosenKey(), L"key15");
}

TEST_F(ChooserLogin, KeepsTheChosenAccountWhenTheProviderReportsNone) {
    OneProvider(L"Ann|ann", false);
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        Answer(L"Login2", L"1");
        Answer(L"Login2.accountLabel", L"Ann B");
        Answer(L"provider7.GetAccountProfiles", L"-1");
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    EXPECT_EQ(ChosenKey(), L"ann");
    EXPECT_STREQ(job_.SelectedStorageProvider.accountLabel, L"Ann B"); // in and out
}

TEST_F(ChooserLogin, KeepsTheChosenAccountWhenTheProviderFillsInNone) {
    OneProvider(L"Ann|ann", false);
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        Answer(L"Login2", L"1");
        Answer(L"provider7.GetAccountProfiles", L"5"); // a count alone
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    EXPECT_EQ(ChosenKey(), L"ann");
}

TEST_F(ChooserLogin, GoesByTheTextOfTheButtonAndNotByTheAccountsStateByNow) {
    OneProvider(L"Ann|ann");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        Answer(L"provider7.IsAccountLoggedIn", L"0");
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    EXPECT_TRUE(CallsOf({L"Login2"}).empty());
    EXPECT_FALSE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        Answer(L"provider7.IsAccountLoggedIn", L"1");
        chooser.Press(OB_CHOOSER_CONTINUE);
        chooser.Cancel();
    }));
    EXPECT_EQ(CallsOf({L"Login2"}).size(), 1u);
}

TEST_F(ChooserLogin, MakesNoDefaultWhenTheUserClearsTheBox) {
    OneProvider(L"Ann|ann");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        EXPECT_TRUE(chooser.IsDefaultChecked());
        chooser.Press(OB_CHOOSER_DEFAULT);
        EXPECT_FALSE(chooser.IsDefaultChecked());
        chooser.Tick(0);
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    EXPECT_TRUE(CallsOf({L"SetDefaultStorageProvider"}).empty());
    EXPECT_EQ(ChosenKey(), L"ann");
}

TEST_F(ChooserLogin, LeavesTheChooserOpenWhenTheDefaultCantBeSet) {
    OneProvider(L"Ann|ann");
    Answer(L"SetDefaultStorageProvider", L"0");
    ChooseInVain(0);
    EXPECT_EQ(CallsOf({L"SetDefaultStorageProvider"}).size(), 1u);
}

TEST_F(ChooserLogin, IsntReachedWithoutATick) {
    OneProvider(L"Ann|ann");
    EXPECT_FALSE(Show([](const Chooser& chooser) {
        FakeModules::ForgetCalls();
        SendMessageW(chooser.dialog, WM_COMMAND, OB_CHOOSER_CONTINUE, 0);
        EXPECT_TRUE(chooser.IsOpen());
        EXPECT_TRUE(FakeModules::Calls().empty());
        chooser.Cancel();
    }));
}

TEST_F(ChooserLogin, AsksTheManagerAlsoAfterTheAssertionOfAMissingInstance) {
    OneProvider(L"0");
    Answer(L"Login2", L"1"); // the fake refuses a null provider all the same
    Answer(L"GetProviderInstance.7", L"0");
    const obtest::MessageBoxWatcher boxes;
    ChooseInVain(0);
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].caption, L"Assert Error");
    EXPECT_NE(boxes.Seen()[0].text.find(L"Expr: provider != NULL\n"), std::wstring::npos);
    EXPECT_EQ(CallsOf({L"Login2"}).size(), 1u);
    EXPECT_TRUE(CallsOf({L"Login2"})[0].starts_with(L"Login2(manager, null, "));
}

} // namespace
