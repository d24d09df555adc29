#include "demo/gallery/ButtonStates.h"

#include "ObLibX/src/controls/ObCustBtn.h"

namespace gallery {
namespace {

ObLibX::ObFlatBtn& ButtonOf(const ObLibX::ObXDlg& page, int id) {
    return dynamic_cast<ObLibX::ObFlatBtn&>(*page.GetControl(id));
}

} // namespace

// Not by a message of the mouse: the system would take the hover back at once.
void ShowHot(const ObLibX::ObXDlg& page, int id) {
    ObLibX::ObFlatBtn& button = ButtonOf(page, id);
    button.isHot = true;
    button.animatedColor = button.GetHoverColor();
    if (!button.accentRing) button.currentFrameColor = button.GetHotFrameColor();
}

void ShowPressed(const ObLibX::ObXDlg& page, int id) {
    ObLibX::ObFlatBtn& button = ButtonOf(page, id);
    ShowHot(page, id);
    button.isDown = true;
    button.isPressed = true;
}

} // namespace gallery
