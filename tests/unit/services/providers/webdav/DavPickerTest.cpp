// The picker of files on servers, operated as a user does; the servers are scripts.
#include "services/providers/webdav/DavPicker.h"

#include <gtest/gtest.h>

#include <functional>

#include "services/providers/storage/LinkPasswordDialogIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/providers/webdav/FakeDavAccount.h"
#include "tests/unit/services/providers/webdav/PickerUser.h"

using namespace providers;
using obtest::DialogUiDriver;
using obtest::PickerUser;
using obtest::WaitUntil;

namespace {

using Names = std::vector<std::wstring>;

HANDLE WINAPI NoThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*) {
    return nullptr;
}
INT_PTR WINAPI NoDialog(HINSTANCE, const wchar_t*, HWND, DLGPROC, LPARAM) { return -1; }

LRESULT CALLBACK DestroyedByMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_APP) return DestroyWindow(window);
    return DefWindowProcW(window, message, wParam, lParam);
}

class DavPickerTest : public testing::Test {
protected:
    DavPickerTest() {
        fake_->folders[L""] = std::vector{File(L"10.txt", 1'536), Folder(L"Photos"),
                                          File(L"9.txt", std::nullopt), Folder(L"Empty")};
        fake_->folders[L"Photos"] = std::vector{Folder(L"2026"), File(L"a.jpg")};
        fake_->folders[L"Photos/2026"] = std::vector{File(L"b.jpg")};
        fake_->folders[L"Empty"] = std::vector{File(L".hidden")};
        other_->folders[L""] = std::vector{File(L"other.txt")};
    }
    ~DavPickerTest() override {
        SetEvent(fake_->answers.Get());
        SetEvent(other_->answers.Get());
    }

    // Shows the picker of these accounts until `use` or the user ends it.
    PickResult Show(const std::vector<DavPickAccount>& accounts,
                    const std::function<void(PickerUser)>& use, std::size_t first = 0) {
        DialogUiDriver driver(OB_DAVPICK_LIST, [&](HWND dialog) { use(PickerUser(dialog)); });
        PickResult result = PickFromServers(accounts, first, L"WebDAV", nullptr);
        EXPECT_TRUE(driver.WasUsed());
        return result;
    }
    PickResult Show(const std::function<void(PickerUser)>& use) {
        return Show({AccountOf(fake_)}, use);
    }
    PickResult ShowBoth(const std::function<void(PickerUser)>& use, std::size_t first = 0) {
        return Show({AccountOf(fake_, L"{1}"), AccountOf(other_, L"{2}")}, use, first);
    }
    // The user reads a box, after which the picker is still open.
    std::wstring BoxAfter(const std::function<void(PickerUser)>& use) {
        const obtest::MessageBoxWatcher boxes;
        const PickResult result = Show([&](PickerUser user) {
            use(user);
            EXPECT_TRUE(boxes.WaitFor(1));
            EXPECT_TRUE(user.HasFocus(OB_DAVPICK_LIST));
            EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(user.Dialog()) != FALSE; }));
            user.Press(IDCANCEL);
        });
        EXPECT_TRUE(result.files.empty());
        EXPECT_EQ(result.sentence, L"");
        EXPECT_EQ(boxes.Seen().size(), 1U);
        return boxes.Seen().empty() ? L"" : boxes.Seen()[0].text;
    }

    const Names root_{L"Empty", L"Photos", L"9.txt", L"10.txt"};
    const std::shared_ptr<FakeDavAccount> fake_ = std::make_shared<FakeDavAccount>();
    const std::shared_ptr<FakeDavAccount> other_ = std::make_shared<FakeDavAccount>();
};

TEST_F(DavPickerTest, ListsFoldersFirstWithTheSizesOfFiles) {
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        EXPECT_EQ(user.Cell(1, 1), L""); // a folder
        EXPECT_EQ(user.Cell(2, 1), L""); // the server doesn't know it
        EXPECT_EQ(user.Cell(3, 1), L"1.50 KB");
        EXPECT_EQ(user.Path(), L"Account {key}");
        EXPECT_EQ(user.Message(), L"");
        EXPECT_FALSE(user.IsEnabled(OB_DAVPICK_UP));
        EXPECT_FALSE(user.IsEnabled(IDOK));
        EXPECT_TRUE(user.HasFocus(OB_DAVPICK_LIST));
        EXPECT_EQ(user.Focused(), 0);
        EXPECT_FALSE(user.IsSelected(0));
        user.Press(IDCANCEL);
    });
    EXPECT_TRUE(result.files.empty());
    EXPECT_EQ(result.sentence, L"");
    EXPECT_EQ(fake_->shares, 0);
}

TEST_F(DavPickerTest, OpensFoldersByDoubleClickAndEnter) {
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.DoubleClick(1);
        EXPECT_TRUE(user.Sees({L"2026", L"a.jpg"}));
        EXPECT_EQ(user.Path(), L"Account {key} / Photos");
        EXPECT_TRUE(user.IsEnabled(OB_DAVPICK_UP));
        user.Select(0);
        user.PressKey(VK_RETURN);
        EXPECT_TRUE(user.Sees({L"b.jpg"}));
        EXPECT_EQ(user.Path(), L"Account {key} / Photos / 2026");
        user.Press(IDCANCEL);
    });
    EXPECT_EQ(fake_->shares, 0);
}

TEST_F(DavPickerTest, GoesUpByBackspaceAndButtonToTheFolderItLeft) {
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.DoubleClick(1);
        EXPECT_TRUE(user.Sees({L"2026", L"a.jpg"}));
        user.DoubleClick(0);
        EXPECT_TRUE(user.Sees({L"b.jpg"}));
        user.PressKey(VK_BACK);
        EXPECT_TRUE(user.Sees({L"2026", L"a.jpg"}));
        EXPECT_TRUE(WaitUntil([&] { return user.IsSelected(0); }));
        obtest::Click(user.Control(OB_DAVPICK_UP));
        EXPECT_TRUE(user.Sees(root_));
        EXPECT_TRUE(WaitUntil([&] { return user.IsSelected(1) && user.Focused() == 1; }));
        EXPECT_FALSE(user.IsEnabled(OB_DAVPICK_UP));
        const int lists = fake_->lists;
        user.PressKey(VK_BACK); // nothing is above
        user.Press(OB_DAVPICK_UP);
        SendMessageW(user.Dialog(), WM_NULL, 0, 0);
        EXPECT_EQ(fake_->lists, lists);
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, ReadsAgainByF5AndButtonAndKeepsTheRow) {
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        user.PressKey(VK_F5);
        EXPECT_TRUE(WaitUntil([&] { return fake_->lists == 2; }));
        EXPECT_TRUE(user.Sees(root_));
        EXPECT_TRUE(WaitUntil([&] { return user.Focused() == 2; }));
        SetForegroundWindow(user.Dialog());
        SendMessageW(user.Dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(user.Control(IDCANCEL)),
                     TRUE);
        EXPECT_TRUE(user.HasFocus(IDCANCEL));
        user.PressKey(VK_F5);
        EXPECT_TRUE(WaitUntil([&] { return fake_->lists == 3; }));
        obtest::Click(user.Control(OB_DAVPICK_REFRESH));
        EXPECT_TRUE(WaitUntil([&] { return fake_->lists == 4; }));
        EXPECT_TRUE(user.Sees(root_));
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, SelectsAllFilesByCtrlA) {
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(1); // a folder
        user.PressWithCtrl('A');
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"2 selected"; })) << user.Status();
        for (const int row : {0, 1, 2, 3}) EXPECT_EQ(user.IsSelected(row), row >= 2) << row;
        EXPECT_EQ(user.Focused(), 1);
        user.Press(IDOK);
    });
    EXPECT_EQ(result.files.size(), 2U);
}

TEST_F(DavPickerTest, SelectsNothingByCtrlAWhereThereAreOnlyFolders) {
    fake_->folders[L""] = std::vector{Folder(L"Photos"), Folder(L"Empty")};
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees({L"Empty", L"Photos"}));
        user.Select(0);
        user.PressWithCtrl('A');
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L""; }));
        EXPECT_FALSE(user.IsEnabled(IDOK));
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, FindsRowsByTyping) {
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Type(L'p');
        EXPECT_TRUE(WaitUntil([&] { return user.Focused() == 1; }));
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, ReportsAnEmptyFolderAlsoWhenAllIsHidden) {
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.DoubleClick(0);
        EXPECT_TRUE(user.Reads(L"This folder is empty."));
        EXPECT_EQ(user.Count(), 0);
        EXPECT_FALSE(user.IsEnabled(IDOK));
        user.PressKey(VK_RETURN); // nothing is selected
        user.PressKey(VK_BACK);
        EXPECT_TRUE(user.Sees(root_));
        EXPECT_EQ(user.Message(), L"");
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, NamesAccountsOnlyWhenThereAreSeveral) {
    RECT alone{};
    Show([&](PickerUser user) {
        EXPECT_FALSE(IsWindowVisible(user.Control(OB_DAVPICK_ACCOUNT)));
        EXPECT_FALSE(IsWindowVisible(user.Control(OB_DAVPICK_ACCOUNT_LABEL)));
        GetClientRect(user.List(), &alone);
        user.Press(IDCANCEL);
    });
    ShowBoth(
        [&](PickerUser user) {
            EXPECT_TRUE(IsWindowVisible(user.Control(OB_DAVPICK_ACCOUNT)));
            EXPECT_EQ(obtest::TextOf(user.Control(OB_DAVPICK_ACCOUNT)), L"Account {2}");
            EXPECT_TRUE(user.Sees({L"other.txt"}));
            RECT several{};
            GetClientRect(user.List(), &several);
            EXPECT_LT(several.bottom, alone.bottom);
            user.Press(IDCANCEL);
        },
        1);
    EXPECT_EQ(fake_->lists, 1); // by the first picker
}

TEST_F(DavPickerTest, ExplainsADeadAccountAndLeavesTheOthersUsable) {
    fake_->folders[L""] = DavErrorOf(HttpError{HttpFault::NoConnection});
    const PickResult result = ShowBoth([&](PickerUser user) {
        EXPECT_TRUE(user.Reads(L"The server \u201Cfiles.example.com\u201D can't be reached. Please "
                               L"check your connection to the network and try again."));
        user.ChooseAccount(1);
        EXPECT_TRUE(user.Sees({L"other.txt"}));
        EXPECT_EQ(user.Message(), L"");
        EXPECT_EQ(user.Path(), L"Account {2}");
        user.Select(0);
        user.Press(IDOK);
    });
    ASSERT_EQ(result.files.size(), 1U);
    EXPECT_EQ(result.files[0].account.key, L"{2}");
    EXPECT_EQ(result.files[0].link, L"https://l/other.txt");
}

TEST_F(DavPickerTest, AsksForAPasswordThatNoLongerCounts) {
    fake_->folders[L""] = DavError{DavFault::WrongLogin, 401, {}, std::nullopt};
    DavPickAccount account = AccountOf(fake_);
    std::atomic<int> logins = 0;
    account.logIn = [&](HWND owner) { // nothing is read meanwhile
        EXPECT_NE(owner, nullptr);
        ++logins;
        fake_->folders[L""] = std::vector{File(L"a.txt")};
        return true;
    };
    const PickResult result = Show({account}, [&](PickerUser user) {
        EXPECT_TRUE(user.Sees({L"a.txt"}));
        EXPECT_EQ(user.Message(), L"");
        user.Select(0);
        user.Press(IDOK);
    });
    ASSERT_EQ(result.files.size(), 1U);
    EXPECT_EQ(result.files[0].link, L"https://l/a.txt");
    EXPECT_EQ(logins, 1);
}

// The password was changed on the server after the folder was read.
TEST_F(DavPickerTest, AsksForAPasswordWhileItMakesLinksAndGoesOn) {
    fake_->links[L"10.txt"].needsLogin = true;
    DavPickAccount account = AccountOf(fake_);
    std::atomic<int> logins = 0;
    account.logIn = [&](HWND owner) { // nothing is linked meanwhile
        EXPECT_NE(owner, nullptr);
        ++logins;
        fake_->links.clear();
        return true;
    };
    const obtest::MessageBoxWatcher boxes;
    const PickResult result = Show({account}, [&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        user.Select(3);
        user.Press(IDOK);
    });
    ASSERT_EQ(result.files.size(), 2U);
    EXPECT_EQ(result.files[1].link, L"https://l/10.txt");
    EXPECT_EQ(logins, 1);
    EXPECT_EQ(fake_->shares, 3) << "the first link was made before the login";
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(DavPickerTest, ExplainsALinkThatFailsAfterTheLoginOrWithoutOne) {
    fake_->links[L"9.txt"].needsLogin = true;
    fake_->links[L"9.txt"].sentence = L"Please log in again.";
    DavPickAccount account = AccountOf(fake_);
    std::atomic<int> logins = 0;
    account.logIn = [&](HWND) { return ++logins == 1; };
    const obtest::MessageBoxWatcher boxes;
    const PickResult result = Show({account}, [&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        for (const unsigned seen : {1U, 2U}) {
            user.Press(IDOK);
            EXPECT_TRUE(boxes.WaitFor(seen));
            EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(user.Dialog()) != FALSE; }));
        }
        user.Press(IDCANCEL);
    });
    EXPECT_TRUE(result.files.empty());
    EXPECT_EQ(logins, 2) << "one for each time that the user asks for the link";
    EXPECT_EQ(fake_->shares, 3);
    for (const auto& box : boxes.Seen()) {
        EXPECT_EQ(box.text, L"\u201C9.txt\u201D has no link yet, and nothing was put into the "
                            L"mail. Please log in again.");
    }
}

TEST_F(DavPickerTest, AsksForThePasswordOfEachAccount) {
    const DavError wrong{DavFault::WrongLogin, 401, {}, std::nullopt};
    fake_->folders[L""] = wrong;
    other_->folders[L""] = wrong;
    std::vector accounts{AccountOf(fake_, L"{1}"), AccountOf(other_, L"{2}")};
    std::atomic<int> logins = 0;
    accounts[0].logIn = [&](HWND) { // nothing is read meanwhile
        ++logins;
        fake_->silent.insert(L"");
        return true;
    };
    accounts[1].logIn = [&](HWND) {
        ++logins;
        other_->folders[L""] = std::vector{File(L"other.txt")};
        return true;
    };
    Show(accounts, [&](PickerUser user) {
        EXPECT_TRUE(WaitUntil([&] { return fake_->lists == 2; }));
        user.ChooseAccount(1); // while the first one is silent
        EXPECT_TRUE(user.Sees({L"other.txt"}));
        EXPECT_EQ(logins, 2);
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, AsksForAPasswordOnceUntilTheUserReadsAgain) {
    fake_->folders[L""] = DavError{DavFault::WrongLogin, 401, {}, std::nullopt};
    DavPickAccount account = AccountOf(fake_);
    std::atomic<int> logins = 0;
    account.logIn = [&](HWND) { return ++logins != 2; };
    Show({account}, [&](PickerUser user) {
        const auto explains = [&](int lists) {
            return WaitUntil([&] {
                return fake_->lists == lists &&
                       user.Message().starts_with(L"The server \u201Cfiles.example.com\u201D "
                                                  L"doesn't accept the user name");
            });
        };
        EXPECT_TRUE(explains(2)); // after the new password, too
        EXPECT_EQ(logins, 1);
        user.Press(OB_DAVPICK_REFRESH);
        EXPECT_TRUE(explains(3)); // without a new one
        EXPECT_EQ(logins, 2);
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, ExplainsAFolderThatIsGoneAndOneThatCannotBeRead) {
    fake_->folders.erase(L"Photos");
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.DoubleClick(1);
        EXPECT_TRUE(user.Reads(
            L"The folder \u201CPhotos\u201D is no longer there. Please go up to another folder."));
        user.PressKey(VK_BACK);
        EXPECT_TRUE(user.Sees(root_));
        user.Press(IDCANCEL);
    });
    fake_->throws = true;
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Reads(L"The folder can't be read. Please try again."));
        user.Press(IDCANCEL);
    });
    fake_->throws = false;
    fake_->folders.erase(L"");
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Reads(L"The folder of your account isn't on the server "
                               L"\u201Cfiles.example.com\u201D. Please check the address of the "
                               L"account."));
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, ExplainsAListThatIsTooLongAndOneThatTheSystemHasGivenUp) {
    fake_->folders[L""] = DavErrorOf(HttpError{HttpFault::ReplyTooLong});
    fake_->folders[L"Photos"] = DavErrorOf(HttpError{HttpFault::Cancelled});
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Reads(L"The server \u201Cfiles.example.com\u201D sends more than can be "
                               L"shown. Please use a folder with fewer files."));
        user.Press(IDCANCEL);
    });
    fake_->folders[L""] = fake_->folders[L"Photos"];
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Reads(L"The folder can't be read. Please try again."));
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, ExplainsThatThereIsNoThread) {
    obtest::ImportPatch patch("kernel32.dll", "CreateThread", &NoThread);
    ASSERT_TRUE(patch.Ok());
    HWND found = nullptr;
    // A driver would be a thread: a timer of this one looks instead.
    static std::wstring message;
    message.clear();
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) {
        const HWND dialog = obtest::FindTopWindow(
            [](HWND window) { return GetDlgItem(window, OB_DAVPICK_LIST) != nullptr; });
        if (!dialog) return;
        const PickerUser user(dialog);
        message = user.Message();
        if (!message.empty()) EndDialog(dialog, IDCANCEL);
    });
    PickFromServers(std::vector{AccountOf(fake_)}, 0, L"WebDAV", found);
    KillTimer(nullptr, timer);
    EXPECT_EQ(message, L"The folder can't be read. Please try again.");
}

TEST_F(DavPickerTest, ShowsThatItReadsAndCanBeLeftMeanwhile) {
    fake_->silent.insert(L"");
    fake_->heedsCancel = false; // a server that keeps the thread for ever
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(user.Reads(L"Reading the folder"));
        EXPECT_FALSE(user.IsEnabled(IDOK));
        user.PressKey(VK_RETURN); // nothing can be taken yet
        user.Press(IDCANCEL);
    });
    EXPECT_TRUE(result.files.empty());
    EXPECT_EQ(fake_->endedLists, 0);
    SetEvent(fake_->answers.Get());
    EXPECT_TRUE(WaitUntil([&] { return fake_->endedLists == 1; }));
    EXPECT_EQ(fake_->cancelledLists, 1);
}

TEST_F(DavPickerTest, DropsAListingThatTheUserHasLeft) {
    fake_->silent.insert(L"");
    fake_->heedsCancel = false;
    ShowBoth([&](PickerUser user) {
        EXPECT_TRUE(user.Reads(L"Reading the folder"));
        user.ChooseAccount(1);
        EXPECT_TRUE(user.Sees({L"other.txt"}));
        SetEvent(fake_->answers.Get());
        EXPECT_TRUE(WaitUntil([&] { return fake_->endedLists == 1; }));
        EXPECT_EQ(fake_->cancelledLists, 1);
        user.PressKey(VK_F5); // whatever was posted before has been dispatched after that
        EXPECT_TRUE(WaitUntil([&] { return other_->lists == 2; }));
        EXPECT_TRUE(user.Sees({L"other.txt"}));
        EXPECT_EQ(user.Path(), L"Account {2}");
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, ShowsTenThousandFiles) {
    std::vector<DavItem> items;
    for (int index = 10'000; index > 0; --index) items.push_back(File(std::to_wstring(index)));
    fake_->folders[L""] = items;
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(WaitUntil([&] { return user.Count() == 10'000; }));
        EXPECT_EQ(user.Cell(0), L"1");
        EXPECT_EQ(user.Cell(9'999), L"10000");
        user.PressWithCtrl('A');
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"10000 selected"; }));
        user.Select(-1, false);
        user.Select(9'999);
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"1 selected"; }));
        user.Press(IDOK);
    });
    ASSERT_EQ(result.files.size(), 1U);
    EXPECT_EQ(result.files[0].name, L"10000");
}

TEST_F(DavPickerTest, GivesALinkForEachSelectedFile) {
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"1 selected"; }));
        EXPECT_TRUE(user.IsEnabled(IDOK));
        user.Select(3);
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"2 selected"; }));
        user.Press(IDOK);
    });
    ASSERT_EQ(result.files.size(), 2U);
    EXPECT_EQ(result.files[0].name, L"9.txt");
    EXPECT_EQ(result.files[0].link, L"https://l/9.txt");
    EXPECT_EQ(result.files[1].name, L"10.txt");
    EXPECT_EQ(result.files[1].account.label, L"Account {key}");
    EXPECT_EQ(result.sentence, L"");
    EXPECT_EQ(fake_->shares, 2);
}

TEST_F(DavPickerTest, LinksAFileByDoubleClickAndEnter) {
    for (const bool isByKey : {false, true}) {
        const PickResult result = Show([&](PickerUser user) {
            EXPECT_TRUE(user.Sees(root_));
            if (isByKey) {
                user.Select(3);
                user.PressKey(VK_RETURN);
            } else {
                user.DoubleClick(3);
            }
        });
        ASSERT_EQ(result.files.size(), 1U);
        EXPECT_EQ(result.files[0].name, L"10.txt");
    }
}

TEST_F(DavPickerTest, AsksForFilesAlone) {
    EXPECT_EQ(BoxAfter([&](PickerUser user) {
                  EXPECT_TRUE(user.Sees(root_));
                  user.Select(1);
                  user.Select(2);
                  user.Press(IDOK);
              }),
              L"\u201CPhotos\u201D is a folder, and only files can be linked. Please select files "
              L"alone, or open the folder.");
    EXPECT_EQ(fake_->shares, 0);
}

TEST_F(DavPickerTest, ExplainsALinkThatFailsAndHandsNothingOut) {
    fake_->links[L"10.txt"].sentence = L"The server is too busy.";
    EXPECT_EQ(BoxAfter([&](PickerUser user) {
                  EXPECT_TRUE(user.Sees(root_));
                  user.Select(2);
                  user.Select(3);
                  user.Press(IDOK);
              }),
              L"\u201C10.txt\u201D has no link yet, and nothing was put into the mail. The server "
              L"is too busy.");
    EXPECT_EQ(fake_->shares, 2);
}

TEST_F(DavPickerTest, EndsTheLinksOfASelectionThatIsGivenUp) {
    fake_->links[L"10.txt"].sentence = L"No.";
    BoxAfter([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        user.Select(3);
        user.Press(IDOK);
    });
    EXPECT_TRUE(WaitUntil([&] { return fake_->EndedLinks() == Names{L"https://l/9.txt"}; }));
}

TEST_F(DavPickerTest, RefusesLinksThatDoNotFitTheMail) {
    fake_->links[L"9.txt"] = Link(L"https://l/" + std::wstring(2'000, L'x'));
    EXPECT_EQ(
        BoxAfter([&](PickerUser user) {
            EXPECT_TRUE(user.Sees(root_));
            user.Select(2);
            user.Press(IDOK);
        }),
        L"The link to \u201C9.txt\u201D is too long for the mail. Please leave the file out.");
}

TEST_F(DavPickerTest, CanBeCancelledWhileItMakesLinks) {
    fake_->isShareSilent = true;
    fake_->heedsCancel = false;
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        user.Select(3);
        user.Press(IDOK);
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"Making link 1 of 2"; }));
        EXPECT_TRUE(user.HasFocus(IDCANCEL));
        for (const int id :
             {OB_DAVPICK_PATH, OB_DAVPICK_UP, OB_DAVPICK_REFRESH, OB_DAVPICK_LIST, int{IDOK}}) {
            EXPECT_FALSE(user.IsEnabled(id)) << id;
        }
        EXPECT_TRUE(WaitUntil([&] { return fake_->shares == 1; }));
        user.Press(IDCANCEL); // ends the links
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"2 selected"; }));
        EXPECT_TRUE(user.HasFocus(OB_DAVPICK_LIST));
        EXPECT_TRUE(user.IsEnabled(IDOK));
        user.Press(IDCANCEL); // ends the picker
    });
    EXPECT_TRUE(result.files.empty());
    EXPECT_EQ(result.sentence, L"");
    SetEvent(fake_->answers.Get());
    EXPECT_TRUE(WaitUntil([&] { return fake_->endedShares == 1; }));
    EXPECT_EQ(fake_->shares, 1);
    // The link that came too late.
    EXPECT_TRUE(WaitUntil([&] { return fake_->EndedLinks() == Names{L"https://l/9.txt"}; }));
}

// The server has made it: a second one would have another password.
TEST_F(DavPickerTest, UsesALinkThatComesAfterACancel) {
    fake_->isShareSilent = true;
    fake_->heedsCancel = false;
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        user.Press(IDOK);
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"Making the link"; }));
        EXPECT_TRUE(WaitUntil([&] { return fake_->shares == 1; }));
        user.Press(IDCANCEL);
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"1 selected"; }));
        user.Press(IDOK);
        EXPECT_TRUE(WaitUntil([&] { return user.Status() == L"Making the link"; }));
        SetEvent(fake_->answers.Get());
    });
    EXPECT_EQ(result.files.size(), 1U);
    EXPECT_EQ(fake_->shares, 1);
}

TEST_F(DavPickerTest, ShowsThePasswordOfALinkOnce) {
    fake_->links[L"9.txt"] = Link(L"https://l/1", L"Tr4ve-Moss-Quill");
    std::wstring shown;
    DialogUiDriver reader(OB_LINK_PASSWORD_TEXT, [&](HWND dialog) {
        shown = obtest::ItemText(dialog, OB_LINK_PASSWORD_TEXT);
        obtest::PressCommand(dialog, IDOK);
    });
    const PickResult result = Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        user.Select(2);
        user.Select(3);
        user.Press(IDOK);
        EXPECT_TRUE(obtest::WaitUntilClosed(user.Dialog()));
    });
    EXPECT_EQ(shown, L"Tr4ve-Moss-Quill");
    ASSERT_EQ(result.files.size(), 2U);
    EXPECT_EQ(result.files[0].link, L"https://l/1");
}

TEST_F(DavPickerTest, ShowsNoPasswordOfLinksThatAreNotHandedOut) {
    fake_->links[L"9.txt"] = Link(L"https://l/1", L"Tr4ve-Moss-Quill");
    fake_->links[L"10.txt"] = {};
    DialogUiDriver reader(OB_LINK_PASSWORD_TEXT,
                          [&](HWND dialog) { obtest::PressCommand(dialog, IDOK); });
    EXPECT_EQ(BoxAfter([&](PickerUser user) {
                  EXPECT_TRUE(user.Sees(root_));
                  user.Select(2);
                  user.Select(3);
                  user.Press(IDOK);
              }),
              L"\u201C10.txt\u201D has no link yet, and nothing was put into the mail. The link "
              L"can't be made.");
    EXPECT_FALSE(reader.WasUsed());
}

TEST_F(DavPickerTest, GivesTheListTheRoomOfALargerWindow) {
    Show([&](PickerUser user) {
        EXPECT_TRUE(user.Sees(root_));
        RECT before{}, list{}, ok{}, window{};
        GetWindowRect(user.Dialog(), &window);
        GetClientRect(user.List(), &before);
        const auto resize = [&](int width, int height) {
            SetWindowPos(user.Dialog(), nullptr, 0, 0, window.right - window.left + width,
                         window.bottom - window.top + height, SWP_NOMOVE | SWP_NOZORDER);
            GetClientRect(user.List(), &list);
            return SIZE{list.right - before.right, list.bottom - before.bottom};
        };
        SIZE grown = resize(120, 80);
        EXPECT_EQ(grown.cx, 120);
        EXPECT_EQ(grown.cy, 80);
        GetWindowRect(user.Control(IDCANCEL), &ok);
        RECT area{};
        GetClientRect(user.Dialog(), &area);
        MapWindowPoints(nullptr, user.Dialog(), reinterpret_cast<POINT*>(&ok), 2);
        EXPECT_LT(area.right - ok.right, 40);
        EXPECT_LT(area.bottom - ok.bottom, 40);
        EXPECT_FALSE(SendMessageW(user.List(), LVM_GETCOLUMNWIDTH, 0, 0) < 120);
        grown = resize(-200, -200); // no smaller than it was
        EXPECT_EQ(grown.cx, 0);
        EXPECT_EQ(grown.cy, 0);
        user.Press(IDCANCEL);
    });
}

// The label of a control comes right before the control, so that a screen reader takes it as its
// name; the message is in front of the list.
TEST_F(DavPickerTest, EachControlFollowsItsLabel) {
    ShowBoth([](PickerUser user) {
        for (const auto& [control, label] :
             {std::pair{OB_DAVPICK_ACCOUNT, OB_DAVPICK_ACCOUNT_LABEL},
              std::pair{OB_DAVPICK_PATH, OB_DAVPICK_PATH_LABEL},
              std::pair{OB_DAVPICK_LIST, OB_DAVPICK_LIST_LABEL},
              std::pair{OB_DAVPICK_LIST_LABEL, OB_DAVPICK_MESSAGE}}) {
            EXPECT_EQ(GetWindow(user.Control(control), GW_HWNDPREV), user.Control(label));
        }
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, ReachesEachControlByTab) {
    ShowBoth([](PickerUser user) {
        EXPECT_TRUE(user.HasFocus(OB_DAVPICK_LIST));
        for (const int id : {int{IDCANCEL}, OB_DAVPICK_ACCOUNT, OB_DAVPICK_PATH, OB_DAVPICK_REFRESH,
                             OB_DAVPICK_LIST}) {
            user.PressKey(VK_TAB); // what is disabled is passed over
            EXPECT_TRUE(user.HasFocus(id)) << id;
        }
        user.Press(IDCANCEL);
    });
}

TEST_F(DavPickerTest, EndsWithItsOwner) {
    WNDCLASSW ownerClass{};
    ownerClass.lpfnWndProc = &DestroyedByMessage;
    ownerClass.hInstance = GetModuleHandleW(nullptr);
    ownerClass.lpszClassName = L"PickerOwner";
    RegisterClassW(&ownerClass);
    const HWND owner = CreateWindowW(L"PickerOwner", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                                     ownerClass.hInstance, nullptr);
    DialogUiDriver driver(OB_DAVPICK_LIST, [&](HWND) { PostMessageW(owner, WM_APP, 0, 0); });
    const PickResult result = PickFromServers(std::vector{AccountOf(fake_)}, 0, L"WebDAV", owner);
    EXPECT_TRUE(result.files.empty());
    EXPECT_EQ(result.sentence, L"");
    EXPECT_FALSE(IsWindow(owner));
}

TEST_F(DavPickerTest, FailsWithASentenceOnlyWhenItCannotBeShown) {
    obtest::ImportPatch patch("user32.dll", "DialogBoxParamW", &NoDialog);
    ASSERT_TRUE(patch.Ok());
    const std::wstring sentence = L"Your files in the cloud can't be shown. Please try again.";
    EXPECT_EQ(PickFromServers(std::vector{AccountOf(fake_)}, 0, L"WebDAV", nullptr).sentence,
              sentence);
    EXPECT_EQ(PickFromServers({}, 0, L"WebDAV", nullptr).sentence, sentence);
}

} // namespace
