// What makes the flat controls: given to the dialogs once by the floor above, which has them.
#pragma once

#include <windows.h>

#include <memory>

#include "ObLibX/src/dialog/DialogDescription.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// `description` null: the control has none.
using MakeControl = std::unique_ptr<ObCustomControl> (*)(HWND window,
                                                         const ControlDescription* description);
// A heading in place of a group box: a static text of `size` points and `weight`.
using MakeHeading = std::unique_ptr<ObCustomControl> (*)(std::int32_t id, std::int32_t size,
                                                         std::int32_t weight, COLORREF textColor);

struct ControlMaker {
    MakeControl control = nullptr; // empty result: the window stays stock
    MakeHeading heading = nullptr;
};

// Before the first dialog opens; on the thread of the dialogs. Without it windows stay stock.
void SetControlMaker(const ControlMaker& maker);
const ControlMaker& TheControlMaker();

} // namespace ObLibX
