// What the tests of hosted bars share: a window with two bars of its own that records its messages,
// and fakes of what takes time, waits for a user or is missing under Wine: animation, timers, the
// mouse, menus, gestures.
#pragma once

#include "ObLibX/src/controls/ScrollBarHost.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace obtest {

struct Animation {
    HWND window = nullptr;
    DWORD time = 0;
    DWORD flags = 0;
    bool operator==(const Animation&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const Animation& animation) {
    return out << animation.window << " " << animation.time << " ms " << std::hex << animation.flags
               << std::dec;
}

struct SentTimer {
    HWND window = nullptr;
    UINT_PTR id = 0;
    UINT period = 0;
    bool operator==(const SentTimer&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const SentTimer& timer) {
    return out << timer.window << " " << timer.id << " " << timer.period << " ms";
}

struct MenuItem {
    UINT id = 0; // 0: a separator
    std::wstring text;
    bool operator==(const MenuItem&) const = default;
};

struct HostFakes {
    std::vector<Animation> animations;
    bool doesSlide = false;            // else AnimateWindow fails
    std::function<void()> onAnimation; // while a window slides, once
    std::vector<SentTimer> timers;     // that are running
    std::vector<TRACKMOUSEEVENT> tracked;
    POINT cursor{-1000, -1000}; // on the screen
    std::vector<MenuItem> menu; // that was shown last
    int menusShown = 0;
    POINT menuPoint{};
    UINT chosen = 0;              // by the user
    std::function<void()> onMenu; // while it is shown
    DWORD gesture = 0;            // what GetGestureInfo answers; 0: it fails
    std::vector<HWND> gesturesAsked;
};
inline HostFakes hostFakes;

inline BOOL WINAPI FakeAnimate(HWND window, DWORD time, DWORD flags) {
    hostFakes.animations.push_back({window, time, flags});
    if (const auto call = std::exchange(hostFakes.onAnimation, nullptr)) call();
    if (!hostFakes.doesSlide) return FALSE;
    ShowWindow(window, (flags & AW_HIDE) != 0 ? SW_HIDE : SW_SHOWNA);
    return TRUE;
}
inline UINT_PTR WINAPI FakeHostTimer(HWND window, UINT_PTR id, UINT period, TIMERPROC) {
    std::erase_if(hostFakes.timers,
                  [&](const SentTimer& t) { return t.window == window && t.id == id; });
    hostFakes.timers.push_back({window, id, period});
    return id;
}
inline BOOL WINAPI FakeHostKill(HWND window, UINT_PTR id) {
    return std::erase_if(hostFakes.timers,
                         [&](const SentTimer& t) { return t.window == window && t.id == id; }) != 0;
}
inline BOOL WINAPI FakeHostTrack(TRACKMOUSEEVENT* event) {
    hostFakes.tracked.push_back(*event);
    return TRUE;
}
inline BOOL WINAPI FakeHostCursor(POINT* point) {
    *point = hostFakes.cursor;
    return TRUE;
}
// Informs the window that a menu opens, as the system does.
inline BOOL WINAPI FakePopup(HMENU menu, UINT flags, int x, int y, int, HWND owner, const RECT*) {
    SendMessageW(owner, WM_ENTERMENULOOP, TRUE, 0);
    ++hostFakes.menusShown;
    hostFakes.menu.clear();
    hostFakes.menuPoint = {x, y};
    for (int at = 0; at < GetMenuItemCount(menu); ++at) {
        wchar_t text[80] = {};
        GetMenuStringW(menu, static_cast<UINT>(at), text, 80, MF_BYPOSITION);
        hostFakes.menu.push_back({GetMenuItemID(menu, at), text});
    }
    if (hostFakes.onMenu) hostFakes.onMenu();
    return (flags & TPM_RETURNCMD) != 0 ? static_cast<BOOL>(hostFakes.chosen) : TRUE;
}
inline BOOL WINAPI FakeGestureInfo(HGESTUREINFO, GESTUREINFO* info) {
    info->dwID = hostFakes.gesture;
    return hostFakes.gesture != 0;
}
inline BOOL WINAPI FakeGestureConfig(HWND window, DWORD, UINT, GESTURECONFIG*, UINT) {
    hostFakes.gesturesAsked.push_back(window);
    return TRUE;
}
inline decltype(&GetProcAddress) realEntry = nullptr;
inline FARPROC WINAPI FakeGestureEntry(HMODULE module, LPCSTR name) {
    const std::string_view wanted(name);
    void* const found = wanted == "GetGestureInfo"     ? reinterpret_cast<void*>(&FakeGestureInfo)
                        : wanted == "SetGestureConfig" ? reinterpret_cast<void*>(&FakeGestureConfig)
                                                       : nullptr;
    return found != nullptr ? reinterpret_cast<FARPROC>(found) : realEntry(module, name);
}

// What the host was sent of scrolling and of its bars' mode.
struct HostMessage {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    bool operator==(const HostMessage&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const HostMessage& sent) {
    return out << sent.message << " " << sent.wParam << " " << sent.lParam;
}

class HostTest : public BarTest {
protected:
    void SetUp() override {
        realEntry = entry_.Real();
        BarTest::SetUp();
        hostFakes = HostFakes();
        for (const bool isOk : {animate_.Ok(), set_.Ok(), kill_.Ok(), track_.Ok(), cursor_.Ok(),
                                popup_.Ok(), entry_.Ok()}) {
            ASSERT_TRUE(isOk);
        }
        const WNDCLASSW row{0,
                            &HostTest::HostProcedure,
                            0,
                            0,
                            GetModuleHandleW(nullptr),
                            nullptr,
                            nullptr,
                            static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)),
                            nullptr,
                            L"ObTestHost"};
        RegisterClassW(&row);
        host_ = MakeHost(0, 0);
        bars_.Attach(host_);
    }
    void TearDown() override {
        BarTest::TearDown();
        EXPECT_TRUE(hostFakes.timers.empty()) << "a timer without its window";
        EXPECT_EQ(nullptr, bars_.Host());
    }

    // With bars: 0 to 99 by pages of 20 at 40; 0 to 199 by pages of 50 at 0.
    HWND MakeHost(DWORD style, DWORD extendedStyle) {
        const HWND host =
            CreateWindowExW(extendedStyle, L"ObTestHost", L"",
                            WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | style, 50, 40, 300,
                            200, parent_.Get(), nullptr, GetModuleHandleW(nullptr), nullptr);
        SetWindowLongPtrW(host, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetHost(host, SB_VERT, 99, 20, 40);
        SetHost(host, SB_HORZ, 199, 50, 0);
        return host;
    }
    static void SetHost(HWND host, int bar, int maximum, UINT page, int position) {
        const SCROLLINFO info{
            sizeof info, SIF_RANGE | SIF_PAGE | SIF_POS, 0, maximum, page, position, 0};
        SetScrollInfo(host, bar, &info, TRUE);
    }
    static int HostPosition(HWND host, int bar) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_POS;
        GetScrollInfo(host, bar, &info);
        return info.nPos;
    }
    // From now on the host scrolls by the messages, as far as it takes the value from them.
    void LetItScroll() {
        onHost_ = [this](const HostMessage& sent) {
            if (sent.message != WM_VSCROLL) return;
            const int code = LOWORD(sent.wParam);
            const int before = HostPosition(host_, SB_VERT);
            const int after = code == SB_LINEDOWN     ? before + 1
                              : code == SB_LINEUP     ? before - 1
                              : code == SB_THUMBTRACK ? static_cast<short>(HIWORD(sent.wParam))
                                                      : before;
            SetHost(host_, SB_VERT, 99, 20, after);
            if (onScroll_) onScroll_();
        };
    }
    static void Erase(HWND host) {
        const ObLibX::ClientDc dc(host);
        SendMessageW(host, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc.Get()), 0);
    }
    HWND Holder(ObLibX::HolderKind kind) const { return bars_.Holder(kind).Window(); }
    HWND Vertical() const { return Holder(ObLibX::HolderKind::Vertical); }
    HWND Horizontal() const { return Holder(ObLibX::HolderKind::Horizontal); }
    HWND Corner() const { return Holder(ObLibX::HolderKind::Corner); }
    ObLibX::ObFlatScrollbar& Bar(ObLibX::HolderKind kind) const {
        return *bars_.Holder(kind).Bar();
    }
    ObLibX::ObFlatScrollbar& VerticalBar() const { return Bar(ObLibX::HolderKind::Vertical); }
    static bool IsShown(HWND window) {
        return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
    }
    // Which of the three are shown: vertical, horizontal, corner.
    std::array<bool, 3> Shown() const {
        return {IsShown(Vertical()), IsShown(Horizontal()), IsShown(Corner())};
    }
    static std::array<bool, 3> All() { return {true, true, true}; }
    static std::array<bool, 3> None() { return {}; }
    // How many holders the parent has, of any host.
    int CountHolders() const {
        int count = 0;
        for (HWND child = GetWindow(parent_.Get(), GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            wchar_t name[40] = {};
            GetClassNameW(child, name, 40);
            if (name == std::wstring_view(ObLibX::kHolderClass)) ++count;
        }
        return count;
    }
    // Drags the vertical bar's thumb to the end of its way, or back to its beginning.
    void DragTo(bool isEnd) const {
        ObLibX::ObFlatScrollbar& bar = VerticalBar();
        const ObLibX::PixelPoint thumb = bar.Layout().thumb.Centre();
        const int to = isEnd ? 5000 : -5000;
        Press(bar.window, thumb.x, thumb.y);
        Move(bar.window, thumb.x, to);
        LetGo(bar.window, thumb.x, to);
    }
    // Posts what a press that is held posts with the time; the cursor is where the bar is pressed.
    static void TickAt(HWND bar, ObLibX::PixelPoint at) {
        hostFakes.cursor = {at.x, at.y};
        ClientToScreen(bar, &hostFakes.cursor);
        SendMessageW(bar, WM_TIMER, 10551, 0);
        MSG message{};
        while (PeekMessageW(&message, bar, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
    }
    // As the system does for Shift+F10 and the menu key on the window that has the focus.
    static void AskForMenu(HWND window) {
        SendMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), -1);
    }
    // A right click on a bar, at a point of it, after which the user chooses.
    void ChooseFromMenu(ObLibX::HolderKind kind, UINT command, int x = 5, int y = 5) const {
        POINT point{x, y};
        ClientToScreen(Bar(kind).window, &point);
        hostFakes.chosen = command;
        SendMessageW(Bar(kind).window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Bar(kind).window),
                     MAKELPARAM(point.x, point.y));
    }

    ObLibX::ScrollBarHost bars_;
    HWND host_ = nullptr;
    std::vector<HostMessage> sent_;
    std::function<void(const HostMessage&)> onHost_;
    std::function<void()> onScroll_;
    std::function<void()> onAnyMessage_;  // of a host, once
    std::function<void()> onPaint_;       // of a host, once
    std::function<void()> onContextMenu_; // of a host, which then takes the message

private:
    static LRESULT CALLBACK HostProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* const test = reinterpret_cast<HostTest*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (test != nullptr && test->onAnyMessage_) {
            std::exchange(test->onAnyMessage_, nullptr)();
        }
        if (test != nullptr && message == WM_PAINT && test->onPaint_) {
            std::exchange(test->onPaint_, nullptr)();
        }
        if (test != nullptr && message == WM_CONTEXTMENU && test->onContextMenu_) {
            test->onContextMenu_();
            return 0;
        }
        constexpr UINT kRecorded[] = {WM_VSCROLL,    WM_HSCROLL, ObLibX::kShowBarsMessage,
                                      WM_MOUSEHOVER, WM_TIMER,   WM_MOUSEWHEEL};
        if (test != nullptr && std::ranges::find(kRecorded, message) != std::end(kRecorded)) {
            test->sent_.push_back({message, wParam, lParam});
            if (test->onHost_) test->onHost_(HostMessage{message, wParam, lParam});
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    ImportPatch<decltype(&AnimateWindow)> animate_{"user32.dll", "AnimateWindow", &FakeAnimate};
    ImportPatch<decltype(&SetTimer)> set_{"user32.dll", "SetTimer", &FakeHostTimer};
    ImportPatch<decltype(&KillTimer)> kill_{"user32.dll", "KillTimer", &FakeHostKill};
    ImportPatch<decltype(&TrackMouseEvent)> track_{"user32.dll", "TrackMouseEvent", &FakeHostTrack};
    ImportPatch<decltype(&GetCursorPos)> cursor_{"user32.dll", "GetCursorPos", &FakeHostCursor};
    ImportPatch<decltype(&TrackPopupMenu)> popup_{"user32.dll", "TrackPopupMenu", &FakePopup};
    ImportPatch<decltype(&GetProcAddress)> entry_{"kernel32.dll", "GetProcAddress",
                                                  &FakeGestureEntry};
};

} // namespace obtest
