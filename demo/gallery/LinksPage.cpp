#include "demo/gallery/LinksPage.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

constexpr COLORREF kNotice = 0xCCF4FF; // a pale yellow

constexpr int kLinks[] = {OB_GALLERY_LINK_PLAIN, OB_GALLERY_LINK_FOCUSED, OB_GALLERY_LINK_OFF,
                          OB_GALLERY_LINK_EMPTY, OB_GALLERY_LINK_CENTRED, OB_GALLERY_LINK_RIGHT,
                          OB_GALLERY_LINK_LARGE, OB_GALLERY_LINK_GROUND,  OB_GALLERY_LINK_WRAPPED};

} // namespace

LinksPage::LinksPage() : ObXFlatDlg(OB_GALLERY_LINKS, nullptr, 0, true) {
    for (const int id : kLinks) links_.push_back(std::make_unique<ObLibX::ObCmdLinkCtrl>(id, this));
}

bool LinksPage::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    for (const auto& link : links_) {
        if (link->id == OB_GALLERY_LINK_GROUND) link->SetBackgroundColor(kNotice);
        link->Attach(window);
    }
    SetFocus(GetItem(OB_GALLERY_LINK_FOCUSED, true));
    return false;
}

bool LinksPage::OnCommandId(int id, int, HWND control) {
    if (std::ranges::find(kLinks, id) == std::end(kLinks)) return false;
    wchar_t text[80] = {};
    GetWindowTextW(control, text, static_cast<int>(std::size(text)));
    const std::wstring shown = std::wstring(text) + L": " + std::to_wstring(++clicks_);
    SetDlgItemTextW(window, OB_GALLERY_LINK_CLICKED, shown.c_str());
    return true;
}

} // namespace gallery
