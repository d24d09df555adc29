// The provider of WebDAV servers with real servers: uploads, and passwords that no longer count.
#include "tests/unit/services/providers/webdav/WebDavFixture.h"

namespace providers {
namespace {

class WebDavUploadTest : public WebDavTest {};

// The password was changed on the server: the upload asks for the new one and goes on.
TEST_F(WebDavUploadTest, AnUploadAsksForAPasswordThatNoLongerCounts) {
    const StorageAccount account = AddAccount(kPattern, false, "an old one");
    DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
        EXPECT_EQ(ItemText(dialog, OB_DAV_ADDRESS), Address());
        EXPECT_EQ(ItemText(dialog, OB_DAV_USER), login_.user);
        EXPECT_THAT(ItemText(dialog, OB_DAV_LOGIN_STATE), HasSubstr(L"doesn't accept"));
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, obtest::ServerValue(L"SERVER_PASSWORD").c_str());
        obtest::PressCommand(dialog, IDOK);
    });
    const UploadResult uploaded = Upload(account.key);
    EXPECT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    EXPECT_EQ(Stored().size(), 1u);
    EXPECT_EQ(progress_.asked_, 1);
    EXPECT_EQ(PasswordOf(account.key), login_.password.Text());
}

// Servers lock an account after a few.
TEST_F(WebDavUploadTest, AWrongPasswordIsTriedOnceBeforeTheUserIsAsked) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"", false, "an old one");
    DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
        EXPECT_EQ(relay_.Logins(), 1);
        obtest::PressCommand(dialog, IDCANCEL);
    });
    EXPECT_EQ(Upload(account.key).end, UploadEnd::Cancelled);
    EXPECT_TRUE(user.WasUsed());
}

TEST_F(WebDavUploadTest, AWrongPasswordIsTriedOnceWithoutTheUser) {
    const StorageAccount account = AddAccount();
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    const auto deleteIt = [&] {
        return provider_.Delete(account.key, uploaded.stored, ended_.Get());
    };
    for (const bool isSpaceFirst : {true, false}) {
        ASSERT_TRUE(SaveAccountPassword(account.key, ObLib::Secret(isSpaceFirst ? "a" : "b")));
        relay_.Begin("apache");
        if (isSpaceFirst) {
            EXPECT_FALSE(provider_.Space(account.key, ended_.Get()));
        }
        for (int files = 0; files < 3; ++files) EXPECT_EQ(deleteIt(), DeletionEnd::Unreachable);
        EXPECT_FALSE(provider_.Space(account.key, ended_.Get()));
        EXPECT_FALSE(provider_.IsLoggedIn(account.key));
        EXPECT_TRUE(provider_.Share(account.key, uploaded.stored, ended_.Get()).needsLogin);
        EXPECT_EQ(relay_.Logins(), 1);
    }
    ASSERT_TRUE(SaveAccountPassword(account.key, login_.password)); // by another process
    EXPECT_TRUE(provider_.IsLoggedIn(account.key));
    EXPECT_EQ(deleteIt(), DeletionEnd::Gone);
}

// Two windows of a program may send to one account.
TEST_F(WebDavUploadTest, ASecondUploadOfAnAccountDoesNotDisturbTheFirst) {
    const StorageAccount account = AddAccount();
    relay_.On("PUT", "hold", 0, 1);
    UploadResult first;
    std::thread window([&] { first = Upload(account.key, L"first.zip"); });
    relay_.WaitUntilHeld(1);
    const std::wstring other = folder_.File(L"other.zip", "another file");
    RecordedProgress progress;
    const UploadResult second =
        provider_.Upload(account.key, {other, L"second.zip", L"Quillbox"}, progress);
    relay_.Release();
    window.join();
    EXPECT_EQ(first.end, UploadEnd::Done) << first.sentence;
    EXPECT_EQ(second.end, UploadEnd::Done) << second.sentence;
    EXPECT_EQ(Stored().size(), 2u);
    EXPECT_EQ(obtest::ReadFileContent(Files() + L"\\Quillbox\\second.zip"), "another file");
    EXPECT_EQ(obtest::ReadFileContent(Files() + L"\\Quillbox\\20261122101530\\first.zip"),
              content_);
}

TEST_F(WebDavUploadTest, APasswordThatIsRevokedInTheMiddleIsAskedForOnce) {
    const StorageAccount account = AddAccount();
    relay_.On("PUT", "status 401");
    DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, obtest::ServerValue(L"SERVER_PASSWORD").c_str());
        obtest::PressCommand(dialog, IDOK);
    });
    const UploadResult uploaded = Upload(account.key);
    EXPECT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    EXPECT_EQ(Stored(), std::vector<std::wstring>{L"Quillbox\\20261122101530\\Our files.zip"});
    EXPECT_EQ(progress_.asked_, 1);
}

TEST_F(WebDavUploadTest, AShareNeedsALoginForAPasswordThatNoLongerCounts) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    ASSERT_TRUE(SaveAccountPassword(account.key, ObLib::Secret("an old one")));
    const ShareResult refused = provider_.Share(account.key, uploaded.stored, ended_.Get());
    EXPECT_FALSE(refused.isShared);
    EXPECT_TRUE(refused.needsLogin);
    EXPECT_FALSE(provider_.IsLoggedIn(account.key));
    EXPECT_THAT(refused.sentence, HasSubstr(L"doesn't accept"));
    DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
        EXPECT_THAT(ItemText(dialog, OB_DAV_LOGIN_STATE), HasSubstr(L"doesn't accept"));
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, obtest::ServerValue(L"SERVER_PASSWORD").c_str());
        obtest::PressCommand(dialog, IDOK);
    });
    EXPECT_TRUE(provider_.LogIn(account.key, nullptr));
    EXPECT_TRUE(provider_.IsLoggedIn(account.key));
    const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
    EXPECT_TRUE(shared.isShared) << shared.sentence;
    EXPECT_FALSE(shared.needsLogin);
    EXPECT_EQ(shares_.Shares().size(), 1u);
}

TEST_F(WebDavUploadTest, AShareNeedsALoginWhereThePasswordIsMissing) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    ASSERT_TRUE(ForgetAccountPassword(account.key));
    EXPECT_TRUE(provider_.Share(account.key, uploaded.stored, ended_.Get()).needsLogin);
    provider_.LogOut(account.key, nullptr);
    EXPECT_FALSE(provider_.Share(account.key, uploaded.stored, ended_.Get()).needsLogin)
        << "there is no account left to log in to";
}

// Revoked at each request of a share: before the link, after it was made without a reply, and
// before it is protected. The link is the same one then, with the same password.
TEST_F(WebDavUploadTest, APasswordThatIsRevokedWhileALinkIsMadeLeavesOneLink) {
    Use("ocs");
    const struct {
        const char* method;
        int skip; // so many requests are accepted
        const char* post;
    } kRows[] = {{"GET", 0, nullptr}, {"POST", 0, nullptr}, {"GET", 1, "swallow"}};
    for (const auto& row : kRows) {
        shares_.Begin();
        Use("ocs");
        obtest::ClearProductRegistry();
        const StorageAccount account = AddAccount(L"", true);
        const std::wstring name = L"file " + std::to_wstring(&row - kRows) + L".zip";
        const UploadResult uploaded = Upload(account.key, name);
        ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
        relay_.On(row.method, "status 401", row.skip, 10);
        if (row.post) relay_.On("POST", row.post);
        const ShareResult refused = provider_.Share(account.key, uploaded.stored, ended_.Get());
        EXPECT_FALSE(refused.isShared);
        EXPECT_TRUE(refused.needsLogin) << name << refused.sentence;
        EXPECT_EQ(refused.password, L"");
        EXPECT_EQ(shares_.Shares().size(), row.post ? 1u : 0u);
        relay_.Begin("ocs");
        DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
            SetDlgItemTextW(dialog, OB_DAV_PASSWORD,
                            obtest::ServerValue(L"SERVER_PASSWORD").c_str());
            obtest::PressCommand(dialog, IDOK);
        });
        ASSERT_TRUE(provider_.LogIn(account.key, nullptr));
        const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
        ASSERT_TRUE(shared.isShared) << shared.sentence;
        EXPECT_EQ(shares_.Shares().size(), 1u);
        EXPECT_EQ(Download(shared.link, shared.password), content_);
    }
}

// What is below the folder of an account isn't another folder of it.
TEST_F(WebDavUploadTest, ANewPasswordIsTriedAtTheAccountsFolderAlone) {
    const StorageAccount account = AddAccount(kPattern, false, "an old one");
    relay_.On("PROPFIND", "status 404");
    DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, obtest::ServerValue(L"SERVER_PASSWORD").c_str());
        obtest::PressCommand(dialog, IDOK);
        EXPECT_TRUE(WaitUntil([=] {
            return ItemText(dialog, OB_DAV_LOGIN_STATE).find(L"127.0.0.1") != std::wstring::npos;
        })) << ItemText(dialog, OB_DAV_LOGIN_STATE);
        obtest::PressCommand(dialog, IDCANCEL);
    });
    EXPECT_FALSE(provider_.LogIn(account.key, nullptr));
    EXPECT_EQ(relay_.Methods(), "PROPFIND");
    EXPECT_EQ(PasswordOf(account.key), "an old one");
}

// A server deletes a folder only with all that is in it by then, so the folders stay.
TEST_F(WebDavUploadTest, AFailedUploadLeavesEmptyFoldersOnly) {
    const StorageAccount account = AddAccount();
    relay_.On("PUT", "status 507", 0, 100);
    EXPECT_EQ(Upload(account.key).end, UploadEnd::Failed);
    EXPECT_THAT(Stored(), IsEmpty());
    EXPECT_FALSE(PartNotes(book_).HasAny());
    EXPECT_THAT(obtest::ListTree(Files()), testing::Contains(L"Quillbox\\20261122101530\\"));
    EXPECT_THAT(relay_.Methods(), HasSubstr("DELETE"));
}

TEST_F(WebDavUploadTest, AnUploadThatGetsNoPasswordIsCancelledAndLeavesNothing) {
    const StorageAccount account = AddAccount();
    ASSERT_TRUE(ForgetAccountPassword(account.key));
    EXPECT_FALSE(provider_.IsLoggedIn(account.key));
    DialogUiDriver user(OB_DAV_ADDRESS,
                        [](HWND dialog) { obtest::PressCommand(dialog, IDCANCEL); });
    EXPECT_EQ(Upload(account.key).end, UploadEnd::Cancelled);
    EXPECT_THAT(Stored(), IsEmpty());
}

TEST_F(WebDavUploadTest, AnUploadWithoutAWayToLinkAsksForAPattern) {
    const StorageAccount account = AddAccount(L"");
    {
        DialogUiDriver user(OB_DAV_PAGE_PATTERN, [](HWND page) {
            EXPECT_FALSE(IsWindowVisible(GetDlgItem(page, OB_DAV_PAGE_LOG_OUT)));
            obtest::PressCommand(page, IDCANCEL);
        });
        const UploadResult refused = Upload(account.key);
        EXPECT_EQ(refused.end, UploadEnd::Failed);
        EXPECT_EQ(refused.sentence,
                  L"\u201COur files.zip\u201D wasn't uploaded. The server \u201C127.0.0.1\u201D "
                  L"makes no links to files, and the account has no link pattern. Please enter "
                  L"one on the page of the account, or choose another account. Nothing was "
                  L"attached, and your files are unchanged.");
        EXPECT_THAT(relay_.Methods(), testing::Not(HasSubstr("PUT")));
    }
    DialogUiDriver user(OB_DAV_PAGE_PATTERN, &EnterPattern);
    EXPECT_EQ(Upload(account.key).end, UploadEnd::Done);
    EXPECT_EQ(ReadDavAccount(book_, account.key)->pattern, kPattern);
}

TEST_F(WebDavUploadTest, APasswordThatIsWantedIsNeverLeftOut) {
    const StorageAccount account = AddAccount(kPattern);
    obtest::SetMachinePolicy(L"RequireLinkPassword", L"1");
    DialogUiDriver user(OB_DAV_PAGE_PATTERN,
                        [](HWND page) { obtest::PressCommand(page, IDCANCEL); });
    const UploadResult refused = Upload(account.key);
    EXPECT_EQ(refused.end, UploadEnd::Failed);
    EXPECT_THAT(refused.sentence, HasSubstr(L"Each link has to have a password"));
    EXPECT_THAT(relay_.Methods(), testing::Not(HasSubstr("PUT")));
}

TEST_F(WebDavUploadTest, ALinkThatWouldBeTooLongIsRefusedBeforeTheUpload) {
    const StorageAccount account =
        AddAccount(L"https://h/{path}/{path}/{path}/{path}/{path}/{path}/{path}/{path}");
    std::wstring name(120, L'\u20AC'); // nine characters each
    const UploadResult refused = Upload(account.key, name);
    EXPECT_EQ(refused.end, UploadEnd::Failed);
    EXPECT_THAT(refused.sentence, HasSubstr(L"because its link would be too long"));
    EXPECT_THAT(relay_.Methods(), testing::Not(HasSubstr("PUT")));
}

// The second run of a clash only moves what is there.
TEST_F(WebDavUploadTest, AClashIsReportedAndTheNextRunOnlyMovesTheFile) {
    const StorageAccount account = AddAccount();
    ASSERT_EQ(Upload(account.key).end, UploadEnd::Done);
    relay_.On("MOVE", "status 412");
    EXPECT_EQ(Upload(account.key, L"other.zip").end, UploadEnd::NameTaken);
    const auto noted = PartNotes(book_).HasAny();
    EXPECT_TRUE(noted); // a process that is killed now leaves the file
    relay_.Begin("apache");
    EXPECT_EQ(Upload(account.key, L"another.zip").end, UploadEnd::Done);
    EXPECT_THAT(relay_.Methods(), testing::Not(HasSubstr("PUT")));
    EXPECT_FALSE(PartNotes(book_).HasAny());
}

} // namespace
} // namespace providers
