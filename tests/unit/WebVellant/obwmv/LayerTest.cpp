#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "obwmv/HostLaunch.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::BrowserWindow;
using obtest::HostScript;
using obwmv::ShowWithLayer;

struct LayerCall {
    DWORD extendedStyle = 0;
    std::wstring className;
    std::wstring title = L"?";
    DWORD style = 0;
    RECT place = {};
    HWND parent = nullptr;
    HMENU menu = nullptr;
};
LayerCall layerCall;
bool layerFails = false;
decltype(&CreateWindowExW) realCreateWindow = nullptr;

HWND WINAPI NoteCreateWindow(DWORD extendedStyle, LPCWSTR className, LPCWSTR title, DWORD style,
                             int left, int top, int width, int height, HWND parent, HMENU menu,
                             HINSTANCE instance, LPVOID value) {
    layerCall = {extendedStyle, className, title, style, {left, top, left + width, top + height},
                 parent,        menu};
    if (layerFails) return nullptr;
    return realCreateWindow(extendedStyle, className, title, style, left, top, width, height,
                            parent, menu, instance, value);
}

class Layer : public testing::Test {
protected:
    void SetUp() override {
        layerCall = {};
        layerFails = false;
        HostScript::Play(L"owner\nexit 6");
    }
    static std::wstring HandleText(HWND window) {
        return std::to_wstring(reinterpret_cast<INT_PTR>(window));
    }
    BrowserWindow browser;
};

TEST_F(Layer, IsATransparentPopupOverTheWholeRootWindow) {
    obtest::ImportPatch patch("user32.dll", "CreateWindowExW", &NoteCreateWindow);
    ASSERT_TRUE(patch.Ok());
    realCreateWindow = patch.Real();
    EXPECT_EQ(ShowWithLayer(3, browser.Page()), 6u);
    EXPECT_EQ(layerCall.className, L"WebVellantLayer");
    EXPECT_EQ(layerCall.extendedStyle, 0x80020u);
    EXPECT_EQ(layerCall.style, 0x90000000u);
    EXPECT_EQ(layerCall.title, L"");
    EXPECT_TRUE(EqualRect(&layerCall.place, &obtest::kBrowserPlace));
    EXPECT_EQ(layerCall.parent, browser.Page());
    EXPECT_EQ(layerCall.menu, nullptr);
}

TEST_F(Layer, OwnsTheHostsDialogAndKeepsTheBrowserDisabled) {
    EXPECT_EQ(ShowWithLayer(3, browser.Page()), 6u);
    const auto owners = HostScript::RecordOf(L"owner");
    ASSERT_EQ(owners.size(), 1u);
    // The system adds WS_CLIPSIBLINGS to every top-level window.
    EXPECT_EQ(owners[0], L"class=WebVellantLayer title=[] style=0x94000000 exstyle=0x00080020 "
                         L"rect=40,30,640,430 owned-by=" +
                             HandleText(browser.Root()) + L" enabled=0");
}

TEST_F(Layer, GoesWithTheHostAndTheBrowserTakesInputAgain) {
    ShowWithLayer(3, browser.Root());
    EXPECT_TRUE(browser.Enabled());
    EXPECT_EQ(FindWindowW(L"WebVellantLayer", nullptr), nullptr);
}

TEST_F(Layer, IsTheWindowThatTheHostIsHanded) {
    DeleteFileW(obtest::BesideProgram(L"seen").c_str());
    HWND layer = nullptr;
    BOOL hasAttributes = TRUE;
    browser.OnTick([&] {
        layer = FindWindowW(L"WebVellantLayer", nullptr);
        hasAttributes = GetLayeredWindowAttributes(layer, nullptr, nullptr, nullptr);
        obtest::WriteFileContent(obtest::BesideProgram(L"seen"), "");
    });
    HostScript::Play(L"wait-file seen");
    EXPECT_EQ(ShowWithLayer(3, browser.Root()), 0u);
    const auto starts = HostScript::RecordOf(L"start");
    ASSERT_EQ(starts.size(), 1u);
    ASSERT_NE(layer, nullptr);
    EXPECT_TRUE(starts[0].ends_with(L" 3 " + HandleText(layer))) << starts[0];
    EXPECT_FALSE(hasAttributes);
    EXPECT_FALSE(IsWindow(layer));
}

TEST_F(Layer, HasAClassThatPaintsNothing) {
    ShowWithLayer(3, browser.Root());
    WNDCLASSEXW found = {sizeof(found)};
    ASSERT_TRUE(GetClassInfoExW(GetModuleHandleW(nullptr), L"WebVellantLayer", &found));
    EXPECT_EQ(found.style, 3u);
    EXPECT_EQ(found.hbrBackground, GetStockObject(NULL_BRUSH));
    EXPECT_EQ(found.hCursor, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(found.hIcon, nullptr);
    EXPECT_EQ(found.cbClsExtra, 0);
    EXPECT_EQ(found.cbWndExtra, 0);
    EXPECT_EQ(found.lpszMenuName, nullptr);
}

TEST_F(Layer, NeedsItsClassOnlyOnce) {
    EXPECT_EQ(ShowWithLayer(3, browser.Root()), 6u);
    EXPECT_EQ(ShowWithLayer(4, browser.Root()), 6u);
    EXPECT_TRUE(browser.Enabled());
}

WNDCLASSEXW registered = {};

ATOM WINAPI NoteRegisterClass(const WNDCLASSEXW* windowClass) {
    registered = *windowClass;
    return 0;
}

TEST_F(Layer, TakesAnEarlierClassWhenRegisteringFails) {
    EXPECT_EQ(ShowWithLayer(3, browser.Root()), 6u);
    obtest::ImportPatch patch("user32.dll", "RegisterClassExW", &NoteRegisterClass);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(ShowWithLayer(3, browser.Root()), 6u);
    EXPECT_EQ(registered.lpfnWndProc, &DefWindowProcW);
    EXPECT_EQ(HostScript::RecordOf(L"owner").size(), 2u);
    EXPECT_TRUE(HostScript::RecordOf(L"owner")[1].starts_with(L"class=WebVellantLayer "));
}

TEST_F(Layer, ThatCantBeMadeLeavesTheOwnerToTheHostAndTheBrowserEnabled) {
    obtest::ImportPatch patch("user32.dll", "CreateWindowExW", &NoteCreateWindow);
    ASSERT_TRUE(patch.Ok());
    layerFails = true;
    EXPECT_EQ(ShowWithLayer(3, browser.Root()), 6u);
    const auto owners = HostScript::RecordOf(L"owner");
    ASSERT_EQ(owners.size(), 1u);
    EXPECT_TRUE(owners[0].starts_with(L"class=TestBrowser title=[Mail] ")) << owners[0];
    EXPECT_TRUE(owners[0].ends_with(L" owned-by=0 enabled=1")) << owners[0];
    EXPECT_TRUE(HostScript::RecordOf(L"start")[0].ends_with(HandleText(browser.Root())));
}

TEST_F(Layer, IsMadeWithoutAnOwnerToo) {
    EXPECT_EQ(ShowWithLayer(3, nullptr), 6u);
    const auto owners = HostScript::RecordOf(L"owner");
    ASSERT_EQ(owners.size(), 1u);
    EXPECT_TRUE(owners[0].starts_with(L"class=WebVellantLayer ")) << owners[0];
}

TEST_F(Layer, LeavesTheBrowserEnabledWhenTheHostIsMissing) {
    const obtest::WithoutHost away;
    EXPECT_EQ(ShowWithLayer(3, browser.Root()), obwmv::kHostNotStarted);
    EXPECT_TRUE(browser.Enabled());
    EXPECT_EQ(FindWindowW(L"WebVellantLayer", nullptr), nullptr);
}

// "enable WINDOW", "disable WINDOW", "start" and "destroy CLASS", in the order of the calls.
std::vector<std::wstring> steps;
decltype(&DestroyWindow) realDestroyWindow = nullptr;
std::function<void()> whileTheHostRuns;

BOOL WINAPI NoteEnableWindow(HWND window, BOOL enable) {
    steps.push_back((enable ? L"enable " : L"disable ") +
                    std::to_wstring(reinterpret_cast<INT_PTR>(window)));
    return FALSE;
}

BOOL WINAPI NoteDestroyWindow(HWND window) {
    wchar_t className[64] = L"";
    GetClassNameW(window, className, 64);
    steps.push_back(std::wstring(L"destroy ") + className);
    return realDestroyWindow(window);
}

BOOL WINAPI NoteStart(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD,
                      LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION) {
    steps.emplace_back(L"start");
    if (whileTheHostRuns) whileTheHostRuns();
    return FALSE;
}

class LayerSteps : public Layer {
protected:
    void SetUp() override {
        Layer::SetUp();
        steps.clear();
        whileTheHostRuns = nullptr;
        ASSERT_TRUE(enable.Ok() && destroy.Ok() && start.Ok());
        realDestroyWindow = destroy.Real();
    }
    obtest::ImportPatch<decltype(&EnableWindow)> enable{"user32.dll", "EnableWindow",
                                                        &NoteEnableWindow};
    obtest::ImportPatch<decltype(&DestroyWindow)> destroy{"user32.dll", "DestroyWindow",
                                                          &NoteDestroyWindow};
    obtest::ImportPatch<decltype(&CreateProcessW)> start{"kernel32.dll", "CreateProcessW",
                                                         &NoteStart};
};

TEST_F(LayerSteps, EnableTheRootWindowBeforeTheLayerGoes) {
    ShowWithLayer(3, browser.Page());
    const std::wstring root = HandleText(browser.Root());
    const std::vector<std::wstring> expected = {L"disable " + root, L"start", L"enable " + root,
                                                L"destroy WebVellantLayer"};
    EXPECT_EQ(steps, expected);
}

TEST_F(LayerSteps, DisableAndEnableNothingWithoutALayer) {
    obtest::ImportPatch patch("user32.dll", "CreateWindowExW", &NoteCreateWindow);
    ASSERT_TRUE(patch.Ok());
    layerFails = true;
    ShowWithLayer(3, browser.Page());
    EXPECT_EQ(steps, std::vector<std::wstring>{L"start"});
}

// As if the browser closed its window while the host runs: the window's owner destroys it, the
// system destroys the layer with it.
TEST_F(LayerSteps, DestroyNoLayerThatWentWithItsRootWindow) {
    HWND layer = nullptr;
    const HWND root = browser.Root();
    whileTheHostRuns = [&] {
        layer = FindWindowW(L"WebVellantLayer", nullptr);
        realDestroyWindow(root);
    };
    ShowWithLayer(3, browser.Page());
    EXPECT_NE(layer, nullptr);
    EXPECT_FALSE(IsWindow(layer));
    const std::vector<std::wstring> expected = {L"disable " + HandleText(root), L"start",
                                                L"enable " + HandleText(root)};
    EXPECT_EQ(steps, expected);
}

// The handle of the layer is that of another window by now: one without the layer's mark.
TEST_F(LayerSteps, DestroyNoOtherWindowThatHasTheHandleOfTheLayer) {
    HWND layer = nullptr;
    whileTheHostRuns = [&] {
        layer = FindWindowW(L"WebVellantLayer", nullptr);
        SetWindowLongPtrW(layer, GWLP_USERDATA, 1);
    };
    ShowWithLayer(3, browser.Page());
    EXPECT_TRUE(IsWindow(layer));
    EXPECT_EQ(std::ranges::count(steps, L"destroy WebVellantLayer"), 0);
    realDestroyWindow(layer);
}

bool disabledAtTheStart = false;
HWND startedFrom = nullptr;

BOOL WINAPI ThrowFromCreateProcess(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES,
                                   BOOL, DWORD, LPVOID, LPCWSTR, LPSTARTUPINFOW,
                                   LPPROCESS_INFORMATION) {
    disabledAtTheStart = !IsWindowEnabled(startedFrom);
    throw std::bad_alloc();
}

TEST_F(Layer, PutsEverythingBackWhenAnExceptionPasses) {
    obtest::ImportPatch patch("kernel32.dll", "CreateProcessW", &ThrowFromCreateProcess);
    ASSERT_TRUE(patch.Ok());
    startedFrom = browser.Root();
    EXPECT_THROW(ShowWithLayer(3, browser.Page()), std::bad_alloc);
    EXPECT_TRUE(disabledAtTheStart);
    EXPECT_TRUE(browser.Enabled());
    EXPECT_EQ(FindWindowW(L"WebVellantLayer", nullptr), nullptr);
}

} // namespace
