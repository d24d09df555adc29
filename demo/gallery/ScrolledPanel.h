// A panel of lines that a scroll bar scrolls.
#pragma once

#include <windows.h>

namespace gallery {

inline constexpr wchar_t kScrolledPanelClass[] = L"GalleryScrolledPanel";
inline constexpr int kPanelLines = 40;

// Registers the window class. Before a dialog with a panel opens.
void RegisterScrolledPanel(HINSTANCE program);

// Pixels from one line to the next, at the screen's scale.
int PanelLineHeight();

// Makes `first` the topmost line.
void ShowPanelFrom(HWND panel, int first);

} // namespace gallery
