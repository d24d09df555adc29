// Windows that are destroyed in the middle of a paint, of a fade and of a notification.
#include <commctrl.h>

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

TEST_F(DestroyedMeanwhile, WhileItFades) {
    for (const int id : DressedIds()) {
        EveryControlDialog dialog;
        dialog.Open();
        SendMessageW(dialog.GetItem(id, true), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
        DestroyWindow(dialog.GetItem(id, true));
        EXPECT_EQ(0u, timers_.Running()) << id;
        PumpPosted();
    }
    EXPECT_LT(0u, timers_.Started()) << "buttons fade";
}

TEST_F(DestroyedMeanwhile, InAStepOfAFade) {
    const std::vector<int> ids = DressedIds();
    int destroyed = 0;
    const ImportPatch<decltype(&GetDC)> patch("user32.dll", "GetDC", &GetAndDestroy);
    ASSERT_TRUE(patch.Ok());
    for (const int id : ids) {
        EveryControlDialog dialog;
        dialog.Open();
        const HWND window = dialog.GetItem(id, true);
        SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
        if (timers_.Running() == 0) continue; // doesn't fade
        destroyedInFade = window;
        MSG message;
        while (IsWindow(window) && timers_.Running() > 0 &&
               GetMessageW(&message, nullptr, 0, 0) > 0) {
            DispatchMessageW(&message);
        }
        destroyedInFade = nullptr;
        if (!IsWindow(window)) ++destroyed;
        EXPECT_EQ(0u, timers_.Running()) << id;
    }
    EXPECT_LT(5, destroyed) << "buttons paint each step at once; the other windows at WM_PAINT";
}

// A dialog that goes at the first notification.
TEST_F(DestroyedMeanwhile, InANotification) {
    int destroyed = 0;
    for (const int id : DressedIds()) {
        EveryControlDialog dialog;
        dialog.Open();
        dialog.onCommand = [&](int, int) {
            if (dialog.window == nullptr) return;
            DestroyWindow(dialog.window);
            ++destroyed;
        };
        const HWND item = dialog.GetItem(id, true);
        const HWND window = dialog.window;
        SendMessageW(item, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        if (IsWindow(item)) SendMessageW(item, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
        if (IsWindow(item)) SendMessageW(item, WM_CHAR, L'x', 0);
        PumpPosted();
        if (IsWindow(window)) continue; // notifies of none of these
        EXPECT_EQ(nullptr, dialog.GetControl(id)->window) << id;
    }
    EXPECT_LT(5, destroyed) << "buttons and edits notify";
}

} // namespace
} // namespace obtest
