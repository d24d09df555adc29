#include "demo/mailpage/Files.h"
#include "demo/mailpage/MailWindow.h"

namespace mailpage {
namespace {

// The text in the coloured mark before an attachment.
std::wstring MarkText(const Attachment& entry) {
    if (entry.isLink) return L"LINK";
    const std::wstring& name = entry.name;
    const std::size_t point = name.rfind(L'.');
    std::wstring extension = point == std::wstring::npos ? L"FILE" : name.substr(point + 1, 4);
    CharUpperW(extension.data());
    return extension;
}

COLORREF MarkColour(const std::wstring& mark) {
    if (mark == L"ZIP" || mark == L"ZIPX") return RGB(0xB7, 0x79, 0x1F);
    if (mark == L"PDF") return RGB(0xC4, 0x3B, 0x35);
    if (mark == L"LINK") return RGB(0x2E, 0x8B, 0x57);
    return RGB(0x4A, 0x6F, 0xA5);
}

void FillLine(HDC dc, const RECT& card, int top) {
    FillArea(dc, {card.left + 1, top, card.right - 1, top + 1}, colour::kLine);
}

} // namespace

void MailWindow::OnPaint() {
    PAINTSTRUCT paint;
    const HDC target = BeginPaint(window_.Get(), &paint);
    {
        RECT client{};
        GetClientRect(window_.Get(), &client);
        const BufferedPaint buffer(target, client);
        FillArea(buffer.Dc(), client, colour::kPage);
        PaintFrame(buffer.Dc());
        PaintCard(buffer.Dc());
    }
    EndPaint(window_.Get(), &paint);
}

void MailWindow::PaintFrame(HDC dc) const {
    FillArea(dc, layout_.frame, colour::kFrame);
    FillArea(dc, {0, layout_.frame.bottom - 1, layout_.frame.right, layout_.frame.bottom},
             colour::kLine);
    const RECT back{scale_(14), 0, scale_(44), layout_.frame.bottom};
    const RECT forward{scale_(48), 0, scale_(78), layout_.frame.bottom};
    DrawArrow(dc, back, scale_, colour::kQuiet, true);
    DrawArrow(dc, forward, scale_, colour::kOff, false);
    FillRounded(dc, layout_.address, scale_(16), colour::kCard, colour::kLine);
    RECT lock = layout_.address;
    lock.left += scale_(10);
    lock.right = lock.left + scale_(16);
    DrawLock(dc, lock, scale_, colour::kQuiet);
    RECT text = layout_.address;
    text.left = lock.right + scale_(8);
    text.right -= scale_(14);
    DrawLine(dc, fonts_->text.Get(), text, colour::kText, options_.url);
}

void MailWindow::PaintCard(HDC dc) const {
    const RECT& card = layout_.card;
    FillRounded(dc, card, scale_(8), colour::kCard, colour::kLine);
    FillRounded(dc, layout_.title, scale_(8), colour::kTitle, colour::kTitle);
    // Only the upper corners of the title are round.
    FillArea(dc, {card.left, layout_.title.bottom - scale_(10), card.right, layout_.title.bottom},
             colour::kTitle);
    RECT title = layout_.title;
    title.left += scale_(18);
    DrawLine(dc, fonts_->bold.Get(), title, RGB(255, 255, 255), L"New message");
    DrawLine(dc, fonts_->text.Get(), layout_.toLabel, colour::kQuiet, L"To");
    DrawLine(dc, fonts_->text.Get(), layout_.subjectLabel, colour::kQuiet, L"Subject");
    for (const int line : {layout_.firstLine, layout_.secondLine, layout_.thirdLine}) {
        FillLine(dc, card, line);
    }
}

void MailWindow::PaintButton(const DRAWITEMSTRUCT& item) const {
    const BufferedPaint buffer(item.hDC, item.rcItem);
    const bool main = item.CtlID == kSendButton;
    const bool down = item.itemState & ODS_SELECTED;
    const bool off = item.itemState & ODS_DISABLED;
    const COLORREF fill = main ? (off    ? colour::kOff
                                  : down ? colour::kAccentDown
                                         : colour::kAccent)
                               : (down ? colour::kChip : colour::kCard);
    const COLORREF ink = main ? RGB(255, 255, 255) : off ? colour::kOff : colour::kAccent;
    const bool focus = item.itemState & ODS_FOCUS;
    const COLORREF border = main ? fill : focus ? colour::kAccent : colour::kLine;
    FillArea(buffer.Dc(), item.rcItem, colour::kCard);
    FillRounded(buffer.Dc(), item.rcItem, scale_(17), fill, border);
    RECT text = item.rcItem;
    if (!main) {
        RECT clip = text;
        clip.left += scale_(14);
        clip.right = clip.left + scale_(18);
        DrawPaperClip(buffer.Dc(), clip, scale_, ink);
        text.left = clip.right - scale_(6);
    }
    DrawLine(buffer.Dc(), fonts_->bold.Get(), text, ink, main ? L"Send" : L"Attach files...",
             DT_CENTER);
}

void MailWindow::PaintAttachment(const DRAWITEMSTRUCT& item) const {
    const BufferedPaint buffer(item.hDC, item.rcItem);
    FillArea(buffer.Dc(), item.rcItem, colour::kCard);
    if (item.itemID >= attachments_.size()) return;
    const Attachment& entry = attachments_[item.itemID];
    RECT chip = item.rcItem;
    InflateRect(&chip, -scale_(4), -scale_(3));
    const bool chosen = item.itemState & ODS_SELECTED;
    FillRounded(buffer.Dc(), chip, scale_(6), colour::kChip,
                chosen ? colour::kAccent : colour::kChip);
    const std::wstring mark = MarkText(entry);
    const RECT badge{chip.left + scale_(8), chip.top + scale_(7), chip.left + scale_(54),
                     chip.bottom - scale_(7)};
    FillRounded(buffer.Dc(), badge, scale_(4), MarkColour(mark), MarkColour(mark));
    DrawLine(buffer.Dc(), fonts_->small.Get(), badge, RGB(255, 255, 255), mark, DT_CENTER);
    RECT upper{badge.right + scale_(12), chip.top + scale_(1), chip.right - scale_(12),
               (chip.top + chip.bottom) / 2 + scale_(1)};
    RECT lower{upper.left, upper.bottom - scale_(2), upper.right, chip.bottom - scale_(2)};
    DrawLine(buffer.Dc(), fonts_->bold.Get(), upper, colour::kText, entry.name);
    const std::wstring size = entry.isLink ? L"" : FileSizeText(entry.place);
    DrawLine(buffer.Dc(), fonts_->small.Get(), lower, colour::kQuiet,
             size.empty() ? entry.place : size + L"  \u00B7  " + entry.place);
}

} // namespace mailpage
