#include "ObLib/Src/Win32/ObWinGUI.h"

#include <climits>
#include <cstdint>

#include "ObLib/Src/ObFatal.h"

namespace ObLib {
namespace {

constexpr wchar_t kModule[] = L"ObLib\\Src\\Win32\\ObWinGUI.cpp";

} // namespace

int GetWindowTextString(HWND window, ObString& out) {
    out.AssignText(L"");
    const std::int64_t units = std::int64_t{GetWindowTextLengthW(window)} + 1;
    ObAssert(units >= 0 && units <= INT_MAX);
    if (units <= 1) return 0;
    ObBuffer text;
    text.Resize(static_cast<std::uint64_t>(units) * sizeof(wchar_t), kResizeClears);
    // The system may have less than it announced.
    auto* const data = static_cast<wchar_t*>(text.data);
    const int length = GetWindowTextW(window, data, static_cast<int>(units));
    if (length > 0) out.AssignText(data);
    return static_cast<int>(out.Length());
}

} // namespace ObLib
