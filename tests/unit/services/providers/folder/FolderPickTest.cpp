// Picking files below network folders, with the real dialog of the shell.
#include "services/providers/folder/FolderPick.h"

#include <windows.h>

#include <shobjidl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/ShellThread.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/TestFolder.h"
#include "tests/support/WindowKit.h"

using namespace providers;
using obtest::OpenPicker;
using obtest::PickerUiDriver;

namespace {

constexpr wchar_t kName[] = L"Network folder";

std::atomic<int> dialogsOfThisThread;
LRESULT CALLBACK CountDialogs(int code, WPARAM window, LPARAM lParam) {
    constexpr ULONG_PTR kDialogClass = 32770;
    if (code == HCBT_CREATEWND &&
        GetClassLongPtrW(reinterpret_cast<HWND>(window), GCW_ATOM) == kDialogClass) {
        ++dialogsOfThisThread;
    }
    return CallNextHookEx(nullptr, code, window, lParam);
}

// The fakes of system calls are functions, so what they need is here.
std::atomic<int> opensOfInner;
decltype(&CreateFileW) realOpen;
HANDLE WINAPI CountOpens(const wchar_t* path, DWORD access, DWORD share,
                         SECURITY_ATTRIBUTES* security, DWORD how, DWORD flags, HANDLE like) {
    if (std::wstring(path).ends_with(L"\\inner")) ++opensOfInner;
    return realOpen(path, access, share, security, how, flags, like);
}
std::wstring dead; // a folder that doesn't respond
HANDLE deadUntil;
std::atomic<int> deadCalls; // that came back
decltype(&GetFileAttributesW) realAttributes;
DWORD WINAPI AttributesOfDead(const wchar_t* path) {
    if (!std::wstring(path).ends_with(dead)) return realAttributes(path);
    WaitForSingleObject(deadUntil, 60'000);
    ++deadCalls;
    return INVALID_FILE_ATTRIBUTES;
}
decltype(&SHCreateItemFromParsingName) realItem;
HRESULT WINAPI ItemOfDead(PCWSTR path, IBindCtx* context, REFIID iid, void** item) {
    EXPECT_NE(path, dead);
    return realItem(path, context, iid, item);
}
HRESULT WINAPI NoObject(REFCLSID, IUnknown*, DWORD, REFIID, void**) { return E_FAIL; }
HANDLE WINAPI NoThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*) {
    return nullptr;
}

LRESULT CALLBACK DestroyedByMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_APP) return DestroyWindow(window);
    return DefWindowProcW(window, message, wParam, lParam);
}

class FolderPick : public testing::Test {
protected:
    FolderPick() {
        cloud_.File(L"a.zip");
        cloud_.File(L"b c.zip");
        inner_ = cloud_.Folder(L"inner");
        cloud_.File(L"inner\\d.zip");
        folders_ = {{{L"outer key", L"outer"}, {cloud_.Path(), L"https://h/{path}"}},
                    {{L"inner key", L"inner"}, {inner_, L"https://inner/{path}"}}};
    }

    PickedPaths Links(const std::vector<std::wstring>& paths) const {
        return LinksOf(paths, folders_, kName);
    }
    PickResult Pick(const std::function<void(OpenPicker&)>& use) {
        PickerUiDriver user(use);
        return PickFromFolders(nullptr, folders_, 0, kName);
    }

    obtest::TestFolder cloud_;
    obtest::TestFolder outside_;
    std::wstring inner_;
    std::vector<PickableFolder> folders_;
};

TEST_F(FolderPick, LinksFilesOfTheInnermostFolder) {
    const auto picked = Links({cloud_ / L"b c.zip", inner_ + L"\\d.zip"});
    EXPECT_EQ(picked.sentence, L"");
    ASSERT_EQ(picked.files.size(), 2U);
    EXPECT_EQ(picked.files[0].account.key, L"outer key");
    EXPECT_EQ(picked.files[0].name, L"b c.zip");
    EXPECT_EQ(picked.files[0].link, L"https://h/b%20c.zip");
    EXPECT_EQ(picked.files[1].account.key, L"inner key");
    EXPECT_EQ(picked.files[1].link, L"https://inner/d.zip");
}

TEST_F(FolderPick, KnowsItsFolderByAnotherPath) {
    std::wstring upper = cloud_.Path();
    CharUpperW(upper.data());
    EXPECT_EQ(Links({upper + L"\\a.zip"}).files.at(0).link, L"https://h/a.zip");
    const std::wstring around = L"\\\\?\\" + (cloud_ / L"a.zip");
    EXPECT_EQ(Links({around}).files.at(0).link, L"https://h/a.zip");
}

// One that doesn't respond would keep the user waiting for minutes.
TEST_F(FolderPick, OpensNoFolderOfAnAccountThatItNeedsNot) {
    opensOfInner = 0;
    obtest::ImportPatch patch("kernel32.dll", "CreateFileW", &CountOpens);
    ASSERT_TRUE(patch.Ok());
    realOpen = patch.Real();
    EXPECT_EQ(Links({cloud_ / L"a.zip", cloud_ / L"b c.zip"}).files.size(), 2U);
    EXPECT_EQ(opensOfInner, 0);
    const std::wstring around = L"\\\\?\\" + cloud_.Path();
    EXPECT_EQ(Links({around + L"\\a.zip", around + L"\\b c.zip"}).files.size(), 2U);
    EXPECT_EQ(opensOfInner, 1);
}

TEST_F(FolderPick, TakesNoFileOutsideItsFolders) {
    const std::wstring sentence = L"\u201Ce.zip\u201D isn't in one of your network folders, so "
                                  L"there is no link to it. Please "
                                  L"choose files in a network folder.";
    for (const std::wstring& path :
         {outside_.File(L"e.zip"), cloud_.Path() + L" not\\e.zip", std::wstring(L"e.zip")}) {
        const auto picked = Links({cloud_ / L"a.zip", path});
        EXPECT_TRUE(picked.files.empty());
        EXPECT_EQ(picked.sentence, sentence);
    }
}

TEST_F(FolderPick, TakesNoLinkThatIsTooLong) {
    folders_[0].settings.pattern = L"https://h/" + std::wstring(900, L'x') + L"/{path}";
    const std::wstring longName(72, L'\u20AC');
    const auto picked = Links({cloud_ / (longName + L"x")});
    EXPECT_TRUE(picked.files.empty());
    EXPECT_EQ(picked.sentence, L"The link to \u201C" + longName +
                                   L"x\u201D is too long for the mail. Please leave the file out.");
    EXPECT_EQ(Links({cloud_ / L"a.zip"}).files.size(), 1U);
}

TEST_F(FolderPick, TakesNoMoreLinksThanTheMailHasRoomFor) {
    folders_[0].settings.pattern = L"https://h/" + std::wstring(900, L'x') + L"/{path}";
    std::vector<std::wstring> paths;
    for (int number = 0; number < 60; ++number) {
        paths.push_back(cloud_ / (std::to_wstring(number) + L".zip"));
    }
    const auto picked = Links(paths);
    EXPECT_TRUE(picked.files.empty());
    EXPECT_EQ(picked.sentence,
              L"The links to so many files don't fit into one mail. Please choose fewer files.");
    paths.resize(20);
    EXPECT_EQ(Links(paths).files.size(), 20U);
}

TEST_F(FolderPick, GivesWhatTheUserChoseInTheDialog) {
    const PickResult picked = Pick([](OpenPicker& picker) {
        EXPECT_EQ(obtest::TextOf(picker.Window()), L"Link files of a network folder");
        EXPECT_TRUE(picker.TypeNames(OpenPicker::QuotedNames({L"a.zip", L"b c.zip"})));
        picker.PressOk();
    });
    EXPECT_EQ(picked.sentence, L"");
    ASSERT_EQ(picked.files.size(), 2U);
    EXPECT_EQ(picked.files[0].link, L"https://h/a.zip");
    EXPECT_EQ(picked.files[1].link, L"https://h/b%20c.zip");
}

TEST_F(FolderPick, KeepsTheDialogOpenAfterAFileThatIsNotTaken) {
    const std::wstring file = outside_.File(L"e.zip");
    const obtest::MessageBoxWatcher boxes;
    const PickResult picked = Pick([&](OpenPicker& picker) {
        EXPECT_TRUE(picker.TypeNames(file));
        picker.PressOk();
        EXPECT_TRUE(boxes.WaitFor(1));
        EXPECT_TRUE(obtest::WaitUntil([&] { return IsWindowEnabled(picker.Window()) != FALSE; }));
        EXPECT_TRUE(picker.TypeNames(L"a.zip"));
        picker.PressOk();
    });
    ASSERT_EQ(boxes.Seen().size(), 1U);
    EXPECT_TRUE(boxes.Seen()[0].text.starts_with(L"\u201Ce.zip\u201D isn't in one of"));
    EXPECT_EQ(picked.files.size(), 1U);
}

TEST_F(FolderPick, GivesNothingAfterACancel) {
    const PickResult picked = Pick([](OpenPicker& picker) { picker.PressCancel(); });
    EXPECT_TRUE(picked.files.empty());
    EXPECT_EQ(picked.sentence, L"");
}

TEST_F(FolderPick, ReportsAFolderThatCannotBeReached) {
    folders_.resize(1);
    folders_[0].settings.folder = L"Q:\\Cloud";
    const PickResult picked = PickFromFolders(nullptr, folders_, 0, kName);
    EXPECT_TRUE(picked.files.empty());
    EXPECT_EQ(picked.sentence,
              L"The folder \u201CQ:\\Cloud\u201D can't be reached. Please check the "
              L"path, and make sure that the folder opens in Explorer.");
}

TEST_F(FolderPick, BeginsInAFolderThatCanBeReached) {
    folders_[0].settings.folder = L"Q:\\Cloud";
    const PickResult picked = Pick([](OpenPicker& picker) {
        EXPECT_TRUE(picker.TypeNames(L"d.zip"));
        picker.PressOk();
    });
    EXPECT_EQ(picked.sentence, L"");
    ASSERT_EQ(picked.files.size(), 1U);
    EXPECT_EQ(picked.files[0].link, L"https://inner/d.zip");
}

// A share that doesn't respond blocks each call for a minute.
TEST_F(FolderPick, ADeadAccountDelaysTheDialogForAMomentOnly) {
    const ObLib::UniqueKernelHandle over(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    dead = inner_;
    deadUntil = over.Get();
    deadCalls = 0;
    obtest::ImportPatch attributes("kernel32.dll", "GetFileAttributesW", &AttributesOfDead);
    obtest::ImportPatch items("shell32.dll", "SHCreateItemFromParsingName", &ItemOfDead);
    ASSERT_TRUE(attributes.Ok() && items.Ok());
    realAttributes = attributes.Real();
    realItem = items.Real();
    for (const std::size_t first : {0, 1}) {
        PickerUiDriver user([](OpenPicker& picker) {
            EXPECT_TRUE(picker.TypeNames(L"a.zip"));
            picker.PressOk();
        });
        const PickResult picked = PickFromFolders(nullptr, folders_, first, kName);
        ASSERT_EQ(picked.files.size(), 1U) << first;
        EXPECT_EQ(picked.files[0].link, L"https://h/a.zip");
    }
    EXPECT_EQ(deadCalls, 0);
    SetEvent(over.Get());
    EXPECT_TRUE(obtest::WaitUntil([] { return deadCalls == 2; }));
}

TEST_F(FolderPick, ReportsADialogThatCannotBeShown) {
    constexpr wchar_t kFailed[] = L"Your files in the cloud can't be shown. Please try again.";
    {
        obtest::ImportPatch patch("ole32.dll", "CoCreateInstance", &NoObject);
        ASSERT_TRUE(patch.Ok());
        EXPECT_EQ(PickFromFolders(nullptr, folders_, 0, kName).sentence, kFailed);
    }
    obtest::ImportPatch patch("kernel32.dll", "CreateThread", &NoThread);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(PickFromFolders(nullptr, folders_, 0, kName).sentence, kFailed);
}

// The product's hook for its own picker must not find this dialog.
TEST_F(FolderPick, AHookOfTheCallingThreadSeesNoDialog) {
    dialogsOfThisThread = 0;
    const ObLib::UniqueWindowHook hook(
        SetWindowsHookExW(WH_CBT, &CountDialogs, nullptr, GetCurrentThreadId()));
    ASSERT_TRUE(hook);
    Pick([](OpenPicker& picker) { picker.PressCancel(); });
    EXPECT_EQ(dialogsOfThisThread, 0);
}

TEST_F(FolderPick, EndsWhenTheThreadIsToQuitAndPostsThatAgain) {
    const DWORD thread = GetCurrentThreadId();
    Pick([=](OpenPicker&) { PostThreadMessageW(thread, WM_QUIT, 42, 0); });
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 42U);
}

TEST_F(FolderPick, EndsWithItsOwner) {
    WNDCLASSW type{};
    type.lpfnWndProc = &DestroyedByMessage;
    type.lpszClassName = L"FolderPickOwner";
    RegisterClassW(&type);
    const HWND window = CreateWindowExW(0, type.lpszClassName, L"Owner", WS_OVERLAPPEDWINDOW, 0, 0,
                                        100, 100, nullptr, nullptr, nullptr, nullptr);
    PickerUiDriver user([=](OpenPicker& picker) {
        EXPECT_FALSE(IsWindowEnabled(window));
        PostMessageW(window, WM_APP, 0, 0);
        EXPECT_TRUE(picker.WaitUntilClosed());
    });
    EXPECT_TRUE(PickFromFolders(window, folders_, 0, kName).files.empty());
    EXPECT_FALSE(IsWindow(window));
}

TEST(ShellThread, RunsTheWorkWithComAndEndsItsExceptions) {
    DWORD thread = 0;
    EXPECT_TRUE(RunOnShellThread(nullptr, [&] {
        thread = GetCurrentThreadId();
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
        CoUninitialize();
    }));
    EXPECT_NE(thread, GetCurrentThreadId());
    EXPECT_FALSE(RunOnShellThread(nullptr, [] { throw 1; }));
}

} // namespace
