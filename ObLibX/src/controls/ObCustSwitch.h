// A flat switch: a check box that is shown as a track with a thumb, and can be dragged.
#pragma once

#include <windows.h>

#include "ObLibX/src/controls/ControlAccessible.h"
#include "ObLibX/src/controls/ObCustToggle.h"

namespace ObLibX {

// Its text is "On" or "Off"; screen readers take the label before it for its name. The stock check
// box keeps the state and gets no mouse and no Space: one BN_CLICKED is sent for each change.
class ObFlatToggleBtn : public ObFlatToggleBase, private AccessibleSource {
public:
    explicit ObFlatToggleBtn(std::int32_t id);
    ~ObFlatToggleBtn() override;

    void Attach(HWND attached) override;
    void OnMouseMove(int x, int y) override;
    void OnLeftButtonDown(int x, int y) override;
    void OnLeftButtonUp(int x, int y) override;
    void OnSetCheck(bool isChecked) override;
    void ComputeFocusRectangle() override;
    void Paint(HDC dc) override;

    PixelRect thumbRectangle; // filled while painting
    PixelRect trackRectangle;
    std::int32_t lastMouseX = -1; // while it is dragged; else -1
    bool newState = false;        // what releasing the mouse makes it

protected:
    SUBCLASSPROC Procedure() const override { return &ObFlatToggleBtn::SwitchProcedure; }

private:
    static LRESULT CALLBACK SwitchProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR object);
    struct Colors;

    // True: the stock check box doesn't get the message.
    bool Take(UINT message, WPARAM wParam, LPARAM lParam);
    void TakeAfter(UINT message, WPARAM wParam);
    void OnKey(bool isPressed);
    void Change(bool isOn);
    void LetGo();
    void ShowState(bool isOn);
    void Arrange();
    void PaintLabel(HDC dc, UINT hiddenCues);
    [[nodiscard]] bool IsOn() const { return Checked() == CheckState::On; }
    [[nodiscard]] Colors ColorsNow();

    ObLib::ObString AccessibleName() override;
    LONG AccessibleRole() override;
    LONG AccessibleState() override;
    void DoAccessibleAction() override;

    ControlAccessible accessible_;
    std::int32_t pressedX_ = 0; // where the mouse went down
    bool isSpaceDown_ = false;
};

} // namespace ObLibX
