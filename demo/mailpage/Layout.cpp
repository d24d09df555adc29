#include "demo/mailpage/Layout.h"

namespace mailpage {
namespace {

// Heights that give way on a small screen, in pixels of 96 dpi.
struct Density {
    int gap;    // around the card
    int title;  // of the card
    int row;    // of a field
    int margin; // around the buttons
};

constexpr Density kRoomy{18, 40, 40, 16};
constexpr Density kTight{8, 30, 32, 8};
constexpr int kTightBelow = 440; // client height
constexpr int kLeastBody = 44;
constexpr int kButtonHeight = 34;

// A field of text is in the middle of its row: an edit control draws at its top.
void PlaceField(RECT& label, RECT& field, const RECT& card, const RECT& row, Scale scale) {
    const int middle = (row.top + row.bottom) / 2;
    label = {card.left + scale(18), row.top, card.left + scale(84), row.bottom};
    field = {label.right, middle - scale(9), card.right - scale(18), middle + scale(11)};
}

void PlaceFields(Layout& layout, const Density& density, Scale scale) {
    const int height = scale(density.row);
    RECT row = {0, layout.title.bottom, 0, layout.title.bottom + height};
    PlaceField(layout.toLabel, layout.toField, layout.card, row, scale);
    layout.firstLine = row.bottom;
    OffsetRect(&row, 0, height + 1);
    PlaceField(layout.subjectLabel, layout.subjectField, layout.card, row, scale);
    layout.secondLine = row.bottom;
}

void PlaceButtons(Layout& layout, const Density& density, Scale scale) {
    const int bottom = layout.card.bottom - scale(density.margin);
    const int top = bottom - scale(kButtonHeight);
    const int left = layout.card.left + scale(18);
    layout.send = {left, top, left + scale(100), bottom};
    layout.attach = {layout.send.right + scale(10), top, layout.send.right + scale(170), bottom};
}

// Between the fields and the buttons the body has the space that the attachments leave; rows of
// attachments are dropped before the body is gone.
void PlaceBody(Layout& layout, const Density& density, Scale scale, int rows) {
    const RECT& card = layout.card;
    const int end = layout.send.top - scale(density.margin) + scale(4);
    const int room = end - layout.secondLine - scale(kLeastBody);
    while (rows > 1 && rows * scale(kRowHeight) > room) --rows;
    layout.thirdLine = end - rows * scale(kRowHeight) - scale(6);
    layout.attachments = {card.left + scale(14), end - rows * scale(kRowHeight),
                          card.right - scale(14), end};
    layout.body = {card.left + scale(18), layout.secondLine + scale(8), card.right - scale(18),
                   layout.thirdLine - scale(4)};
}

} // namespace

Layout MakeLayout(const RECT& client, Scale scale, int rows) {
    const Density& density = client.bottom < scale(kTightBelow) ? kTight : kRoomy;
    Layout layout{};
    layout.frame = {0, 0, client.right, scale(52)};
    layout.address = {scale(88), scale(10), client.right - scale(20), scale(42)};
    // Two lines of text.
    layout.status = {scale(24), client.bottom - scale(38), client.right - scale(24),
                     client.bottom - scale(2)};
    layout.card = {scale(24), layout.frame.bottom + scale(density.gap), client.right - scale(24),
                   layout.status.top - scale(6)};
    const RECT& card = layout.card;
    layout.title = {card.left, card.top, card.right, card.top + scale(density.title)};
    PlaceFields(layout, density, scale);
    PlaceButtons(layout, density, scale);
    PlaceBody(layout, density, scale, rows);
    return layout;
}

} // namespace mailpage
