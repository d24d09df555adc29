// What the tests of bars share: a parent that records its scroll messages, a window for a bar on
// it, a mouse, and a fake of the question about high contrast.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>
#include <oleacc.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "tests/support/ContrastFake.h"
#include "tests/support/CrashWatch.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLibX/controls/PixelQuestions.h"

namespace obtest {

// A message that a bar has sent to its parent.
struct Scrolled {
    UINT message = 0;
    int code = 0;
    int value = 0; // of the high word
    HWND bar = nullptr;
    bool operator==(const Scrolled&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const Scrolled& scrolled) {
    return out << scrolled.message << " code " << scrolled.code << " value " << scrolled.value;
}

inline bool& isBarContrast = isContrastOn;

// The windows for which the mouse's leaving was asked, by those that patch TrackMouseEvent so.
inline std::vector<HWND> leavesAsked;
inline BOOL WINAPI NoteTracking(TRACKMOUSEEVENT* event) {
    leavesAsked.push_back(event->hwndTrack);
    return TRUE;
}

// Whether the stock controls beside ours are Wine's, which answer some messages otherwise.
inline bool AreStockControlsOfWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

// A client area as it is painted, to be asked for single pixels.
class PaintedPixels : public PixelQuestions<PaintedPixels> {
public:
    explicit PaintedPixels(HWND window) : area_(ObLibX::ClientArea(window)) {
        const ObLibX::ClientDc screen(window);
        dc_.Reset(CreateCompatibleDC(screen.Get()));
        bitmap_.Reset(CreateCompatibleBitmap(screen.Get(), area_.right, area_.bottom));
        old_ = SelectObject(dc_.Get(), bitmap_.Get());
        ObLibX::FillArea(dc_.Get(), area_, 0x123456);
        SendMessageW(window, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc_.Get()), PRF_CLIENT);
    }
    ~PaintedPixels() { SelectObject(dc_.Get(), old_); }
    PaintedPixels(const PaintedPixels&) = delete;
    PaintedPixels& operator=(const PaintedPixels&) = delete;

    [[nodiscard]] COLORREF At(int x, int y) const { return GetPixel(dc_.Get(), x, y); }
    [[nodiscard]] const ObLibX::PixelRect& Area() const { return area_; }

private:
    ObLibX::PixelRect area_;
    ObLib::UniqueMemoryDc dc_;
    ObLib::UniqueBitmap bitmap_;
    HGDIOBJ old_ = nullptr;
};

// What a screen reader gets to know about a window.
struct Accessible {
    std::wstring name;
    std::wstring value;
    std::wstring description;
    std::wstring action;
    LONG role = 0;
    LONG state = 0;
};

inline Accessible AccessibleOf(HWND window) {
    ObLib::ComPtr<IAccessible> object;
    if (AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                   reinterpret_cast<void**>(object.Put())) != S_OK) {
        return {};
    }
    VARIANT self{};
    self.vt = VT_I4;
    VARIANT role{};
    object->get_accRole(self, &role);
    VARIANT state{};
    object->get_accState(self, &state);
    const auto text = [&](HRESULT (STDMETHODCALLTYPE IAccessible::*get)(VARIANT, BSTR*)) {
        BSTR found = nullptr;
        (object.Get()->*get)(self, &found);
        const std::wstring copy = found != nullptr ? found : L"";
        SysFreeString(found);
        return copy;
    };
    return {text(&IAccessible::get_accName),
            text(&IAccessible::get_accValue),
            text(&IAccessible::get_accDescription),
            text(&IAccessible::get_accDefaultAction),
            role.lVal,
            state.lVal};
}

// An object in memory of its own, which keeps nothing of it once it is deleted: whoever uses it
// then is noticed.
template <class Object>
class Deletable {
public:
    template <class... Arguments>
    explicit Deletable(Arguments... arguments) {
        object_ = new (memory_) Object(arguments...);
    }
    ~Deletable() { Delete(); }
    Deletable(const Deletable&) = delete;
    Deletable& operator=(const Deletable&) = delete;

    Object* operator->() const { return object_; }
    Object& operator*() const { return *object_; }
    [[nodiscard]] bool IsThere() const { return object_ != nullptr; }
    void Delete() {
        if (object_ == nullptr) return;
        object_->~Object();
        object_ = nullptr;
        std::memset(memory_, 0xDD, sizeof memory_);
    }

private:
    alignas(Object) std::byte memory_[sizeof(Object)];
    Object* object_ = nullptr;
};

class BarTest : public testing::Test {
protected:
    void SetUp() override {
        ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
        isBarContrast = false;
        ASSERT_TRUE(contrast_.Ok());
        const WNDCLASSW row{0,
                            &BarTest::ParentProcedure,
                            0,
                            0,
                            GetModuleHandleW(nullptr),
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr,
                            L"ObBarParent"};
        RegisterClassW(&row);
        parent_.Reset(CreateWindowExW(0, L"ObBarParent", L"", WS_POPUP | WS_VISIBLE, 0, 0, 600, 500,
                                      nullptr, nullptr, nullptr, this));
        ASSERT_TRUE(parent_);
        SetForegroundWindow(parent_.Get());
    }
    void TearDown() override {
        parent_.Reset();
        isBarContrast = false;
        ObLib::AppGlobals().Clear();
    }

    // A child of the parent.
    HWND Child(const wchar_t* className, DWORD style, const RECT& place, HWND buddy = nullptr) {
        return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | style, place.left,
                               place.top, place.right - place.left, place.bottom - place.top,
                               buddy != nullptr ? buddy : parent_.Get(), nullptr,
                               GetModuleHandleW(nullptr), nullptr);
    }
    static RECT PlaceOf(HWND window) {
        RECT rect{};
        GetWindowRect(window, &rect);
        MapWindowPoints(HWND_DESKTOP, GetParent(window), reinterpret_cast<POINT*>(&rect), 2);
        return rect;
    }

    static void Move(HWND bar, int x, int y) {
        SendMessageW(bar, WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
    }
    static void Press(HWND bar, int x, int y) {
        SendMessageW(bar, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    }
    static void LetGo(HWND bar, int x, int y) {
        SendMessageW(bar, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    }
    static void Key(HWND bar, WPARAM key) { SendMessageW(bar, WM_KEYDOWN, key, 1); }

    // From now on the window reports that focus cues are hidden, which the system reports only
    // after a mouse was used, and never where the user wants to see them always.
    static void HideFocusCues(HWND window) {
        SetWindowSubclass(
            window,
            [](HWND hidden, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
               DWORD_PTR) -> LRESULT {
                if (message == WM_QUERYUISTATE) return UISF_HIDEFOCUS;
                return DefSubclassProc(hidden, message, wParam, lParam);
            },
            1, 0);
    }

    ObLib::UniqueWindow parent_;
    std::vector<Scrolled> scrolled_;
    std::function<void(const Scrolled&)> onScrolled_; // the parent's reaction
    std::function<void(int code)> onCommand_;         // and that to the code of a WM_COMMAND

private:
    CrashWatch crashes_;
    static LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam) {
        if (message == WM_NCCREATE) {
            const auto* const made = reinterpret_cast<const CREATESTRUCTW*>(lParam);
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(made->lpCreateParams));
        }
        auto* const test = reinterpret_cast<BarTest*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (test != nullptr && (message == WM_HSCROLL || message == WM_VSCROLL)) {
            test->scrolled_.push_back({message, LOWORD(wParam), static_cast<short>(HIWORD(wParam)),
                                       reinterpret_cast<HWND>(lParam)});
            if (test->onScrolled_) test->onScrolled_(test->scrolled_.back());
            return 0;
        }
        if (test != nullptr && message == WM_COMMAND && test->onCommand_) {
            test->onCommand_(HIWORD(wParam));
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    ImportPatch<decltype(&SystemParametersInfoW)> contrast_{"user32.dll", "SystemParametersInfoW",
                                                            &ParametersWithContrast};
};

} // namespace obtest
