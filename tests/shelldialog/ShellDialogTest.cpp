// The shell's file dialog as the tests have it under Wine: the system's own, with the windows and
// the result of Show that Windows has.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>
#include <shobjidl.h>

#include <cstdio>
#include <functional>

#include "ObLib/Src/Win32/ComResources.h"
#include "tests/shelldialog/AddedWindows.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/TestFolder.h"

namespace obtest {
namespace {

using namespace shelldialog;
using ObLib::ComPtr;

constexpr HRESULT kCancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);
constexpr int kShowSlot = 3;
constexpr int kSlots = 29; // of IFileOpenDialog and of IFileDialog2

ComPtr<IFileOpenDialog> RegisteredDialog() {
    ComPtr<IFileOpenDialog> dialog;
    CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IFileOpenDialog,
                     reinterpret_cast<void**>(dialog.Put()));
    return dialog;
}

ComPtr<IFileOpenDialog> SystemDialog() {
    const HMODULE module = LoadLibraryW(L"comdlg32.dll");
    const auto give = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    ComPtr<IClassFactory> factory;
    ComPtr<IFileOpenDialog> dialog;
    give(CLSID_FileOpenDialog, IID_IClassFactory, reinterpret_cast<void**>(factory.Put()));
    factory->CreateInstance(nullptr, IID_IFileOpenDialog, reinterpret_cast<void**>(dialog.Put()));
    return dialog;
}

RECT PlaceOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

HWND BoxOf(HWND dialog) { return FindWindowExW(dialog, nullptr, kBoxClass, nullptr); }
HWND ViewOf(HWND dialog) { return FindWindowExW(dialog, nullptr, kViewClass, nullptr); }

// The box sets its own height.
void ExpectInThePlaceOfTheField(HWND dialog) {
    const RECT box = PlaceOf(BoxOf(dialog));
    const RECT field = PlaceOf(GetDlgItem(dialog, kNameFieldId));
    EXPECT_EQ(box.left, field.left);
    EXPECT_EQ(box.top, field.top);
    EXPECT_EQ(box.right, field.right);
    EXPECT_GT(box.right - box.left, 100);
    EXPECT_GT(box.bottom, box.top);
}

class ShellDialog : public testing::Test {
protected:
    static void SetUpTestSuite() {
        std::puts("[   NOTE   ] Wine's file dialog has no window of the classes ComboBoxEx32 and "
                  "DUIViewWndClassName: those in these tests are the tests' own");
    }
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); // the dialog leaves COM initialised
        dialog = RegisteredDialog();
        ASSERT_TRUE(dialog);
    }
    void TearDown() override {
        dialog.Reset();
        CoUninitialize();
    }

    // Shows the dialog; `use` runs on a thread of its own.
    HRESULT Show(std::function<void(OpenPicker&)> use) {
        PickerUiDriver driver(std::move(use));
        const HRESULT shown = dialog->Show(nullptr);
        EXPECT_TRUE(driver.Done()) << "no picker came, or it didn't close";
        return shown;
    }

    ComPtr<IFileOpenDialog> dialog;
};

TEST_F(ShellDialog, HasAFileNameBoxInThePlaceOfTheField) {
    Show([](OpenPicker& picker) {
        const HWND box = BoxOf(picker.Window());
        EXPECT_TRUE(box);
        EXPECT_FALSE(IsWindowVisible(box));
        ExpectInThePlaceOfTheField(picker.Window());
        picker.PressCancel();
    });
}

TEST_F(ShellDialog, HasTheFileTypesRightAfterTheBox) {
    Show([](OpenPicker& picker) {
        const HWND next = GetWindow(BoxOf(picker.Window()), GW_HWNDNEXT);
        EXPECT_EQ(GetDlgCtrlID(next), kFileTypesId);
        EXPECT_EQ(ClassOf(next), L"ComboBox");
        picker.PressCancel();
    });
}

TEST_F(ShellDialog, HasAViewWithAChildBelowAllControls) {
    Show([](OpenPicker& picker) {
        const HWND view = ViewOf(picker.Window());
        RECT area{};
        GetClientRect(picker.Window(), &area);
        EXPECT_TRUE(IsWindowVisible(view));
        EXPECT_EQ(GetWindow(view, GW_HWNDLAST), view);
        RECT filled{};
        GetClientRect(view, &filled);
        EXPECT_TRUE(EqualRect(&filled, &area));
        const HWND child = GetWindow(view, GW_CHILD);
        EXPECT_EQ(ClassOf(child), kViewChildClass);
        GetClientRect(child, &filled);
        EXPECT_TRUE(EqualRect(&filled, &area));
        picker.PressCancel();
    });
}

TEST_F(ShellDialog, MovesItsWindowsAsItIsResized) {
    Show([](OpenPicker& picker) {
        const RECT before = PlaceOf(picker.Window());
        const int boxBefore = PlaceOf(BoxOf(picker.Window())).right;
        SetWindowPos(picker.Window(), nullptr, 0, 0, before.right - before.left + 120,
                     before.bottom - before.top + 80, SWP_NOMOVE | SWP_NOZORDER);
        ExpectInThePlaceOfTheField(picker.Window());
        EXPECT_NE(PlaceOf(BoxOf(picker.Window())).right, boxBefore);
        RECT area{};
        RECT filled{};
        GetClientRect(picker.Window(), &area);
        GetClientRect(GetWindow(ViewOf(picker.Window()), GW_CHILD), &filled);
        EXPECT_TRUE(EqualRect(&filled, &area));
        picker.PressCancel();
    });
}

TEST_F(ShellDialog, ReturnsAFailureWhenItIsEndedWithoutAResult) {
    EXPECT_EQ(Show([](OpenPicker& picker) { EndDialog(picker.Window(), 0); }), kCancelled);
}

TEST_F(ShellDialog, ReturnsWhatTheSystemReturnsInAllOtherCases) {
    TestFolder folder;
    const std::wstring file = folder.File(L"one.txt");
    EXPECT_EQ(Show([](OpenPicker& picker) { picker.PressCancel(); }), kCancelled);
    EXPECT_EQ(Show([](OpenPicker& picker) { EndDialog(picker.Window(), E_OUTOFMEMORY); }),
              E_OUTOFMEMORY);
    EXPECT_EQ(Show([&](OpenPicker& picker) {
                  picker.TypeNames(file);
                  picker.PressOk();
              }),
              S_OK);
    ComPtr<IShellItemArray> items;
    DWORD count = 0;
    ASSERT_EQ(dialog->GetResults(items.Put()), S_OK);
    items->GetCount(&count);
    EXPECT_EQ(count, 1U);
}

TEST_F(ShellDialog, IsTheSystemsObjectButForShow) {
    const ComPtr<IFileOpenDialog> system = SystemDialog();
    for (const IID& iid : {IID_IFileOpenDialog, IID_IFileDialog2}) {
        ComPtr<IUnknown> ours;
        ComPtr<IUnknown> theirs;
        ASSERT_EQ(dialog->QueryInterface(iid, reinterpret_cast<void**>(ours.Put())), S_OK);
        ASSERT_EQ(system->QueryInterface(iid, reinterpret_cast<void**>(theirs.Put())), S_OK);
        void** const calls = *reinterpret_cast<void***>(ours.Get());
        void** const systemCalls = *reinterpret_cast<void***>(theirs.Get());
        for (int slot = 0; slot < kSlots; ++slot) {
            EXPECT_EQ(calls[slot] == systemCalls[slot], slot != kShowSlot) << slot;
        }
    }
    for (const IID& iid : {IID_IFileDialogCustomize, IID_IOleWindow}) {
        ComPtr<IUnknown> ours;
        ComPtr<IUnknown> theirs;
        ASSERT_EQ(dialog->QueryInterface(iid, reinterpret_cast<void**>(ours.Put())), S_OK);
        ASSERT_EQ(system->QueryInterface(iid, reinterpret_cast<void**>(theirs.Put())), S_OK);
        EXPECT_EQ(*reinterpret_cast<void**>(ours.Get()), *reinterpret_cast<void**>(theirs.Get()));
    }
}

TEST_F(ShellDialog, LeavesOtherDialogsOfTheThreadAsTheyAre) {
    Show([](OpenPicker& picker) { picker.PressCancel(); });
    WindowDriver driver([] { return FindTopWindow(&IsDialog, GetCurrentProcessId()); },
                        [](HWND box) {
                            EXPECT_FALSE(BoxOf(box));
                            EXPECT_FALSE(ViewOf(box));
                            PressCommand(box, IDOK);
                        },
                        5000);
    MessageBoxW(nullptr, L"text", L"caption", MB_OK);
    EXPECT_TRUE(driver.Done());
}

} // namespace
} // namespace obtest
