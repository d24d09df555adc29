// How a bench program passes its samples to the script that started it.
#pragma once

#include <vector>

namespace bench {

// Writes one line to stdout: the name, a tab, the numbers separated by blanks. The script computes
// medians and tables; a program never does.
void PrintSeries(const char* name, const std::vector<double>& samples);

// Reports on stderr what can't be measured, with the thread's last error; returns the exit code to
// end with.
int Fail(const char* what);

} // namespace bench
