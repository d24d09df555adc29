// The page of scroll bars, sliders and progress bars, with a panel that scrolls.
#pragma once

#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class BarsPage : public ObLibX::ObXFlatDlg {
public:
    BarsPage();
    bool OnInitDialog() override;
    void OnScroll(std::int64_t position, std::intptr_t cookie) override;
    LRESULT OnOtherMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void PreparePanel();
    void PrepareProgress();
    void OnHorizontalScroll(WPARAM wParam, HWND bar);
    void ShowValue(int labelId, std::int64_t value);
};

} // namespace gallery
