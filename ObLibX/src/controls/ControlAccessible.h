// What screen readers get to know about a window that a flat control paints by itself.
#pragma once

#include <windows.h>

#include "ObLib/Src/ObString.h"

namespace ObLibX {

// The control, as it is now. On the window's thread. Throws std::bad_alloc.
class AccessibleSource {
public:
    virtual ObLib::ObString AccessibleName() = 0; // empty: none
    virtual LONG AccessibleRole() = 0;            // ROLE_SYSTEM_...
    virtual LONG AccessibleState() = 0;           // STATE_SYSTEM_..., besides what any window has
    virtual void DoAccessibleAction() = 0;
    // False: there is nothing that a click on the whole control does.
    virtual bool HasAccessibleAction() { return true; }
    // Empty: none.
    virtual ObLib::ObString AccessibleValue() { return {}; }
    virtual ObLib::ObString AccessibleDescription() { return {}; }
    // The keys that do the action anywhere in the field, such as "Alt+F8". Empty: what the system
    // takes for them.
    virtual ObLib::ObString AccessibleShortcut() { return {}; }

protected:
    ~AccessibleSource() = default;
};

struct AccessibleObject; // in ControlAccessible.cpp

// The object that answers for one window; clients may keep it longer than the window is there.
class ControlAccessible {
public:
    ControlAccessible() = default;
    ~ControlAccessible() { End(); }
    ControlAccessible(const ControlAccessible&) = delete;
    ControlAccessible& operator=(const ControlAccessible&) = delete;

    // The result of WM_GETOBJECT: 0 for what isn't the client area, and where the system's own
    // object can't be had, which answers for place, parent and default action. `source` is valid
    // until End.
    LRESULT OnGetObject(HWND window, WPARAM wParam, LPARAM lParam, AccessibleSource& source);

    // At WM_NCDESTROY: clients get CO_E_OBJNOTCONNECTED from now on.
    void End();

private:
    AccessibleObject* object_ = nullptr; // one reference
};

} // namespace ObLibX
