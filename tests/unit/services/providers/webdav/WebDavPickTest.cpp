// The provider of WebDAV servers with real servers: files picked on the server.
#include "tests/unit/services/providers/webdav/WebDavFixture.h"

namespace providers {
namespace {

class WebDavPickTest : public WebDavTest {};

TEST_F(WebDavPickTest, APickBeginsWithThePreferredAccountElseWithTheNewest) {
    const StorageAccount account = AddAccount();
    HttpUrl other = UrlBelow(Root(), "x");
    other.path += '/';
    ASSERT_TRUE(AddDavAccount(book_, {other, login_.user, kPattern, false}, login_.password));
    const auto firstOf = [&](const std::wstring& preferred) {
        LRESULT chosen = -1;
        DialogUiDriver user(OB_DAVPICK_LIST, [&](HWND dialog) {
            chosen = SendDlgItemMessageW(dialog, OB_DAVPICK_ACCOUNT, CB_GETCURSEL, 0, 0);
            obtest::PressCommand(dialog, IDCANCEL);
        });
        provider_.Pick(preferred, nullptr);
        return chosen;
    };
    EXPECT_EQ(firstOf(account.key), 0);
    EXPECT_EQ(firstOf({}), 1);
    provider_.LogOut(account.key, nullptr);
    EXPECT_EQ(firstOf(account.key), 0);
}

TEST_F(WebDavPickTest, APickAsksForAPasswordThatNoLongerCounts) {
    const StorageAccount account = AddAccount(kPattern, false, "an old one");
    DialogUiDriver login(OB_DAV_ADDRESS, [&](HWND dialog) {
        EXPECT_THAT(ItemText(dialog, OB_DAV_LOGIN_STATE), HasSubstr(L"doesn't accept"));
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, obtest::ServerValue(L"SERVER_PASSWORD").c_str());
        obtest::PressCommand(dialog, IDOK);
    });
    DialogUiDriver user(OB_DAVPICK_LIST, [&](HWND dialog) {
        EXPECT_TRUE(WaitUntil([&] {
            return PasswordOf(account.key) == login_.password.Text() && IsWindowEnabled(dialog);
        }));
        obtest::PressCommand(dialog, IDCANCEL);
    });
    EXPECT_THAT(provider_.Pick(account.key, nullptr).files, IsEmpty());
}

TEST_F(WebDavPickTest, APickAsksForAPasswordThatIsRevokedBeforeItsLinkIsMade) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const std::wstring name = L"to pick.zip";
    ASSERT_EQ(provider_.Upload(account.key, {source_, name, L""}, progress_).end, UploadEnd::Done);
    DialogUiDriver login(OB_DAV_ADDRESS, [&](HWND dialog) {
        EXPECT_THAT(ItemText(dialog, OB_DAV_LOGIN_STATE), HasSubstr(L"doesn't accept"));
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, obtest::ServerValue(L"SERVER_PASSWORD").c_str());
        obtest::PressCommand(dialog, IDOK);
    });
    DialogUiDriver user(OB_DAVPICK_LIST, [&](HWND dialog) {
        const obtest::PickerUser picker(dialog);
        EXPECT_TRUE(WaitUntil([&] { return picker.Count() > 0; }));
        const auto names = picker.Names();
        const auto row = std::find(names.begin(), names.end(), name) - names.begin();
        relay_.On("POST", "status 401");
        picker.Select(static_cast<int>(row));
        picker.Press(IDOK);
    });
    const PickResult picked = provider_.Pick(account.key, nullptr);
    EXPECT_TRUE(login.WasUsed());
    ASSERT_EQ(picked.files.size(), 1u) << picked.sentence;
    EXPECT_EQ(Download(picked.files[0].link), content_);
    EXPECT_EQ(shares_.Shares().size(), 1u);
    const DavClient client(session_, login_, nullptr, kNoPauses);
    EXPECT_FALSE(client.Discard(UrlBelow(Root(), ToUtf8(name))));
}

TEST_F(WebDavPickTest, APickThatIsGivenUpLeavesNoLink) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const std::wstring names[] = {L"pick 1.zip", L"pick 2.zip"};
    for (const std::wstring& name : names) {
        ASSERT_EQ(provider_.Upload(account.key, {source_, name, L""}, progress_).end,
                  UploadEnd::Done);
    }
    const obtest::MessageBoxWatcher boxes;
    DialogUiDriver user(OB_DAVPICK_LIST, [&](HWND dialog) {
        const obtest::PickerUser picker(dialog);
        EXPECT_TRUE(WaitUntil([&] { return picker.Count() > 1; }));
        const auto rows = picker.Names();
        for (const std::wstring& name : names) {
            picker.Select(static_cast<int>(std::ranges::find(rows, name) - rows.begin()));
        }
        relay_.On("POST", "status 403", 1);
        picker.Press(IDOK);
        EXPECT_TRUE(boxes.WaitFor(1));
        EXPECT_EQ(shares_.Shares().size(), 1u);
        EXPECT_TRUE(WaitUntil([=] { return IsWindowEnabled(dialog) != FALSE; }));
        picker.Press(IDCANCEL);
    });
    EXPECT_THAT(provider_.Pick(account.key, nullptr).files, IsEmpty());
    EXPECT_TRUE(WaitUntil([&] { return shares_.Shares().empty(); }));
    const DavClient client(session_, login_, nullptr, kNoPauses);
    for (const std::wstring& name : names) {
        EXPECT_FALSE(client.Discard(UrlBelow(Root(), ToUtf8(name))));
    }
}

TEST_F(WebDavPickTest, APickWithoutAnAccountBeginsWithALogin) {
    DialogUiDriver user(OB_DAV_ADDRESS,
                        [](HWND dialog) { obtest::PressCommand(dialog, IDCANCEL); });
    const PickResult result = provider_.Pick({}, nullptr);
    EXPECT_TRUE(user.WasUsed());
    EXPECT_THAT(result.files, IsEmpty());
    EXPECT_EQ(result.sentence, L"");
}

} // namespace
} // namespace providers
