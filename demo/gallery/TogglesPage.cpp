#include "demo/gallery/TogglesPage.h"

#include "ObLibX/src/controls/ObCustSwitch.h"
#include "demo/gallery/ButtonStates.h"
#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

struct StateRow {
    int id;
    UINT state;
};

constexpr StateRow kStates[] = {
    {OB_GALLERY_CHECK + 1, BST_CHECKED},  {OB_GALLERY_CHECK + 2, BST_INDETERMINATE},
    {OB_GALLERY_CHECK + 4, BST_CHECKED},  {OB_GALLERY_CHECK + 5, BST_INDETERMINATE},
    {OB_GALLERY_CHECK + 6, BST_CHECKED},  {OB_GALLERY_CHECK + 8, BST_CHECKED},
    {OB_GALLERY_RADIO + 0, BST_CHECKED},  {OB_GALLERY_RADIO + 2, BST_CHECKED},
    {OB_GALLERY_RADIO + 4, BST_CHECKED},  {OB_GALLERY_RADIO + 6, BST_CHECKED},
    {OB_GALLERY_SWITCH + 1, BST_CHECKED}, {OB_GALLERY_SWITCH + 3, BST_CHECKED},
    {OB_GALLERY_SWITCH + 4, BST_CHECKED},
};

// The thumb as if the mouse had taken it to the middle of its track.
void ShowDragged(ObLibX::ObCustomControl& control) {
    auto& button = dynamic_cast<ObLibX::ObFlatToggleBtn&>(control);
    RECT client{};
    GetClientRect(button.window, &client);
    button.isDown = true;
    button.lastMouseX = client.right * 2 / 3;
}

} // namespace

TogglesPage::TogglesPage() : ObXFlatDlg(OB_GALLERY_TOGGLES, nullptr, 0, true) {}

bool TogglesPage::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    CheckAll();
    ShowHot(*this, OB_GALLERY_CHECK + 6);
    ShowHot(*this, OB_GALLERY_RADIO + 4);
    ShowDragged(*GetControl(OB_GALLERY_SWITCH + 4));
    SetFocus(GetItem(OB_GALLERY_CHECK + 7, true));
    return false;
}

void TogglesPage::CheckAll() {
    for (const StateRow& row : kStates) CheckDlgButton(window, row.id, row.state);
}

} // namespace gallery
