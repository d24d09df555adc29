#include "demo/gallery/HostedPage.h"

#include <string>

#include "ObLibX/src/utilities/ObUtil.h"
#include "demo/gallery/GalleryIds.h"

namespace gallery {
namespace {

constexpr int kLines = 60;
constexpr int kWidest = 420; // of a file's name, in pixels at 96 dpi

} // namespace

HostedPage::HostedPage() : ObXFlatDlg(OB_GALLERY_HOSTED, nullptr, 0, true) {}

bool HostedPage::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    for (const int id : {OB_GALLERY_HOSTED_NOTES, OB_GALLERY_HOSTED_NOTES_HIDING}) FillEdit(id);
    for (const int id :
         {OB_GALLERY_HOSTED_FILES, OB_GALLERY_HOSTED_FILES_HIDING, OB_GALLERY_HOSTED_FILES_OFF}) {
        FillList(id);
    }
    hidingNotes_.SetAutoHide(true);
    hidingFiles_.SetAutoHide(true);
    notes_.Attach(GetItem(OB_GALLERY_HOSTED_NOTES, true));
    files_.Attach(GetItem(OB_GALLERY_HOSTED_FILES, true));
    hidingNotes_.Attach(GetItem(OB_GALLERY_HOSTED_NOTES_HIDING, true));
    hidingFiles_.Attach(GetItem(OB_GALLERY_HOSTED_FILES_HIDING, true));
    disabled_.Attach(GetItem(OB_GALLERY_HOSTED_FILES_OFF, true));
    SetFocus(GetItem(OB_GALLERY_HOSTED_FILES, true)); // an edit would show its end
    return false;
}

bool HostedPage::OnColorChange() {
    for (ObLibX::ScrollBarHost* const host :
         {&notes_, &files_, &hidingNotes_, &hidingFiles_, &disabled_}) {
        host->Refresh();
    }
    return ObXFlatDlg::OnColorChange();
}

void HostedPage::FillEdit(int id) {
    std::wstring text = L"A line that is longer than the field is wide, so that it scrolls across";
    for (int line = 2; line <= kLines; ++line) text += L"\r\nLine " + std::to_wstring(line);
    SetDlgItemTextW(window, id, text.c_str());
}

void HostedPage::FillList(int id) {
    const HWND list = GetItem(id, true);
    for (int at = 1; at <= kLines; ++at) {
        const std::wstring name = L"Photo of the journey " + std::to_wstring(at) + L".jpg";
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    }
    SendMessageW(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(ObLibX::Scale(kWidest)), 0);
}

} // namespace gallery
