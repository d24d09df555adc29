// A dialog in the flat look: its controls are dressed, painted and coloured.
#pragma once

#include "ObLibX/src/dialog/ObXDlg.h"

namespace ObLibX {

class ObXFlatDlg : public ObXDlg {
public:
    // As ObXDlg.
    ObXFlatDlg(std::int32_t dialogTemplate, HWND parent, std::uint32_t help, bool isCentered)
        : ObXDlg(dialogTemplate, parent, help, isCentered) {
        isFlat = true;
    }
};

} // namespace ObLibX
