// The page of combo boxes, spin controls and the date picker.
#pragma once

#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class ChoicesPage : public ObLibX::ObXFlatDlg {
public:
    ChoicesPage();
    bool OnInitDialog() override;
};

} // namespace gallery
