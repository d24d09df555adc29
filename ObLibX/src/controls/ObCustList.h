// The flat list view.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ListAccessible.h"
#include "ObLibX/src/controls/ListGroupMode.h"
#include "ObLibX/src/controls/ListPainter.h"
#include "ObLibX/src/controls/ScrollBarHost.h"
#include "ObLibX/src/dialog/DialogDescription.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

class ObXDlg;

// On a stock list view, which goes on doing its work. In its details view header, rows and cells
// are painted here, by the system's custom drawing; the parent hears of that first, and a font that
// it selects for a row is the font of its cells. The other views stay stock.
//
// With group mode, which a details view has from the beginning, rows are 18 pixels high at 96 dpi,
// 24 with check boxes; a press on a check box, or Space on the focused row, flips it. The client
// hears of that by LVN_ITEMCHANGED and by no NM_CLICK or LVN_KEYDOWN. A list whose rows are its
// client's gets press and key as any other list does, and its client flips the box.
class ObFlatListView : public ObCustomControl, private RowChecks {
public:
    // `columnsToMake`: what the description has for the list; made at Attach. `dialog`: asked for
    // the colours of cells; null: nobody is. It outlives the object's window.
    ObFlatListView(std::int32_t id, std::vector<ColumnDescription> columnsToMake, ObXDlg* dialog);
    ~ObFlatListView() override;

    // A list without a parent ends the process.
    void Attach(HWND attached) override;
    // Also takes the system's colours and sizes for the scroll bars.
    void Refresh() override;

    // In another view than that of the details it begins when that view comes. Throws
    // std::bad_alloc before anything has changed; so does TurnOffGroupView.
    void TurnOnGroupView();
    void TurnOffGroupView();
    [[nodiscard]] bool IsGroupViewOn() const { return groupMode_.IsOn(); }
    // The row that the mouse is on; -1 for none.
    [[nodiscard]] int HotRow() const { return hotRow_; }

    HFONT font; // of all rows and titles; belongs to the cache of fonts
    bool isFocused = false;
    std::array<ObLib::UniqueBitmap, 4> checkImages; // on, off, on disabled, off disabled
    SIZE checkSize{};
    ObXDlg* colorSource;         // null for none
    ScrollBarHost scrollBarHost; // its flat scroll bars; attached with the list

protected:
    void OnFontChanged() override;

private:
    static LRESULT CALLBACK ListProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                          UINT_PTR id, DWORD_PTR object);
    static LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR object);
    static LRESULT CALLBACK HeaderProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR object);

    // ---- The list's messages. Empty: the list goes on with it.
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void AfterMessage(UINT message, WPARAM wParam);
    void OnGone();
    void Detach();
    void MakeColumns();
    void TakeHeader();
    void LoadCheckImages();
    [[nodiscard]] bool IsDetails() const { return IsDetailsView(window); }
    void MoveMouse(std::optional<PixelPoint> place);
    void UpdateHotRow();
    [[nodiscard]] int RowAt(PixelPoint point) const;
    [[nodiscard]] PixelRect AreaOfRow(int row) const;
    void InvalidateRow(int row);
    [[nodiscard]] PixelRect FirstCell(int row) const;
    [[nodiscard]] bool FlipsChecks() const;
    bool OnPress(PixelPoint point);
    bool OnKey(WPARAM key, bool repeats);
    void Flip(int row);

    // ---- Painting, in ObCustListPaint.cpp. `heard`: what the parent has answered.
    LRESULT OnPaint(UINT message, WPARAM wParam, LPARAM lParam);
    void PaintOffscreen();
    void FollowFocusBox();
    [[nodiscard]] bool IsBuffered() const;
    [[nodiscard]] ListLook Look() const;
    LRESULT EraseParent(WPARAM wParam, LPARAM lParam) const;
    LRESULT OnDrawStage(NMLVCUSTOMDRAW& draw, LRESULT heard);

    // ---- The header, in the same file
    std::optional<LRESULT> OnHeaderNotification(WPARAM wParam, LPARAM lParam);
    LRESULT OnTitleStage(const NMCUSTOMDRAW& draw) const;
    LRESULT OnDividerClick(WPARAM wParam, LPARAM lParam);
    void PaintHeader();
    void FillAfterTitles(HDC dc) const;
    void MoveOnHeader(PixelPoint point);
    void SetHotTitle(int title);
    void PaintTitle(const NMCUSTOMDRAW& draw) const;

    // RowChecks
    int RowCount() override;
    bool HasRowChecks() override { return groupMode_.HasChecks(); }
    bool IsRowChecked(int row) override;

    std::vector<ColumnDescription> columnsToMake_;
    HWND parent_ = nullptr;
    HWND header_ = nullptr; // null for a list that has none
    ListGroupMode groupMode_;
    std::optional<PixelPoint> mouse_; // where it is on the list, in client coordinates
    int hotRow_ = -1;
    int hotTitle_ = -1;
    bool isPainting_ = false; // the list's own procedure has WM_PAINT
    bool isBoxed_ = false;    // the last painting has put the focus around all rows
    // Of the painting that goes on; null: rows are painted by the system.
    std::shared_ptr<ListPainter> painter_;
    ListAccessible accessible_;
};

} // namespace ObLibX
