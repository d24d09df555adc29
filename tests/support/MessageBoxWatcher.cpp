#include "tests/support/MessageBoxWatcher.h"

#include <cwchar>

namespace obtest {
namespace {

constexpr DWORD kLookEvery = 10; // milliseconds
constexpr int kMessageTextId = 0xFFFF;

std::wstring TextOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

// What a message box is made of, read from its children.
struct Parts {
    HWND text = nullptr;
    bool icon = false;
    bool button = false;
    bool other = false;
};

BOOL CALLBACK SortChild(HWND child, LPARAM parts) {
    auto& found = *reinterpret_cast<Parts*>(parts);
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
    return TRUE;
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
    for (DWORD waited = 0; waited <= limit; waited += kLookEvery) {
        if (Seen().size() >= count) return true;
        Sleep(kLookEvery);
    }
    return false;
}

void MessageBoxWatcher::Watch() {
    while (!stop_) {
        EnumWindows(OnWindow, reinterpret_cast<LPARAM>(this));
        Sleep(kLookEvery);
    }
}

BOOL CALLBACK MessageBoxWatcher::OnWindow(HWND window, LPARAM self) {
    auto& watcher = *reinterpret_cast<MessageBoxWatcher*>(self);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    const bool ours = watcher.scope_ == Scope::AllProcesses || process == GetCurrentProcessId();
    if (ours && IsWindowVisible(window) && ClassOf(window) == L"#32770") watcher.Answer(window);
    return TRUE;
}

void MessageBoxWatcher::Answer(HWND box) {
    if (box == last_ && IsWindow(last_)) return; // pressed already, on its way out
    Parts parts;
    EnumChildWindows(box, SortChild, reinterpret_cast<LPARAM>(&parts));
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
    PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button_.load()), 0);
}

} // namespace obtest
