// A list view of 1,000 rows and 4 columns: filled, and paged through.
#pragma once

#include <windows.h>

namespace bench {

// Makes the columns and fills the rows.
void FillList(HWND list);

// With check boxes from now on; those of every second row are checked.
void CheckList(HWND list);

// Milliseconds from the first row to the last one, page by page, each of them painted.
double TimePaging(HWND list);

} // namespace bench
