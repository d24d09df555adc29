#include "demo/gallery/ScrolledPanel.h"

#include <string>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace gallery {
namespace {

// At 96 dpi.
constexpr int kLineHeight = 18;
constexpr int kPadding = 6;

void DrawLine(HDC dc, int number, const ObLibX::PixelRect& place) {
    if (number % 2 == 1) ObLibX::FillArea(dc, place, GetSysColor(COLOR_WINDOW) ^ 0x0A0A0A);
    const std::wstring text = L"Line " + std::to_wstring(number + 1);
    RECT rect = ObLibX::AsRect(place);
    rect.left += ObLibX::Scale(kPadding);
    DrawTextW(dc, text.c_str(), -1, &rect, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

void Paint(HWND panel) {
    const ObLibX::PaintDc paint(panel);
    const ObLibX::OffscreenPaint picture(panel, paint.Get());
    if (!picture) return;
    const HDC dc = picture.Dc();
    const ObLibX::PixelRect& area = picture.Area();
    ObLibX::FillArea(dc, area, GetSysColor(COLOR_WINDOW));
    const HGDIOBJ old = SelectObject(dc, ObLibX::GetFont(0, L"", FW_NORMAL, 0));
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    SetBkMode(dc, TRANSPARENT);
    auto number = static_cast<int>(GetWindowLongPtrW(panel, GWLP_USERDATA));
    for (int top = 1; top < area.bottom && number < kPanelLines; top += PanelLineHeight()) {
        DrawLine(dc, number++, {1, top, area.right - 1, top + PanelLineHeight()});
    }
    SelectObject(dc, old);
    ObLibX::FrameArea(dc, area, ObLibX::GetPaletteColor(ObLibX::kPaletteFrame));
    picture.Show();
}

LRESULT CALLBACK PanelProcedure(HWND panel, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_ERASEBKGND) return TRUE;
    if (message != WM_PAINT) return DefWindowProcW(panel, message, wParam, lParam);
    static_cast<void>(ObLib::RanGuarded([panel] { Paint(panel); }));
    return 0;
}

} // namespace

void RegisterScrolledPanel(HINSTANCE program) {
    WNDCLASSW row{};
    row.lpfnWndProc = &PanelProcedure;
    row.hInstance = program;
    row.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    row.lpszClassName = kScrolledPanelClass;
    RegisterClassW(&row);
}

int PanelLineHeight() { return ObLibX::Scale(kLineHeight); }

void ShowPanelFrom(HWND panel, int first) {
    SetWindowLongPtrW(panel, GWLP_USERDATA, first);
    InvalidateRect(panel, nullptr, FALSE);
}

} // namespace gallery
