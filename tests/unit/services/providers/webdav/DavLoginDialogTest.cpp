// The login to a WebDAV server, operated as a user does.
#include "services/providers/webdav/DavLoginDialog.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/webdav/AccountPassword.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;
using obtest::ItemText;
using obtest::WaitUntil;

namespace {

// What the thread of the check has got, and what it returns.
struct Checks {
    std::atomic<int> count = 0;
    std::atomic<bool> isCancelled = false;
    std::atomic<HANDLE> waitsFor = nullptr; // besides the cancel; null: for nothing
    HttpUrl typed;
    std::wstring user;
    std::string password;
    DavCheckResult result{L"", ParseHttpUrl("https://cloud.example.org/dav/").value_or(HttpUrl{})};
};

class DavLoginDialog : public testing::Test {
protected:
    bool Show(const std::function<void(HWND)>& use) {
        login_.check = [checks = checks_](const HttpUrl& typed, const std::wstring& user,
                                          const ObLib::Secret& password, HANDLE cancelled) {
            checks->typed = typed;
            checks->user = user;
            checks->password = password.Text();
            ++checks->count;
            if (checks->waitsFor) {
                const HANDLE events[] = {cancelled, checks->waitsFor};
                checks->isCancelled =
                    WaitForMultipleObjects(2, events, FALSE, obtest::kUiLimit) == WAIT_OBJECT_0;
            }
            return checks->result;
        };
        DialogUiDriver user(OB_DAV_ADDRESS, use);
        return ShowDavLogin(nullptr, login_);
    }
    static void Enter(HWND dialog, const std::wstring& address, const std::wstring& user,
                      const std::wstring& password) {
        SetDlgItemTextW(dialog, OB_DAV_ADDRESS, address.c_str());
        SetDlgItemTextW(dialog, OB_DAV_USER, user.c_str());
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, password.c_str());
    }
    static int FocusIn(HWND dialog) {
        GUITHREADINFO info{sizeof info};
        GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
        return GetDlgCtrlID(info.hwndFocus);
    }
    // The user presses OK and reads why that isn't possible; then `field` has the focus.
    void ExpectRefusal(const std::wstring& address, const std::wstring& user,
                       const std::wstring& password, int field, const std::wstring& sentence) {
        EXPECT_FALSE(Show([&](HWND dialog) {
            Enter(dialog, address, user, password);
            obtest::PressCommand(dialog, IDOK);
            EXPECT_TRUE(WaitUntil([&] { return ItemText(dialog, OB_DAV_LOGIN_STATE) == sentence; }))
                << ItemText(dialog, OB_DAV_LOGIN_STATE);
            EXPECT_TRUE(WaitUntil([&] { return FocusIn(dialog) == field; })) << FocusIn(dialog);
            obtest::PressCommand(dialog, IDCANCEL);
        }));
    }

    std::shared_ptr<Checks> checks_ = std::make_shared<Checks>();
    DavLogin login_;
};

TEST_F(DavLoginDialog, LogsInWithWhatTheServerAccepts) {
    EXPECT_TRUE(Show([](HWND dialog) {
        EXPECT_EQ(FocusIn(dialog), OB_DAV_ADDRESS);
        EXPECT_EQ(ItemText(dialog, OB_DAV_LOGIN_STATE), L"");
        Enter(dialog, L" cloud.example.org ", L" \u00E4nn ", L" p\u00E4ss:word ");
        obtest::PressCommand(dialog, IDOK);
    }));
    EXPECT_EQ(HttpUrlText(checks_->typed), "https://cloud.example.org/");
    EXPECT_EQ(checks_->user, L"\u00E4nn");
    EXPECT_EQ(checks_->password, " p\xC3\xA4ss:word ");
    EXPECT_EQ(HttpUrlText(login_.root), "https://cloud.example.org/dav/");
    EXPECT_EQ(login_.user, L"\u00E4nn");
    EXPECT_STREQ(login_.password.Text(), " p\xC3\xA4ss:word ");
}

// The label of a field comes right before the field, so that a screen reader takes it as its name.
TEST_F(DavLoginDialog, EachFieldFollowsItsLabelInTheOrderOfTheTabKey) {
    Show([](HWND dialog) {
        for (const auto& [field, label] : {std::pair{OB_DAV_ADDRESS, OB_DAV_ADDRESS_LABEL},
                                           std::pair{OB_DAV_USER, OB_DAV_USER_LABEL},
                                           std::pair{OB_DAV_PASSWORD, OB_DAV_PASSWORD_LABEL}}) {
            EXPECT_EQ(GetWindow(GetDlgItem(dialog, field), GW_HWNDPREV), GetDlgItem(dialog, label));
        }
        HWND control = GetDlgItem(dialog, OB_DAV_ADDRESS);
        for (const int id : {OB_DAV_USER, OB_DAV_PASSWORD, static_cast<int>(IDOK),
                             static_cast<int>(IDCANCEL), OB_DAV_ADDRESS}) {
            control = GetNextDlgTabItem(dialog, control, FALSE);
            EXPECT_EQ(GetDlgCtrlID(control), id);
        }
        EXPECT_NE(SendDlgItemMessageW(dialog, OB_DAV_PASSWORD, EM_GETPASSWORDCHAR, 0, 0), 0);
        obtest::PressCommand(dialog, IDCANCEL);
    });
}

TEST_F(DavLoginDialog, ExplainsWhatCannotBeTried) {
    constexpr wchar_t kAddress[] =
        L"Please enter the address of the server, such as https://cloud.example.com.";
    ExpectRefusal(L" ", L"ann", L"x", OB_DAV_ADDRESS, kAddress);
    ExpectRefusal(L"ftp://h", L"ann", L"x", OB_DAV_ADDRESS, kAddress);
    constexpr wchar_t kUser[] =
        L"Please enter your user name on the server. It can't contain a colon.";
    ExpectRefusal(L"h", L" ", L"x", OB_DAV_USER, kUser);
    ExpectRefusal(L"h", L"a:b", L"x", OB_DAV_USER, kUser);
    ExpectRefusal(L"h", L"ann", L"", OB_DAV_PASSWORD, L"Please enter your password on the server.");
    ExpectRefusal(
        L"h", L"ann", std::wstring(1500, L'\u20AC'), OB_DAV_PASSWORD,
        L"The password is too long: this computer can keep 2560 bytes. Please ask whoever "
        L"manages the server for a shorter one.");
    EXPECT_EQ(checks_->count, 0);
}

// The user reads and changes what has to be another one.
TEST_F(DavLoginDialog, HasTheFocusOnTheFieldThatTheSentenceIsAbout) {
    checks_->result.sentence = L"There is no server \u201Ch\u201D.";
    checks_->result.isAboutAddress = true;
    ExpectRefusal(L"h", L"ann", L"x", OB_DAV_ADDRESS, checks_->result.sentence);
    login_.isKnown = true; // its address can't be changed
    ExpectRefusal(L"h", L"ann", L"x", OB_DAV_PASSWORD, checks_->result.sentence);
}

INT_PTR WINAPI NoDialog(HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM) { return -1; }

TEST_F(DavLoginDialog, IsExplainedWhenItCannotBeShown) {
    const obtest::ImportPatch patch("user32.dll", "DialogBoxParamW", &NoDialog);
    ASSERT_TRUE(patch.Ok());
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(ShowDavLogin(nullptr, login_));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].text, L"The server can't be asked, because this computer is short of "
                                    L"memory. Please try again.");
}

TEST_F(DavLoginDialog, ShowsWhyTheServerCannotBeUsedAndStaysOpen) {
    checks_->result.sentence = L"The server \u201Ch\u201D can't be reached.";
    EXPECT_FALSE(Show([&](HWND dialog) {
        Enter(dialog, L"h", L"ann", L"x");
        for (int tries = 1; tries <= 2; ++tries) {
            obtest::PressCommand(dialog, IDOK);
            EXPECT_TRUE(WaitUntil([&] {
                return checks_->count == tries &&
                       ItemText(dialog, OB_DAV_LOGIN_STATE) == checks_->result.sentence;
            }));
            EXPECT_TRUE(WaitUntil([&] { return FocusIn(dialog) == OB_DAV_PASSWORD; }));
        }
        obtest::PressCommand(dialog, IDCANCEL);
    }));
    EXPECT_TRUE(login_.password.Empty());
}

TEST_F(DavLoginDialog, CanBeLeftWhileTheServerIsSilent) {
    const ObLib::UniqueKernelHandle answers(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    checks_->waitsFor = answers.Get();
    EXPECT_FALSE(Show([&](HWND dialog) {
        Enter(dialog, L"h", L"ann", L"x");
        obtest::PressCommand(dialog, IDOK);
        EXPECT_TRUE(WaitUntil([&] { return checks_->count == 1; }));
        EXPECT_TRUE(WaitUntil(
            [&] { return ItemText(dialog, OB_DAV_LOGIN_STATE) == L"Checking the login"; }));
        for (const int id : {OB_DAV_ADDRESS, OB_DAV_USER, OB_DAV_PASSWORD, IDOK}) {
            EXPECT_TRUE(WaitUntil([=] { return !IsWindowEnabled(GetDlgItem(dialog, id)); }));
        }
        EXPECT_EQ(FocusIn(dialog), IDCANCEL);
        obtest::PressCommand(dialog, IDOK); // by the Enter key
        obtest::PressCommand(dialog, IDCANCEL);
    }));
    EXPECT_EQ(checks_->count, 1);
    EXPECT_TRUE(WaitUntil([&] { return checks_->isCancelled.load(); }));
    // A result that comes late concerns no other dialog.
    EXPECT_TRUE(Show([&](HWND dialog) {
        Enter(dialog, L"h", L"ann", L"x");
        obtest::PressCommand(dialog, IDOK);
        EXPECT_TRUE(WaitUntil([&] { return checks_->count == 2; }));
        SetEvent(answers.Get());
    }));
}

TEST_F(DavLoginDialog, AsksForThePasswordAloneOfAnAccountThatThereIs) {
    login_.address = L"https://cloud.example.org/dav/";
    login_.user = L"ann";
    login_.isKnown = true;
    login_.reason = L"Why.";
    EXPECT_TRUE(Show([](HWND dialog) {
        EXPECT_EQ(FocusIn(dialog), OB_DAV_PASSWORD);
        EXPECT_EQ(ItemText(dialog, OB_DAV_LOGIN_STATE), L"Why.");
        for (const int id : {OB_DAV_ADDRESS, OB_DAV_USER}) {
            EXPECT_NE(GetWindowLongW(GetDlgItem(dialog, id), GWL_STYLE) & ES_READONLY, 0) << id;
        }
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, L"x");
        obtest::PressCommand(dialog, IDOK);
    }));
    EXPECT_EQ(HttpUrlText(checks_->typed), "https://cloud.example.org/dav/");
    EXPECT_EQ(checks_->user, L"ann");
}

} // namespace
