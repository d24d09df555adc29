// What the UI driver is to do.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace pickerdriver {

enum class Choice { Zip, Encrypt, None };

// A transform that this build has, as the UI driver meets it.
struct Transform {
    const wchar_t* name;
    UINT box;                 // the id of its text in the picker
    int settings;             // a control of its settings dialog; 0: it has none
    int pressed;              // a button that is pressed there; 0: none
    int valueField;           // takes --value; 0: none
    bool hasReceipt;          // before the files go to the page
    bool mayHaveNote = false; // messages before the settings, which are read and closed
};

struct Task {
    Choice choice = Choice::Zip;
    bool hasChoice = false;          // otherwise the picker's own choice is kept
    std::vector<std::wstring> files; // full paths
    std::wstring password;
    std::wstring pdfPassword; // of encrypted PDFs; empty: they are left as they are
    bool cancel = false;
    std::wstring server; // of WebDAV, that the user logs in to in the chooser; empty: no chooser
    std::wstring user;
    std::wstring serverPassword;
    bool pickFromCloud = false;      // a second request on the same page
    const Transform* tick = nullptr; // whose box is ticked; null: none
    std::wstring value;              // typed in its settings; empty: as they are
    DWORD limit = 60000;             // milliseconds for each wait
    std::wstring picture;            // base of the pictures' names; empty for none
    std::wstring pageResult;         // the file in which the page lists what it got
    std::wstring keepFolder;         // where to copy the files that the page got
    std::wstring program; // a whole command line; empty: another program shows the picker
};

extern const wchar_t kUsage[];

// Throws Failure where the arguments make no sense.
Task ParseCommandLine(int argc, wchar_t** argv);

} // namespace pickerdriver
