// A description of 20 KB read into a tree, by the toolkit and by pugixml.
#pragma once

#include <vector>

namespace bench {

struct Pair {
    std::vector<double> ours; // microseconds
    std::vector<double> theirs;
};

// Turn by turn. Empty when one of the two doesn't read all elements.
Pair MeasureDescription(int rounds);

} // namespace bench
