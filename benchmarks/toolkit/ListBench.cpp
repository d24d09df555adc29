#include "benchmarks/toolkit/ListBench.h"

#include <commctrl.h>

#include <string>

#include "benchmarks/support/Stopwatch.h"

namespace bench {
namespace {

constexpr int kRows = 1000;
constexpr int kColumns = 4;

void InsertColumns(HWND list) {
    RECT client{};
    GetClientRect(list, &client);
    for (int at = 0; at < kColumns; ++at) {
        LVCOLUMNW column{};
        column.mask = LVCF_WIDTH | LVCF_TEXT;
        column.cx = client.right / kColumns;
        column.pszText = const_cast<wchar_t*>(L"Column");
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(at),
                     reinterpret_cast<LPARAM>(&column));
    }
}

void SetCell(HWND list, int row, int column) {
    std::wstring text = L"Cell " + std::to_wstring(row) + L", " + std::to_wstring(column);
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = text.data();
    SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0,
                 reinterpret_cast<LPARAM>(&item));
}

} // namespace

void FillList(HWND list) {
    InsertColumns(list);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) SetCell(list, row, column);
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

void CheckList(HWND list) {
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    for (int row = 0; row < kRows; row += 2) {
        LVITEMW item{};
        item.state = INDEXTOSTATEIMAGEMASK(2);
        item.stateMask = LVIS_STATEIMAGEMASK;
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(&item));
    }
}

// All rows each time, whatever their height and so the number of pages.
double TimePaging(HWND list) {
    SendMessageW(list, LVM_ENSUREVISIBLE, 0, FALSE);
    UpdateWindow(list);
    const Stopwatch watch;
    int top = -1;
    while (true) {
        const auto now = static_cast<int>(SendMessageW(list, LVM_GETTOPINDEX, 0, 0));
        if (now == top) break;
        top = now;
        SendMessageW(list, WM_VSCROLL, SB_PAGEDOWN, 0);
        UpdateWindow(list);
    }
    return watch.Milliseconds();
}

} // namespace bench
