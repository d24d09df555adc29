#include "demo/gallery/TextsPage.h"

#include "ObLibX/src/controls/ObCustPassword.h"
#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

struct Content {
    int id;
    const wchar_t* text;
};

constexpr Content kContents[] = {
    {OB_GALLERY_EDIT_TEXT, L"Minutes of the meeting"},
    {OB_GALLERY_EDIT_LONG, L"A text that is longer than the field in which it is shown"},
    {OB_GALLERY_EDIT_DISABLED, L"Nobody can change this"},
    {OB_GALLERY_EDIT_READONLY, L"To be read and copied"},
    {OB_GALLERY_EDIT_FRAMED, L"To be read, in a frame"},
    {OB_GALLERY_EDIT_LINES, L"The first line\r\nThe second line"},
    {OB_GALLERY_PASSWORD_HIDDEN, L"A password"},
    {OB_GALLERY_PASSWORD_SHOWN, L"A password"},
    {OB_GALLERY_PASSWORD_DISABLED, L"A password"},
};

} // namespace

TextsPage::TextsPage() : ObXFlatDlg(OB_GALLERY_TEXTS, nullptr, 0, true) {}

bool TextsPage::OnInitDialog() {
    for (const Content& content : kContents) {
        SetWindowTextW(GetItem(content.id, true), content.text);
    }
    ObXFlatDlg::OnInitDialog();
    auto* const framed = dynamic_cast<ObLibX::ObFlatEdit*>(GetControl(OB_GALLERY_EDIT_FRAMED));
    if (framed != nullptr) framed->keepFrameWhenReadOnly = true;
    SendMessageW(GetItem(OB_GALLERY_PASSWORD_SHOWN, true), EM_SETPASSWORDCHAR, 0, 0);
    return true;
}

} // namespace gallery
