// The end of the process where a copy would overflow its buffer.
#pragma once

#include <cstddef>

namespace ObLib {

// Copies `text` with its NUL into `buffer` of `capacity` wide characters; `CopyOrFailFast` is for
// places at which an overflow means that the process can't go on. The C runtime's own checked copy
// only reports an overflow and returns, so the end of the process is explicit here: exception code
// 0xC0000409 (STATUS_STACK_BUFFER_OVERRUN), no handlers are run.
void CopyOrFailFast(wchar_t* buffer, std::size_t capacity, const wchar_t* text) noexcept;

// As CopyOrFailFast, after the text that the buffer already contains.
void AppendOrFailFast(wchar_t* buffer, std::size_t capacity, const wchar_t* text) noexcept;

// Ends the process at once; never returns.
[[noreturn]] void FailFast() noexcept;

} // namespace ObLib
