// What the UI driver is to do.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace pickerdriver {

enum class Choice { Zip, Encrypt, None };

struct Task {
    Choice choice = Choice::Zip;
    bool hasChoice = false;          // otherwise the picker's own choice is kept
    std::vector<std::wstring> files; // full paths
    std::wstring password;
    bool cancel = false;
    UINT tick = 0;           // string id of the transform whose box is ticked; 0: none
    DWORD limit = 60000;     // milliseconds for each wait
    std::wstring picture;    // base of the pictures' names; empty for none
    std::wstring pageResult; // the file in which the page lists what it got
    std::wstring keepFolder; // where to copy the files that the page got
    std::wstring program;    // a whole command line; empty: another program shows the picker
};

extern const wchar_t kUsage[];

// Throws Failure where the arguments make no sense.
Task ParseCommandLine(int argc, wchar_t** argv);

} // namespace pickerdriver
