// The provider of WebDAV servers with real servers: links to what was uploaded.
#include "tests/unit/services/providers/webdav/WebDavFixture.h"

namespace providers {
namespace {

class WebDavLinkTest : public WebDavTest {};

TEST_F(WebDavLinkTest, UploadsAndLinksByThePattern) {
    for (const char* server : {"apache", "sabre"}) {
        Use(server);
        const StorageAccount account = AddAccount(kPattern);
        const UploadResult uploaded = Upload(account.key);
        ASSERT_EQ(uploaded.end, UploadEnd::Done) << server << uploaded.sentence;
        EXPECT_EQ(Stored(), std::vector<std::wstring>{L"Quillbox\\20261122101530\\Our files.zip"});
        const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
        EXPECT_TRUE(shared.isShared) << shared.sentence;
        EXPECT_EQ(shared.link,
                  L"https://files.example.com/Quillbox/20261122101530/Our%20files.zip");
        EXPECT_EQ(shared.password, L"");
        EXPECT_EQ(shared.shareId, L"");
        EXPECT_FALSE(provider_.SetExpiry(account.key, L"1", 7, ended_.Get()));
        EXPECT_EQ(provider_.Delete(account.key, uploaded.stored, ended_.Get()), DeletionEnd::Gone);
        EXPECT_THAT(Stored(), IsEmpty());
        provider_.LogOut(account.key, nullptr);
    }
    EXPECT_EQ(progress_.asked_, 0);
}

TEST_F(WebDavLinkTest, UploadsAndLinksByTheServer) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
    ASSERT_TRUE(shared.isShared) << shared.sentence;
    EXPECT_EQ(shared.password, L"");
    EXPECT_EQ(Download(shared.link), content_);
    EXPECT_TRUE(provider_.SetExpiry(account.key, shared.shareId, 7, ended_.Get()));
    const auto shares = shares_.Shares();
    ASSERT_EQ(shares.size(), 1u);
    SYSTEMTIME now{};
    GetLocalTime(&now);
    const std::chrono::sys_days today =
        std::chrono::year(now.wYear) / std::chrono::month(now.wMonth) / std::chrono::day(now.wDay);
    EXPECT_THAT(shares[0], HasSubstr(ShareDateText(today + std::chrono::days(7))));
    EXPECT_FALSE(provider_.SetExpiry(account.key, L"999", 7, ended_.Get()));
    EXPECT_FALSE(provider_.SetExpiry(account.key, L"", 7, ended_.Get()));
}

TEST_F(WebDavLinkTest, ProtectsALinkWhereUserAdministratorOrServerWantIt) {
    Use("ocs");
    for (const char* who : {"user", "administrator", "server"}) {
        shares_.Begin();
        obtest::ClearProductRegistry();
        const bool isUser = who == std::string("user");
        const StorageAccount account = AddAccount(L"", isUser);
        if (who == std::string("administrator")) {
            obtest::SetMachinePolicy(L"RequireLinkPassword", L"1");
        }
        if (who == std::string("server")) {
            shares_.Set("password", "1");
            shares_.Set("shortest", "24");
            shares_.Set("digit", "1");
        }
        WebDav provider(book_, kNoPauses); // that knows nothing of the server yet
        const UploadResult uploaded = provider.Upload(
            account.key, {source_, FromUtf8(who).value_or(L""), L"Quillbox"}, progress_);
        ASSERT_EQ(uploaded.end, UploadEnd::Done) << who << uploaded.sentence;
        const ShareResult shared = provider.Share(account.key, uploaded.stored, ended_.Get());
        ASSERT_TRUE(shared.isShared) << who << shared.sentence;
        EXPECT_GE(shared.password.size(), 19u) << who;
        EXPECT_EQ(Download(shared.link, shared.password), content_) << who;
        EXPECT_NE(Download(shared.link), content_) << who;
        EXPECT_THAT(shares_.Shares(), testing::ElementsAre(HasSubstr(" password "))) << who;
        std::wstring all;
        CollectTexts(HKEY_CURRENT_USER, L"Software\\Tavi Ren Computing", all);
        EXPECT_THAT(all, testing::Not(HasSubstr(shared.password)));
        EXPECT_THAT(all, testing::Not(HasSubstr(shared.link)));
    }
}

// The days in the mail are those of the file, which the schedule deletes; the link ends before.
TEST_F(WebDavLinkTest, AServersEarlierEndOfALinkCountsAsItsEnd) {
    Use("ocs");
    shares_.Set("expiry", "1");
    shares_.Set("days", "3");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
    ASSERT_TRUE(shared.isShared) << shared.sentence;
    const auto before = shares_.Shares();
    EXPECT_TRUE(provider_.SetExpiry(account.key, shared.shareId, 30, ended_.Get()));
    EXPECT_EQ(shares_.Shares(), before); // three days
    EXPECT_EQ(before.size(), 1u);
}

// The administrator of the server may change the rules at any time.
TEST_F(WebDavLinkTest, AsksForTheRulesAgainAfterARefusal) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    shares_.Set("password", "1");
    EXPECT_FALSE(provider_.Share(account.key, uploaded.stored, ended_.Get()).isShared);
    const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
    ASSERT_TRUE(shared.isShared) << shared.sentence;
    EXPECT_FALSE(shared.password.empty());
    EXPECT_NE(Download(shared.link), content_);
}

// At one address the users of a server have rights, files and links of their own.
TEST_F(WebDavLinkTest, KeepsRulesAndPasswordsOfLinksByAccount) {
    Use("ocs");
    DavServers servers(book_, kNoPauses);
    const DavAccess access{Root(), login_};
    const DavAccess another{Root(), {login_.origin, L"another user", login_.password}};
    const DavClient client(session_, login_, nullptr, kNoPauses);
    ASSERT_TRUE(std::holds_alternative<std::optional<ShareApi>>(servers.Shares(client, access)));
    EXPECT_TRUE(servers.Known(access));
    EXPECT_FALSE(servers.Known(another));
    const HttpUrl file = UrlBelow(Root(), "a.zip");
    servers.SetPassword(L"{1}", file, ObLib::Secret("a password"));
    EXPECT_STREQ(servers.ShareOf(L"{1}", file).password.Text(), "a password");
    EXPECT_TRUE(servers.ShareOf(L"{2}", file).password.Empty());
    EXPECT_NE(servers.ShareOf(L"{1}", file).label, servers.ShareOf(L"{2}", file).label);
}

// Nobody knows whether a share was made whose reply didn't come: the next call uses it.
TEST_F(WebDavLinkTest, AShareWhoseReplyIsLostIsNotMadeTwice) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"", true);
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    relay_.On("POST", "holdreply");
    ShareResult given;
    {
        std::thread first(
            [&] { given = provider_.Share(account.key, uploaded.stored, ended_.Get()); });
        relay_.WaitUntilHeld(1);
        SetEvent(ended_.Get()); // as after a minute
        first.join();
    }
    EXPECT_FALSE(given.isShared);
    EXPECT_EQ(given.sentence, L""); // of a cancel
    relay_.Release();
    ResetEvent(ended_.Get());
    const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
    ASSERT_TRUE(shared.isShared) << shared.sentence;
    EXPECT_EQ(shares_.Shares().size(), 1u);
    EXPECT_EQ(Download(shared.link, shared.password), content_);
}

TEST_F(WebDavLinkTest, ReportsWhyTheServerMakesNoLink) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    relay_.On("POST", "status 403|=<ocs><meta><statuscode>403</statuscode>"
                      "<message>Too many links</message></meta></ocs>");
    const ShareResult refused = provider_.Share(account.key, uploaded.stored, ended_.Get());
    EXPECT_FALSE(refused.isShared);
    EXPECT_EQ(refused.sentence, L"The server \u201C127.0.0.1\u201D makes no link to the file. It "
                                L"reports: \u201CToo many links\u201D");
    EXPECT_TRUE(provider_.Share(account.key, uploaded.stored, ended_.Get()).isShared);
    provider_.LogOut(account.key, nullptr);
    EXPECT_EQ(provider_.Share(account.key, uploaded.stored, ended_.Get()).sentence,
              L"You are no longer logged in to its server. Please log in again.");
}

// It would be cut in the mail. Nobody else gets to know it.
TEST_F(WebDavLinkTest, TakesNoLinkOfTheServerThatIsTooLong) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    shares_.Set("link", "https://h/" + std::string(kLongestLink, 'x'));
    const ShareResult refused = provider_.Share(account.key, uploaded.stored, ended_.Get());
    EXPECT_FALSE(refused.isShared);
    EXPECT_EQ(refused.sentence, L"The server \u201C127.0.0.1\u201D gave no link that can be used. "
                                L"Please ask whoever manages the server.");
    EXPECT_THAT(shares_.Shares(), IsEmpty());
}

TEST_F(WebDavLinkTest, GivesNoLinkWithoutThePasswordThatTheUserWants) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"", true);
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    shares_.Set("forget", "all");
    const ShareResult refused = provider_.Share(account.key, uploaded.stored, ended_.Get());
    EXPECT_FALSE(refused.isShared);
    EXPECT_EQ(refused.password, L"");
    EXPECT_THAT(refused.sentence, HasSubstr(L"can't protect links by passwords"));
    EXPECT_THAT(shares_.Shares(), IsEmpty());
}

TEST_F(WebDavLinkTest, LinksByThePatternWhereTheInterfaceOfTheServerIsSilent) {
    Use("ocs");
    const StorageAccount account = AddAccount();
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    DavPatience patience = kNoPauses;
    patience.question = 50;
    WebDav provider(book_, patience); // that knows nothing of the server yet
    relay_.On("GET", "hold", 0, 2);
    const ShareResult shared = provider.Share(account.key, uploaded.stored, ended_.Get());
    EXPECT_EQ(shared.link, L"https://files.example.com/Quillbox/20261122101530/Our%20files.zip")
        << shared.sentence;
    // A link that is to have a password isn't one by the pattern.
    obtest::SetMachinePolicy(L"RequireLinkPassword", L"1");
    EXPECT_FALSE(provider.Share(account.key, uploaded.stored, ended_.Get()).isShared);
    relay_.Release();
    EXPECT_THAT(shares_.Shares(), IsEmpty());
}

TEST_F(WebDavLinkTest, EndsALinkByTheServersClock) {
    Use("ocs");
    shares_.Set("clock", "400");
    const StorageAccount account = AddAccount(L"");
    const UploadResult uploaded = Upload(account.key);
    ASSERT_EQ(uploaded.end, UploadEnd::Done) << uploaded.sentence;
    const ShareResult shared = provider_.Share(account.key, uploaded.stored, ended_.Get());
    ASSERT_TRUE(shared.isShared) << shared.sentence;
    EXPECT_TRUE(provider_.SetExpiry(account.key, shared.shareId, 7, ended_.Get()));
    SYSTEMTIME now{};
    GetLocalTime(&now);
    const std::chrono::sys_days today =
        std::chrono::year(now.wYear) / std::chrono::month(now.wMonth) / std::chrono::day(now.wDay);
    EXPECT_THAT(shares_.Shares(),
                testing::ElementsAre(HasSubstr(ShareDateText(today + std::chrono::days(407)))));
}

} // namespace
} // namespace providers
