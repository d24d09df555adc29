// Links for uploaded files: what the user reads, what the product gets.
#include <atomic>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "services/providers/storage/LinkPasswordDialogIds.h"
#include "services/providers/storage/UploadDialogIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/storage/InstanceFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/providers/ui/MaskedLetters.h"

namespace {

using namespace obcontract;
using obtest::DialogUiDriver;
using obtest::MessageBoxWatcher;
using providers::ShareResult;
using providers::StoredFile;

constexpr wchar_t kNoLink[] = L"“a.zip” was uploaded, but it has no link yet, and nothing was put "
                              L"into the mail. The link can't be made.";

ShareResult ProtectedShare() {
    ShareResult result{true, L"https://example.org/1", L"id", {}, {}};
    result.password.assign(std::size(obtest::kMasked), L' ');
    for (std::size_t at = 0; at < result.password.size(); ++at) {
        result.password[at] = obtest::Letter(at);
    }
    return result;
}

class SharedFiles : public obtest::InstanceFixture {
protected:
    void SetUp() override {
        InstanceFixture::SetUp();
        key_ = Add(kSeven, L"my files");
        sevenScript_->share = [](auto&, const StoredFile& file, HANDLE) {
            return ShareResult{true, L"https://example.org" + file.path, L"id", {}, {}};
        };
    }

    // A list with the uploaded files, as the product makes it.
    DownloadList* Uploaded(std::initializer_list<const wchar_t*> names = {L"a.zip"},
                           const std::wstring& accountKey = {}) {
        const std::wstring key = accountKey.empty() ? key_ : accountKey;
        UploadList* uploads = On::CreateUploadList::Call(Seven(), key.c_str());
        for (const wchar_t* name : names) {
            OnUploads::AddFile::Call(uploads, L"C:\\t\\file", name, 0, 0, L"folder");
        }
        EXPECT_TRUE(Run(uploads));
        DownloadList* list = On::CreateDownloadList::Call(Seven());
        CloudItem item;
        for (std::uint32_t index = 0; OnUploads::GetItem::Call(uploads, index, &item); ++index) {
            OnDownloads::AddItem::Call(list, &item);
        }
        return list;
    }

    std::wstring LinkOf(DownloadList* list, std::uint32_t index = 0) {
        CloudItem item{};
        EXPECT_TRUE(OnDownloads::GetItem::Call(list, index, &item));
        return item.link;
    }

    bool Share(DownloadList* list) { return On::ShareItems::Call(Seven(), list) != 0; }

    // Shares and cancels whatever box comes. The boxes' texts.
    std::vector<std::wstring> BoxesOfAFailure(DownloadList* list) {
        MessageBoxWatcher watcher;
        watcher.AnswerWith(IDCANCEL);
        EXPECT_FALSE(Share(list));
        std::vector<std::wstring> texts;
        for (const auto& box : watcher.Seen()) texts.push_back(box.text);
        return texts;
    }

    std::wstring key_;
};

TEST_F(SharedFiles, GetTheirLinks) {
    DownloadList* list = Uploaded({L"a.zip", L"b.zip"});
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(LinkOf(list, 0), L"https://example.org/folder/a.zip");
    EXPECT_EQ(LinkOf(list, 1), L"https://example.org/folder/b.zip");
}

TEST_F(SharedFiles, AreSharedByTheAccountsOwnProvider) {
    const std::wstring key = Add(kEight);
    eightScript_->share = [&](const std::wstring& asked, const StoredFile& file, HANDLE) {
        EXPECT_EQ(asked, key);
        EXPECT_EQ(file.version, L"version");
        return ShareResult{true, L"https://eight.example/1", L"id", {}, {}};
    };
    DownloadList* list = Uploaded({L"a.zip"}, key);
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(LinkOf(list), L"https://eight.example/1");
}

TEST_F(SharedFiles, AreSharedOnAnotherThreadWhileMessagesAreDispatched) {
    const DWORD dialogThread = GetCurrentThreadId();
    struct Window {
        static LRESULT CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
            if (message == WM_APP) return 42;
            return DefWindowProcW(window, message, wParam, lParam);
        }
    };
    const ObLib::UniqueWindow window(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1,
                                                     nullptr, nullptr, nullptr, nullptr));
    SetWindowLongPtrW(window.Get(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Window::Proc));
    sevenScript_->share = [=, handle = window.Get()](auto&, auto&, HANDLE) {
        EXPECT_NE(GetCurrentThreadId(), dialogThread);
        EXPECT_EQ(SendMessageW(handle, WM_APP, 0, 0), 42); // answered by the dialogs' thread
        return ShareResult{true, L"https://example.org/1", L"id", {}, {}};
    };
    EXPECT_TRUE(Share(Uploaded()));
}

TEST_F(SharedFiles, HaveEscapedPipesInTheirLinks) {
    sevenScript_->share = [](auto&, auto&, HANDLE) {
        return ShareResult{true, L"https://example.org/a|b", L"id", {}, {}};
    };
    DownloadList* list = Uploaded();
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(LinkOf(list), L"https://example.org/a%7Cb");
}

TEST_F(SharedFiles, TakeALinkOfFullLengthAndNoLongerOne) {
    const std::wstring longest = L"https://example.org/" + std::wstring(2388, L'x');
    sevenScript_->share = [&](auto&, auto&, HANDLE) {
        return ShareResult{true, longest, L"id", {}, {}};
    };
    DownloadList* list = Uploaded();
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(LinkOf(list), longest);
    EXPECT_EQ(longest.size(), std::size(CloudItem{}.link) - 1);
    sevenScript_->share = [&](auto&, auto&, HANDLE) {
        return ShareResult{true, longest + L"x", L"id", {}, {}};
    };
    EXPECT_EQ(BoxesOfAFailure(Uploaded()), std::vector<std::wstring>{kNoLink});
}

TEST_F(SharedFiles, WithoutALinkAreExplainedByTheProvidersSentence) {
    sevenScript_->share = [](auto&, auto&, HANDLE) {
        return ShareResult{false, {}, {}, {}, L"The server allows no links."};
    };
    DownloadList* list = Uploaded();
    const std::wstring address = LinkOf(list);
    EXPECT_EQ(
        BoxesOfAFailure(list),
        std::vector<std::wstring>{L"“a.zip” was uploaded, but it has no link yet, and nothing "
                                  L"was put into the mail. The server allows no links."});
    EXPECT_EQ(LinkOf(list), address) << "not a link";
}

TEST_F(SharedFiles, WithoutALinkAreExplainedAlsoWhenTheProviderHasNoSentence) {
    sevenScript_->share = [](auto&, auto&, HANDLE) { return ShareResult{}; };
    EXPECT_EQ(BoxesOfAFailure(Uploaded()), std::vector<std::wstring>{kNoLink});
    sevenScript_->share = [](auto&, auto&, HANDLE) { return ShareResult{true, {}, {}, {}, {}}; };
    EXPECT_EQ(BoxesOfAFailure(Uploaded()), std::vector<std::wstring>{kNoLink});
    sevenScript_->throws = true;
    EXPECT_EQ(BoxesOfAFailure(Uploaded()), std::vector<std::wstring>{kNoLink});
}

TEST_F(SharedFiles, AreTriedAgainUntilTheUserGivesUp) {
    std::atomic<int> tries = 0;
    sevenScript_->share = [&](auto&, const StoredFile&, HANDLE) {
        return ++tries < 3 ? ShareResult{}
                           : ShareResult{true, L"https://example.org/3", L"id", {}, {}};
    };
    DownloadList* list = Uploaded();
    MessageBoxWatcher watcher;
    watcher.AnswerWith(IDRETRY);
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(tries, 3);
    ASSERT_EQ(watcher.Seen().size(), 2u);
    EXPECT_EQ(watcher.Seen()[0].caption, L"Ombrix Vellant");
    EXPECT_TRUE(watcher.Seen()[0].hasIcon);
    EXPECT_EQ(watcher.Seen()[0].defaultButton, IDRETRY);
    EXPECT_EQ(LinkOf(list), L"https://example.org/3");
}

// The password was changed on the server after the upload.
TEST_F(SharedFiles, AreSharedAfterANewLogin) {
    std::atomic<bool> hasLoggedIn = false;
    sevenScript_->share = [&](auto&, const StoredFile&, HANDLE) {
        if (hasLoggedIn) return ShareResult{true, L"https://example.org/1", L"id", {}, {}};
        return ShareResult{false, {}, {}, {}, L"Please log in again.", true};
    };
    sevenScript_->logIn = [&](const std::wstring& key) {
        EXPECT_EQ(key, key_);
        hasLoggedIn = true;
        return providers::StorageAccount{key, L"my files"};
    };
    DownloadList* list = Uploaded();
    const MessageBoxWatcher watcher;
    EXPECT_TRUE(Share(list));
    EXPECT_TRUE(watcher.Seen().empty());
    EXPECT_EQ(LinkOf(list), L"https://example.org/1");
}

TEST_F(SharedFiles, AskForALoginOnceBeforeTheUserDecides) {
    std::atomic<int> shares = 0;
    sevenScript_->share = [&](auto&, const StoredFile&, HANDLE) {
        ++shares;
        return ShareResult{false, {}, {}, {}, L"Please log in again.", true};
    };
    int logins = 0;
    bool isCancelled = false;
    using Login = std::optional<providers::StorageAccount>;
    sevenScript_->logIn = [&](const std::wstring& key) {
        ++logins;
        return isCancelled ? Login() : Login({key, L"my files"});
    };
    DownloadList* list = Uploaded();
    EXPECT_EQ(BoxesOfAFailure(list).size(), 1u);
    EXPECT_EQ(shares, 2);
    EXPECT_EQ(logins, 1);
    isCancelled = true;
    const auto boxes = BoxesOfAFailure(list);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_TRUE(boxes[0].ends_with(L"Please log in again.")) << boxes[0];
    EXPECT_EQ(shares, 3);
}

TEST_F(SharedFiles, ArentSharedTwice) {
    std::vector<std::wstring> shared;
    bool fails = true;
    sevenScript_->share = [&](auto&, const StoredFile& file, HANDLE) {
        shared.push_back(file.path);
        if (fails && file.path == L"/folder/b.zip") return ShareResult{};
        return ShareResult{true, L"https://example.org" + file.path, L"id", {}, {}};
    };
    DownloadList* list = Uploaded({L"a.zip", L"b.zip"});
    EXPECT_EQ(BoxesOfAFailure(list).size(), 1u);
    fails = false;
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(shared,
              (std::vector<std::wstring>{L"/folder/a.zip", L"/folder/b.zip", L"/folder/b.zip"}));
    EXPECT_EQ(LinkOf(list, 0), L"https://example.org/folder/a.zip");
}

TEST_F(SharedFiles, AreNeverAnEmptyList) {
    EXPECT_EQ(BoxesOfAFailure(On::CreateDownloadList::Call(Seven())),
              std::vector<std::wstring>{L"There is no file to make a link to, and nothing was put "
                                        L"into the mail. Please try again."});
}

TEST_F(SharedFiles, NeedAListOfThisInstance) {
    DownloadList* list = Uploaded();
    EXPECT_FALSE(On::ShareItems::Call(Eight(), list));
    EXPECT_FALSE(Share(nullptr));
}

TEST_F(SharedFiles, AreOfThisRun) {
    DownloadList* list = On::CreateDownloadList::Call(Seven());
    CloudItem item{};
    std::copy_n(L"a.zip", 6, item.name);
    std::copy_n(L"https://example.org/x", 22, item.link);
    OnDownloads::AddItem::Call(list, &item);
    EXPECT_EQ(BoxesOfAFailure(list), std::vector<std::wstring>{kNoLink});
}

TEST_F(SharedFiles, AreExplainedInFrontOfTheUploadsWindow) {
    const ObLib::UniqueWindow window(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1,
                                                     nullptr, nullptr, nullptr, nullptr));
    DownloadList* list = Uploaded();
    run_->owner = window.Get();
    sevenScript_->share = [](auto&, auto&, HANDLE) { return ShareResult{}; };
    MessageBoxWatcher watcher;
    watcher.AnswerWith(IDCANCEL);
    EXPECT_FALSE(Share(list));
    ASSERT_EQ(watcher.Seen().size(), 1u);
    EXPECT_EQ(watcher.Seen()[0].owner, window.Get());
}

TEST_F(SharedFiles, EndSilentlyWithTheSession) {
    DownloadList* list = Uploaded();
    std::atomic<bool> wasStopped = false;
    const ObLib::UniqueKernelHandle left(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    sevenScript_->share = [&](auto&, auto&, HANDLE stop) {
        run_->End(); // Deinit, while the server is silent
        wasStopped = WaitForSingleObject(stop, 20000) == WAIT_OBJECT_0;
        SetEvent(left.Get());
        return ShareResult{};
    };
    EXPECT_FALSE(Share(list)); // a box would wait for ever
    EXPECT_EQ(WaitForSingleObject(left.Get(), 20000), WAIT_OBJECT_0);
    EXPECT_TRUE(wasStopped);
}

TEST_F(SharedFiles, ShowAWindowWhenItTakesLongAndCanBeCancelledInIt) {
    DownloadList* list = Uploaded();
    run_->windowDelay = 0;
    sevenScript_->share = [](auto&, auto&, HANDLE stop) {
        WaitForSingleObject(stop, 20000);
        return ShareResult{true, L"https://example.org/late", L"id", {}, {}};
    };
    DialogUiDriver user(OB_UPLOAD_BAR, [](HWND dialog) {
        EXPECT_EQ(obtest::TextOf(dialog), L"Making the link");
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_UPLOAD_BODY)),
                  L"Your file is in the cloud. Its link is being made for your mail.");
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_UPLOAD_FILE)), L"a.zip");
        DialogUiDriver::Press(dialog, IDCANCEL);
    });
    EXPECT_EQ(BoxesOfAFailure(list), std::vector<std::wstring>{kNoLink});
    EXPECT_TRUE(user.WasUsed());
}

// The server takes its time; the user is impatient.
TEST_F(SharedFiles, AreSharedOnceWhenTheUserTriesAgainBeforeTheServerHasReplied) {
    DownloadList* list = Uploaded();
    run_->windowDelay = 0;
    std::atomic<int> shares = 0;
    std::atomic<bool> wasStopped = false;
    const ObLib::UniqueKernelHandle replies(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    sevenScript_->share = [&](auto&, auto&, HANDLE stop) {
        ++shares;
        const HANDLE events[] = {replies.Get(), stop};
        wasStopped = WaitForMultipleObjects(2, events, FALSE, 20000) != WAIT_OBJECT_0;
        return ShareResult{true, L"https://example.org/first", L"id", {}, {}};
    };
    DialogUiDriver user(OB_UPLOAD_BAR, [&](HWND dialog) {
        DialogUiDriver::Press(dialog, IDCANCEL);
        SetEvent(replies.Get());
    });
    MessageBoxWatcher watcher;
    watcher.AnswerWith(IDRETRY);
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(watcher.Seen().size(), 1u);
    EXPECT_EQ(shares, 1);
    EXPECT_FALSE(wasStopped);
    EXPECT_EQ(LinkOf(list), L"https://example.org/first");
}

TEST_F(SharedFiles, StopTheServersCallOnceTheUserGivesUp) {
    DownloadList* list = Uploaded();
    run_->windowDelay = 0;
    const ObLib::UniqueKernelHandle stopped(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    sevenScript_->share = [&](auto&, auto&, HANDLE stop) {
        if (WaitForSingleObject(stop, 20000) == WAIT_OBJECT_0) SetEvent(stopped.Get());
        return ShareResult{};
    };
    DialogUiDriver user(OB_UPLOAD_BAR,
                        [&](HWND dialog) { DialogUiDriver::Press(dialog, IDCANCEL); });
    EXPECT_EQ(BoxesOfAFailure(list).size(), 1u);
    EXPECT_EQ(WaitForSingleObject(stopped.Get(), 20000), WAIT_OBJECT_0);
}

TEST_F(SharedFiles, DisableTheUploadsWindowMeanwhile) {
    const ObLib::UniqueWindow window(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1,
                                                     nullptr, nullptr, nullptr, nullptr));
    DownloadList* list = Uploaded();
    run_->owner = window.Get();
    sevenScript_->share = [handle = window.Get()](auto&, auto&, HANDLE) {
        const bool isDisabled = obtest::WaitUntil([handle] { return !IsWindowEnabled(handle); });
        return ShareResult{isDisabled, L"https://example.org/1", L"id", {}, {}};
    };
    EXPECT_TRUE(Share(list));
    EXPECT_TRUE(IsWindowEnabled(window.Get()));
}

TEST_F(SharedFiles, ArentExplainedOnceTheUploadsWindowHasGone) {
    DownloadList* list = Uploaded();
    {
        const ObLib::UniqueWindow window(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1,
                                                         nullptr, nullptr, nullptr, nullptr));
        run_->owner = window.Get();
    }
    EXPECT_FALSE(Share(list)); // a box would wait for ever
}

TEST_F(SharedFiles, ShowTheirPasswordOnce) {
    sevenScript_->share = [](auto&, auto&, HANDLE) {
        return ShareResult{true, L"https://example.org/1", L"id", L"correct-horse", {}};
    };
    DownloadList* list = Uploaded();
    {
        DialogUiDriver user(OB_LINK_PASSWORD_TEXT, [](HWND dialog) {
            EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_TEXT)), L"correct-horse");
            EXPECT_NE(obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_SENTENCE)).find(L"a.zip"),
                      std::wstring::npos);
            DialogUiDriver::Press(dialog, IDOK);
        });
        EXPECT_TRUE(Share(list));
        EXPECT_TRUE(user.WasUsed());
    }
    EXPECT_EQ(LinkOf(list), L"https://example.org/1");
    EXPECT_TRUE(Share(list)) << "no second dialog, which nobody would close";
}

TEST_F(SharedFiles, LeaveNoCopyOfTheirPasswordInMemory) {
    sevenScript_->share = [](auto&, auto&, HANDLE) { return ProtectedShare(); };
    DownloadList* list = Uploaded();
    DialogUiDriver user(OB_LINK_PASSWORD_TEXT, [](HWND dialog) {
        EXPECT_GE(obtest::TimesInMemory(2), 2) << "the share's and the field's";
        DialogUiDriver::Press(dialog, IDOK);
    });
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(obtest::TimesInMemory(2), 0);
}

// The user has given up, and the link comes all the same.
TEST_F(SharedFiles, LeaveNoCopyOfAPasswordThatComesTooLate) {
    ObLib::UniqueKernelHandle thread;
    std::atomic<int> copies = 0;
    run_->windowDelay = 0;
    sevenScript_->share = [&](auto&, auto&, HANDLE stop) {
        HANDLE own = nullptr;
        DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &own,
                        SYNCHRONIZE, FALSE, 0);
        thread.Reset(own);
        WaitForSingleObject(stop, 20000);
        ShareResult result = ProtectedShare();
        copies = obtest::TimesInMemory(2);
        return result;
    };
    DownloadList* list = Uploaded();
    DialogUiDriver user(OB_UPLOAD_BAR,
                        [](HWND dialog) { DialogUiDriver::Press(dialog, IDCANCEL); });
    EXPECT_EQ(BoxesOfAFailure(list).size(), 1u);
    ASSERT_EQ(WaitForSingleObject(thread.Get(), 20000), WAIT_OBJECT_0);
    EXPECT_GE(copies, 1);
    EXPECT_EQ(obtest::TimesInMemory(2), 0);
}

int failuresLeft;

// The dialog can't be created at first; then the user closes it.
INT_PTR WINAPI LateDialog(HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM) {
    return failuresLeft-- > 0 ? -1 : IDOK;
}

TEST_F(SharedFiles, AreSharedOnceWhenTheirPasswordCantBeShownAtFirst) {
    std::atomic<int> shares = 0;
    sevenScript_->share = [&](auto&, auto&, HANDLE) {
        ++shares;
        return ShareResult{true, L"https://example.org/1", L"id", L"correct-horse", {}};
    };
    DownloadList* list = Uploaded();
    failuresLeft = 2;
    const obtest::ImportPatch patch("user32.dll", "DialogBoxParamW", &LateDialog);
    ASSERT_TRUE(patch.Ok());
    MessageBoxWatcher watcher;
    watcher.AnswerWith(IDRETRY);
    EXPECT_TRUE(Share(list));
    EXPECT_EQ(watcher.Seen().size(), 2u);
    EXPECT_EQ(shares, 1);
    EXPECT_EQ(LinkOf(list), L"https://example.org/1");
}

} // namespace
