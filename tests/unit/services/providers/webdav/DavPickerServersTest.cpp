// The picker with folders of real servers.
#include <gtest/gtest.h>

#include <algorithm>

#include "services/providers/webdav/DavPicker.h"
#include "tests/unit/services/providers/dav/DavFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/providers/webdav/PickerUser.h"

using obtest::PickerUser;
using obtest::WaitUntil;

namespace providers {
namespace {

// What the picker's threads use, and own.
struct Connection {
    HttpSession session;
    HttpUrl root;
    HttpLogin login;
};

class DavPickerServersTest : public DavAccount {
protected:
    // Removed through the server: not each name is one of Windows.
    ~DavPickerServersTest() override {
        HttpUrl url = UrlBelow(root_, "picked");
        url.path += '/';
        relay_.Begin(GetParam());
        client_.Discard(url);
    }

    DavPickAccount Account() const {
        const auto server = std::make_shared<Connection>();
        server->root = root_;
        server->login = {login_.origin, login_.user, login_.password};
        return {{L"{key}", L"Work"},
                root_.origin,
                [server](const std::vector<std::wstring>& folder, HANDLE cancelled) {
                    const DavClient client(server->session, server->login, cancelled, kNoPauses);
                    HttpUrl url = server->root;
                    for (const std::wstring& name : folder) url = UrlBelow(url, ToUtf8(name));
                    return client.List(url);
                },
                [](const DavItem& item, HANDLE) {
                    ShareResult result;
                    result.isShared = true;
                    result.link = FromUtf8(HttpUrlText(item.url)).value_or(L"");
                    return result;
                }};
    }
    void MakeFolder(const std::vector<std::string>& parts) {
        const auto made = client_.MakeFolders(root_, parts);
        ASSERT_EQ(Outcome(made), "done");
        folder_ = std::get<HttpUrl>(made);
    }
    void Store(const std::wstring& name) {
        HttpRequest request;
        request.method = "PUT";
        request.url = UrlBelow(folder_, ToUtf8(name));
        request.body = ToUtf8(L"content of " + name);
        EXPECT_EQ(Outcome(client_.Send(request)), "done") << ToUtf8(name);
    }
    std::string Download(const std::wstring& link) {
        HttpRequest request;
        const auto url = ParseHttpUrl(ToUtf8(link));
        if (!url) return "no address";
        request.url = *url;
        const auto reply = client_.Send(request);
        const auto* got = std::get_if<HttpReply>(&reply);
        return got ? got->body : Outcome(reply);
    }
    PickResult Pick(const std::function<void(PickerUser)>& use) {
        obtest::DialogUiDriver driver(OB_DAVPICK_LIST,
                                      [&](HWND dialog) { use(PickerUser(dialog)); });
        return PickFromServers(std::vector{Account()}, 0, L"WebDAV", nullptr);
    }
    static void Open(PickerUser user, const std::wstring& name) {
        int row = -1;
        EXPECT_TRUE(WaitUntil([&] {
            const auto names = user.Names();
            const auto found = std::find(names.begin(), names.end(), name);
            if (found != names.end()) row = static_cast<int>(found - names.begin());
            return row >= 0;
        }));
        user.DoubleClick(row);
    }

    HttpUrl folder_;
};
INSTANTIATE_TEST_SUITE_P(Servers, DavPickerServersTest, testing::Values("apache", "sabre"));

TEST_P(DavPickerServersTest, LinksFilesOfOddNamesInFolders) {
    MakeFolder({"picked", "a folder & 100%"});
    const std::vector<std::wstring> names{L"#1?.txt",
                                          L"ends with dots...",
                                          L"pipe | and \"quotes\".txt",
                                          L"\u05E9\u05DC\u05D5\u05DD.txt",
                                          L"\U0001F4CE.txt",
                                          std::wstring(200, L'n') + L".txt"};
    for (const std::wstring& name : names) Store(name);
    const PickResult result = Pick([&](PickerUser user) {
        Open(user, L"picked");
        Open(user, L"a folder & 100%");
        EXPECT_TRUE(WaitUntil([&] { return user.Count() == static_cast<int>(names.size()); }));
        for (int row = 0; row < user.Count(); ++row) user.Select(row);
        user.Press(IDOK);
    });
    ASSERT_EQ(result.files.size(), names.size());
    for (const PickedFile& file : result.files) {
        EXPECT_EQ(Download(file.link), ToUtf8(L"content of " + file.name));
        EXPECT_NE(std::find(names.begin(), names.end(), file.name), names.end());
    }
}

TEST_P(DavPickerServersTest, ReadsAFolderAgainAfterAFailure) {
    MakeFolder({"picked"});
    Store(L"a.txt");
    Pick([&](PickerUser user) {
        Open(user, L"picked");
        EXPECT_TRUE(user.Sees({L"a.txt"}));
        EXPECT_EQ(user.Cell(0, 1), L"16 bytes");
        relay_.On("PROPFIND", "status 403");
        user.PressKey(VK_F5);
        EXPECT_TRUE(user.Reads(L"The server \u201C" + FromUtf8(root_.origin.host).value_or(L"") +
                               L"\u201D doesn't allow you to do this. Please ask whoever manages "
                               L"it."));
        EXPECT_EQ(user.Count(), 0);
        obtest::Click(user.Control(OB_DAVPICK_REFRESH));
        EXPECT_TRUE(user.Sees({L"a.txt"}));
        user.Press(IDCANCEL);
    });
}

TEST_P(DavPickerServersTest, CanBeLeftWhileTheServerIsSilent) {
    relay_.On("PROPFIND", "hold");
    Pick([&](PickerUser user) {
        relay_.WaitUntilHeld(1);
        user.Press(IDCANCEL);
    });
    relay_.Release();
}

TEST_P(DavPickerServersTest, ShowsAFolderOfManyFiles) {
    MakeFolder({"picked"});
    constexpr int kFiles = 2'000;
    for (int index = 0; index < kFiles; ++index)
        obtest::WriteFileContent(
            FilesOf(Server()) + L"\\picked\\" + std::to_wstring(index) + L".txt", "x");
    Pick([&](PickerUser user) {
        Open(user, L"picked");
        EXPECT_TRUE(WaitUntil([&] { return user.Count() == kFiles; }, 60'000));
        EXPECT_EQ(user.Cell(kFiles - 1), std::to_wstring(kFiles - 1) + L".txt");
        user.Press(IDCANCEL);
    });
}

} // namespace
} // namespace providers
