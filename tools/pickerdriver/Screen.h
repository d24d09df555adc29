// What is on the screen: dialogs and message boxes of the product, their texts and pictures.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tools/pickerdriver/CommandLine.h"

namespace pickerdriver {

// The open message box; null: there is none.
HWND MessageBoxOnScreen();
std::wstring MessageOf(HWND box);

// Prints a message and closes its box, if one is open.
void CloseNote();

// Waits until the condition is true; `what` names it. Throws Failure when the limit (milliseconds)
// has passed, when `program` (may be null) has ended, or when a message box comes instead: the UI
// driver expects none, and waiting on would only hide its text.
void Await(const std::wstring& what, DWORD limit, HANDLE program,
           const std::function<bool()>& condition);

// The visible dialog that has this control; null when there is none.
HWND DialogWith(int control);

// A text of a module beside this program, without marks for keys. Throws Failure where the module
// can't be read.
std::wstring PlainText(const wchar_t* module, UINT id);

// The file of the task's pictures with the suffix in its name.
std::wstring PictureName(const Task& task, const wchar_t* suffix);

// Into the file of the task's pictures with the suffix in its name; nothing if the task wants none.
void TakePictureOf(HWND window, const Task& task, const wchar_t* suffix);

// Takes a picture, clicks a button of the dialog, and waits for the dialog's end.
void PressButtonOf(HWND dialog, int button, const Task& task, HANDLE program,
                   const wchar_t* suffix);

} // namespace pickerdriver
