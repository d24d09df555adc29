// Fake of the pipeline that processes what was picked: it records what a driver passes to it, and
// the test decides the result.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "OBCore/planning/OBOpenFileNameDlg.h"

namespace obtest {

// ProcessPickedFiles is written down as ProcessPickedFiles("path", ...), FillOpenFileNameBuffer as
// FillOpenFileNameBuffer(room), room being the wide characters from lpstrFile to the given end.
struct FakePlanning {
    // Answer of ProcessPickedFiles; without one the picked files are the result, answer 1.
    static std::function<int(obcore::OBOpenFileNameDlg&, const std::vector<std::wstring>&)> process;
    static int fillAnswer;

    static void Reset();
};

} // namespace obtest
