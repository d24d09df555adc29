#include "demo/gallery/ListsPage.h"

#include <commctrl.h>

#include <iterator>
#include <string>

#include "ObLibX/src/controls/FittingImage.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/ImageSet.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

constexpr const wchar_t* kFiles[][4] = {
    {L"Minutes of the meeting.docx", L"48 KB", L"Monday", L"Document"},
    {L"Budget.xlsx", L"1,204 KB", L"Tuesday", L"Table"},
    {L"Site plan.pdf", L"12,881 KB", L"Friday", L"PDF"},
    {L"A photo with a very long name, which doesn't fit.jpg", L"5,310 KB", L"Saturday", L"Picture"},
};
constexpr int kColumns = static_cast<int>(std::size(kFiles[0]));
constexpr int kFileCount = static_cast<int>(std::size(kFiles));
// As many as a list shows without a scroll bar.
constexpr int kFewRows = 3;
constexpr int kCheckRows = 2;
constexpr int kManyRows = 1000;

constexpr int kLarge = 2; // the row of the largest file
constexpr COLORREF kLargeColor = 0x0000C0;

void SetCell(HWND list, int row, int column, const wchar_t* text) {
    LVITEMW item{};
    item.mask = LVIF_TEXT | (column == 0 ? LVIF_IMAGE : 0);
    item.iItem = row;
    item.iSubItem = column;
    item.iImage = row % 2;
    item.pszText = const_cast<wchar_t*>(text);
    SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0,
                 reinterpret_cast<LPARAM>(&item));
}

void SetState(HWND list, int row, UINT state, UINT mask) {
    LVITEMW item{};
    item.state = state;
    item.stateMask = mask;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

} // namespace

ListsPage::ListsPage() : ObXFlatDlg(OB_GALLERY_LISTS, nullptr, 0, true) {}

bool ListsPage::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    for (const int id : {OB_GALLERY_LIST_CHECKS, OB_GALLERY_LIST_OFF, OB_GALLERY_LIST_STOCK}) {
        SendMessageW(GetItem(id, true), LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES,
                     LVS_EX_CHECKBOXES);
    }
    SendMessageW(GetItem(OB_GALLERY_LIST_STOCK, true), LVM_ENABLEGROUPVIEW, FALSE, 0);
    UseIcons(OB_GALLERY_LIST_CHECKS);
    UseIcons(OB_GALLERY_LIST_OFF);
    for (const int id : {OB_GALLERY_LIST_PLAIN, OB_GALLERY_LIST_COLOURS, OB_GALLERY_LIST_STOCK}) {
        Fill(id, kFewRows);
    }
    Fill(OB_GALLERY_LIST_CHECKS, kCheckRows);
    Fill(OB_GALLERY_LIST_OFF, kCheckRows);
    Fill(OB_GALLERY_LIST_MANY, kManyRows);
    Select(OB_GALLERY_LIST_PLAIN, 1);
    Select(OB_GALLERY_LIST_COLOURS, 1);
    for (const int id : {OB_GALLERY_LIST_CHECKS, OB_GALLERY_LIST_OFF, OB_GALLERY_LIST_STOCK}) {
        Check(id, 1);
    }
    PointAt(OB_GALLERY_LIST_CHECKS, 0);
    return true;
}

void ListsPage::UseIcons(int id) {
    const int size = ObLibX::Scale(16);
    if (!icons_) {
        icons_.Reset(ImageList_Create(size, size, ILC_COLOR32, 2, 1));
        const std::int32_t scale = ObLibX::ScaleOfDpi(ObLibX::GetDpi());
        for (const auto image : {ObLibX::ControlImage::Settings, ObLibX::ControlImage::Browser}) {
            const auto bitmap = ObLibX::ImageOfScale(image, scale);
            const auto recolored = ObLibX::RecolorForHighContrast(bitmap.Get(), true);
            ImageList_Add(icons_.Get(), recolored ? recolored.Get() : bitmap.Get(), nullptr);
        }
    }
    SendMessageW(GetItem(id, true), LVM_SETIMAGELIST, LVSIL_SMALL,
                 reinterpret_cast<LPARAM>(icons_.Get()));
}

void ListsPage::Fill(int id, int rows) {
    const HWND list = GetItem(id, true);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    for (int row = 0; row < rows; ++row) {
        const auto& file = kFiles[row % kFileCount];
        const std::wstring name = rows == kManyRows ? L"File " + std::to_wstring(row + 1) : file[0];
        SetCell(list, row, 0, name.c_str());
        for (int column = 1; column < kColumns; ++column) SetCell(list, row, column, file[column]);
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

void ListsPage::Select(int id, int row) {
    constexpr UINT kState = LVIS_SELECTED | LVIS_FOCUSED;
    SetState(GetItem(id, true), row, kState, kState);
}

void ListsPage::Check(int id, int row) {
    SetState(GetItem(id, true), row, INDEXTOSTATEIMAGEMASK(2), LVIS_STATEIMAGEMASK);
}

// As if the mouse were there; until the real one comes to the list.
void ListsPage::PointAt(int id, int row) {
    const HWND list = GetItem(id, true);
    RECT area{LVIR_BOUNDS, 0, 0, 0};
    SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&area));
    SendMessageW(list, WM_MOUSEMOVE, 0, MAKELPARAM(area.left + 9, area.top + 5));
}

// The first row is bold, as the default of several is.
bool ListsPage::OnNotify(int id, NMHDR* header, LRESULT& result) {
    if (id != OB_GALLERY_LIST_COLOURS || header->code != static_cast<UINT>(NM_CUSTOMDRAW)) {
        return ObXFlatDlg::OnNotify(id, header, result);
    }
    const auto& draw = *reinterpret_cast<const NMLVCUSTOMDRAW*>(header);
    result = CDRF_DODEFAULT;
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) result = CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && draw.nmcd.dwItemSpec == 0) {
        SelectObject(draw.nmcd.hdc, ObLibX::GetFont(9, L"", FW_BOLD, 0));
        result = CDRF_NEWFONT;
    }
    return true;
}

COLORREF ListsPage::GetListItemColor(int id, int row, int column, std::uint32_t flags) {
    constexpr std::uint32_t kContrast = 8;
    const bool isLarge = id == OB_GALLERY_LIST_COLOURS && row == kLarge && column <= 1;
    return isLarge && (flags & kContrast) == 0 ? kLargeColor : ObLibX::kNoColor;
}

} // namespace gallery
