// What a string's handle owns: the text, inline or in a shared block, and what goes with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "ObLib/Src/ObBuffer.h"

namespace ObLib {

// Of the checked copy calls: the text was cut, which is accepted.
inline constexpr int kStringTruncated = 80;

// Takes the result of a checked copy of a text; one that failed ends the process.
void CheckTextCopy(int result);

// Lives in the pool's memory. Its fields belong to one thread; a shared block may belong to cores
// of several. Everything that allocates throws std::bad_alloc and leaves the core as it was.
class StringCore {
public:
    static constexpr std::uint64_t kInlineUnits = 12;
    static constexpr std::uint64_t kLongest = 0x7FFFFFFF;
    // A block that so many cores share is shared no further.
    static constexpr std::int32_t kMostSharers = 32767;

    StringCore() noexcept { inlineText[0] = L'\0'; }
    // Shares a block of `other`; an inline text and the buffer are copied.
    StringCore(const StringCore& other)
        : length(other.length), secure(other.secure), buffer(other.buffer) {
        TakeText(other);
    }
    // `units` units at `source`, which may be of this very string.
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
    // References on the block; 0 without a block.
    std::int32_t ShareCount() const noexcept;

    // To be called before the text is written to: a block that others share is replaced by a copy.
    void MakeUnique();
    // Makes room for `units` units, NUL-ended, in memory of this core alone. What was there stays
    // as far as it fits; units that are new are undefined.
    void SetLength(std::uint64_t units);
    // Exchanges the texts and the buffers. A core that meets a secure one becomes secure.
    void Swap(StringCore& other) noexcept;
    // The text of `other`, as a copy of its core has it; its buffer and `secure` are left.
    void ShareText(const StringCore& other);

    std::uint64_t length = 0; // units, not counting the NUL
    std::uint8_t secure = 0;  // wipe the text before it is released
    ObBuffer buffer;          // scratch, carried along
    wchar_t* text = nullptr;  // null: a null string; else inlineText or behind a block's count
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
