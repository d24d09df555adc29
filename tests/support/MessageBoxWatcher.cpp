#include "tests/support/MessageBoxWatcher.h"

#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

constexpr DWORD kLookEvery = 10; // milliseconds
constexpr int kMessageTextId = 0xFFFF;

// What a message box is made of, read from its children.
struct Parts {
    HWND text = nullptr;
    bool icon = false;
    bool button = false;
    bool other = false;
};

void SortChild(HWND child, Parts& found) {
    const std::wstring name = ClassOf(child);
    if (name == L"Static") {
        const bool isIcon = (GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
        if (isIcon) {
            found.icon = SendMessageW(child, STM_GETICON, 0, 0) != 0;
        } else if (GetDlgCtrlID(child) == kMessageTextId || !found.text) {
            found.text = child;
        }
    } else if (name == L"Button") {
        found.button = true;
    } else if (name == L"Edit" && IsWindowVisible(child)) {
        // The text of a box is a read-only edit field on some systems.
        if (GetWindowLongW(child, GWL_STYLE) & ES_READONLY) {
            found.text = child;
        } else {
            found.other = true;
        }
    } else {
        found.other = true;
    }
}

Parts PartsOf(HWND box) {
    Parts parts;
    for (const HWND child : Descendants(box)) SortChild(child, parts);
    return parts;
}

} // namespace

MessageBoxWatcher::MessageBoxWatcher(Scope scope) : scope_(scope) {
    // The first look at windows loads the display's driver. On the watching thread that could meet
    // a module that the test is loading just then, and each would wait for the other.
    GetDesktopWindow();
    thread_ = std::thread([this] { Watch(); });
}

MessageBoxWatcher::~MessageBoxWatcher() {
    stop_ = true;
    thread_.join();
}

std::vector<SeenBox> MessageBoxWatcher::Seen() const {
    const std::lock_guard guard(lock_);
    return seen_;
}

bool MessageBoxWatcher::WaitFor(std::size_t count, DWORD limit) const {
    return WaitUntil([&] { return Seen().size() >= count; }, limit);
}

void MessageBoxWatcher::Watch() {
    const DWORD process = scope_ == Scope::AllProcesses ? 0 : GetCurrentProcessId();
    while (!stop_) {
        for (const HWND window : TopWindows(process)) {
            if (IsDialog(window)) Answer(window);
        }
        Sleep(kLookEvery);
    }
}

void MessageBoxWatcher::Answer(HWND box) {
    if (box == last_ && IsWindow(last_)) return; // pressed already, on its way out
    const Parts parts = PartsOf(box);
    if (!parts.text || !parts.button || parts.other) return;
    GUITHREADINFO thread{sizeof thread};
    GetGUIThreadInfo(GetWindowThreadProcessId(box, nullptr), &thread);
    SeenBox seen{TextOf(box), TextOf(parts.text), parts.icon, GetWindow(box, GW_OWNER),
                 GetDlgCtrlID(thread.hwndFocus)};
    {
        const std::lock_guard guard(lock_);
        seen_.push_back(std::move(seen));
    }
    last_ = box;
    PressCommand(box, button_);
}

} // namespace obtest
