// The icons that the shell has for names of files and for folders.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <map>
#include <string>

namespace providers {

// On the thread of the dialog.
class PickerIcons {
public:
    // The system's list of small icons, which nobody destroys; null when there is none.
    HIMAGELIST List();
    // The icon's place in that list: by the name's extension alone, as no file is there to look at.
    int IndexOf(const std::wstring& name, bool isFolder);

private:
    std::map<std::wstring, int> known_; // by extension; a folder's is "/"
};

} // namespace providers
