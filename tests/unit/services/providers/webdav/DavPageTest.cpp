// The account page of a WebDAV server, operated as a user does.
#include "services/providers/webdav/DavPage.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/webdav/DavPageIds.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;
using obtest::ItemText;
using obtest::WaitUntil;

namespace {

constexpr wchar_t kPattern[] = L"https://h/{path}";

ShareRules MakesLinks() {
    ShareRules rules;
    rules.canShareByLink = true;
    return rules;
}

class DavPageDialog : public testing::Test {
protected:
    DavPageDialog() { obtest::ClearProductRegistry(); }
    ~DavPageDialog() override { obtest::ClearProductRegistry(); }

    static bool HasAnswer(HWND dialog) {
        return WaitUntil([=] {
            return ItemText(dialog, OB_DAV_PAGE_RULES) != L"Asking the server how it makes links";
        });
    }
    DavPageEnd Show(const std::function<void(HWND)>& use) {
        page_.ask = [answer = answer_](HANDLE) { return answer; };
        DialogUiDriver user(OB_DAV_PAGE_PATTERN, [&](HWND dialog) {
            EXPECT_TRUE(HasAnswer(dialog));
            use(dialog);
        });
        return ShowDavPage(nullptr, page_);
    }
    // What the page shows of passwords: "on" or "off", whether that can be changed, and the note.
    std::wstring Passwords() {
        std::wstring shown;
        Show([&](HWND dialog) {
            const HWND box = GetDlgItem(dialog, OB_DAV_PAGE_PASSWORDS);
            shown = SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED ? L"on" : L"off";
            shown += IsWindowEnabled(box) ? L", free: " : L", fixed: ";
            shown += ItemText(dialog, OB_DAV_PAGE_PASSWORDS_NOTE);
            obtest::PressCommand(dialog, IDCANCEL);
        });
        return shown;
    }
    std::wstring RefusalOf(const std::wstring& pattern) {
        const obtest::MessageBoxWatcher boxes;
        EXPECT_EQ(Show([&](HWND dialog) {
                      SetDlgItemTextW(dialog, OB_DAV_PAGE_PATTERN, pattern.c_str());
                      obtest::PressCommand(dialog, IDOK);
                      EXPECT_TRUE(boxes.WaitFor(1));
                      obtest::PressCommand(dialog, IDCANCEL);
                  }),
                  DavPageEnd::Cancelled);
        return boxes.Seen().size() == 1 ? boxes.Seen()[0].text : L"";
    }

    DavLinkRules answer_;
    DavPage page_{{ParseHttpUrl("https://cloud.example.org/dav/").value_or(HttpUrl{}), L"ann",
                   kPattern, false},
                  true,
                  {}};
};

TEST_F(DavPageDialog, ShowsTheAccountAndWhatALinkLooksLike) {
    EXPECT_EQ(
        Show([](HWND dialog) {
            EXPECT_EQ(ItemText(dialog, OB_DAV_PAGE_SERVER), L"https://cloud.example.org/dav/");
            EXPECT_EQ(ItemText(dialog, OB_DAV_PAGE_USER), L"ann");
            EXPECT_EQ(ItemText(dialog, OB_DAV_PAGE_RULES),
                      L"This server makes no links itself. Links are made by the pattern "
                      L"below, and open for people whom the web server lets in.");
            const auto shows = [dialog](const wchar_t* text) {
                return WaitUntil([=] { return ItemText(dialog, OB_DAV_PAGE_PREVIEW) == text; });
            };
            EXPECT_TRUE(shows(L"https://h/Quillbox/20261231235959/Photos.zip"));
            SetDlgItemTextW(dialog, OB_DAV_PAGE_PATTERN, L" https://x/a?f={path} ");
            EXPECT_TRUE(shows(L"https://x/a?f=Quillbox/20261231235959/Photos.zip"));
            SetDlgItemTextW(dialog, OB_DAV_PAGE_PATTERN, L"https://");
            EXPECT_TRUE(shows(L""));
            obtest::PressCommand(dialog, IDCANCEL);
        }),
        DavPageEnd::Cancelled);
}

TEST_F(DavPageDialog, EachFieldFollowsItsLabel) {
    Show([](HWND dialog) {
        for (const auto& [field, label] :
             {std::pair{OB_DAV_PAGE_SERVER, OB_DAV_PAGE_SERVER_LABEL},
              std::pair{OB_DAV_PAGE_USER, OB_DAV_PAGE_USER_LABEL},
              std::pair{OB_DAV_PAGE_PATTERN, OB_DAV_PAGE_PATTERN_LABEL},
              std::pair{OB_DAV_PAGE_PREVIEW, OB_DAV_PAGE_PREVIEW_LABEL}}) {
            EXPECT_EQ(GetWindow(GetDlgItem(dialog, field), GW_HWNDPREV), GetDlgItem(dialog, label));
        }
        obtest::PressCommand(dialog, IDCANCEL);
    });
}

TEST_F(DavPageDialog, SavesPatternAndPasswords) {
    answer_.rules = MakesLinks();
    answer_.rules->canShareByLink = false;
    answer_.sentence = L"The server can't be reached.";
    EXPECT_EQ(Show([](HWND dialog) {
                  EXPECT_EQ(ItemText(dialog, OB_DAV_PAGE_RULES), L"The server can't be reached.");
                  SetDlgItemTextW(dialog, OB_DAV_PAGE_PATTERN, L" https://new/{path} ");
                  CheckDlgButton(dialog, OB_DAV_PAGE_PASSWORDS, BST_CHECKED);
                  obtest::PressCommand(dialog, IDOK);
              }),
              DavPageEnd::Saved);
    EXPECT_EQ(page_.settings.pattern, L"https://new/{path}");
    EXPECT_TRUE(page_.settings.hasLinkPasswords);
}

TEST_F(DavPageDialog, NeedsNoPatternWhereTheServerMakesLinks) {
    answer_.rules = MakesLinks();
    answer_.rules->needsExpiry = true;
    answer_.rules->expiryDays = 14;
    page_.settings.pattern.clear();
    EXPECT_EQ(Show([](HWND dialog) {
                  EXPECT_EQ(ItemText(dialog, OB_DAV_PAGE_RULES),
                            L"The server makes a link of its own for each file. Whoever has the "
                            L"link can download the file. It ends each link after 14 days at "
                            L"most.");
                  EXPECT_EQ(ItemText(dialog, OB_DAV_PAGE_PREVIEW),
                            L"The server chooses the address.");
                  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, OB_DAV_PAGE_PATTERN)));
                  CheckDlgButton(dialog, OB_DAV_PAGE_PASSWORDS, BST_CHECKED);
                  obtest::PressCommand(dialog, IDOK);
              }),
              DavPageEnd::Saved);
    EXPECT_TRUE(page_.settings.hasLinkPasswords);
}

TEST_F(DavPageDialog, NamesOneDayAsOne) {
    answer_.rules = MakesLinks();
    answer_.rules->needsExpiry = true;
    answer_.rules->expiryDays = 1;
    Show([](HWND dialog) {
        EXPECT_TRUE(ItemText(dialog, OB_DAV_PAGE_RULES)
                        .ends_with(L"It ends each link after one day at most."));
        obtest::PressCommand(dialog, IDCANCEL);
    });
}

TEST_F(DavPageDialog, ShowsWhoDecidesAboutPasswords) {
    const std::wstring once = L"You see the password once, after the upload";
    answer_.rules = MakesLinks();
    EXPECT_EQ(Passwords(),
              L"off, free: " + once + L". Send it to the recipients another way than the link.");
    page_.settings.hasLinkPasswords = true;
    EXPECT_TRUE(Passwords().starts_with(L"on, free: "));
    page_.settings.hasLinkPasswords = false;
    answer_.rules->needsPassword = true;
    EXPECT_EQ(Passwords(), L"on, fixed: The server requires it. " + once +
                               L": send it to the recipients another way than the link.");
    answer_ = {};
    EXPECT_EQ(Passwords(), L"off, fixed: Links by a pattern have no password.");
    obtest::SetMachinePolicy(L"RequireLinkPassword", L"1");
    answer_.rules = MakesLinks();
    const std::wstring byPolicy = L"on, fixed: Your administrator requires it. " + once +
                                  L": send it to the recipients another way than the link.";
    EXPECT_EQ(Passwords(), byPolicy);
    answer_ = {};
    EXPECT_EQ(Passwords(), byPolicy);
}

// A server may make no links today and do so tomorrow: only the user takes the wish back.
TEST_F(DavPageDialog, KeepsTheWishForPasswordsThatAPatternCannotMeet) {
    page_.settings.hasLinkPasswords = true;
    constexpr wchar_t kNoPasswords[] =
        L"Each link has to have a password, and the server \u201Ccloud.example.org\u201D "
        L"can't protect links by passwords. Please choose another account, or ask whoever "
        L"manages the server.";
    EXPECT_EQ(Passwords(), L"on, free: Links by a pattern have no password.");
    EXPECT_EQ(RefusalOf(kPattern), kNoPasswords);
    EXPECT_EQ(RefusalOf(L" "), kNoPasswords);
    EXPECT_TRUE(page_.settings.hasLinkPasswords);
    EXPECT_EQ(Show([](HWND dialog) {
                  CheckDlgButton(dialog, OB_DAV_PAGE_PASSWORDS, BST_UNCHECKED);
                  obtest::PressCommand(dialog, IDOK);
              }),
              DavPageEnd::Saved);
    EXPECT_FALSE(page_.settings.hasLinkPasswords);
}

// What somebody else decides doesn't change what the user has chosen.
TEST_F(DavPageDialog, KeepsTheUsersChoiceWhileItIsForced) {
    answer_.rules = MakesLinks();
    answer_.rules->needsPassword = true;
    EXPECT_EQ(Show([](HWND dialog) { obtest::PressCommand(dialog, IDOK); }), DavPageEnd::Saved);
    EXPECT_FALSE(page_.settings.hasLinkPasswords);
}

TEST_F(DavPageDialog, AsksForAPatternThatMakesLinks) {
    EXPECT_EQ(RefusalOf(L"https://h/"),
              L"A link pattern is an address with {path} in it and without blanks, such as "
              L"https://files.example.com/{path}. Please change it.");
    EXPECT_EQ(RefusalOf(L" "), L"This server makes no links itself, so links need a pattern. "
                               L"Please enter one, such as https://files.example.com/{path}.");
    obtest::SetMachinePolicy(L"RequireLinkPassword", L"1");
    for (const wchar_t* pattern : {kPattern, L" "}) {
        EXPECT_EQ(RefusalOf(pattern),
                  L"Each link has to have a password, and the server \u201Ccloud.example.org\u201D "
                  L"can't protect links by passwords. Please choose another account, or ask "
                  L"whoever manages the server.");
    }
}

TEST_F(DavPageDialog, CanBeUsedWhileTheServerIsSilent) {
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    page_.ask = [cancelled](HANDLE event) {
        *cancelled = WaitForSingleObject(event, obtest::kUiLimit) == WAIT_OBJECT_0;
        return DavLinkRules{};
    };
    DialogUiDriver user(OB_DAV_PAGE_PATTERN, [&](HWND dialog) {
        EXPECT_EQ(ItemText(dialog, OB_DAV_PAGE_RULES), L"Asking the server how it makes links");
        SetDlgItemTextW(dialog, OB_DAV_PAGE_PATTERN, L"https://new/{path}");
        obtest::PressCommand(dialog, IDOK);
    });
    EXPECT_EQ(ShowDavPage(nullptr, page_), DavPageEnd::Saved);
    EXPECT_EQ(page_.settings.pattern, L"https://new/{path}");
    EXPECT_TRUE(WaitUntil([&] { return cancelled->load(); }));
}

TEST_F(DavPageDialog, OffersToLogOutUnlessItBelongsToALogin) {
    EXPECT_EQ(Show([](HWND dialog) {
                  EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, OB_DAV_PAGE_LOG_OUT)));
                  DialogUiDriver::Press(dialog, OB_DAV_PAGE_LOG_OUT);
              }),
              DavPageEnd::LogOut);
    page_.hasLogOut = false;
    Show([](HWND dialog) {
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, OB_DAV_PAGE_LOG_OUT)));
        obtest::PressCommand(dialog, IDCANCEL);
    });
}

} // namespace
