#include "demo/gallery/ButtonsPage.h"

#include "ObLibX/src/controls/ControlImages.h"
#include "ObLibX/src/controls/ObCustBtn.h"
#include "demo/gallery/ButtonStates.h"
#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

using ObLibX::ControlImage;

struct ImageRow {
    int id;
    ControlImage image;
    std::int32_t beside; // imageBesideText
    std::int32_t side;   // imageSide
};

constexpr ImageRow kImages[] = {
    {OB_GALLERY_BUTTON_IMAGE + 0, ControlImage::Settings, 0, 0},
    {OB_GALLERY_BUTTON_IMAGE + 1, ControlImage::Settings, 0, 1},
    {OB_GALLERY_BUTTON_IMAGE + 2, ControlImage::Browser, 1, 0},
    {OB_GALLERY_BUTTON_IMAGE + 3, ControlImage::Browser, 0, 0},
};

} // namespace

ButtonsPage::ButtonsPage() : ObXFlatDlg(OB_GALLERY_BUTTONS, nullptr, 0, true) {}

bool ButtonsPage::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    ShowStates();
    ShowImages();
    SetFocus(GetItem(OB_GALLERY_BUTTON_FOCUSED, true));
    return false;
}

void ButtonsPage::ShowStates() {
    for (int row = 0; row < OB_GALLERY_BUTTON_CLASSES; ++row) {
        const int first = OB_GALLERY_BUTTON_STATE + OB_GALLERY_BUTTON_STEP * row;
        ShowHot(*this, first + 1);
        ShowPressed(*this, first + 2);
    }
    // The settings button has a frame only while the mouse is on it.
    for (const int column : {1, 2}) {
        GetControl(OB_GALLERY_BUTTON_STATE + 2 * OB_GALLERY_BUTTON_STEP + column)->hasFrame = 1;
    }
}

void ButtonsPage::ShowImages() {
    for (const ImageRow& row : kImages) {
        ObLibX::ObCustomControl* const button = GetControl(row.id);
        button->images = ObLibX::ImageSet(ObLibX::ImageList(row.image));
        button->imageBesideText = row.beside;
        button->imageSide = row.side;
    }
}

} // namespace gallery
