// What the suites share that look at windows at one scale of the display.
#pragma once

#include <windows.h>

#include <string>

#include "tests/support/WindowPicture.h"

namespace obtest {

// For SetUpTestSuite: from now on the process's windows have the size for the scale.
void BeAwareOfTheScale();

// The scale that the run was started with, in dots per inch; 0 when it names none
// (OB_EXPECTED_DPI).
int ExpectedDpi();

// Pixels at 96 dpi, at the run's scale.
int AtScale(int pixels);

// Expects a picture of at least this size, in pixels at 96 dpi. Stores it as NAME-DPI.png in the
// folder OB_PICTURES, where that is set, to be judged by eye.
void KeepPicture(const Picture& picture, const std::wstring& name, int leastWidth,
                 int leastHeight = 0);

// The same with the picture of a window that has come to rest, which it must.
void LookAt(HWND window, const std::wstring& name, int leastWidth, int leastHeight = 0);

// Expects that the control shows its whole text, broken into lines as the control breaks it.
// `margin` pixels of its width are taken by something else.
void ExpectWholeText(HWND control, int margin = 0);

} // namespace obtest
