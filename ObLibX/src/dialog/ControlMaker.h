// What makes the flat controls: given to the dialogs once by the floor above, which has them.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "ObLibX/src/dialog/DialogDescription.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// `description` null: the control has none.
using MakeControl = std::unique_ptr<ObCustomControl> (*)(HWND window,
                                                         const ControlDescription* description);
// A heading in place of a group box: a static text of `size` points and `weight`, in the palette's
// colour of headings.
using MakeHeading = std::unique_ptr<ObCustomControl> (*)(std::int32_t id, std::int32_t size,
                                                         std::int32_t weight);
// Called for each opening of a flat dialog, when all its windows have been dressed and none is
// attached yet. The objects' windows are known.
using SettleControls = void (*)(HWND dialog, const std::vector<ObCustomControl*>& controls);

struct ControlMaker {
    MakeControl control = nullptr; // empty result: the window stays stock
    MakeHeading heading = nullptr;
    SettleControls settle = nullptr;
};

// Before the first dialog opens; on the thread of the dialogs. Without it windows stay stock.
void SetControlMaker(const ControlMaker& maker);
const ControlMaker& TheControlMaker();

} // namespace ObLibX
