// The provider of WebDAV servers with real servers: accounts, uploads, links, deletions.
#include "services/providers/webdav/WebDav.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/webdav/AccountPassword.h"
#include "services/providers/webdav/DavCheck.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "services/providers/webdav/DavPageIds.h"
#include "services/providers/webdav/DavPickerIds.h"
#include "services/providers/webdav/DavSentence.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/providers/webdav/DavUploadFixture.h"
#include "tests/unit/services/providers/webdav/PickerUser.h"

namespace providers {
namespace {

using obcontract::ProviderCapability;
using obtest::DialogUiDriver;
using obtest::ItemText;
using obtest::WaitUntil;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr wchar_t kPattern[] = L"https://files.example.com/{path}";

// All texts below the manager's key, with their names.
void CollectTexts(HKEY parent, const std::wstring& path, std::wstring& all) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    wchar_t name[300];
    BYTE data[9000];
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = 300;
        DWORD size = sizeof data - 2;
        DWORD type = 0;
        if (RegEnumValueW(key, index, name, &nameSize, nullptr, &type, data, &size)) break;
        all += name;
        all += L"=";
        if (type == REG_SZ) all.append(reinterpret_cast<wchar_t*>(data), size / 2);
        all += L"\n";
    }
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = 300;
        if (RegEnumKeyExW(key, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr)) break;
        CollectTexts(key, name, all);
    }
    RegCloseKey(key);
}

class WebDavTest : public testing::Test {
protected:
    WebDavTest() { obtest::ClearProductRegistry(); }
    ~WebDavTest() override {
        relay_.Begin(server_.c_str());
        for (const StorageAccount& account : Accounts()) RemoveDavAccount(book_, account.key);
        obtest::ClearProductRegistry();
        // "Quillbox" and all in it.
        HttpUrl made = UrlBelow(Root(), "Quillbox");
        made.path += '/';
        const DavClient client(session_, login_, nullptr, kNoPauses);
        static_cast<void>(client.Discard(made));
    }

    // From now on the relay passes requests on to this server.
    void Use(const char* server) {
        server_ = server;
        relay_.Begin(server);
    }
    HttpUrl Root() const {
        HttpUrl root = ServerUrl(L"RELAY_URL");
        if (server_ == "ocs") root.path = ServerUrl(L"OCS_URL").path;
        return root;
    }
    std::wstring Address() const { return FromUtf8(HttpUrlText(Root())).value_or(L""); }
    std::wstring Files() const {
        return server_ == "ocs" ? obtest::ServerValue(L"OCS_FILES") : FilesOf(server_);
    }
    // Paths of all files of the server below "Quillbox".
    std::vector<std::wstring> Stored() const {
        auto paths = obtest::ListTree(Files());
        std::erase_if(paths, [](const std::wstring& path) {
            return path.ends_with(L"\\") || !path.starts_with(L"Quillbox\\") ||
                   path.find(L"\\.") != std::wstring::npos;
        });
        return paths;
    }

    StorageAccount AddAccount(const std::wstring& pattern = kPattern, bool hasPasswords = false,
                              const char* password = nullptr) const {
        const auto account = AddDavAccount(book_, {Root(), login_.user, pattern, hasPasswords},
                                           password ? ObLib::Secret(password) : login_.password);
        EXPECT_TRUE(account);
        return account.value_or(StorageAccount{});
    }
    std::vector<StorageAccount> Accounts() const { return book_.Accounts(kWebDavId); }

    // The user fills in the login, and then what comes after it.
    std::optional<StorageAccount> LogIn(const std::function<void(HWND)>& afterwards = {}) {
        DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
            SetDlgItemTextW(dialog, OB_DAV_ADDRESS, Address().c_str());
            SetDlgItemTextW(dialog, OB_DAV_USER, login_.user.c_str());
            SetDlgItemTextW(dialog, OB_DAV_PASSWORD,
                            obtest::ServerValue(L"SERVER_PASSWORD").c_str());
            obtest::PressCommand(dialog, IDOK);
        });
        if (!afterwards) return provider_.LogIn({}, nullptr);
        DialogUiDriver page(OB_DAV_PAGE_PATTERN, afterwards);
        return provider_.LogIn({}, nullptr);
    }
    static void EnterPattern(HWND page) {
        SetDlgItemTextW(page, OB_DAV_PAGE_PATTERN, kPattern);
        obtest::PressCommand(page, IDOK);
    }

    UploadResult Upload(const std::wstring& key, const std::wstring& name = L"Our files.zip") {
        return provider_.Upload(key, {source_, name, L"Quillbox\\20261122101530"}, progress_);
    }
    std::string Download(const std::wstring& link, const std::wstring& password = L"") const {
        HttpRequest request;
        request.url = ParseHttpUrl(ToUtf8(link)).value_or(HttpUrl{});
        const HttpLogin anybody{request.url.origin, L"anybody",
                                ObLib::Secret(ToUtf8(password).c_str())};
        const DavClient others(session_, anybody, nullptr, kNoPauses);
        const auto reply = others.Send(request);
        return Outcome(reply) == "done" ? std::get<HttpReply>(reply).body : Outcome(reply);
    }
    std::string PasswordOf(const std::wstring& key) const {
        const auto password = LoadAccountPassword(key);
        return password ? password->Text() : "none";
    }

    std::string server_ = "apache";
    obtest::ShareServer shares_;
    obtest::Relay relay_{"apache"};
    HttpLogin login_{ServerUrl(L"RELAY_URL").origin, obtest::ServerValue(L"SERVER_USER"),
                     ObLib::Secret(ToUtf8(obtest::ServerValue(L"SERVER_PASSWORD")).c_str())};
    HttpSession session_;
    obtest::TestFolder folder_;
    std::string content_ = ContentOf(300'007);
    std::wstring source_ = folder_.File(L"source.zip", content_);
    RecordedProgress progress_;
    AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    WebDav provider_{book_, kNoPauses};
    ObLib::UniqueKernelHandle ended_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

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

TEST_F(WebDavTest, UploadsAndLinksByThePattern) {
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

TEST_F(WebDavTest, UploadsAndLinksByTheServer) {
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

TEST_F(WebDavTest, ProtectsALinkWhereUserAdministratorOrServerWantIt) {
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
TEST_F(WebDavTest, AServersEarlierEndOfALinkCountsAsItsEnd) {
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
TEST_F(WebDavTest, AsksForTheRulesAgainAfterARefusal) {
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
TEST_F(WebDavTest, KeepsRulesAndPasswordsOfLinksByAccount) {
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
TEST_F(WebDavTest, AShareWhoseReplyIsLostIsNotMadeTwice) {
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

TEST_F(WebDavTest, ReportsWhyTheServerMakesNoLink) {
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
TEST_F(WebDavTest, TakesNoLinkOfTheServerThatIsTooLong) {
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

TEST_F(WebDavTest, GivesNoLinkWithoutThePasswordThatTheUserWants) {
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

TEST_F(WebDavTest, LinksByThePatternWhereTheInterfaceOfTheServerIsSilent) {
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

TEST_F(WebDavTest, EndsALinkByTheServersClock) {
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

// The password was changed on the server: the upload asks for the new one and goes on.
TEST_F(WebDavTest, AnUploadAsksForAPasswordThatNoLongerCounts) {
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
TEST_F(WebDavTest, AWrongPasswordIsTriedOnceBeforeTheUserIsAsked) {
    Use("ocs");
    const StorageAccount account = AddAccount(L"", false, "an old one");
    DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
        EXPECT_EQ(relay_.Logins(), 1);
        obtest::PressCommand(dialog, IDCANCEL);
    });
    EXPECT_EQ(Upload(account.key).end, UploadEnd::Cancelled);
    EXPECT_TRUE(user.WasUsed());
}

TEST_F(WebDavTest, AWrongPasswordIsTriedOnceWithoutTheUser) {
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
TEST_F(WebDavTest, ASecondUploadOfAnAccountDoesNotDisturbTheFirst) {
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

TEST_F(WebDavTest, APasswordThatIsRevokedInTheMiddleIsAskedForOnce) {
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

TEST_F(WebDavTest, AShareNeedsALoginForAPasswordThatNoLongerCounts) {
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

TEST_F(WebDavTest, AShareNeedsALoginWhereThePasswordIsMissing) {
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
TEST_F(WebDavTest, APasswordThatIsRevokedWhileALinkIsMadeLeavesOneLink) {
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
TEST_F(WebDavTest, ANewPasswordIsTriedAtTheAccountsFolderAlone) {
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
TEST_F(WebDavTest, AFailedUploadLeavesEmptyFoldersOnly) {
    const StorageAccount account = AddAccount();
    relay_.On("PUT", "status 507", 0, 100);
    EXPECT_EQ(Upload(account.key).end, UploadEnd::Failed);
    EXPECT_THAT(Stored(), IsEmpty());
    EXPECT_FALSE(PartNotes(book_).HasAny());
    EXPECT_THAT(obtest::ListTree(Files()), testing::Contains(L"Quillbox\\20261122101530\\"));
    EXPECT_THAT(relay_.Methods(), HasSubstr("DELETE"));
}

TEST_F(WebDavTest, AnUploadThatGetsNoPasswordIsCancelledAndLeavesNothing) {
    const StorageAccount account = AddAccount();
    ASSERT_TRUE(ForgetAccountPassword(account.key));
    EXPECT_FALSE(provider_.IsLoggedIn(account.key));
    DialogUiDriver user(OB_DAV_ADDRESS,
                        [](HWND dialog) { obtest::PressCommand(dialog, IDCANCEL); });
    EXPECT_EQ(Upload(account.key).end, UploadEnd::Cancelled);
    EXPECT_THAT(Stored(), IsEmpty());
}

TEST_F(WebDavTest, AnUploadWithoutAWayToLinkAsksForAPattern) {
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

TEST_F(WebDavTest, APasswordThatIsWantedIsNeverLeftOut) {
    const StorageAccount account = AddAccount(kPattern);
    obtest::SetMachinePolicy(L"RequireLinkPassword", L"1");
    DialogUiDriver user(OB_DAV_PAGE_PATTERN,
                        [](HWND page) { obtest::PressCommand(page, IDCANCEL); });
    const UploadResult refused = Upload(account.key);
    EXPECT_EQ(refused.end, UploadEnd::Failed);
    EXPECT_THAT(refused.sentence, HasSubstr(L"Each link has to have a password"));
    EXPECT_THAT(relay_.Methods(), testing::Not(HasSubstr("PUT")));
}

TEST_F(WebDavTest, ALinkThatWouldBeTooLongIsRefusedBeforeTheUpload) {
    const StorageAccount account =
        AddAccount(L"https://h/{path}/{path}/{path}/{path}/{path}/{path}/{path}/{path}");
    std::wstring name(120, L'\u20AC'); // nine characters each
    const UploadResult refused = Upload(account.key, name);
    EXPECT_EQ(refused.end, UploadEnd::Failed);
    EXPECT_THAT(refused.sentence, HasSubstr(L"because its link would be too long"));
    EXPECT_THAT(relay_.Methods(), testing::Not(HasSubstr("PUT")));
}

// The second run of a clash only moves what is there.
TEST_F(WebDavTest, AClashIsReportedAndTheNextRunOnlyMovesTheFile) {
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

TEST_F(WebDavTest, APickBeginsWithThePreferredAccountElseWithTheNewest) {
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

TEST_F(WebDavTest, APickAsksForAPasswordThatNoLongerCounts) {
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

TEST_F(WebDavTest, APickAsksForAPasswordThatIsRevokedBeforeItsLinkIsMade) {
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

TEST_F(WebDavTest, APickThatIsGivenUpLeavesNoLink) {
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

TEST_F(WebDavTest, APickWithoutAnAccountBeginsWithALogin) {
    DialogUiDriver user(OB_DAV_ADDRESS,
                        [](HWND dialog) { obtest::PressCommand(dialog, IDCANCEL); });
    const PickResult result = provider_.Pick({}, nullptr);
    EXPECT_TRUE(user.WasUsed());
    EXPECT_THAT(result.files, IsEmpty());
    EXPECT_EQ(result.sentence, L"");
}

} // namespace
} // namespace providers
