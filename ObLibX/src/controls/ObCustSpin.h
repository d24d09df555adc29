// The flat spin control, at the right end of its edit's frame.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLibX/src/controls/ColorFade.h"
#include "ObLibX/src/controls/ObCustEdit.h"
#include "ObLibX/src/controls/SpinLayout.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// On a stock up-down control, which goes on counting: place and painting are the object's. Its
// buddy is asked for at its first messages; from then on a flat edit moves and shows it.
class ObFlatSpinCtrl : public ObCustomControl, public EditFollower {
public:
    explicit ObFlatSpinCtrl(std::int32_t id);
    ~ObFlatSpinCtrl() override;

    void Attach(HWND attached) override;
    std::uint32_t SetAnimatedColor(COLORREF color) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    // EditFollower
    void FollowEdit(HWND frameWindow, std::int32_t frameWidth) override;
    void OnEditShown(bool isShown) override;
    void OnEditGone() override;
    // WM_PAINT and WM_PRINTCLIENT.
    virtual void Paint(HDC dc);

    ObFlatEdit* edit = nullptr; // the buddy's; not owned
    PixelRect buddyRectangle;   // of the window in its parent, before it followed an edit
    SpinLayout layout;
    std::int32_t imageScale = 0;
    ColorFade fade;
    bool mouseTracked = false;
    SpinPart hotPart = SpinPart::None;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);
    // True: the message is done with.
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void FindEdit();
    void Detach();
    void ForgetMouse();
    void PlaceParts(std::int32_t border);
    void SetHotPart(SpinPart part);
    void PaintArrow(HDC dc, bool isUp, const PixelRect& button);

    bool asksForBuddy_ = true;      // until the first paint: then every control is dressed
    bool isHiddenWithEdit_ = false; // to be shown again with its edit
};

} // namespace ObLibX
