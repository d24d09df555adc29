#include "ObLibX/src/controls/ListColours.h"

namespace ObLibX {
namespace {

constexpr ListColor Value(std::uint32_t color) { return {ListColor::Source::Value, color}; }
constexpr ListColor Palette(std::uint32_t entry) { return {ListColor::Source::Palette, entry}; }
constexpr ListColor System(std::uint32_t index) { return {ListColor::Source::System, index}; }

// The system's numbers of its colours.
constexpr ListColor kWindow = System(5);
constexpr ListColor kWindowText = System(8);
constexpr ListColor kHighlight = System(13);
constexpr ListColor kHighlightText = System(14);
constexpr ListColor kGrayText = System(17);

constexpr ListColor kWhite = Value(0xFFFFFF);
constexpr ListColor kHoverFill = Palette(4);
constexpr ListColor kSelectedFill = Palette(6);
constexpr ListColor kSelectedFrame = Value(0xE6A869);
constexpr ListColor kHotFrame = Value(0xE6C37A);
constexpr ListColor kDisabledText = Value(0x808080);

enum class RowLook { Plain, Focused, Hot, SelectedAway, Selected };

// By look. In high contrast nothing but the system's colours counts.
struct LookRow {
    FillAndFrame usual;
    FillAndFrame contrast;
};
constexpr LookRow kLooks[] = {
    {{kWhite, kWhite}, {kWindow, kWindow}},                         // Plain
    {{kWhite, kSelectedFrame}, {kWindow, kHighlight}},              // Focused
    {{kHoverFill, kHotFrame}, {kWindow, kHighlight}},               // Hot
    {{Value(0xF0F0F0), Value(0xD9D9D9)}, {kHighlight, kHighlight}}, // SelectedAway
    {{kSelectedFill, kSelectedFrame}, {kHighlight, kHighlight}},    // Selected
};

RowLook LookOf(const RowState& row) {
    if (row.isSelected) return row.hasListFocus ? RowLook::Selected : RowLook::SelectedAway;
    if (row.isHot) return RowLook::Hot;
    return row.isFocused && row.hasListFocus ? RowLook::Focused : RowLook::Plain;
}

} // namespace

FillAndFrame ColorsOfRow(const RowState& row, bool isContrast) {
    const LookRow& look = kLooks[static_cast<std::size_t>(LookOf(row))];
    return isContrast ? look.contrast : look.usual;
}

std::uint32_t CellFlags(const RowState& row, bool isContrast) {
    return (row.isSelected ? kCellSelected : 0) | (row.isHot ? kCellHot : 0) |
           (row.isFocused && row.hasListFocus ? kCellFocused : 0) |
           (isContrast ? kCellContrast : 0);
}

ListColor ColorOfCell(const RowState& row, bool isFirstColumn, bool isDisabled, bool isContrast) {
    if (isContrast && row.isSelected) return kHighlightText;
    if (isContrast) return isDisabled ? kGrayText : kWindowText;
    if (!isFirstColumn) return Value(0xA9A9A9);
    return isDisabled ? kDisabledText : Value(0x212121);
}

FillAndFrame ColorsOfTitle(const HeaderState& title, bool isContrast) {
    if (isContrast) return {kWindow, kWindow};
    if (title.isPressed) return {kSelectedFill, kSelectedFrame};
    if (title.isHot) return {kHoverFill, kHotFrame};
    return {kWhite, kWhite};
}

ListColor ColorOfTitleText(bool isContrast) { return isContrast ? kWindowText : Value(0x797979); }

ListColor ColorOfListGround(bool isContrast) { return isContrast ? kWindow : kWhite; }

} // namespace ObLibX
