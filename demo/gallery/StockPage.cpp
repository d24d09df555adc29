#include "demo/gallery/StockPage.h"

#include <commctrl.h>

#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

constexpr const wchar_t* kKinds[] = {L"Leave files as they are", L"Zip", L"Zip and encrypt"};
constexpr const wchar_t* kFiles[] = {L"Agenda.docx", L"Budget 2026.xlsx", L"Garden.jpg",
                                     L"Minutes of the meeting.pdf"};
constexpr WPARAM kProgress = 60; // percent

} // namespace

StockPage::StockPage() : ObXDlg(OB_GALLERY_STOCK, nullptr, 0, true) {}

bool StockPage::OnInitDialog() {
    for (const wchar_t* const kind : kKinds) {
        SendDlgItemMessageW(window, OB_GALLERY_KIND, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(kind));
    }
    for (const wchar_t* const file : kFiles) {
        SendDlgItemMessageW(window, OB_GALLERY_FILES, LB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(file));
    }
    ShowDefaults();
    AddTooltip(GetItem(OB_GALLERY_DEFAULTS, true), L"Puts back what the page began with");
    ObXDlg::OnInitDialog();
    return true;
}

bool StockPage::OnCommandId(int id, int code, HWND) {
    if (id != OB_GALLERY_DEFAULTS || code != BN_CLICKED) return false;
    ShowDefaults();
    return true;
}

void StockPage::ShowDefaults() {
    SetDlgItemTextW(window, OB_GALLERY_NAME, L"Meeting");
    SetDlgItemTextW(window, OB_GALLERY_PASSWORD, L"password");
    SetDlgItemTextW(window, OB_GALLERY_NOTES, L"The first line\r\nThe second line");
    SendDlgItemMessageW(window, OB_GALLERY_KIND, CB_SETCURSEL, 1, 0);
    SendDlgItemMessageW(window, OB_GALLERY_FILES, LB_SETCURSEL, 2, 0);
    SendDlgItemMessageW(window, OB_GALLERY_PROGRESS, PBM_SETPOS, kProgress, 0);
    CheckDlgButton(window, 1011, BST_CHECKED);
    CheckDlgButton(window, 1012, BST_INDETERMINATE);
    CheckDlgButton(window, 1013, BST_CHECKED);
    CheckRadioButton(window, 1014, 1015, 1014);
}

} // namespace gallery
