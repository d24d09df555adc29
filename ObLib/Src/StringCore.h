// What a string owns: its text, inline or in a shared block, its secure flag and its buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "ObLib/Src/ObBuffer.h"

namespace ObLib {

// The result of a checked copy call that has cut the text, which is accepted.
inline constexpr int kStringTruncated = 80;

// Checks the result of a checked copy call; a failure ends the process.
void CheckTextCopy(int result);

// Is in the pool's memory. Its fields belong to one thread; a block may be shared by cores of
// several threads. Whatever allocates may throw std::bad_alloc, and the core is then as it was.
class StringCore {
public:
    static constexpr std::uint64_t kInlineUnits = 12;
    static constexpr std::uint64_t kLongest = 0x7FFFFFFF;
    // A block that this many cores share isn't shared with more.
    static constexpr std::int32_t kMostSharers = 32767;

    StringCore() noexcept { inlineText[0] = L'\0'; }
    // Shares the block of `other`, or copies its inline text. Copies its buffer.
    StringCore(const StringCore& other)
        : length(other.length), secure(other.secure), buffer(other.buffer) {
        TakeText(other);
    }
    // Copies `units` units at `source`, which may be part of this text.
    StringCore(const wchar_t* source, std::uint64_t units);
    StringCore& operator=(const StringCore&) = delete;
    ~StringCore() {
        if (secure != 0) WipeOwn();
        if (IsShared()) LetGo(text);
    }

    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;

    bool IsNull() const noexcept { return text == nullptr; }
    bool IsInline() const noexcept { return text == inlineText; }
    // Whether the text is in a block on the heap, which others may share.
    bool IsShared() const noexcept { return text != nullptr && text != inlineText; }
    // The number of references to the block; 0 without a block.
    std::int32_t ShareCount() const noexcept;

    // Call this before writing to the text: replaces a block that others share by a copy.
    void MakeUnique();
    // Makes room for `units` units, NUL-ended, in memory that isn't shared. Units of the old text
    // stay as far as they fit; new ones are undefined.
    void SetLength(std::uint64_t units);
    // Exchanges the texts and the buffers. When one of the cores is secure, both become secure.
    void Swap(StringCore& other) noexcept;
    // Takes the text of `other` as a copy of its core would, without its buffer and `secure`.
    void ShareText(const StringCore& other);

    std::uint64_t length = 0; // units, not counting the NUL
    std::uint8_t secure = 0;  // wipe the text before it is released
    ObBuffer buffer;          // the client's; copied with the text
    wchar_t* text = nullptr;  // null: a null string; else inlineText, or in a block after its count
    wchar_t inlineText[kInlineUnits + 1];

private:
    void TakeText(const StringCore& other) {
        if (other.IsInline()) {
            std::memcpy(inlineText, other.inlineText, sizeof inlineText);
            text = inlineText;
        } else {
            inlineText[0] = L'\0';
            if (other.text != nullptr) TakeBlock(other);
        }
    }
    void TakeBlock(const StringCore& other);
    void LetGo(wchar_t* blockText) noexcept;
    void WipeOwn() noexcept;
};

} // namespace ObLib
