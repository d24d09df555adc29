// The prompt for a new password.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obarchive {

enum class PromptResult : std::uint32_t {
    NotShown = 0, // no buffer to fill, or the dialog couldn't be made
    Given = 1,
    Cancelled = 2,
};

// Asks for a password and its repetition, modal to `owner` (null, or a window of any process), on
// the calling thread, which dispatches messages meanwhile. On Given, `password` contains the text
// as UTF-8 with its NUL: at most `capacity` bytes, and at most kMostPasswordBytes before the NUL.
// The prompt refuses a longer one with a sentence and stays open, and asks before it takes a very
// weak one. On every other result `password` is empty, and a password that was copied is taken off
// the clipboard. The prompt wipes its own memory.
PromptResult AskNewPassword(HWND owner, char* password, std::uint32_t capacity);

} // namespace obarchive
