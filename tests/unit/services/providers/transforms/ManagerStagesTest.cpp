// The stages of the manager's module, called as the product calls them, with a work process that
// does what the test asks: what is on the disk afterwards and what the user reads.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "services/providers/ui/PersonalDataDialogIds.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "tests/support/AbsentModule.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

namespace {

using namespace stagetest;

class ManagerStages : public ManagerFixture {};

TEST_F(ManagerStages, CountTheSelectedTransformsThatWorkInThem) {
    std::int32_t counts[4] = {9, 9, 9, 9};
    const auto count = [&] {
        Entries().GetSelectedTransformSummary(manager_, &counts[0], &counts[1], &counts[2],
                                              &counts[3]);
        return counts[0] * 1000 + counts[1] * 100 + counts[2] * 10 + counts[3];
    };
    EXPECT_EQ(count(), 11); // one for each file, one at the end
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo, kTransform));
    EXPECT_EQ(count(), 0);
}

TEST_F(ManagerStages, PutTheResultInThePlaceOfTheCopy) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(obtest::ReadFileContent(path), "clean");
    EXPECT_EQ(Entries().GetProviderTarget(manager_), path);
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
}

TEST_F(ManagerStages, VisitTwoPicksOfOneNameOnce) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    ASSERT_TRUE(obtest::WriteFileContent(path, "not visited again"));
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(obtest::ReadFileContent(path), "not visited again");
    EXPECT_EQ(Entries().GetProviderTarget(manager_), path);
}

TEST_F(ManagerStages, GoOnWithTheNextFileAfterAFileThatKillsTheWorkProcess) {
    const std::wstring bad = folder_.File(L"bad.jpg", "bad");
    const std::wstring good = folder_.File(L"good.jpg", "good");
    const obtest::MessageBoxWatcher boxes;
    for (const char* word : {"crash", "crash-after-writing", "half", "exit", "garbage"}) {
        Script(word);
        ASSERT_TRUE(Execute(folder_.File(L"bad.jpg", "bad")));
        Entries().Deinit(manager_); // forgets the visit
        SetUp();
        EXPECT_EQ(obtest::ReadFileContent(bad), "bad");
    }
    Script("crash");
    EXPECT_TRUE(Execute(bad));
    Script("good");
    EXPECT_TRUE(Execute(good));
    EXPECT_EQ(obtest::ReadFileContent(good), "clean");
    EXPECT_EQ(Files(), (Names{L"bad.jpg", L"good.jpg"}));
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(ManagerStages, StopWithASentenceOnAFullDisk) { ExpectRefused("full"); }
TEST_F(ManagerStages, StopWithASentenceWhenTheResultIsNotThere) { ExpectRefused("no-output"); }
TEST_F(ManagerStages, StopWithASentenceWhenTheResultIsNotWhole) { ExpectRefused("wrong-size"); }

TEST_F(ManagerStages, StopWithASentenceWithoutTheWorkProcess) {
    const obtest::AbsentModule absent(kTransformWorkFileName);
    ASSERT_TRUE(absent.Ok());
    ExpectRefused("good");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Entries().GetReadyForConvert(nullptr, manager_, kRemoveInfo, kTransform));
    EXPECT_EQ(boxes.Seen().size(), 1u);
}

TEST_F(ManagerStages, AreReadyWithTheWorkProcess) {
    EXPECT_TRUE(Entries().GetReadyForConvert(nullptr, manager_, kRemoveInfo, kTransform));
    EXPECT_FALSE(Entries().GetReadyForConvert(nullptr, manager_, 66, kTransform)); // not planned
}

// A cancelled dialog stores nothing, so that the next tick asks again.
TEST_F(ManagerStages, AskForTheirSettingsUntilThereAreSome) {
    obtest::ClearProductRegistry();
    const auto ask = [&](int button, bool& shown) {
        obtest::DialogUiDriver user(OB_PERSONAL_DATA_RECEIPT, [&](HWND dialog) {
            obtest::DialogUiDriver::Press(dialog, button);
        });
        const bool there = Entries().ShowProviderOptionsWhenNoOptionsSet(
            manager_, kRemoveInfo, kTransform, nullptr, nullptr);
        shown = user.WasUsed();
        return there;
    };
    bool shown = false;
    EXPECT_FALSE(ask(IDCANCEL, shown));
    EXPECT_TRUE(shown);
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kSettingsKey));
    EXPECT_TRUE(ask(IDOK, shown));
    EXPECT_TRUE(shown);
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kSettingsKey, L"ShowReceipt"), L"1");
    EXPECT_TRUE(ask(IDOK, shown));
    EXPECT_FALSE(shown);
}

TEST_F(ManagerStages, ReportThatSettingsCannotBeSaved) {
    constexpr std::size_t kTooLongForAKey = 300;
    const std::wstring key = L"Software\\" + std::wstring(kTooLongForAKey, L'x');
    Delete();
    manager_ = Entries().CreateObExtensionsManager();
    Entries().Init(manager_, kCurrentUser, key.c_str());
    const obtest::MessageBoxWatcher boxes;
    obtest::DialogUiDriver user(OB_PERSONAL_DATA_RECEIPT,
                                [](HWND dialog) { obtest::DialogUiDriver::Press(dialog, IDOK); });
    EXPECT_FALSE(Entries().ShowProviderOptionsWhenNoOptionsSet(manager_, kRemoveInfo, kTransform,
                                                               nullptr, nullptr));
    // The settings dialog itself is among what the watcher has seen.
    const auto seen = boxes.Seen();
    EXPECT_EQ(std::ranges::count(seen, L"Your settings can't be saved. Please try again.",
                                 &obtest::SeenBox::text),
              1);
}

TEST_F(ManagerStages, ShowTheirSettingsWheneverTheyAreAskedFor) {
    obtest::DialogUiDriver user(OB_PERSONAL_DATA_RECEIPT, [&](HWND dialog) {
        obtest::DialogUiDriver::Press(dialog, OB_PERSONAL_DATA_RECEIPT);
        obtest::DialogUiDriver::Press(dialog, IDOK);
    });
    Entries().ShowProviderOptions(manager_, kRemoveInfo, kTransform, nullptr, nullptr);
    EXPECT_TRUE(user.WasUsed());
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kSettingsKey, L"ShowReceipt"), L"1");
}

TEST_F(ManagerStages, ChangeNothingOutsideTheTemporaryPath) {
    const std::wstring path = L"C:\\photo.jpg";
    ASSERT_TRUE(obtest::WriteFileContent(path, "theirs"));
    ExpectRefused(path, [&] { return Execute(path); });
    ExpectRefused(path, [&] { return Execute(path, L""); });
    ExpectRefused(path, [&] { return Final({path}); });
    DeleteFileW(path.c_str());
}

TEST_F(ManagerStages, ChangeNothingWithoutTheFolderOfTheRun) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ExpectRefused(path, [&] { return Execute(path, L""); });
    ExpectRefused(path, [&] { return Execute(path, folder_.Folder(L"other") + L"\\"); });
}

TEST_F(ManagerStages, StopWithASentenceForAFileThatIsGone) {
    const std::wstring path = folder_ / L"photo.jpg";
    ExpectRefused(path, [&] { return Execute(path); });
}

TEST_F(ManagerStages, StopWithASentenceForALockedFile) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    const HANDLE lock =
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    ExpectRefused(path, [&] { return Execute(path); });
    CloseHandle(lock);
    EXPECT_EQ(obtest::ReadFileContent(path), "photo");
}

TEST_F(ManagerStages, WorkOnReadOnlyLongAndOddlyNamedFiles) {
    const obtest::MessageBoxWatcher boxes;
    std::wstring folder = folder_.Path();
    for (int depth = 0; depth < 6; ++depth) {
        folder += L"\\" + std::wstring(50, L'd');
        ASSERT_TRUE(CreateDirectoryW((L"\\\\?\\" + folder).c_str(), nullptr));
    }
    const Names paths{folder + L"\\long.jpg", folder_ / L"r\u00e9sum\u00e9 \u6f22 %1 & co..jpg",
                      folder_ / L"no extension"};
    for (const std::wstring& path : paths) {
        ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + path, "photo"));
        SetFileAttributesW((L"\\\\?\\" + path).c_str(), FILE_ATTRIBUTE_READONLY);
        EXPECT_TRUE(Execute(path));
        EXPECT_EQ(obtest::ReadFileContent(L"\\\\?\\" + path), "clean");
    }
    EXPECT_TRUE(Final(paths));
    EXPECT_EQ(Results(3), paths);
    for (const obtest::SeenBox& box : boxes.Seen())
        ADD_FAILURE() << testing::PrintToString(box.text);
}

TEST_F(ManagerStages, StopForAResultThatNoBufferTakes) {
    const std::wstring path = folder_.Path() + L"\\" + std::wstring(520, L'x') + L"photo.jpg";
    ExpectRefused(path, [&] { return Execute(path); });
    const std::wstring fine = folder_.File(L"fine.jpg", "photo");
    ExpectRefused(path, [&] { return Post({fine, path}); });
    ExpectRefused(path, [&] { return Final({fine, path}); });
    EXPECT_EQ(obtest::ReadFileContent(fine), "photo"); // refused before any work
}

TEST_F(ManagerStages, StopWithoutAFileOrATransform) {
    EXPECT_FALSE(Execute(L""));
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo, kTransform));
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    EXPECT_FALSE(Execute(path));
    EXPECT_FALSE(Final({path}));
    EXPECT_EQ(obtest::ReadFileContent(path), "photo");
}

TEST_F(ManagerStages, EndWithTheSessionAndLeaveOnlyTheCopy) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Script("hang-after-writing");
    std::atomic<int> result = -1;
    std::thread worker([&] { result = Execute(path); });
    EXPECT_TRUE(AwaitUnfinished());
    Entries().Deinit(manager_);
    EXPECT_EQ(result, 0); // Deinit waits for the call
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
    EXPECT_EQ(obtest::ReadFileContent(path), "photo");
    worker.join();
}

// The host clears up as soon as the user cancels, while the work process has the files open.
TEST_F(ManagerStages, EndWithTheSessionAndLeaveNothingAfterACleanUp) {
    const std::wstring folder = folder_.Folder(L"run");
    const std::wstring path = folder + L"\\photo.jpg";
    ASSERT_TRUE(obtest::WriteFileContent(path, "photo"));
    Script("hang-after-writing");
    std::thread worker([&] { EXPECT_FALSE(Execute(path, folder)); });
    EXPECT_TRUE(AwaitUnfinished());
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    RemoveDirectoryW(folder.c_str());
    Entries().Deinit(manager_);
    worker.join();
    EXPECT_TRUE(Files().empty());
}

TEST_F(ManagerStages, EndWithTheirOwnerWindow) {
    Owner owner;
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Script("hang-after-writing");
    std::thread worker([&] { EXPECT_FALSE(Execute(path, folder_.Path(), owner.Get())); });
    EXPECT_TRUE(AwaitUnfinished());
    owner.Destroy();
    worker.join();
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
    EXPECT_FALSE(Execute(path, folder_.Path(), reinterpret_cast<HWND>(0x7ffffff0)));
}

TEST_F(ManagerStages, EndBeforeTheManagerIsDeleted) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Script("hang-after-writing");
    std::atomic<bool> returned = false;
    std::thread worker([&] {
        Execute(path);
        returned = true;
    });
    EXPECT_TRUE(AwaitUnfinished());
    Delete();
    worker.join();
    EXPECT_TRUE(returned);
    EXPECT_EQ(Files(), (Names{L"photo.jpg"}));
}

// The user has left while a sentence is on the screen.
TEST_F(ManagerStages, EndWithTheSessionWhileASentenceIsShown) {
    const std::wstring path = folder_ / L"missing.jpg";
    std::thread worker([&] { EXPECT_FALSE(Execute(path)); });
    HWND box = nullptr;
    for (int waited = 0; waited < kLimit && !box; waited += 5, Sleep(5)) {
        box = FindWindowW(L"#32770", L"Ombrix Vellant");
    }
    ASSERT_NE(box, nullptr);
    Entries().Deinit(manager_);
    EXPECT_FALSE(IsWindow(box));
    worker.join();
}

TEST_F(ManagerStages, RunOneAtATime) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Script("hang-after-writing");
    std::thread worker([&] { EXPECT_FALSE(Execute(path)); });
    EXPECT_TRUE(AwaitUnfinished());
    EXPECT_FALSE(Final({path}));
    Entries().Deinit(manager_);
    worker.join();
}

TEST_F(ManagerStages, AfterTheListWorkOnWhatIsNew) {
    const Names paths{folder_.File(L"a.jpg", "seen"), folder_.File(L"b.jpg", "new")};
    ASSERT_TRUE(Execute(paths[0]));
    ASSERT_TRUE(obtest::WriteFileContent(paths[0], "cleaned before"));
    EXPECT_TRUE(Post(paths));
    EXPECT_EQ(Results(2), paths);
    EXPECT_EQ(obtest::ReadFileContent(paths[0]), "cleaned before");
    EXPECT_EQ(obtest::ReadFileContent(paths[1]), "clean");
}

TEST_F(ManagerStages, AtTheEndPassCleanFilesWithoutAQuestion) {
    const Names paths{folder_.File(L"a.jpg", "a"), folder_.File(L"b.jpg", "b")};
    ASSERT_TRUE(Execute(paths[0]));
    ASSERT_TRUE(Execute(paths[1]));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Final(paths));
    EXPECT_EQ(Results(2), paths);
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(ManagerStages, AtTheEndStopWhenSomethingSurvived) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    Script("survives");
    ExpectRefused(path, [&] { return Final({path}); });
    EXPECT_TRUE(Results(1).empty());
}

TEST_F(ManagerStages, AtTheEndStopForAFileThatWasNeverCleaned) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Script("survives");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Final({path}));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"wasn't cleaned"), std::wstring::npos);
}

TEST_F(ManagerStages, AtTheEndStopWhenACleanedFileCannotBeChecked) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    Script("crash");
    ExpectRefused(path, [&] { return Final({path}); });
}

TEST_F(ManagerStages, AtTheEndAskAboutFilesThatCannotBeCleaned) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Script("too-large");
    ASSERT_TRUE(Execute(path));
    for (const int button : {IDCANCEL, IDOK}) {
        std::wstring list;
        obtest::DialogUiDriver user(OB_RECEIPT_LIST, [&](HWND dialog) {
            list = obtest::TextOf(GetDlgItem(dialog, OB_RECEIPT_LIST));
            EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, IDOK)), L"&Attach anyway");
            obtest::DialogUiDriver::Press(dialog, button);
        });
        EXPECT_EQ(Final({path}), button == IDOK);
        EXPECT_TRUE(user.WasUsed());
        EXPECT_EQ(list, L"photo.jpg: can't be cleaned, the file is too large\r\n");
    }
    EXPECT_EQ(Results(1), (Names{path}));
}

TEST_F(ManagerStages, AtTheEndStopForThemWhenTheSettingsAskForIt) {
    Settings(true, false);
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Script("too-large");
    ASSERT_TRUE(Execute(path));
    ExpectRefused(path, [&] { return Final({path}); });
}

TEST_F(ManagerStages, AtTheEndShowTheReceiptWhenTheSettingsAskForIt) {
    Settings(true, true);
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    std::wstring list;
    obtest::DialogUiDriver user(OB_RECEIPT_LIST, [&](HWND dialog) {
        list = obtest::TextOf(GetDlgItem(dialog, OB_RECEIPT_LIST));
        obtest::DialogUiDriver::Press(dialog, IDOK);
    });
    EXPECT_TRUE(Final({path, path})); // twice in the list, once in the receipt
    EXPECT_TRUE(user.WasUsed());
    EXPECT_EQ(list.find(L"photo.jpg: removed\r\n      where it was taken (2 times)\r\n"), 0u);
    EXPECT_EQ(list.rfind(L"photo.jpg"), 0u);
    EXPECT_EQ(Results(2), (Names{path, path}));
}

// The dialog's thread answers its messages while the work process hangs.
TEST_F(ManagerStages, AtTheEndStopWhenTheUserCancelsTheOwner) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    Script("hang");
    Owner owner;
    PostMessageW(owner.Get(), WM_COMMAND, IDCANCEL, 0);
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Final({path}, owner.Get()));
    EXPECT_TRUE(boxes.Seen().empty());
}

// As a button of the dialog does: the command is sent, by another thread's click.
TEST_F(ManagerStages, AtTheEndStopWhenTheCommandIsSentToTheOwner) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    Script("hang");
    Owner owner;
    std::thread user([&] { SendMessageW(owner.Get(), WM_COMMAND, IDCANCEL, 0); });
    EXPECT_FALSE(Final({path}, owner.Get()));
    user.join();
}

// A window that is never done with its painting.
LRESULT CALLBACK PaintForEver(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_PAINT) {
        ValidateRect(window, nullptr);
        InvalidateRect(window, nullptr, FALSE);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

TEST_F(ManagerStages, AtTheEndWorkWhileAWindowPaintsWithoutEnd) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    const HWND window = CreateWindowW(L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                      nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&PaintForEver));
    InvalidateRect(window, nullptr, FALSE);
    EXPECT_TRUE(Final({path}));
    EXPECT_NE(GetUpdateRect(window, nullptr, FALSE), FALSE); // it still wants to paint
    DestroyWindow(window);
}

TEST_F(ManagerStages, AtTheEndKeepAQuitOfTheThread) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    Script("hang");
    PostQuitMessage(17);
    EXPECT_FALSE(Final({path}));
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 17u);
}

// Success with nothing checked, or with no file left, would let every file through.
TEST_F(ManagerStages, FailForAListWithoutAnArrayOrWithoutAPath) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    const wchar_t* const paths[] = {path.c_str(), nullptr};
    for (const wchar_t* const* list : {static_cast<const wchar_t* const*>(nullptr), paths}) {
        std::uint32_t count = 2;
        EXPECT_FALSE(
            Entries().ExecutePostTransforms(manager_, nullptr, list, &count, 1, nullptr, nullptr));
        EXPECT_EQ(count, 2u);
        EXPECT_FALSE(
            Entries().ExecuteFinalTransforms(manager_, nullptr, list, 2, 3, nullptr, nullptr));
    }
    EXPECT_FALSE(
        Entries().ExecutePostTransforms(manager_, nullptr, paths, nullptr, 1, nullptr, nullptr));
    EXPECT_EQ(obtest::ReadFileContent(path), "photo");
}

TEST_F(ManagerStages, KeepATargetThatWasHandedOutAfterTheSession) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    Entries().SetProviderTarget(manager_, path.c_str());
    const wchar_t* const target = Entries().GetProviderTarget(manager_);
    EXPECT_TRUE(Entries().ExecuteTransforms(manager_, nullptr, nullptr, folder_.Path().c_str(), 1,
                                            3, nullptr, nullptr));
    EXPECT_EQ(target, path);
    Entries().Deinit(manager_);
    EXPECT_EQ(target, path);
    EXPECT_STREQ(Entries().GetProviderTarget(manager_), L"");
    EXPECT_EQ(target, path);
}

TEST_F(ManagerStages, HandOverNoMoreThanThereIs) {
    const std::wstring path = folder_.File(L"photo.jpg", "photo");
    ASSERT_TRUE(Execute(path));
    EXPECT_TRUE(Results(1).empty());
    ASSERT_TRUE(Final({path}));
    std::uint32_t count = 99;
    Entries().GetTargetFile(manager_, nullptr, &count, 514);
    EXPECT_EQ(count, 0u);
    wchar_t small[5] = L"left";
    wchar_t* const buffers[] = {small};
    Entries().GetTargetFile(manager_, buffers, &count, 5);
    EXPECT_EQ(count, 0u);
    EXPECT_STREQ(small, L"left");
}

} // namespace
