// One use of the picker, from its opening to its end.
#pragma once

#include <windows.h>

#include "tools/pickerdriver/CommandLine.h"

namespace pickerdriver {

// Does in the picker what the task lists. `program` is the process whose end means that no picker
// will come, or null. Throws Failure where a step can't be done.
void VisitPicker(const Task& task, HANDLE program);

} // namespace pickerdriver
