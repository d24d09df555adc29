// The flat date picker.
#pragma once

#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// On a stock date picker, which paints itself: only fields and colours are kept.
class ObFlatDatePicker : public ObCustomControl {
public:
    explicit ObFlatDatePicker(std::int32_t controlId)
        : ObCustomControl(controlId, nullptr, L"", 0) {}
};

} // namespace ObLibX
