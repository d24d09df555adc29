// What screen readers get to know about a list view besides what the system's object answers.
#pragma once

#include <windows.h>

namespace ObLibX {

// The rows' check boxes, as they are now. On the list's thread.
class RowChecks {
public:
    virtual int RowCount() = 0;
    // Whether the rows have check boxes at all.
    virtual bool HasRowChecks() = 0;
    virtual bool IsRowChecked(int row) = 0; // from 0 on

protected:
    ~RowChecks() = default;
};

struct ListObject; // in ListAccessible.cpp

// The object that answers for one list; clients may keep it longer than the list is there. All but
// the state of rows, whose child ids begin at 1, is the system's.
class ListAccessible {
public:
    ListAccessible() = default;
    ~ListAccessible() { End(); }
    ListAccessible(const ListAccessible&) = delete;
    ListAccessible& operator=(const ListAccessible&) = delete;

    // The result of WM_GETOBJECT: 0 for what isn't the client area, and where the system's own
    // object can't be had. `checks` is valid until End. Throws std::bad_alloc.
    LRESULT OnGetObject(HWND list, WPARAM wParam, LPARAM lParam, RowChecks& checks);

    // At WM_NCDESTROY: for states clients get CO_E_OBJNOTCONNECTED from now on.
    void End();

private:
    bool Make(HWND list, RowChecks& checks);

    ListObject* object_ = nullptr; // one reference
    bool isAsking_ = false;        // for the system's own object
};

} // namespace ObLibX
