// The pages of the gallery, in the order in which they are shown.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "ObLibX/src/dialog/ObXDlg.h"

namespace gallery {

struct PageRow {
    const wchar_t* name; // for the command line
    std::unique_ptr<ObLibX::ObXDlg> (*make)();
};

// Those of this name; all for an empty one.
std::vector<PageRow> PagesNamed(std::wstring_view name);

} // namespace gallery
