// What the tests of the WebDAV provider share: accounts, a relay in front of a real server, and
// the user of its dialogs.
#pragma once

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

using obcontract::ProviderCapability;
using obtest::DialogUiDriver;
using obtest::ItemText;
using obtest::WaitUntil;
using testing::HasSubstr;
using testing::IsEmpty;

inline constexpr wchar_t kPattern[] = L"https://files.example.com/{path}";

// All texts below the manager's key, with their names.
inline void CollectTexts(HKEY parent, const std::wstring& path, std::wstring& all) {
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

} // namespace providers
