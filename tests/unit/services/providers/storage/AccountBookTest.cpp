#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ProviderManager.h"
#include "services/providers/storage/AccountBook.h"
#include "services/providers/storage/ProviderIds.h"
#include "tests/support/ProductRegistry.h"

namespace {

using providers::AccountBook;
using providers::kMostAccounts;
using providers::kNetworkFolderId;
using providers::kWebDavId;
using providers::StorageAccount;

const std::wstring kKey = obcontract::kProviderManagerKey;
constexpr wchar_t kForeignAccount[] = L"{01234567-89AB-CDEF-0123-456789ABCDEF}";

std::wstring PathOf(const std::wstring& accountKey, std::uint32_t providerId = kWebDavId) {
    return kKey + L"\\Accounts\\" + std::to_wstring(providerId) + L"\\" + accountKey;
}

void SetOrder(const std::wstring& accountKey, std::uint64_t order) {
    obtest::SetRawValue(HKEY_CURRENT_USER, PathOf(accountKey), L"Order", REG_QWORD, &order,
                        sizeof(order));
}

// Runs the system's registry program, as another process that changes the key.
void RunRegistryProgram(const std::wstring& arguments) {
    std::wstring line = L"C:\\windows\\system32\\reg.exe " + arguments;
    STARTUPINFOW start{sizeof(start)};
    PROCESS_INFORMATION made{};
    ASSERT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &start, &made));
    const ObLib::UniqueKernelHandle process(made.hProcess);
    const ObLib::UniqueKernelHandle thread(made.hThread);
    ASSERT_EQ(WaitForSingleObject(process.Get(), 30000), WAIT_OBJECT_0);
    DWORD code = 1;
    GetExitCodeProcess(process.Get(), &code);
    ASSERT_EQ(code, 0u) << "reg.exe failed";
}

class AccountBookTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }

    // Adds an account that must be added, and returns its key.
    std::wstring Add(const std::wstring& label) {
        const auto account = book_.Add(kWebDavId, label);
        EXPECT_TRUE(account);
        return account ? account->key : std::wstring();
    }

    std::vector<std::wstring> Labels() {
        std::vector<std::wstring> labels;
        for (const StorageAccount& account : book_.Accounts(kWebDavId)) {
            labels.push_back(account.label);
        }
        return labels;
    }

    AccountBook book_{HKEY_CURRENT_USER, kKey};
};

TEST_F(AccountBookTest, HasNoAccountInAnEmptyRegistryAndMakesNoKeyByReading) {
    EXPECT_TRUE(book_.Accounts(kWebDavId).empty());
    EXPECT_FALSE(book_.Contains(kWebDavId, kForeignAccount));
    EXPECT_FALSE(book_.Text(kWebDavId, kForeignAccount, L"Address"));
    EXPECT_TRUE(book_.Remove(kWebDavId, kForeignAccount));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kKey));
}

TEST_F(AccountBookTest, ListsTheNewestAccountLast) {
    for (const wchar_t* label : {L"one", L"two", L"three"}) Add(label);
    EXPECT_EQ(Labels(), (std::vector<std::wstring>{L"one", L"two", L"three"}));
}

TEST_F(AccountBookTest, KeepsTheOrderWhenAnAccountBetweenIsRemoved) {
    Add(L"one");
    const std::wstring two = Add(L"two");
    Add(L"three");
    EXPECT_TRUE(book_.Remove(kWebDavId, two));
    Add(L"four");
    EXPECT_EQ(Labels(), (std::vector<std::wstring>{L"one", L"three", L"four"}));
}

TEST_F(AccountBookTest, PutsAnAccountLastThatTheUserLoggedInTo) {
    const std::wstring one = Add(L"one");
    Add(L"two");
    EXPECT_TRUE(book_.MakeNewest(kWebDavId, one));
    EXPECT_EQ(Labels(), (std::vector<std::wstring>{L"two", L"one"}));
    EXPECT_TRUE(book_.MakeNewest(kWebDavId, one));
    EXPECT_FALSE(book_.MakeNewest(kWebDavId, kForeignAccount));
    EXPECT_FALSE(book_.MakeNewest(kNetworkFolderId, one));
    EXPECT_EQ(Labels(), (std::vector<std::wstring>{L"two", L"one"}));
}

TEST_F(AccountBookTest, ReturnsOneAccountByItsKey) {
    const std::wstring one = Add(L"one");
    const auto account = book_.Account(kWebDavId, one);
    ASSERT_TRUE(account);
    EXPECT_EQ(account->key, one);
    EXPECT_EQ(account->label, L"one");
    EXPECT_FALSE(book_.Account(kNetworkFolderId, one));
    EXPECT_FALSE(book_.Account(kWebDavId, kForeignAccount));
}

TEST_F(AccountBookTest, GivesEachAccountAKeyThatRevealsNothing) {
    std::set<std::wstring> keys;
    for (int count = 0; count < 10; ++count) keys.insert(Add(L"ada@example.org"));
    EXPECT_EQ(keys.size(), 10u);
    for (const std::wstring& key : keys) {
        EXPECT_EQ(key.size(), 38u);
        EXPECT_EQ(key.find_first_not_of(L"{}-0123456789ABCDEF"), std::wstring::npos) << key.c_str();
    }
}

TEST_F(AccountBookTest, HasAtMostSixteenAccountsOfAProvider) {
    for (std::size_t count = 0; count < kMostAccounts; ++count) Add(std::to_wstring(count));
    EXPECT_FALSE(book_.Add(kWebDavId, L"one too many"));
    EXPECT_EQ(Labels().size(), kMostAccounts);
    EXPECT_EQ(Labels().back(), L"15");
    EXPECT_TRUE(book_.Add(kNetworkFolderId, L"of another provider"));
    EXPECT_TRUE(book_.Remove(kWebDavId, book_.Accounts(kWebDavId).front().key));
    EXPECT_TRUE(book_.Add(kWebDavId, L"again"));
    EXPECT_EQ(Labels().back(), L"again");
}

TEST_F(AccountBookTest, ListsTheNewestWhenTheRegistryHasMoreThanSixteen) {
    for (std::size_t count = 0; count < kMostAccounts; ++count) Add(std::to_wstring(count));
    obtest::SetValue(HKEY_CURRENT_USER, PathOf(kForeignAccount), L"Label", L"newest");
    SetOrder(kForeignAccount, 1000);
    EXPECT_EQ(Labels().size(), kMostAccounts);
    EXPECT_EQ(Labels().front(), L"1");
    EXPECT_EQ(Labels().back(), L"newest");
}

TEST_F(AccountBookTest, KeepsProvidersAndHivesApart) {
    const std::wstring key = Add(L"one");
    EXPECT_TRUE(book_.Contains(kWebDavId, key));
    EXPECT_FALSE(book_.Contains(kNetworkFolderId, key));
    EXPECT_TRUE(book_.Accounts(kNetworkFolderId).empty());
    EXPECT_TRUE(AccountBook(HKEY_LOCAL_MACHINE, kKey).Accounts(kWebDavId).empty());
    EXPECT_EQ(AccountBook(HKEY_CURRENT_USER, kKey).Accounts(kWebDavId).size(), 1u);
}

TEST_F(AccountBookTest, StoresTheTextsOfAProvider) {
    const std::wstring one = Add(L"one");
    const std::wstring two = Add(L"two");
    EXPECT_TRUE(book_.SetText(kWebDavId, one, L"Address", L"https://example.org/\u00e9"));
    EXPECT_EQ(book_.Text(kWebDavId, one, L"Address"), L"https://example.org/\u00e9");
    EXPECT_FALSE(book_.Text(kWebDavId, two, L"Address"));
    EXPECT_FALSE(book_.Text(kWebDavId, one, L"Other"));
    EXPECT_TRUE(book_.SetText(kWebDavId, one, L"Address", L""));
    EXPECT_EQ(book_.Text(kWebDavId, one, L"Address"), L"");
}

TEST_F(AccountBookTest, StoresNoTextOfAnAccountThatIsntThere) {
    EXPECT_FALSE(book_.SetText(kWebDavId, kForeignAccount, L"Address", L"text"));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, PathOf(kForeignAccount)));
}

TEST_F(AccountBookTest, TakesTextsOfUpToTwoThousandCharacters) {
    const std::wstring key = Add(L"one");
    const std::wstring longest(2000, L'x');
    EXPECT_TRUE(book_.SetText(kWebDavId, key, L"Address", longest));
    EXPECT_EQ(book_.Text(kWebDavId, key, L"Address"), longest);
    EXPECT_FALSE(book_.SetText(kWebDavId, key, L"Address", longest + L'x'));
    EXPECT_EQ(book_.Text(kWebDavId, key, L"Address"), longest);
    obtest::SetValue(HKEY_CURRENT_USER, PathOf(key), L"Address", longest + L'x');
    EXPECT_FALSE(book_.Text(kWebDavId, key, L"Address"));
}

TEST_F(AccountBookTest, TakesNoValueOfAnotherType) {
    const std::wstring key = Add(L"one");
    const std::uint32_t number = 7;
    obtest::SetRawValue(HKEY_CURRENT_USER, PathOf(key), L"Address", REG_DWORD, &number,
                        sizeof(number));
    EXPECT_FALSE(book_.Text(kWebDavId, key, L"Address"));
    const wchar_t path[] = L"%TEMP%";
    obtest::SetRawValue(HKEY_CURRENT_USER, PathOf(key), L"Address", REG_EXPAND_SZ, path,
                        sizeof(path));
    EXPECT_FALSE(book_.Text(kWebDavId, key, L"Address"));
}

TEST_F(AccountBookTest, ReadsATextWithoutANulToItsEnd) {
    const std::wstring key = Add(L"one");
    obtest::SetRawValue(HKEY_CURRENT_USER, PathOf(key), L"Address", REG_SZ, L"abc", 6);
    EXPECT_EQ(book_.Text(kWebDavId, key, L"Address"), L"abc");
}

TEST_F(AccountBookTest, CutsALabelWithoutHalvingACharacter) {
    Add(std::wstring(51, L'x'));
    Add(std::wstring(49, L'x') + L"\xD83D\xDE00");
    EXPECT_EQ(Labels(),
              (std::vector<std::wstring>{std::wstring(50, L'x'), std::wstring(49, L'x')}));
    obtest::SetValue(HKEY_CURRENT_USER, PathOf(kForeignAccount), L"Label", std::wstring(60, L'y'));
    EXPECT_EQ(Labels().front(), std::wstring(50, L'y'));
}

TEST_F(AccountBookTest, TakesAnAccountWithoutAReadableOrderAsTheOldest) {
    const std::wstring one = Add(L"one");
    const std::wstring two = Add(L"two");
    const std::uint32_t number = 99;
    obtest::SetRawValue(HKEY_CURRENT_USER, PathOf(two), L"Order", REG_DWORD, &number,
                        sizeof(number));
    EXPECT_EQ(Labels(), (std::vector<std::wstring>{L"two", L"one"}));
}

TEST_F(AccountBookTest, AddsTheNewestAlsoAfterAForeignOrder) {
    SetOrder(Add(L"one"), ~0ull);
    Add(L"two");
    EXPECT_EQ(Labels(), (std::vector<std::wstring>{L"one", L"two"}));
}

TEST_F(AccountBookTest, LeavesOutKeysThatItCantHaveMade) {
    for (const wchar_t* name :
         {L"account", L"{01234567-89ab-cdef-0123-456789abcdef}",
          L"01234567-89AB-CDEF-0123-456789ABCDEF", L"{01234567-89AB-CDEF-0123-456789ABCDEF}x",
          L"{01234567-89AB-CDEF-0123-456789ABCDEG}"}) {
        obtest::SetValue(HKEY_CURRENT_USER, PathOf(name), L"Label", L"foreign");
        EXPECT_FALSE(book_.Contains(kWebDavId, name));
        EXPECT_FALSE(book_.Text(kWebDavId, name, L"Label"));
        EXPECT_FALSE(book_.SetText(kWebDavId, name, L"Label", L"mine"));
        EXPECT_TRUE(book_.Remove(kWebDavId, name));
        EXPECT_TRUE(obtest::KeyExists(HKEY_CURRENT_USER, PathOf(name)));
    }
    EXPECT_TRUE(Labels().empty());
}

TEST_F(AccountBookTest, LetsNoAccountKeyLeadElsewhereInTheRegistry) {
    const std::wstring key = Add(L"one");
    const std::wstring paths[] = {L"",
                                  L"\\",
                                  key + L"\\below",
                                  L"..\\" + std::to_wstring(kWebDavId) + L"\\" + key,
                                  key + L'\0',
                                  key + L"\\",
                                  std::wstring(999, L'K')};
    obtest::SetValue(HKEY_CURRENT_USER, PathOf(key) + L"\\below", L"Label", L"foreign");
    obtest::SetValue(HKEY_CURRENT_USER, PathOf(L""), L"Label", L"foreign");
    for (const std::wstring& path : paths) {
        EXPECT_FALSE(book_.Contains(kWebDavId, path));
        EXPECT_FALSE(book_.Text(kWebDavId, path, L"Label"));
        EXPECT_FALSE(book_.SetText(kWebDavId, path, L"Label", L"mine"));
        EXPECT_TRUE(book_.Remove(kWebDavId, path));
    }
    EXPECT_TRUE(obtest::KeyExists(HKEY_CURRENT_USER, PathOf(key) + L"\\below"));
    EXPECT_EQ(Labels(), std::vector<std::wstring>{L"one"});
}

TEST_F(AccountBookTest, DoesntSeeAnAccountWithoutALabel) {
    const std::wstring key = Add(L"one");
    const std::uint32_t number = 7;
    obtest::SetRawValue(HKEY_CURRENT_USER, PathOf(key), L"Label", REG_DWORD, &number,
                        sizeof(number));
    EXPECT_TRUE(Labels().empty());
    EXPECT_FALSE(book_.Contains(kWebDavId, key));
}

TEST_F(AccountBookTest, RemovesAnAccountWithAllThatIsBelowIt) {
    const std::wstring key = Add(L"one");
    book_.SetText(kWebDavId, key, L"Address", L"https://example.org/");
    obtest::MakeKey(HKEY_CURRENT_USER, PathOf(key) + L"\\below");
    EXPECT_TRUE(book_.Remove(kWebDavId, key));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, PathOf(key)));
    EXPECT_FALSE(book_.Contains(kWebDavId, key));
    EXPECT_TRUE(book_.Remove(kWebDavId, key));
}

TEST_F(AccountBookTest, SeesAtOnceWhatAnotherProcessChanges) {
    const std::wstring one = Add(L"one");
    const std::wstring two = Add(L"two");
    RunRegistryProgram(L"add \"HKCU\\" + PathOf(one) + L"\" /v Label /d renamed /f");
    RunRegistryProgram(L"delete \"HKCU\\" + PathOf(two) + L"\" /f");
    EXPECT_EQ(Labels(), std::vector<std::wstring>{L"renamed"});
    EXPECT_FALSE(book_.Contains(kWebDavId, two));
    EXPECT_FALSE(book_.SetText(kWebDavId, two, L"Address", L"text"));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, PathOf(two)));
}

TEST_F(AccountBookTest, AddsNothingWhereItCantWrite) {
    // The name of a key has at most 255 characters.
    const AccountBook book(HKEY_CURRENT_USER, std::wstring(300, L'k'));
    EXPECT_FALSE(book.Add(kWebDavId, L"one"));
    EXPECT_TRUE(book.Accounts(kWebDavId).empty());
}

} // namespace
