// The page of list views.
#pragma once

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace gallery {

class ListsPage : public ObLibX::ObXFlatDlg {
public:
    ListsPage();
    bool OnInitDialog() override;
    bool OnNotify(int id, NMHDR* header, LRESULT& result) override;
    COLORREF GetListItemColor(int id, int row, int column, std::uint32_t flags) override;

private:
    void Fill(int id, int rows);
    void UseIcons(int id);
    void Select(int id, int row);
    void Check(int id, int row);
    void PointAt(int id, int row);

    ObLib::UniqueImageList icons_; // of two lists, which share it
};

} // namespace gallery
