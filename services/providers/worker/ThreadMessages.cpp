#include "services/providers/worker/ThreadMessages.h"

namespace providers {
namespace {

bool IsBelow(HWND window, HWND owner) {
    HWND above = GetWindow(window, GW_OWNER);
    while (above && above != owner) above = GetWindow(above, GW_OWNER);
    return above != nullptr;
}

BOOL CALLBACK CancelIfOwned(HWND window, LPARAM given) noexcept {
    const auto owner = reinterpret_cast<HWND>(given);
    const bool isMeant = !owner || IsBelow(window, owner);
    if (isMeant && IsWindowVisible(window) && IsWindowEnabled(window)) {
        PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    }
    return TRUE;
}

} // namespace

void CancelDialogOf(DWORD thread, HWND owner) noexcept {
    EnumThreadWindows(thread, &CancelIfOwned, reinterpret_cast<LPARAM>(owner));
}

} // namespace providers
