// The account buttons of the cloud settings: which are enabled for a row, what each asks of the
// provider manager, and which row is selected afterwards.
#include <commctrl.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "tests/fakes/Recording.h"
#include "tests/unit/WebVellant/OBCore/settings/CloudFixture.h"

namespace {

using obcontract::CloudProvider;
using obcontract::ProviderManagerEntries;
using obcontract::ProviderManagerHandle;
using obtest::CloudSettings;
using obtest::FakeModules;
using obtest::Lines;
using obtest::MessageBoxWatcher;
using obtest::WindowText;

const Lines kActions = {L"Login2", L"Logout2", L"ManageAccount", L"SetDefaultStorageProvider"};
const std::vector<int> kForLoggedOut = {OB_CLOUD_LOGIN, OB_CLOUD_SET_DEFAULT};
const std::vector<int> kForLoggedIn = {OB_CLOUD_LOGOUT, OB_CLOUD_SET_DEFAULT, OB_CLOUD_ADD_ACCOUNT};
const std::vector<int> kForSeveral = {OB_CLOUD_LOGOUT, OB_CLOUD_SET_DEFAULT, OB_CLOUD_ADD_ACCOUNT,
                                      OB_CLOUD_MANAGE};

// Login2 of the bound manager is the test's own for a scope; it runs on the dialog's thread.
std::function<bool(wchar_t* key, wchar_t* label, HWND owner)> onLogin;

obcontract::Bool RunOnLogin(ProviderManagerHandle, CloudProvider*, wchar_t* key, wchar_t* label,
                            HWND owner) {
    return onLogin(key, label, owner);
}

class OwnLogin {
public:
    explicit OwnLogin(decltype(onLogin) login) {
        onLogin = std::move(login);
        real_ = std::exchange(Entries().Login2, &RunOnLogin);
    }
    ~OwnLogin() {
        Entries().Login2 = real_;
        onLogin = nullptr;
    }
    OwnLogin(const OwnLogin&) = delete;
    OwnLogin& operator=(const OwnLogin&) = delete;

private:
    static ProviderManagerEntries& Entries() {
        return const_cast<ProviderManagerEntries&>(obcore::ProviderManager());
    }
    decltype(ProviderManagerEntries::Login2) real_;
};

class CloudButtons : public obtest::CloudFixture {
protected:
    // Presses the button with this row selected; what the manager was asked to do then.
    Lines CallsAfter(int id, int row, const Lines& names = kActions) {
        Lines calls;
        Use([&](const CloudSettings& settings) {
            settings.Select(row);
            FakeModules::ForgetCalls();
            settings.Press(id);
            calls = CallsOf(names);
            last_ = settings.Selected();
            dialog_ = settings.dialog;
        });
        return calls;
    }
    static void TwoProviders() {
        OneProvider(L"Ann|ann;Bob|bob");
        Answer(L"Providers", L"7,8");
        Answer(L"provider8.GetShortDescription", L"Eight");
    }
    std::wstring Dialog() const { return WindowText(dialog_); }

    int last_ = -1; // the row that was selected at the end
    HWND dialog_ = nullptr;
};

// Selection.

TEST_F(CloudButtons, AreDisabledWithoutASelectedRow) {
    OneProvider(L"Ann|ann");
    Use([](const CloudSettings& settings) {
        EXPECT_EQ(settings.Selected(), -1);
        EXPECT_EQ(settings.Buttons(), std::vector<int>{});
        settings.Select(0);
        EXPECT_EQ(settings.Buttons(), kForLoggedIn);
        settings.Unselect();
        EXPECT_EQ(settings.Buttons(), std::vector<int>{});
    });
}

TEST_F(CloudButtons, FollowTheStateOfTheSelectedAccount) {
    OneProvider(L"Ann|ann");
    Use([](const CloudSettings& settings) {
        Answer(L"IsAuthorized2", L"0");
        settings.Select(0);
        EXPECT_EQ(settings.Buttons(), kForLoggedOut);
    });
    EXPECT_EQ(CallsOf({L"IsAuthorized2"}), Lines{L"IsAuthorized2(manager, provider7, \"ann\", 0)"});
}

TEST_F(CloudButtons, FollowFromRowToRow) {
    OneProvider(L"Ann|ann;Bob|bob");
    Answer(L"IsAuthorized2.bob", L"0");
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        EXPECT_EQ(settings.Buttons(), kForSeveral);
        settings.Select(1);
        EXPECT_EQ(settings.Buttons(),
                  (std::vector<int>{OB_CLOUD_LOGIN, OB_CLOUD_SET_DEFAULT, OB_CLOUD_MANAGE}));
        settings.Select(0);
        EXPECT_EQ(settings.Buttons(), kForSeveral);
    });
}

TEST_F(CloudButtons, AskNothingWhenOnlyTheFocusMoves) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        FakeModules::ForgetCalls();
        ListView_SetItemState(settings.list, 1, LVIS_FOCUSED, LVIS_FOCUSED);
        settings.Select(0);
        EXPECT_TRUE(CallsOf({L"IsAuthorized2"}).empty());
        EXPECT_EQ(settings.Buttons(), kForSeveral);
    });
}

TEST_F(CloudButtons, ManageOnlyAProviderOfSeveralAccounts) {
    for (const int count : {0, 1, 2, 16, 17}) {
        OneProvider(count ? obtest::ManyAccounts(count) : L"0");
        Use([count](const CloudSettings& settings) {
            settings.Select(0);
            EXPECT_EQ(settings.IsEnabled(OB_CLOUD_MANAGE), count > 1) << count;
        });
    }
}

void ExpectAssertions(const MessageBoxWatcher& boxes, const std::vector<std::wstring>& expected) {
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), expected.size());
    for (std::size_t box = 0; box < seen.size(); ++box) {
        EXPECT_EQ(seen[box].caption, L"Assert Error");
        EXPECT_NE(seen[box].text.find(L"Expr: " + expected[box] + L"\n"), std::wstring::npos)
            << box;
    }
}

TEST_F(CloudButtons, AreThoseOfALoginAfterTheAssertionOfAMissingInstance) {
    OneProvider(L"Ann|ann");
    Answer(L"GetProviderInstance.7", L"0");
    const MessageBoxWatcher boxes;
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        EXPECT_EQ(settings.Buttons(), kForLoggedOut);
    });
    ExpectAssertions(boxes, {L"cloud_svc_ptr != NULL"});
    EXPECT_EQ(CallsOf({L"IsAuthorized2"}), Lines{L"IsAuthorized2(manager, null, \"ann\", 0)"});
}

// Log in.

TEST_F(CloudButtons, LogTheSelectedAccountInAndKeepItsRow) {
    OneProvider(L"Ann|ann;Bob|bob", false);
    Answer(L"Login2", L"1");
    const Lines calls = CallsAfter(OB_CLOUD_LOGIN, 1);
    EXPECT_EQ(calls, Lines{L"Login2(manager, provider7, \"bob\", \"Bob\", " + Dialog() + L")"});
    EXPECT_EQ(last_, 1);
}

TEST_F(CloudButtons, LogInByADoubleClickToo) {
    OneProvider(L"Ann|ann;Bob|bob", false);
    Use([](const CloudSettings& settings) {
        settings.DoubleClick(1);
        EXPECT_EQ(CallsOf(kActions).size(), 1u);
        EXPECT_TRUE(CallsOf({L"Login2"})[0].starts_with(L"Login2(manager, provider7, \"bob\""));
        EXPECT_EQ(settings.Selected(), 1);
    });
}

TEST_F(CloudButtons, DoNothingOnADoubleClickBesideTheRows) {
    OneProvider(L"Ann|ann", false);
    const MessageBoxWatcher boxes;
    Use([](const CloudSettings& settings) {
        FakeModules::ForgetCalls();
        NMITEMACTIVATE click{};
        click.hdr = {settings.list, OB_CLOUD_ACCOUNTS, static_cast<UINT>(NM_DBLCLK)};
        click.iItem = -1;
        SendMessageW(settings.dialog, WM_NOTIFY, OB_CLOUD_ACCOUNTS,
                     reinterpret_cast<LPARAM>(&click));
        EXPECT_TRUE(CallsOf({L"Login2", L"EnumProvidersReset"}).empty());
    });
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(CloudButtons, FillARowOfNoAccountFromTheProviderAfterALogin) {
    OneProvider(L"0", false);
    std::wstring key = L"?";
    Use([&](const CloudSettings& settings) {
        settings.Select(0);
        obcontract::ProviderProfile* const profile = obtest::ProfileOfRowIn(settings.list, 0);
        Answer(L"GetDefaultStorageProvider", L"7||");
        Answer(L"provider7.GetAccountProfiles", L"Ann|ann;Bob|bob");
        const OwnLogin login([&](wchar_t*, wchar_t*, HWND) {
            key = profile->accountKey;
            return true;
        });
        FakeModules::ForgetCalls();
        settings.Press(OB_CLOUD_LOGIN);
        EXPECT_EQ(key, L"");
        EXPECT_EQ(CallsOf({L"GetAccountProfiles", L"SetDefaultStorageProvider"})[0],
                  L"GetAccountProfiles(provider7, 16)");
        EXPECT_EQ(CallsOf({L"SetDefaultStorageProvider"}),
                  Lines{L"SetDefaultStorageProvider(manager, profile(7, \"Bob\", \"bob\"))"});
    });
}

TEST_F(CloudButtons, KeepTheKeyThatALoginHasFilledIn) {
    OneProvider(L"0", false);
    Answer(L"GetDefaultStorageProvider", L"7||");
    Answer(L"Login2", L"1");
    Answer(L"Login2.accountKey", L"cid");
    Answer(L"Login2.accountLabel", L"Cid");
    EXPECT_EQ(CallsAfter(OB_CLOUD_LOGIN, 0, {L"SetDefaultStorageProvider"}),
              Lines{L"SetDefaultStorageProvider(manager, profile(7, \"Cid\", \"cid\"))"});
}

TEST_F(CloudButtons, CompleteNoOtherDefault) {
    TwoProviders();
    Answer(L"IsAuthorized2", L"0");
    Answer(L"Login2", L"1");
    for (const auto* const chosen : {L"7|Ann|ann", L"8||", L"0||"}) {
        Answer(L"GetDefaultStorageProvider", chosen);
        const Lines calls = CallsAfter(OB_CLOUD_LOGIN, 1);
        ASSERT_EQ(calls.size(), 1u) << chosen;
        EXPECT_TRUE(calls[0].starts_with(L"Login2(manager, provider7, ")) << chosen;
    }
}

TEST_F(CloudButtons, LeaveAProfileWithoutAKeyAloneWhenItsProviderHasNoInstance) {
    OneProvider(L"Ann|ann", false);
    Answer(L"GetProviderInstance.7", L"0");
    const OwnLogin login([](wchar_t*, wchar_t*, HWND) { return true; });
    obcontract::ProviderProfile profile{};
    profile.providerId = 7;
    EXPECT_TRUE(obcore::LoginProfile(owner_.Get(), context_, profile));
    EXPECT_STREQ(profile.accountKey, L"");
    EXPECT_TRUE(CallsOf({L"GetAccountProfiles"}).empty());
}

TEST_F(CloudButtons, CompleteNothingAfterALoginThatFails) {
    OneProvider(L"0", false);
    Answer(L"GetDefaultStorageProvider", L"7||");
    const MessageBoxWatcher boxes;
    const Lines calls = CallsAfter(
        OB_CLOUD_LOGIN, 0, {L"Login2", L"SetDefaultStorageProvider", L"EnumProvidersReset"});
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_TRUE(calls[0].starts_with(L"Login2(manager, provider7, \"\", \"\", "));
    EXPECT_EQ(calls[1], L"EnumProvidersReset(manager)");
    EXPECT_EQ(calls[2], L"EnumProvidersReset(manager)");
    EXPECT_EQ(last_, 0);
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(CloudButtons, KeepARowOfNoAccountWhenTheProviderReportsNoneAfterALogin) {
    OneProvider(L"0", false);
    Answer(L"GetDefaultStorageProvider", L"7||");
    Answer(L"Login2", L"1");
    const MessageBoxWatcher boxes; // a row without a profile has no instance either
    for (const auto* const count : {L"0", L"-1", L"3"}) {
        Use([count](const CloudSettings& settings) {
            settings.Select(0);
            Answer(L"provider7.GetAccountProfiles", count);
            FakeModules::ForgetCalls();
            settings.Press(OB_CLOUD_LOGIN);
            EXPECT_EQ(CallsOf({L"SetDefaultStorageProvider"}),
                      Lines{L"SetDefaultStorageProvider(manager, profile(7, \"\", \"\"))"});
            Answer(L"provider7.GetAccountProfiles", L"0");
        });
    }
}

TEST_F(CloudButtons, ShowTheStateAfterALogin) {
    OneProvider(L"Ann|ann", false);
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        Answer(L"Login2", L"1");
        Answer(L"IsAuthorized2", L"1");
        settings.Press(OB_CLOUD_LOGIN);
        EXPECT_EQ(settings.Buttons(), kForLoggedIn);
    });
}

// Log out.

TEST_F(CloudButtons, LogOut) {
    OneProvider(L"Ann|ann;Bob|bob");
    const Lines calls = CallsAfter(OB_CLOUD_LOGOUT, 1);
    EXPECT_EQ(calls, Lines{L"Logout2(manager, provider7, \"bob\", " + Dialog() + L")"});
    EXPECT_EQ(last_, 1);
}

TEST_F(CloudButtons, LogNobodyOutWhoIsntLoggedIn) {
    OneProvider(L"Ann|ann");
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        Answer(L"IsAuthorized2", L"0");
        settings.Press(OB_CLOUD_LOGOUT);
        EXPECT_TRUE(CallsOf(kActions).empty());
        EXPECT_EQ(settings.Buttons(), kForLoggedOut);
    });
}

TEST_F(CloudButtons, SelectTheLastRowWhenALogoutTakesTheirsAway) {
    TwoProviders();
    Answer(L"Providers", L"7");
    Use([](const CloudSettings& settings) {
        settings.Select(1);
        Answer(L"provider7.GetAccountProfiles", L"Ann|ann");
        settings.Press(OB_CLOUD_LOGOUT);
        EXPECT_EQ(settings.Rows(), Lines{L"Shelf (account)"});
        EXPECT_EQ(settings.Selected(), 0);
        EXPECT_EQ(settings.Buttons(), kForLoggedIn);
        Answer(L"Providers", L"");
        settings.Press(OB_CLOUD_LOGOUT);
        EXPECT_TRUE(settings.Rows().empty());
        EXPECT_EQ(settings.Buttons(), std::vector<int>{});
    });
}

// Set as default.

TEST_F(CloudButtons, MakeAnAccountTheDefaultAndShowItOnTop) {
    TwoProviders();
    Answer(L"Providers", L"8,7");
    const Lines calls = CallsAfter(OB_CLOUD_SET_DEFAULT, 2);
    EXPECT_EQ(calls, Lines{L"SetDefaultStorageProvider(manager, profile(7, \"Bob\", \"bob\"))"});
    EXPECT_EQ(last_, 0);
    Use([](const CloudSettings& settings) {
        EXPECT_EQ(settings.Rows(), (Lines{L"Bob (account)", L"Ann (account)", L"Eight"}));
    });
}

TEST_F(CloudButtons, LogInBeforeTheyMakeADefault) {
    OneProvider(L"0", false);
    Answer(L"Login2", L"1");
    Answer(L"Login2.accountKey", L"cid");
    const Lines calls = CallsAfter(OB_CLOUD_SET_DEFAULT, 0);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0], L"Login2(manager, provider7, \"\", \"\", " + Dialog() + L")");
    EXPECT_EQ(calls[1], L"SetDefaultStorageProvider(manager, profile(7, \"\", \"cid\"))");
}

TEST_F(CloudButtons, MakeADefaultWhateverCameOfTheLogin) {
    OneProvider(L"Ann|ann", false);
    Answer(L"SetDefaultStorageProvider", L"0"); // nor does a refusal matter
    const Lines calls = CallsAfter(OB_CLOUD_SET_DEFAULT, 0);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1], L"SetDefaultStorageProvider(manager, profile(7, \"Ann\", \"ann\"))");
    EXPECT_EQ(last_, 0);
}

TEST_F(CloudButtons, MakeADefaultAfterTheAssertionOfAMissingInstance) {
    OneProvider(L"Ann|ann", false);
    const MessageBoxWatcher boxes;
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        Answer(L"GetProviderInstance.7", L"0");
        FakeModules::ForgetCalls();
        settings.Press(OB_CLOUD_SET_DEFAULT);
        EXPECT_EQ(
            CallsOf(kActions),
            (Lines{L"Login2(manager, null, \"ann\", \"Ann\", " + WindowText(settings.dialog) + L")",
                   L"SetDefaultStorageProvider(manager, profile(7, \"Ann\", \"ann\"))"}));
    });
    ExpectAssertions(boxes, {L"cloud_svc_ptr != NULL"}); // the default's row has gone from the list
}

// Add an account.

TEST_F(CloudButtons, AddAnAccountWithAnEmptyProfile) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const CloudSettings& settings) {
        settings.Select(1);
        obcontract::ProviderProfile* const profile = obtest::ProfileOfRowIn(settings.list, 1);
        std::wstring during = L"?";
        const OwnLogin login([&](wchar_t* key, wchar_t* label, HWND owner) {
            EXPECT_EQ(key, profile->accountKey); // the one in the list itself
            EXPECT_EQ(label, profile->accountLabel);
            EXPECT_EQ(owner, settings.dialog);
            during = std::wstring(key) + label;
            Answer(L"provider7.GetAccountProfiles", L"Ann|ann;Bob|bob;Cid|cid");
            return true;
        });
        FakeModules::ForgetCalls();
        settings.Press(OB_CLOUD_ADD_ACCOUNT);
        EXPECT_EQ(during, L"");
        EXPECT_TRUE(CallsOf({L"SetDefaultStorageProvider"}).empty());
        EXPECT_EQ(settings.Rows().size(), 3u);
        EXPECT_EQ(settings.Selected(), 1);
    });
}

TEST_F(CloudButtons, LoseNoAccountWhenNoneIsAdded) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const CloudSettings& settings) {
        settings.Select(1);
        settings.Press(OB_CLOUD_ADD_ACCOUNT);
        EXPECT_EQ(CallsOf({L"Login2"}).size(), 1u);
        EXPECT_EQ(settings.Rows(), (Lines{L"Ann (account)", L"Bob (account)"}));
        EXPECT_STREQ(obtest::ProfileOfRowIn(settings.list, 1)->accountKey, L"bob");
    });
}

// Manage.

TEST_F(CloudButtons, ManageTheSelectedAccount) {
    OneProvider(L"Ann|ann;Bob|bob");
    const Lines calls = CallsAfter(OB_CLOUD_MANAGE, 1);
    EXPECT_EQ(calls, Lines{L"ManageAccount(provider7, " + Dialog() + L", \"bob\")"});
    EXPECT_EQ(last_, 1);
}

TEST_F(CloudButtons, ManageNoAccountWithoutAnInstance) {
    OneProvider(L"Ann|ann;Bob|bob");
    const MessageBoxWatcher boxes;
    Use([](const CloudSettings& settings) {
        settings.Select(1);
        Answer(L"GetProviderInstance.7", L"0");
        settings.Press(OB_CLOUD_MANAGE);
        EXPECT_TRUE(CallsOf(kActions).empty());
        EXPECT_EQ(settings.Selected(), 1);
    });
    ExpectAssertions(boxes, {L"cloud_svc_ptr != NULL"}); // of the row that is selected anew
}

// What no user can press.

TEST_F(CloudButtons, AssertAProfileBeforeTheyActOnARow) {
    OneProvider(L"-1", false);
    const MessageBoxWatcher boxes;
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        for (const int id :
             {OB_CLOUD_LOGIN, OB_CLOUD_LOGOUT, OB_CLOUD_ADD_ACCOUNT, OB_CLOUD_MANAGE}) {
            settings.Command(id);
            EXPECT_EQ(settings.Selected(), 0);
        }
        settings.Command(OB_CLOUD_SET_DEFAULT);
    });
    const std::wstring row = L"cloud_svc_ptr != NULL"; // each time it is selected
    const std::wstring action = L"profile != NULL";
    ExpectAssertions(boxes, {row, action, row, action, row, action, row, action, row, row, row});
    EXPECT_TRUE(CallsOf(kActions).empty());
}

TEST_F(CloudButtons, ActOnNothingWithoutASelectedRow) {
    OneProvider(L"Ann|ann");
    const MessageBoxWatcher boxes;
    Use([&boxes](const CloudSettings& settings) {
        FakeModules::ForgetCalls();
        for (const int id : {OB_CLOUD_LOGIN, OB_CLOUD_ADD_ACCOUNT, OB_CLOUD_MANAGE}) {
            settings.Command(id);
        }
        EXPECT_TRUE(CallsOf({L"EnumProvidersReset"}).empty());
        EXPECT_TRUE(boxes.Seen().empty());
        settings.Command(OB_CLOUD_LOGOUT);
        settings.Command(OB_CLOUD_SET_DEFAULT);
    });
    ExpectAssertions(boxes, {L"profile != NULL", L"cloud_svc_ptr != NULL"});
    EXPECT_TRUE(CallsOf(kActions).empty());
}

TEST_F(CloudButtons, AreTheOnlyControlsThatAct) {
    OneProvider(L"Ann|ann", false);
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        FakeModules::ForgetCalls();
        for (const int id : {1200, 1203, 1204, 1205, 1206, 1207, 1211, 1212, 1213, 1214, 1216, 1217,
                             1218, 1219, 1221}) {
            settings.Command(id);
        }
        EXPECT_TRUE(CallsOf(kActions).empty());
        EXPECT_TRUE(CallsOf({L"EnumProvidersReset"}).empty());
    });
}

TEST_F(CloudButtons, IgnoreOtherNotificationsThanAPress) {
    OneProvider(L"Ann|ann", false);
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        settings.Command(OB_CLOUD_LOGIN, BN_SETFOCUS);
        settings.Command(OB_CLOUD_LOGIN, BN_KILLFOCUS);
        EXPECT_TRUE(CallsOf(kActions).empty());
    });
}

// While the manager works.

TEST_F(CloudButtons, DoNothingMoreWhileOneIsAtWork) {
    OneProvider(L"Ann|ann;Bob|bob", false);
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        obcontract::ProviderProfile* const profile = obtest::ProfileOfRowIn(settings.list, 0);
        int logins = 0;
        const OwnLogin login([&](wchar_t* key, wchar_t*, HWND owner) {
            ++logins;
            SendMessageW(owner, WM_COMMAND, OB_CLOUD_LOGIN, 0);
            SendMessageW(owner, WM_COMMAND, OB_CLOUD_SET_DEFAULT, 0);
            EXPECT_EQ(obtest::ProfileOfRowIn(settings.list, 0), profile);
            return key[0] != 0;
        });
        settings.Press(OB_CLOUD_LOGIN);
        EXPECT_EQ(logins, 1);
        settings.Press(OB_CLOUD_LOGIN);
        EXPECT_EQ(logins, 2) << "it is ready again";
    });
}

TEST_F(CloudButtons, ShowTheAccountsThatChangedDuringALogin) {
    OneProvider(L"Ann|ann;Bob|bob", false);
    Use([](const CloudSettings& settings) {
        settings.Select(1);
        const OwnLogin login([](wchar_t*, wchar_t*, HWND) {
            Answer(L"Providers", L"9");
            Answer(L"provider9.GetShortDescription", L"Nine");
            return true;
        });
        settings.Press(OB_CLOUD_LOGIN);
        EXPECT_EQ(settings.Rows(), Lines{L"Nine"});
        EXPECT_EQ(settings.Selected(), 0);
        EXPECT_EQ(obtest::ProfileOfRowIn(settings.list, 0)->providerId, 9u);
    });
}

TEST_F(CloudButtons, EndWithTheDialogThatIsCancelledDuringALogin) {
    OneProvider(L"Ann|ann", false);
    EXPECT_EQ(Show([](const CloudSettings& settings) {
                  settings.Select(0);
                  const OwnLogin login([](wchar_t*, wchar_t*, HWND owner) {
                      SendMessageW(owner, WM_COMMAND, IDCANCEL, 0);
                      return true;
                  });
                  settings.Press(OB_CLOUD_LOGIN);
                  EXPECT_TRUE(obtest::WaitUntilClosed(settings.dialog));
              }),
              IDCANCEL);
}

TEST_F(CloudButtons, EndWithTheWindowThatGoesDuringALogin) {
    OneProvider(L"Ann|ann", false);
    int logins = 0;
    EXPECT_NE(Show([&](const CloudSettings& settings) {
                  settings.Select(0);
                  const OwnLogin login([&](wchar_t*, wchar_t*, HWND) {
                      ++logins;
                      owner_.Reset(); // and the dialog with it
                      FakeModules::ForgetCalls();
                      PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0); // ends its loop
                      return true;
                  });
                  settings.Press(OB_CLOUD_LOGIN);
                  EXPECT_TRUE(obtest::WaitUntilClosed(settings.dialog));
              }),
              1);
    EXPECT_EQ(logins, 1);
    EXPECT_TRUE(CallsOf({L"EnumProvidersReset"}).empty());
}

// The keyboard.

TEST_F(CloudButtons, LeaveTheKeyboardInTheDialog) {
    OneProvider(L"Ann|ann", false);
    Use([](const CloudSettings& settings) {
        settings.Select(0);
        settings.SetFocusTo(OB_CLOUD_LOGIN);
        settings.Press(OB_CLOUD_LOGIN); // refused: it is enabled as before
        EXPECT_EQ(settings.Focus(), settings.Item(OB_CLOUD_LOGIN));
        Answer(L"IsAuthorized2", L"1");
        settings.Press(OB_CLOUD_LOGIN); // disabled now
        EXPECT_EQ(settings.Focus(), settings.list);
    });
}

} // namespace
