// How a bench program hands its samples to the script that started it.
#pragma once

#include <vector>

namespace bench {

// One line on stdout: the name, a tab, the numbers with blanks between. The script makes medians
// and tables of them; a program never judges.
void PrintSeries(const char* name, const std::vector<double>& samples);

// Says on stderr what can't be measured, with the thread's last error; the exit code to end with.
int Fail(const char* what);

} // namespace bench
