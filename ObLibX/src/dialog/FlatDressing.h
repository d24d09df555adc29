// Makes the objects that dress the windows of a flat dialog.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// Objects for the dialog's child windows in their Z-order, each with its window, its tooltip's text
// and its item data; what the description of the dialog `templateId` has for them is used up.
// Windows with the id 0, those that `hasObject` is true for, and classes without a flat control are
// left out.
std::vector<std::unique_ptr<ObCustomControl>>
CreateFlatControls(HWND dialog, std::int32_t templateId,
                   const std::function<bool(HWND child)>& hasObject);

// Calls `use` for each child window, in Z-order. It may make and destroy windows.
void ForEachChild(HWND dialog, const std::function<void(HWND child)>& use);

// Whether a window is of this class, in any case.
bool IsOfClass(HWND window, const wchar_t* name);

} // namespace ObLibX
