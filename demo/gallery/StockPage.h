// The page of stock controls: what a dialog that isn't flat looks like.
#pragma once

#include "ObLibX/src/dialog/ObXDlg.h"

namespace gallery {

class StockPage : public ObLibX::ObXDlg {
public:
    StockPage();
    bool OnInitDialog() override;
    bool OnCommandId(int id, int code, HWND control) override;

private:
    void ShowDefaults();
};

} // namespace gallery
