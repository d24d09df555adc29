// The provider of WebDAV servers with real servers: accounts, space, deletions.
#include "tests/unit/services/providers/webdav/WebDavFixture.h"

namespace providers {
namespace {

TEST_F(WebDavTest, IsWhatTheContractAsks) {
    EXPECT_EQ(provider_.Id(), 102U);
    EXPECT_EQ(provider_.DisplayName(), L"WebDAV server");
    EXPECT_EQ(provider_.ShortDescription(), L"WebDAV server");
    EXPECT_TRUE(provider_.Has(ProviderCapability::OpenPicker));
    EXPECT_TRUE(provider_.Has(ProviderCapability::FreeSpace));
    EXPECT_TRUE(provider_.Has(ProviderCapability::Folders));
    EXPECT_FALSE(provider_.Has(static_cast<ProviderCapability>(4)));
    EXPECT_EQ(provider_.RootFolder(L"any"), L"");
    EXPECT_EQ(provider_.MaxFileSize(L"any"), std::nullopt);
    EXPECT_FALSE(provider_.IsLoggedIn(L"any"));
}

TEST_F(WebDavTest, ALoginAsksForAPatternWhereTheServerMakesNoLinks) {
    for (const char* server : {"apache", "sabre"}) {
        Use(server);
        const auto account = LogIn(&EnterPattern);
        ASSERT_TRUE(account) << server;
        EXPECT_TRUE(provider_.IsLoggedIn(account->key));
        const auto settings = ReadDavAccount(book_, account->key);
        ASSERT_TRUE(settings);
        EXPECT_EQ(settings->root, Root());
        EXPECT_EQ(settings->user, login_.user);
        EXPECT_EQ(settings->pattern, kPattern);
        EXPECT_EQ(PasswordOf(account->key), login_.password.Text());
        provider_.LogOut(account->key, nullptr);
        EXPECT_FALSE(provider_.IsLoggedIn(account->key));
        EXPECT_EQ(PasswordOf(account->key), "none");
    }
    EXPECT_THAT(Accounts(), IsEmpty());
}

TEST_F(WebDavTest, ALoginIsEnoughWhereTheServerMakesLinks) {
    Use("ocs");
    const auto account = LogIn();
    ASSERT_TRUE(account);
    EXPECT_EQ(ReadDavAccount(book_, account->key)->pattern, L"");
    std::wstring all;
    CollectTexts(HKEY_CURRENT_USER, L"Software\\Tavi Ren Computing", all);
    EXPECT_THAT(all, HasSubstr(Address()));
    EXPECT_THAT(all, testing::Not(HasSubstr(obtest::ServerValue(L"SERVER_PASSWORD"))));
}

TEST_F(WebDavTest, ALoginThatIsLeftAtThePatternKeepsNothing) {
    EXPECT_FALSE(LogIn([](HWND page) { obtest::PressCommand(page, IDCANCEL); }));
    EXPECT_THAT(Accounts(), IsEmpty());
}

TEST_F(WebDavTest, ASecondLoginToTheSameFolderIsTheSameAccount) {
    const StorageAccount account = AddAccount(kPattern, false, "an old one");
    const auto again = LogIn();
    ASSERT_TRUE(again);
    EXPECT_EQ(again->key, account.key);
    EXPECT_EQ(Accounts().size(), 1u);
    EXPECT_EQ(PasswordOf(account.key), login_.password.Text());
    EXPECT_EQ(ReadDavAccount(book_, account.key)->pattern, kPattern);
}

TEST_F(WebDavTest, ALoginWithAWrongPasswordIsExplainedInTheDialog) {
    DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
        SetDlgItemTextW(dialog, OB_DAV_ADDRESS, Address().c_str());
        SetDlgItemTextW(dialog, OB_DAV_USER, login_.user.c_str());
        SetDlgItemTextW(dialog, OB_DAV_PASSWORD, L"wrong");
        obtest::PressCommand(dialog, IDOK);
        EXPECT_TRUE(WaitUntil([=] {
            return ItemText(dialog, OB_DAV_LOGIN_STATE) ==
                   L"The server \u201C127.0.0.1\u201D doesn't accept the user name or the "
                   L"password. Please check both and log in again.";
        })) << ItemText(dialog, OB_DAV_LOGIN_STATE);
        obtest::PressCommand(dialog, IDCANCEL);
    });
    EXPECT_FALSE(provider_.LogIn({}, nullptr));
    EXPECT_EQ(relay_.Logins(), 1); // a wrong password is tried once
}

TEST_F(WebDavTest, ALoginExplainsAnAddressThatIsTooLongToBeKept) {
    DavServers servers(book_, kNoPauses);
    HttpUrl typed = Root();
    typed.path = "/" + std::string(kLongestDavAddress, 'a') + "/";
    const std::string reply = "status 207|=<multistatus xmlns='DAV:'><response><href>" +
                              typed.path +
                              "</href><propstat><prop><resourcetype><collection/></resourcetype>"
                              "</prop></propstat></response></multistatus>";
    relay_.On("PROPFIND", reply.c_str());
    const DavCheckResult result =
        CheckDavLogin(servers, typed, login_.user, login_.password, nullptr);
    EXPECT_THAT(result.sentence, HasSubstr(L"is too long to be kept"));
    EXPECT_TRUE(result.isAboutAddress);
}

// What policies refuse is refused before a request.
TEST_F(WebDavTest, ALoginReportsWhatAPolicyRefuses) {
    const struct {
        const wchar_t* address;
        const wchar_t* sentence;
    } kRows[] = {
        {L"http://cloud.example.org",
         L"The server \u201Ccloud.example.org\u201D can be used through a secure connection only. "
         L"Please enter an address that begins with https://."},
        {L"other.example.org", L"Your administrator doesn't allow the server "
                               L"\u201Cother.example.org\u201D. Please choose another account."},
    };
    obtest::SetMachinePolicy(L"AllowedCloudServers", L"cloud.example.org");
    for (const auto& row : kRows) {
        DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
            SetDlgItemTextW(dialog, OB_DAV_ADDRESS, row.address);
            SetDlgItemTextW(dialog, OB_DAV_USER, L"ann");
            SetDlgItemTextW(dialog, OB_DAV_PASSWORD, L"x");
            obtest::PressCommand(dialog, IDOK);
            EXPECT_TRUE(WaitUntil([&] {
                return ItemText(dialog, OB_DAV_LOGIN_STATE) == row.sentence;
            })) << ItemText(dialog, OB_DAV_LOGIN_STATE);
            obtest::PressCommand(dialog, IDCANCEL);
        });
        EXPECT_FALSE(provider_.LogIn({}, nullptr));
    }
    EXPECT_EQ(relay_.Logins(), 0);
}

TEST_F(WebDavTest, ReportsTheSpaceThatTheServerReports) {
    Use("sabre");
    const StorageAccount account = AddAccount();
    const auto space = provider_.Space(account.key, ended_.Get());
    ASSERT_TRUE(space);
    EXPECT_GT(space->freeBytes, 0);
    relay_.Begin("apache");
    const auto unknown = provider_.Space(account.key, ended_.Get());
    ASSERT_TRUE(unknown);
    EXPECT_EQ(unknown->freeBytes, obcontract::SizeUnknown);
    EXPECT_EQ(unknown->totalBytes, obcontract::SizeUnknown);
    relay_.On("*", "refuse", 0, 1000);
    EXPECT_FALSE(provider_.Space(account.key, ended_.Get()));
    EXPECT_FALSE(provider_.Space(L"any", ended_.Get()));
}

TEST_F(WebDavTest, DeletesTheFileOfAnAccountThatIsLoggedOutByAnotherOneOfTheFolder) {
    const StorageAccount account = AddAccount();
    const UploadResult first = Upload(account.key, L"first.zip");
    const UploadResult second = Upload(account.key, L"second.zip");
    ASSERT_EQ(first.end, UploadEnd::Done);
    ASSERT_EQ(second.end, UploadEnd::Done);
    provider_.LogOut(account.key, nullptr);
    EXPECT_EQ(provider_.Delete(account.key, first.stored, ended_.Get()), DeletionEnd::Unreachable);
    EXPECT_EQ(Stored().size(), 2u); // until there is an account again
    AddAccount();
    EXPECT_EQ(provider_.Delete(account.key, second.stored, ended_.Get()), DeletionEnd::Gone);
    EXPECT_EQ(Stored(), std::vector<std::wstring>{L"Quillbox\\20261122101530\\first.zip"});
    EXPECT_EQ(provider_.Delete(account.key, first.stored, ended_.Get()), DeletionEnd::Gone);
    EXPECT_THAT(Stored(), IsEmpty());
}

// At one address each user of a server has files of their own.
TEST_F(WebDavTest, AnotherUsersFolderWithoutTheFileKeepsTheDeletion) {
    const StorageAccount account = AddAccount();
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done);
    provider_.LogOut(account.key, nullptr);
    ASSERT_TRUE(AddDavAccount(book_, {Root(), L"another user", kPattern, false}, login_.password));
    const auto deleteIt = [&] {
        return provider_.Delete(account.key, uploaded.stored, ended_.Get());
    };
    relay_.On("PROPFIND", "status 404");
    EXPECT_EQ(deleteIt(), DeletionEnd::Unreachable);
    AddAccount();
    relay_.Begin("apache");
    relay_.On("PROPFIND", "status 404"); // the other user's account is the older one
    EXPECT_EQ(deleteIt(), DeletionEnd::Gone);
    EXPECT_THAT(Stored(), IsEmpty());
}

TEST_F(WebDavTest, DeletesNothingThatWasChangedOrCannotBeReached) {
    const StorageAccount account = AddAccount();
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done);
    StoredFile changed = uploaded.stored;
    changed.version = L"\"another\"";
    EXPECT_EQ(provider_.Delete(account.key, changed, ended_.Get()), DeletionEnd::Changed);
    StoredFile elsewhere = uploaded.stored;
    elsewhere.path = L"no address";
    EXPECT_EQ(provider_.Delete(account.key, elsewhere, ended_.Get()), DeletionEnd::Changed);
    relay_.On("*", "refuse", 0, 1000);
    EXPECT_EQ(provider_.Delete(account.key, uploaded.stored, ended_.Get()),
              DeletionEnd::Unreachable);
    relay_.Begin("apache");
    SetEvent(ended_.Get());
    EXPECT_EQ(provider_.Delete(account.key, uploaded.stored, ended_.Get()),
              DeletionEnd::Unreachable);
    ResetEvent(ended_.Get());
    ASSERT_TRUE(SaveAccountPassword(account.key, ObLib::Secret("wrong")));
    EXPECT_EQ(provider_.Delete(account.key, uploaded.stored, ended_.Get()),
              DeletionEnd::Unreachable);
    ASSERT_TRUE(ForgetAccountPassword(account.key));
    EXPECT_EQ(provider_.Delete(account.key, uploaded.stored, ended_.Get()),
              DeletionEnd::Unreachable);
    EXPECT_EQ(Stored().size(), 1u);
}

// Of what a process that was killed has left.
TEST_F(WebDavTest, RemovesPartsThatUploadsMakeAndNothingElse) {
    const StorageAccount account = AddAccount();
    const auto put = [&](const std::string& name) {
        HttpRequest request;
        request.method = "PUT";
        request.url = UrlBelow(Root(), name);
        request.body = std::string("x");
        const DavClient client(session_, login_, nullptr, kNoPauses);
        EXPECT_EQ("done", Outcome(client.Send(request)));
        return FromUtf8(HttpUrlText(request.url)).value_or(L"");
    };
    const auto isThere = [&](const wchar_t* name) {
        return obtest::ReadFileContent(Files() + L"\\" + name).has_value();
    };
    const std::wstring part = put("upload-01234567-89AB-CDEF-0123-456789ABCDEF.tmp");
    const std::wstring own = put("upload-of-mine.tmp");
    EXPECT_EQ(provider_.RemovePart(account.key, own, ended_.Get()), DeletionEnd::Changed);
    EXPECT_TRUE(isThere(L"upload-of-mine.tmp"));
    EXPECT_EQ(provider_.RemovePart(account.key, part, ended_.Get()), DeletionEnd::Gone);
    EXPECT_FALSE(isThere(L"upload-01234567-89AB-CDEF-0123-456789ABCDEF.tmp"));
    EXPECT_EQ(provider_.RemovePart(account.key, part, ended_.Get()), DeletionEnd::Gone);
    EXPECT_EQ(provider_.RemovePart(account.key, L"http://127.0.0.1:1/", ended_.Get()),
              DeletionEnd::Changed);
    DeleteFileW((Files() + L"\\upload-of-mine.tmp").c_str());
}

TEST_F(WebDavTest, TheAccountPageChangesLinksAndLogsOut) {
    const StorageAccount account = AddAccount();
    {
        DialogUiDriver user(OB_DAV_PAGE_PATTERN, [&](HWND page) {
            EXPECT_EQ(ItemText(page, OB_DAV_PAGE_SERVER), Address());
            EXPECT_TRUE(WaitUntil([=] {
                return ItemText(page, OB_DAV_PAGE_RULES).starts_with(L"This server makes no");
            })) << ItemText(page, OB_DAV_PAGE_RULES);
            SetDlgItemTextW(page, OB_DAV_PAGE_PATTERN, L"https://new/{path}");
            obtest::PressCommand(page, IDOK);
        });
        provider_.Manage(account.key, nullptr);
    }
    EXPECT_EQ(ReadDavAccount(book_, account.key)->pattern, L"https://new/{path}");
    DialogUiDriver user(OB_DAV_PAGE_PATTERN,
                        [](HWND page) { DialogUiDriver::Press(page, OB_DAV_PAGE_LOG_OUT); });
    provider_.Manage(account.key, nullptr);
    EXPECT_THAT(Accounts(), IsEmpty());
    EXPECT_EQ(PasswordOf(account.key), "none");
}

} // namespace
} // namespace providers
