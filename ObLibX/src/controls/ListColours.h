// The colours of a list view's header, rows and cells by their state: tables, no window.
#pragma once

#include <cstdint>

namespace ObLibX {

// Where a colour comes from.
struct ListColor {
    enum class Source { Value, Palette, System };
    Source source = Source::Value;
    std::uint32_t number = 0; // 0x00BBGGRR, an entry of the palette, COLOR_ of the system
    bool operator==(const ListColor&) const = default;
};

struct FillAndFrame {
    ListColor fill;
    ListColor frame;
    bool operator==(const FillAndFrame&) const = default;
};

struct RowState {
    bool isSelected = false;
    bool isHot = false;        // the mouse is on it
    bool isFocused = false;    // the row is the list's focused one
    bool hasListFocus = false; // the list has the keyboard's focus
};

FillAndFrame ColorsOfRow(const RowState& row, bool isContrast);

// What a dialog that colours cells itself gets to know of a cell.
inline constexpr std::uint32_t kCellSelected = 1;
inline constexpr std::uint32_t kCellHot = 2;
inline constexpr std::uint32_t kCellFocused = 4; // of the focused row of a list with the focus
inline constexpr std::uint32_t kCellContrast = 8;
std::uint32_t CellFlags(const RowState& row, bool isContrast);

// The colour of a cell's text where the dialog has none. Disabled: the whole list is.
ListColor ColorOfCell(const RowState& row, bool isFirstColumn, bool isDisabled, bool isContrast);

struct HeaderState {
    bool isPressed = false;
    bool isHot = false;
};
FillAndFrame ColorsOfTitle(const HeaderState& title, bool isContrast);
ListColor ColorOfTitleText(bool isContrast);

// Where there is no row, and right of the last title.
ListColor ColorOfListGround(bool isContrast);

} // namespace ObLibX
