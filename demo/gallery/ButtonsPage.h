// The page of push buttons, each class in every state.
#pragma once

#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class ButtonsPage : public ObLibX::ObXFlatDlg {
public:
    ButtonsPage();
    bool OnInitDialog() override;

private:
    void ShowStates();
    void ShowImages();
};

} // namespace gallery
