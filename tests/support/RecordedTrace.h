// Replaces the product's empty trace call and keeps its lines. A test program that
// links ob_test_trace before the rooms gets this one instead.
#pragma once

#include <string>
#include <vector>

namespace obtest {

// The lines since the last ForgetTrace, with their arguments put in.
const std::vector<std::string>& TraceLines();
void ForgetTrace();

// Calls `observer` with each line from now on, for tests of the order among other calls; null ends
// it.
void ObserveTrace(void (*observer)(const std::string& line));

} // namespace obtest
