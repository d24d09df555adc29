// The two windows of a file dialog that Windows has and Wine hasn't: the file name box of class
// "ComboBoxEx32", a child of the dialog, and the view of class "DUIViewWndClassName" with its
// child.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace shelldialog {

inline constexpr wchar_t kBoxClass[] = L"ComboBoxEx32";
inline constexpr wchar_t kViewClass[] = L"DUIViewWndClassName";
inline constexpr wchar_t kViewChildClass[] = L"DirectUIHWND";

inline constexpr int kBoxId = 1148;       // of the file name box, as on Windows
inline constexpr int kNameFieldId = 1152; // Wine's field in the box's place
inline constexpr int kFileTypesId = 1136;

// Adds them to the first dialog that the calling thread creates within the object's life, when it
// is a file dialog. Construct it after the hooks of the code under test: that code's procedure then
// runs around this one's, so it finds the windows once the dialog has done its own work.
class AddedWindows {
public:
    AddedWindows();
    ~AddedWindows();
    AddedWindows(const AddedWindows&) = delete;
    AddedWindows& operator=(const AddedWindows&) = delete;

private:
    ObLib::UniqueWindowHook* outer_; // of a dialog that shows this one
    ObLib::UniqueWindowHook hook_;
};

} // namespace shelldialog
