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
// the calling thread, which pumps messages meanwhile. On Given, `password` holds the text as UTF-8
// with its NUL, never more than `capacity` bytes: a longer one is refused with a sentence, and the
// prompt stays. On every other result `password` is empty. What the prompt itself held is wiped.
PromptResult AskNewPassword(HWND owner, char* password, std::uint32_t capacity);

} // namespace obarchive
