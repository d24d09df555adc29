// What screen readers are told of a window's controls. The window may belong to another process.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace obtest {

// A control as its window's IAccessible describes it. Texts that it doesn't have are empty.
struct AccessibleNode {
    int id = 0; // of the control
    std::wstring role;
    std::wstring name;
    std::wstring states; // their names, with commas
    std::wstring value;
    std::wstring description;
    std::wstring action; // the name of what a press does
    // Of a list view: the names of the states of its first rows, which have no windows.
    std::vector<std::wstring> rows;
};

// The visible controls at every depth, in the order in which the system lists them. COM has to be
// there on the calling thread. A control that gives no object has a node with its id alone.
std::vector<AccessibleNode> AccessibleNodes(HWND window);

// In one line, for people.
std::wstring Line(const AccessibleNode& node);

} // namespace obtest
