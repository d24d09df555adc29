// Windows that are destroyed in the middle of a paint, of a fade and of a notification.
#include <commctrl.h>

#include <set>

#include "tests/faults/toolkit/ToolkitSuite.h"
#include "tests/support/ImportPatch.h"

namespace obtest {
namespace {

class DestroyedMeanwhile : public ToolkitSuite {};

// Destroys a window in the middle of its paint, after the system has given the device context.
HWND destroyedInPaint = nullptr;
HDC WINAPI BeginAndDestroy(HWND window, PAINTSTRUCT* paint) {
    static const auto real = reinterpret_cast<decltype(&BeginPaint)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "BeginPaint")));
    const HDC dc = real(window, paint);
    if (window == destroyedInPaint) DestroyWindow(window);
    return dc;
}

TEST_F(DestroyedMeanwhile, InAPaint) {
    const std::vector<int> ids = DressedIds();
    const ImportPatch<decltype(&BeginPaint)> patch("user32.dll", "BeginPaint", &BeginAndDestroy);
    ASSERT_TRUE(patch.Ok());
    const ProcessResources before = ProcessResources::Now();
    int destroyed = 0;
    for (const int id : ids) {
        EveryControlDialog dialog;
        dialog.Open();
        destroyedInPaint = dialog.GetItem(id, true);
        const HWND window = destroyedInPaint;
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        destroyedInPaint = nullptr;
        if (IsWindow(window)) continue; // painted by the system
        ++destroyed;
        EXPECT_EQ(nullptr, dialog.GetControl(id)->window) << id;
    }
    EXPECT_LT(0, destroyed);
    ExpectNoMoreThan(before);
}

// Where a fade paints: the window goes as soon as somebody asks for its device context.
HWND destroyedInFade = nullptr;
HDC WINAPI GetAndDestroy(HWND window) {
    static const auto real = reinterpret_cast<decltype(&GetDC)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDC")));
    if (window != nullptr && window == destroyedInFade) DestroyWindow(window);
    return real(window);
}

BOOL WINAPI InvalidateAndDestroy(HWND window, const RECT* rect, BOOL isErased) {
    static const auto real = reinterpret_cast<decltype(&InvalidateRect)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "InvalidateRect")));
    if (window != nullptr && window == destroyedInFade) DestroyWindow(window);
    return real(window, rect, isErased);
}

// Onto a button's beginning, then to the right end, where a combo box has its own button.
void MoveOver(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
    SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(client.right - 5, client.bottom / 4));
}

// A push button, two combo boxes with a button, and a spin control.
constexpr int kFading[] = {1010, 1025, 1026, 1028};

TEST_F(DestroyedMeanwhile, WhileItFades) {
    std::set<int> faded;
    for (const int id : DressedIds()) {
        EveryControlDialog dialog;
        dialog.Open();
        MoveOver(dialog.GetItem(id, true));
        if (timers_.Running() > 0) faded.insert(id);
        DestroyWindow(dialog.GetItem(id, true));
        EXPECT_EQ(0u, timers_.Running()) << id;
        PumpPosted();
    }
    for (const int id : kFading) EXPECT_TRUE(faded.contains(id)) << id;
}

TEST_F(DestroyedMeanwhile, InAStepOfAFade) {
    const std::vector<int> ids = DressedIds();
    std::set<int> destroyed;
    const ImportPatch<decltype(&GetDC)> patch("user32.dll", "GetDC", &GetAndDestroy);
    const ImportPatch<decltype(&InvalidateRect)> invalidate("user32.dll", "InvalidateRect",
                                                            &InvalidateAndDestroy);
    ASSERT_TRUE(patch.Ok() && invalidate.Ok());
    for (const int id : ids) {
        EveryControlDialog dialog;
        dialog.Open();
        const HWND window = dialog.GetItem(id, true);
        MoveOver(window);
        if (timers_.Running() == 0) continue; // doesn't fade
        destroyedInFade = window;
        MSG message;
        while (IsWindow(window) && timers_.Running() > 0 &&
               GetMessageW(&message, nullptr, 0, 0) > 0) {
            DispatchMessageW(&message);
        }
        destroyedInFade = nullptr;
        if (!IsWindow(window)) destroyed.insert(id);
        EXPECT_EQ(0u, timers_.Running()) << id;
    }
    for (const int id : kFading) EXPECT_TRUE(destroyed.contains(id)) << id;
}

// At the first notification, also those of bars and sliders, which no handler of the dialog gets.
LRESULT CALLBACK DestroyAtNotification(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR, DWORD_PTR) {
    const bool isNotification =
        message == WM_COMMAND || message == WM_HSCROLL || message == WM_VSCROLL;
    if (!isNotification) return DefSubclassProc(dialog, message, wParam, lParam);
    DestroyWindow(dialog);
    return 0;
}

// An edit, a scroll bar, a slider and a push button.
constexpr int kNotifying[] = {1001, 1006, 1008, 1010};

// A dialog that goes at the first notification.
TEST_F(DestroyedMeanwhile, InANotification) {
    std::set<int> destroyed;
    for (const int id : DressedIds()) {
        EveryControlDialog dialog;
        dialog.Open();
        const HWND item = dialog.GetItem(id, true);
        const HWND window = dialog.window;
        SetWindowSubclass(window, &DestroyAtNotification, 1, 0);
        SendMessageW(item, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        if (IsWindow(item)) SendMessageW(item, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
        if (IsWindow(item)) SendMessageW(item, WM_CHAR, L'x', 0);
        PumpPosted();
        if (IsWindow(window)) continue; // notifies of none of these
        destroyed.insert(id);
        EXPECT_EQ(nullptr, dialog.GetControl(id)->window) << id;
    }
    for (const int id : kNotifying) EXPECT_TRUE(destroyed.contains(id)) << id;
}

} // namespace
} // namespace obtest
