// Scroll bars beside the system's own: hosted ones over a list box, and a thumb that is dragged.
#pragma once

#include "benchmarks/toolkit/DescriptionBench.h"

namespace bench {

// Turn by turn, microseconds: a window with a list box in it, all of it painted, with hosted bars
// and with the list box's own.
Pair MeasureHostPaint(int rounds);

// Turn by turn, microseconds a position: the thumb of a flat bar dragged over 1,000 positions, and
// that of a stock one over 100, each of which the parent takes. Empty when one of the two doesn't
// report each.
Pair MeasureDrag(int rounds);

} // namespace bench
