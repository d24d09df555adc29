#include "ObLibX/src/dialog/ControlMaker.h"

namespace ObLibX {
namespace {

ControlMaker& Stored() {
    static ControlMaker maker;
    return maker;
}

} // namespace

void SetControlMaker(const ControlMaker& maker) { Stored() = maker; }

const ControlMaker& TheControlMaker() { return Stored(); }

} // namespace ObLibX
