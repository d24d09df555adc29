// The trace lines of the product, caught: this program has its own sink in the place of the empty
// one.
#pragma once

#include <string>
#include <vector>

std::vector<std::string>& TraceLines();
