#include "demo/gallery/BarsPage.h"

#include <commctrl.h>

#include <string>

#include "demo/gallery/GalleryIds.h"
#include "demo/gallery/ScrolledPanel.h"

namespace gallery {
namespace {

constexpr ObLibX::ScrollExtent kAcross{100, 20}; // of the horizontal bar

struct ProgressRow {
    int id;
    int position;
    int state;
};
constexpr ProgressRow kProgress[] = {{OB_GALLERY_PROGRESS_NORMAL, 60, PBST_NORMAL},
                                     {OB_GALLERY_PROGRESS_PAUSED, 60, PBST_PAUSED},
                                     {OB_GALLERY_PROGRESS_ERROR, 60, PBST_ERROR},
                                     {OB_GALLERY_PROGRESS_UPRIGHT, 40, PBST_NORMAL}};

void SetBar(HWND bar, int maximum, int page, int position) {
    const SCROLLINFO info{sizeof info,
                          SIF_RANGE | SIF_PAGE | SIF_POS,
                          0,
                          maximum,
                          static_cast<UINT>(page),
                          position,
                          0};
    SetScrollInfo(bar, SB_CTL, &info, TRUE);
}

ObLibX::PixelRect PlaceInDialog(HWND dialog, HWND child) {
    RECT rect{};
    GetWindowRect(child, &rect);
    MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return {rect.left, rect.top, rect.right, rect.bottom};
}

} // namespace

BarsPage::BarsPage() : ObXFlatDlg(OB_GALLERY_BARS, nullptr, 0, true) {}

bool BarsPage::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    PreparePanel();
    PrepareProgress();
    SetBar(GetItem(OB_GALLERY_ACROSS, true), static_cast<int>(kAcross.total) - 1,
           static_cast<int>(kAcross.page), 30);
    ShowValue(OB_GALLERY_ACROSS_VALUE, 30);
    SetBar(GetItem(OB_GALLERY_BAR_OFF, true), 99, 20, 30);
    SetBar(GetItem(OB_GALLERY_BAR_END, true), 99, 20, 0);
    SendMessageW(GetItem(OB_GALLERY_BAR_END, true), SBM_ENABLE_ARROWS, ESB_DISABLE_LEFT, 0);
    for (const int id : {OB_GALLERY_SLIDER, OB_GALLERY_SLIDER_OFF, OB_GALLERY_SLIDER_UPRIGHT}) {
        SendMessageW(GetItem(id, true), TBM_SETPOS, TRUE, 40);
    }
    ShowValue(OB_GALLERY_SLIDER_VALUE, 40);
    return true;
}

// By its bar, the wheel and a finger; by the keys of the bar.
void BarsPage::PreparePanel() {
    const HWND panel = GetItem(OB_GALLERY_PANEL, true);
    const HWND bar = GetItem(OB_GALLERY_PANEL_BAR, true);
    const ObLibX::PixelRect place = PlaceInDialog(window, panel);
    const int page = (place.Height() - 2) / PanelLineHeight();
    SetBar(bar, kPanelLines - 1, page, 0);
    ObLibX::ScrollArea area;
    area.target = this;
    area.cookie = reinterpret_cast<std::intptr_t>(panel);
    area.scrollBarWindow = bar;
    area.panelWindow = panel;
    area.extent = {kPanelLines, page};
    area.unitPixels = PanelLineHeight();
    area.rectangle = place;
    Scrolling().Add(OB_GALLERY_PANEL_BAR, area);
}

void BarsPage::PrepareProgress() {
    for (const ProgressRow& row : kProgress) {
        const HWND bar = GetItem(row.id, true);
        SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(row.position), 0);
        SendMessageW(bar, PBM_SETSTATE, static_cast<WPARAM>(row.state), 0);
    }
    SendMessageW(GetItem(OB_GALLERY_PROGRESS_MARQUEE, true), PBM_SETMARQUEE, TRUE, 0);
}

void BarsPage::OnScroll(std::int64_t position, std::intptr_t cookie) {
    ShowPanelFrom(reinterpret_cast<HWND>(cookie), static_cast<int>(position));
}

LRESULT BarsPage::OnOtherMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_HSCROLL) return ObXFlatDlg::OnOtherMessage(message, wParam, lParam);
    OnHorizontalScroll(wParam, reinterpret_cast<HWND>(lParam));
    return TRUE;
}

void BarsPage::OnHorizontalScroll(WPARAM wParam, HWND bar) {
    if (GetDlgCtrlID(bar) == OB_GALLERY_SLIDER) {
        ShowValue(OB_GALLERY_SLIDER_VALUE, SendMessageW(bar, TBM_GETPOS, 0, 0));
    }
    if (GetDlgCtrlID(bar) != OB_GALLERY_ACROSS) return;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(bar, SB_CTL, &info);
    const auto position =
        ObLibX::BarScrollPosition(kAcross, LOWORD(wParam), {info.nPos, info.nPage, info.nTrackPos});
    if (!position) return;
    SetBar(bar, static_cast<int>(kAcross.total) - 1, static_cast<int>(kAcross.page),
           static_cast<int>(*position));
    ShowValue(OB_GALLERY_ACROSS_VALUE, *position);
}

void BarsPage::ShowValue(int labelId, std::int64_t value) {
    SetDlgItemTextW(window, labelId, std::to_wstring(value).c_str());
}

} // namespace gallery
