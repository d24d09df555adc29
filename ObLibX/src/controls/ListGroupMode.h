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

// What the mode changes in a stock list, and how it answers clients meanwhile: as if nothing were
// changed. On the list's thread; one list at a time.
//
// While it is on, the control has an empty list of images, which sets the height of its rows, and
// none of its own check boxes. What a client sets of the two is kept here.
class ListGroupMode {
public:
    ListGroupMode(); // makes the two empty lists for the screen's scale

    void TurnOn(HWND list);
    // Theme, styles, images and check boxes are the client's again.
    void TurnOff();
    // At WM_NCDESTROY, before the list's own procedure: gives the list its images back, which it
    // may destroy with itself.
    void End();

    [[nodiscard]] bool IsOn() const { return list_ != nullptr; }
    // The client wants check boxes.
    [[nodiscard]] bool HasChecks() const {
        return IsOn() && (extendedStyle_ & LVS_EX_CHECKBOXES) != 0;
    }
    // The client's small images; null for none.
    [[nodiscard]] HIMAGELIST Images() const { return images_; }

    // What a client gets for a message; empty for one that the control answers, after it was looked
    // at. Only for messages of `list`, all of them.
    std::optional<LRESULT> OnMessage(HWND list, UINT message, WPARAM wParam, LPARAM lParam);

private:
    std::optional<LRESULT> Answer(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Stock(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT SetExtendedStyle(DWORD mask, DWORD style);
    LRESULT SetSmallImages(HIMAGELIST images);
    LRESULT Insert(UINT message, LPARAM item);
    void SendStyle();
    void SendRowImages();
    [[nodiscard]] bool KnowsChecks() const;
    [[nodiscard]] int RowCount() const;
    template <class Change>
    void KeepingChecks(bool startsOff, Change change);

    HWND list_ = nullptr;         // null: the mode is off
    UINT passing_ = 0;            // a message of this object's own, on its way to the control
    DWORD extendedStyle_ = 0;     // the client's
    HIMAGELIST images_ = nullptr; // the client's; not owned
    ObLib::UniqueImageList smallRows_;
    ObLib::UniqueImageList largeRows_; // for rows with check boxes
};

} // namespace ObLibX
