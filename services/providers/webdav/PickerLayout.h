// Where the controls of a dialog move when the user changes its size.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <vector>

namespace providers {

// Which edges of a control keep their distance to the dialog's right or lower edge.
enum Follows : std::uint8_t { FollowsNothing, RightEdge = 1, BottomEdge = 2 };

struct AnchorRow {
    int control;
    int leftTop;     // of Follows
    int rightBottom; // of Follows
};

// Remembers the controls' places as they are when it begins, so that the template's units, and with
// them the scale of the display, are in them already.
class PickerLayout {
public:
    void Begin(HWND dialog, std::span<const AnchorRow> rows);
    // After WM_SIZE. Does nothing before Begin.
    void Apply() const;
    // For WM_GETMINMAXINFO: the dialog isn't made smaller than it was in Begin.
    void Limit(MINMAXINFO& limits) const;

private:
    struct Anchored {
        AnchorRow row;
        RECT place;
    };

    HWND dialog_ = nullptr;
    SIZE least_ = {};  // of the window
    SIZE client_ = {}; // in Begin
    std::vector<Anchored> controls_;
};

// A control's place in its dialog's client area.
RECT PlaceIn(HWND dialog, int control);

// Moves a control up or down, and gives what it moves by to its height if `grows`.
void MoveBy(HWND dialog, int control, int distance, bool grows);

} // namespace providers
