// Accounts of WebDAV servers in the book, and their passwords beside it.
#include "services/providers/webdav/DavAccount.h"

#include <gtest/gtest.h>

#include "contracts/ProviderManager.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/webdav/AccountPassword.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"

namespace providers {
namespace {

HttpUrl Root(const char* address) { return ParseHttpUrl(address).value_or(HttpUrl{}); }

decltype(&RegSetValueExW) realWriteValue;
const wchar_t* refusedText; // the text that can't be written
LSTATUS WINAPI RefusingWrite(HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                             const BYTE* data, DWORD size) {
    const bool isText = type == REG_SZ;
    if (isText && std::wstring(reinterpret_cast<const wchar_t*>(data)) == refusedText) {
        return ERROR_ACCESS_DENIED;
    }
    return realWriteValue(key, name, reserved, type, data, size);
}

class DavAccountTest : public testing::Test {
protected:
    DavAccountTest() { obtest::ClearProductRegistry(); }
    ~DavAccountTest() override { obtest::ClearProductRegistry(); }

    std::optional<StorageAccount> Add(const DavSettings& settings,
                                      const char* password = "a secret") const {
        return AddDavAccount(book_, settings, ObLib::Secret(password));
    }
    std::string PasswordOf(const std::wstring& key) const {
        const auto password = LoadAccountPassword(key);
        return password ? password->Text() : "none";
    }
    void Set(const std::wstring& key, const wchar_t* name, const std::wstring& text) const {
        EXPECT_TRUE(book_.SetText(kWebDavId, key, name, text));
    }

    AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    DavSettings ann_{Root("https://cloud.example.org:8443/dav/a%20b/"), L"ann@example.org",
                     L"https://files.example.org/{path}", true};
};

TEST_F(DavAccountTest, IsReadAsItWasAdded) {
    const auto account = Add(ann_);
    ASSERT_TRUE(account);
    EXPECT_EQ(account->label, L"cloud.example.org:8443 (ann@example.org)");
    EXPECT_EQ(ReadDavAccount(book_, account->key), ann_);
    EXPECT_EQ(PasswordOf(account->key), "a secret");
    EXPECT_EQ(book_.Text(kWebDavId, account->key, L"Address"),
              L"https://cloud.example.org:8443/dav/a%20b/");
    EXPECT_EQ(book_.Text(kWebDavId, account->key, L"Password"), std::nullopt);
}

TEST_F(DavAccountTest, IsFoundByItsFolderAndUser) {
    const auto account = Add(ann_);
    ASSERT_TRUE(account);
    EXPECT_EQ(DavAccountOf(book_, ann_.root, L"ann@example.org"), account->key);
    EXPECT_EQ(DavAccountOf(book_, ann_.root, L"Ann@example.org"), L"");
    EXPECT_EQ(DavAccountOf(book_, Root("https://cloud.example.org/dav/a%20b/"), ann_.user), L"");
    const auto around = [&](const HttpUrl& url) { return DavAccountsAround(book_, url); };
    EXPECT_EQ(around(UrlBelow(ann_.root, "x.zip")), std::vector{account->key});
    EXPECT_TRUE(around(ann_.root).empty());
    EXPECT_TRUE(around(Root("https://cloud.example.org:8443/dav/x.zip")).empty());
    EXPECT_TRUE(around(Root("https://cloud.example.org/dav/a%20b/x.zip")).empty());
}

TEST_F(DavAccountTest, ChangesAllButThePassword) {
    const auto account = Add(ann_);
    ASSERT_TRUE(account);
    const DavSettings bob{Root("http://127.0.0.1/"), L"bob", L"", false};
    EXPECT_TRUE(ChangeDavAccount(book_, account->key, bob));
    EXPECT_EQ(ReadDavAccount(book_, account->key), bob);
    EXPECT_EQ(book_.Account(kWebDavId, account->key)->label, L"127.0.0.1 (bob)");
    EXPECT_EQ(PasswordOf(account->key), "a secret");
}

TEST_F(DavAccountTest, KeepsNothingOfWhatCannotBeKeptWhole) {
    for (const wchar_t* user : {L"", L"a:b", L"a\nb", L"a\x7F"}) {
        DavSettings settings = ann_;
        settings.user = user;
        EXPECT_FALSE(Add(settings)) << user;
    }
    DavSettings longUser = ann_;
    longUser.user.assign(kLongestDavUser + 1, L'x');
    EXPECT_FALSE(Add(longUser));
    DavSettings longAddress = ann_;
    longAddress.root.path.assign(kLongestDavAddress, 'x');
    longAddress.root.path.front() = longAddress.root.path.back() = '/';
    EXPECT_FALSE(Add(longAddress));
    EXPECT_FALSE(Add(ann_, ""));
    {
        obtest::ImportPatch patch("advapi32.dll", "RegSetValueExW", &RefusingWrite);
        ASSERT_TRUE(patch.Ok());
        realWriteValue = patch.Real();
        refusedText = L"https://files.example.org/{path}";
        EXPECT_FALSE(Add(ann_));
    }
    EXPECT_TRUE(book_.Accounts(kWebDavId).empty());
}

TEST_F(DavAccountTest, StaysAsItWasWhenAChangeCannotBeWritten) {
    const auto account = Add(ann_);
    ASSERT_TRUE(account);
    DavSettings other = ann_;
    other.user = L"bob";
    other.pattern = L"https://refused/{path}";
    {
        obtest::ImportPatch patch("advapi32.dll", "RegSetValueExW", &RefusingWrite);
        ASSERT_TRUE(patch.Ok());
        realWriteValue = patch.Real();
        refusedText = other.pattern.c_str();
        EXPECT_FALSE(ChangeDavAccount(book_, account->key, other));
    }
    EXPECT_EQ(ReadDavAccount(book_, account->key), ann_);
}

TEST_F(DavAccountTest, DamagedValuesMakeNoAccount) {
    const auto account = Add(ann_);
    ASSERT_TRUE(account);
    Set(account->key, L"LinkPattern", L"no pattern");
    Set(account->key, L"LinkPasswords", L"yes");
    EXPECT_EQ(ReadDavAccount(book_, account->key)->pattern, L"");
    EXPECT_FALSE(ReadDavAccount(book_, account->key)->hasLinkPasswords);
    for (const wchar_t* address :
         {L"", L"cloud.example.org", L"ftp://cloud.example.org/", L"https://ann@example.org/",
          L"https://example.org/no-folder", L"https://example.org/?query"}) {
        Set(account->key, L"Address", address);
        EXPECT_FALSE(ReadDavAccount(book_, account->key)) << address;
    }
    EXPECT_FALSE(ReadDavAccount(book_, L"..\\101"));
}

// No link goes out without a password because the registry couldn't be read once.
TEST_F(DavAccountTest, HasPasswordsWhenTheValueCannotBeRead) {
    const auto account = Add(ann_);
    ASSERT_TRUE(account);
    Set(account->key, L"LinkPasswords", L"");
    EXPECT_FALSE(ReadDavAccount(book_, account->key)->hasLinkPasswords);
    const std::wstring key =
        std::wstring(obcontract::kProviderManagerKey) + L"\\Accounts\\102\\" + account->key;
    ASSERT_EQ(RegDeleteKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"LinkPasswords"), 0);
    EXPECT_TRUE(ReadDavAccount(book_, account->key)->hasLinkPasswords);
}

TEST_F(DavAccountTest, IsRemovedWithItsPassword) {
    const auto account = Add(ann_);
    const auto other = Add({Root("https://example.org/"), L"bob", L"", false}, "another");
    ASSERT_TRUE(account && other);
    RemoveDavAccount(book_, account->key);
    EXPECT_FALSE(ReadDavAccount(book_, account->key));
    EXPECT_EQ(PasswordOf(account->key), "none");
    EXPECT_EQ(PasswordOf(other->key), "another");
    EXPECT_EQ(book_.Accounts(kWebDavId).size(), 1U);
}

} // namespace
} // namespace providers
