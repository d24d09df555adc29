// The page of texts, edits and passwords, each in every state.
#pragma once

#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class TextsPage : public ObLibX::ObXFlatDlg {
public:
    TextsPage();
    bool OnInitDialog() override;
};

} // namespace gallery
