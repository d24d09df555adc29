// Pictures of windows as the screen shows them, for readers and for tests that compare pixels.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace obtest {

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; // 0x00RRGGBB, the top row first

    // How many different colours there are; a window that was never painted has one or two.
    std::size_t Colours() const;
};

// The whole window with frame and child windows. The process of the caller must be aware of the
// screen's dpi, or it gets a part of the window. Nothing when the window has gone or has no area.
std::optional<Picture> TakePicture(HWND window);

// Takes pictures until one has at least this many colours and equals the one before it, as windows
// paint when they come to it. Nothing after `limit` milliseconds.
std::optional<Picture> TakeSettledPicture(HWND window, std::size_t colours = 8,
                                          DWORD limit = 10000);

// Writes a PNG file, replacing what is there. False when it can't be written.
bool WritePng(const Picture& picture, const std::wstring& path);

// A process's own window: visible, with a title, and nobody's dialog. Null when it has none yet.
HWND FindMainWindow(DWORD processId);

} // namespace obtest
