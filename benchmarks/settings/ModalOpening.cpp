#include "benchmarks/settings/ModalOpening.h"

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "benchmarks/support/Memory.h"
#include "benchmarks/support/Stopwatch.h"

namespace bench {
namespace {

constexpr wchar_t kOwnerClass[] = L"ObModalOpening";

// What the owner window works on.
struct Watch {
    const std::function<void(HWND)>& use;
    double heapBefore = HeapKilobytes();
    Stopwatch clock;
    std::optional<Opening> opening;
};

bool HasMessages() {
    MSG message;
    return PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE) != FALSE;
}

// The first empty queue of a dialog is the one after which it is shown: the paints come then.
void OnIdle(Watch& watch, HWND dialog) {
    if (watch.opening || !IsWindowVisible(dialog) || HasMessages()) return;
    Opening opening{.milliseconds = watch.clock.Milliseconds()};
    opening.heapKilobytes = HeapKilobytes() - watch.heapBefore;
    opening.privateKilobytes = PrivateBytes() / 1024;
    watch.opening = opening;
    if (watch.use) watch.use(dialog);
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

LRESULT CALLBACK OwnerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const watch = reinterpret_cast<Watch*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_ENTERIDLE && wParam == MSGF_DIALOGBOX && watch != nullptr) {
        OnIdle(*watch, reinterpret_cast<HWND>(lParam));
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Visible, as a dialog of the product takes no hidden window for its owner.
ObLib::UniqueWindow MakeOwner() {
    WNDCLASSW row{};
    row.lpfnWndProc = &OwnerProcedure;
    row.hInstance = GetModuleHandleW(nullptr);
    row.lpszClassName = kOwnerClass;
    RegisterClassW(&row);
    return ObLib::UniqueWindow(CreateWindowExW(0, kOwnerClass, L"",
                                               WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                                               nullptr, nullptr, row.hInstance, nullptr));
}

} // namespace

std::optional<Opening> OpenOnce(const std::function<void(HWND)>& show,
                                const std::function<void(HWND)>& use) {
    const ObLib::UniqueWindow owner = MakeOwner();
    UpdateWindow(owner.Get());
    Watch watch{use};
    SetWindowLongPtrW(owner.Get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&watch));
    show(owner.Get());
    SetWindowLongPtrW(owner.Get(), GWLP_USERDATA, 0);
    return watch.opening;
}

} // namespace bench
