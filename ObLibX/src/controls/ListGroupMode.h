// The group mode of a list view: rows of a set height with check boxes of our own.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <optional>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ListLayout.h"

namespace ObLibX {

// The check box of a row, as its state image has it.
enum class RowCheck { None = 0, Off = 1, On = 2 };
RowCheck CheckOfRow(HWND list, int row);
void SetCheckOfRow(HWND list, int row, RowCheck check);

// Whether rows and columns are shown, the one view in which the mode changes anything.
bool IsDetailsView(HWND list);

// What the mode changes in a stock list, and how it answers clients meanwhile: as if nothing were
// changed. On the list's thread; one list at a time.
//
// While it is in use, the control has an empty list of images, which sets the height of its rows,
// and none of its own check boxes. What a client sets of the two is kept here. In a view without
// rows the control has all of it back until the details view comes again.
//
// A client that hears of a change may destroy the window, and the object with it.
class ListGroupMode {
public:
    ListGroupMode(); // makes the two empty lists for the screen's scale

    // Throws std::bad_alloc before anything has changed.
    void TurnOn(HWND list);
    // Theme, styles, images and check boxes are the client's again. Throws as TurnOn.
    void TurnOff();
    // After the list may have got another view. Throws as TurnOn.
    void FollowView();
    // At WM_NCDESTROY, before the list's own procedure: gives the list its images back, which it
    // may destroy with itself.
    void End();

    // Also while another view than that of the details is shown.
    [[nodiscard]] bool IsOn() const { return list_ != nullptr; }
    [[nodiscard]] bool IsInUse() const { return isInUse_; }
    // The client wants check boxes, which are drawn and flipped here.
    [[nodiscard]] bool HasChecks() const {
        return isInUse_ && (extendedStyle_ & LVS_EX_CHECKBOXES) != 0;
    }
    // The client's small images while the mode is in use; null for none.
    [[nodiscard]] HIMAGELIST Images() const { return images_; }

    // What a client gets for a message; empty for one that the control answers, after it was looked
    // at. Only for messages of `list`, all of them. Throws as TurnOn.
    std::optional<LRESULT> OnMessage(HWND list, UINT message, WPARAM wParam, LPARAM lParam);
    // As wide as its longest text needs, with what is drawn before that; as wide as its title, if
    // that is wider. Only while the mode is in use.
    LRESULT FitColumn(int column, bool toTitle);

private:
    // A message of this object's own while it is on its way to the control.
    struct Sent {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        bool operator==(const Sent&) const = default;
    };

    void Enter(HWND list);
    void Leave();
    std::optional<LRESULT> Answer(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Stock(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT SetExtendedStyle(DWORD mask, DWORD style);
    LRESULT SetSmallImages(HIMAGELIST images);
    LRESULT Insert(UINT message, LPARAM item);
    void SendStyle();
    void SendRowImages();
    int ColumnWidth(int column);
    [[nodiscard]] int PartsBeforeText(int column) const;

    HWND list_ = nullptr;           // null: the mode is off
    bool isInUse_ = false;          // the control has what the mode changes
    const Sent* sending_ = nullptr; // the innermost one
    DWORD extendedStyle_ = 0;       // the client's
    HIMAGELIST images_ = nullptr;   // the client's; not owned
    ListMeasures measures_;
    ObLib::UniqueImageList smallRows_;
    ObLib::UniqueImageList largeRows_; // for rows with check boxes
};

} // namespace ObLibX
