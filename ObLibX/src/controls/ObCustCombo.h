// The flat combo boxes: simple, with an edit and a list that drops down, with a list alone.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ColorFade.h"
#include "ObLibX/src/controls/ComboLayout.h"
#include "ObLibX/src/controls/ObCustEdit.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// On a stock combo box, which goes on doing its work: place, frame and painting are the object's.
// The process ends for a window without the parts of a combo box.
class ObFlatComboBoxBase : public ObCustomControl {
public:
    ~ObFlatComboBoxBase() override;
    void Attach(HWND attached) override;
    // WM_PAINT and WM_PRINTCLIENT of the combo box.
    virtual void Paint(HDC) {}
    // After the stock windows have painted their borders and scroll bars.
    virtual void OnEditNcPaint();
    virtual void OnListNcPaint();

    COMBOBOXINFO comboInfo{};
    std::unique_ptr<ObFlatEdit> editObject; // null without an edit
    HWND listWindow = nullptr;              // of the combo box

protected:
    ObFlatComboBoxBase(std::int32_t id, ComboKind kind);

    // The object paints the combo box.
    [[nodiscard]] virtual bool PaintsItself() const { return false; }
    // Before the stock combo box gets a message. A value: it doesn't, and that is the result.
    virtual std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // The stock combo box has handled a message, and its window is still there.
    virtual void OnHandled(UINT message);
    // WM_NCDESTROY.
    virtual void OnWindowGone() {}
    void MakeEdit(bool hideFrame, std::int32_t frameWidth);
    // Below the item, or of a simple combo box below the frame of its edit.
    void PlaceList();

private:
    static LRESULT CALLBACK ComboProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR id, DWORD_PTR object);
    static LRESULT CALLBACK ListProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                          UINT_PTR id, DWORD_PTR object);
    void FindParts();
    [[nodiscard]] PixelRect ItemOnScreen() const;
    [[nodiscard]] LRESULT ColorsOfEdit(UINT message, WPARAM wParam, LPARAM lParam);
    void PlaceDroppedList(WINDOWPOS& place) const;

    ComboKind kind_;
};

class ObFlatComboBoxSimple : public ObFlatComboBoxBase {
public:
    explicit ObFlatComboBoxSimple(std::int32_t id);
    void Attach(HWND attached) override;

protected:
    void OnHandled(UINT message) override;
};

// What the two have in common that drop a list down: a button with an arrow.
class ObFlatComboBoxDropdownBase : public ObFlatComboBoxBase {
public:
    void Attach(HWND attached) override;
    void Refresh() override; // loads the arrows again
    std::uint32_t SetAnimatedColor(COLORREF color) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void Paint(HDC dc) override;

    std::int32_t buttonWidth = 0;
    PixelRect buttonRectangle; // in client coordinates, as the next one
    PixelPoint arrowPosition;
    SIZE arrowSize{};
    COLORREF animatedButtonColor = kNoColor;
    bool buttonHot = false;
    ObLib::UniqueBitmap arrowImage;
    ObLib::UniqueBitmap arrowImageDisabled;
    ColorFade fade;

protected:
    using ObFlatComboBoxBase::ObFlatComboBoxBase;

    bool PaintsItself() const override { return true; }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnHandled(UINT message) override;
    void OnWindowGone() override { fade.Stop(); }
    [[nodiscard]] virtual std::int32_t WantedButtonWidth() const = 0;
    // On the filled client area, left of the button.
    virtual void PaintText(HDC, const PixelRect&) {}

    [[nodiscard]] PixelRect TextSpace(const PixelRect& client) const;

private:
    void LoadArrows();
    void PlaceButton();
    void PaintButton(HDC dc);
    void RepaintButton();
};

class ObFlatComboBoxDropdown : public ObFlatComboBoxDropdownBase {
public:
    explicit ObFlatComboBoxDropdown(std::int32_t id);
    void Attach(HWND attached) override;

protected:
    std::int32_t WantedButtonWidth() const override;
};

class ObFlatComboBoxDropdownList : public ObFlatComboBoxDropdownBase {
public:
    explicit ObFlatComboBoxDropdownList(std::int32_t id);

protected:
    std::int32_t WantedButtonWidth() const override;
    void PaintText(HDC dc, const PixelRect& area) override;

private:
    [[nodiscard]] COLORREF ListTextColor(bool hasFocus);
};

} // namespace ObLibX
