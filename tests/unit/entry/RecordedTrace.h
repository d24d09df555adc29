// Stands in the place of the product's trace call and keeps its lines.
#pragma once

#include <string>
#include <vector>

namespace obtest {

// The lines since the last ForgetTrace, with their arguments put in.
const std::vector<std::string>& TraceLines();
void ForgetTrace();

} // namespace obtest
