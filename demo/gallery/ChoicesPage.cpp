#include "demo/gallery/ChoicesPage.h"

#include <commctrl.h>

#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

constexpr int kCombos[] = {OB_GALLERY_COMBO_SIMPLE, OB_GALLERY_COMBO_EDIT, OB_GALLERY_COMBO_LIST,
                           OB_GALLERY_COMBO_LONG, OB_GALLERY_COMBO_OFF};
constexpr const wchar_t* kChoices[] = {L"Leave files as they are", L"Zip", L"Zip and encrypt",
                                       L"Zip and encrypt, and send a link in place of the files"};

struct SpinRow {
    int spin;
    int edit;
    int value;
};
constexpr SpinRow kSpins[] = {{OB_GALLERY_SPIN, OB_GALLERY_SPIN_EDIT, 42},
                              {OB_GALLERY_SPIN_OFF, OB_GALLERY_SPIN_EDIT_OFF, 7}};

} // namespace

ChoicesPage::ChoicesPage() : ObXFlatDlg(OB_GALLERY_CHOICES, nullptr, 0, true) {}

bool ChoicesPage::OnInitDialog() {
    for (const int id : kCombos) {
        const HWND combo = GetItem(id, true);
        for (const wchar_t* const choice : kChoices) {
            SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(choice));
        }
        SendMessageW(combo, CB_SETCURSEL, id == OB_GALLERY_COMBO_LONG ? 3 : 1, 0);
    }
    for (const SpinRow& row : kSpins) {
        const HWND spin = GetItem(row.spin, true);
        SendMessageW(spin, UDM_SETBUDDY, reinterpret_cast<WPARAM>(GetItem(row.edit, true)), 0);
        SendMessageW(spin, UDM_SETRANGE32, 0, 100);
        SendMessageW(spin, UDM_SETPOS32, 0, row.value);
    }
    ObXFlatDlg::OnInitDialog();
    return true;
}

} // namespace gallery
