// The page of check boxes, radio buttons and switches, each in every state.
#pragma once

#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class TogglesPage : public ObLibX::ObXFlatDlg {
public:
    TogglesPage();
    bool OnInitDialog() override;

private:
    void CheckAll();
};

} // namespace gallery
