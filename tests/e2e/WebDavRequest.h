// What whole requests with accounts of real WebDAV servers share.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/AccountStore.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/webdav/DavAccount.h"
#include "tests/e2e/CloudRequest.h"
#include "tests/e2e/Curl.h"
#include "tests/e2e/RealRequest.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/CloudServers.h"

namespace obtest {

// One run of a test for each server.
class WebDavRequest : public RealRequest, public testing::WithParamInterface<const char*> {
protected:
    using Texts = std::vector<std::wstring>;

    void SetUp() override {
        RealRequest::SetUp();
        shares_.Begin();
    }
    void TearDown() override {
        RemoveTree(FilesOfServer() + L"\\Quillbox");
        for (const auto& account : book_.Accounts(providers::kWebDavId)) {
            providers::RemoveDavAccount(book_, account.key);
        }
        RealRequest::TearDown();
    }

    bool MakesLinks() const { return GetParam() == std::string("ocs"); }
    std::wstring Value(const wchar_t* name) const {
        std::wstring value;
        for (const char* c = GetParam(); *c; ++c) value += static_cast<wchar_t>(*c - 'a' + 'A');
        return ServerValue((value + name).c_str());
    }
    std::wstring Address() const { return Value(L"_URL"); }
    // The same server through the relay.
    std::wstring AddressOfRelay() const {
        std::wstring address = ServerValue(L"RELAY_URL");
        if (MakesLinks()) address.replace(address.find(L"/dav/"), 5, L"/cloud/remote.php/webdav/");
        return address;
    }
    std::wstring FilesOfServer() const { return Value(L"_FILES"); }
    std::wstring User() const { return ServerValue(L"SERVER_USER"); }
    std::wstring Password() const { return ServerValue(L"SERVER_PASSWORD"); }
    // The server itself, where it makes no links.
    std::wstring Pattern() const { return MakesLinks() ? L"" : Address() + L"{path}"; }

    // The account's key.
    std::wstring AddAccount(const std::wstring& address, bool hasPasswords = false) {
        const auto account = MakeAccount(address, hasPasswords);
        return account ? account->key : L"";
    }
    void AddDefaultAccount(const std::wstring& address, bool hasPasswords = false) {
        const auto account = MakeAccount(address, hasPasswords);
        ASSERT_TRUE(account);
        ASSERT_TRUE(
            store_.SaveDefaultProfile(providers::ProfileOf(providers::kWebDavId, *account)));
    }
    std::optional<providers::StorageAccount> MakeAccount(const std::wstring& address,
                                                         bool hasPasswords) {
        const auto root = providers::ParseHttpUrl(providers::ToUtf8(address));
        EXPECT_TRUE(root) << address;
        if (!root) return {};
        auto account =
            providers::AddDavAccount(book_, {*root, User(), Pattern(), hasPasswords},
                                     ObLib::Secret(providers::ToUtf8(Password()).c_str()));
        EXPECT_TRUE(account);
        return account;
    }
    std::wstring LargeFile() const { return files_.File(L"large.bin", LargeContent()); }

    // The paths of all files in the folders that requests have created on the server.
    Texts AllStored() const {
        Texts tree = ListTree(FilesOfServer());
        std::erase_if(tree, [](const std::wstring& path) {
            return !path.starts_with(L"Quillbox\\") || path.find(L"\\.") != std::wstring::npos ||
                   path.ends_with(L"\\");
        });
        return tree;
    }
    // The only one.
    std::wstring Stored() const {
        const Texts stored = AllStored();
        EXPECT_EQ(stored.size(), 1u);
        return stored.empty() ? L"" : stored[0];
    }
    // What the page was handed, field by field; the link.
    std::wstring ExpectLinkText() {
        EXPECT_FALSE(browser_.delivered.empty());
        if (browser_.delivered.empty()) return {};
        const std::wstring start = L"link ";
        EXPECT_TRUE(browser_.delivered[0].starts_with(start)) << browser_.delivered[0];
        const Texts fields = FieldsOf(browser_.delivered[0].substr(start.size()));
        EXPECT_EQ(fields.size(), 10u);
        if (fields.size() != 10) return {};
        EXPECT_EQ(fields[0], L"0");
        EXPECT_EQ(fields[1], L" ");
        name_ = fields[2];
        if (!isStamped_) {
            EXPECT_EQ(name_, L"large.zip");
        }
        EXPECT_EQ(fields[4], L"Shared from: WebDAV server");
        EXPECT_EQ(fields[5], Text(131));
        EXPECT_EQ(fields[6], Text(132));
        EXPECT_EQ(fields[7], Text(133));
        EXPECT_EQ(fields[8], expiry_ + Text(134));
        EXPECT_EQ(fields[9], L"#POPUP_MESSAGE_BEGIN#" + Text(160) + L"#POPUP_MESSAGE_END#");
        EXPECT_THAT(browser_.OwnDialogs(), testing::IsEmpty());
        return fields[3];
    }
    // The link of the page gives others the bytes that the server has, which are the zip.
    void ExpectLinkToZip(const std::wstring& linkPassword = L"") {
        const std::wstring link = ExpectLinkText();
        const std::wstring stored = Stored();
        EXPECT_TRUE(stored.ends_with(L"\\" + name_)) << stored;
        std::wstring below = stored;
        std::ranges::replace(below, L'\\', L'/');
        if (!MakesLinks()) {
            EXPECT_EQ(link, Address() + below);
        }
        const auto bytes =
            MakesLinks() ? CurlGet(link, linkPassword.empty() ? L"" : L"anybody", linkPassword)
                         : CurlGet(link, User(), Password());
        ASSERT_TRUE(bytes);
        EXPECT_TRUE(bytes == ReadFileContent(FilesOfServer() + L"\\" + stored));
        ASSERT_TRUE(browser_.cleanupFile); // the zip that was uploaded
        EXPECT_TRUE(bytes == ReadFileContent(*browser_.cleanupFile));
        const auto entries = ReadZip(*browser_.cleanupFile);
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_TRUE(entries.at("large.bin").content == LargeContent());
    }
    // The user has seen this sentence after the name of the zip, and nothing was handed to the
    // page.
    void ExpectNotUploaded(const MessageBoxWatcher& boxes, const std::wstring& sentence) const {
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_EQ(boxes.Seen()[0].caption, L"Ombrix Vellant");
        EXPECT_EQ(boxes.Seen()[0].text, L"\u201Clarge.zip\u201D wasn't uploaded. " + sentence +
                                            L" Nothing was attached, and your files are "
                                            L"unchanged.");
        EXPECT_THAT(browser_.delivered, testing::Each(testing::Not(testing::StartsWith(L"link"))));
    }

    std::wstring expiry_;    // the text for the days until the deletion
    bool isStamped_ = false; // whether the zip was stored under another name, for the time
    std::wstring name_;      // that the mail has
    ShareServer shares_;
    providers::AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    providers::AccountStore store_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
};

} // namespace obtest
