// The page of links.
#pragma once

#include <memory>
#include <vector>

#include "ObLibX/src/controls/ObHyperlink.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class LinksPage : public ObLibX::ObXFlatDlg {
public:
    LinksPage();
    bool OnInitDialog() override;
    // A click on a link.
    bool OnCommandId(int id, int code, HWND control) override;

private:
    std::vector<std::unique_ptr<ObLibX::ObCmdLinkCtrl>> links_;
    int clicks_ = 0;
};

} // namespace gallery
