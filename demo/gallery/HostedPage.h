// The page of windows that scroll by hosted bars, shown always and in auto-hide.
#pragma once

#include "ObLibX/src/controls/ScrollBarHost.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class HostedPage : public ObLibX::ObXFlatDlg {
public:
    HostedPage();
    bool OnInitDialog() override;
    bool OnColorChange() override;

private:
    void FillEdit(int id);
    void FillList(int id);

    ObLibX::ScrollBarHost notes_;
    ObLibX::ScrollBarHost files_;
    ObLibX::ScrollBarHost hidingNotes_;
    ObLibX::ScrollBarHost hidingFiles_;
    ObLibX::ScrollBarHost disabled_;
};

} // namespace gallery
