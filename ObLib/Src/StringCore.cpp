#include "ObLib/Src/StringCore.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <stdexcept>
#include <utility>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/ObMemory.h"
#include "ObLib/Src/StringPool.h"

namespace ObLib {
namespace {

constexpr wchar_t kModule[] = L"ObLib\\Src\\StringCore.cpp";

// The start of a shared block; the text follows directly.
struct alignas(4) BlockHead {
    std::atomic<std::int32_t> count;
};
static_assert(sizeof(StringCore) == kPooledSize);
static_assert(sizeof(BlockHead) == 4);
static_assert(std::atomic<std::int32_t>::is_always_lock_free);

constexpr std::uint64_t kLargestBlock = 0x7FFFFFFF;

BlockHead& HeadOf(const wchar_t* text) {
    return reinterpret_cast<BlockHead*>(const_cast<wchar_t*>(text))[-1];
}

std::uint64_t BlockBytes(std::uint64_t units) { return units * sizeof(wchar_t) + 6; }

// A block with the count 1, with a NUL after `units` units.
wchar_t* NewBlock(std::uint64_t units) {
    if (units > StringCore::kLongest || BlockBytes(units) > kLargestBlock) throw std::bad_alloc();
    auto* const head = new (::operator new(BlockBytes(units))) BlockHead{1};
    auto* const text = reinterpret_cast<wchar_t*>(head + 1);
    text[units] = L'\0';
    return text;
}

// Adds a reference; false when the block has as many as it may have. A plain addition is the
// cheapest atomic operation. A reference above the limit is taken back; that is never the last one,
// as the caller's source has one too.
bool Join(BlockHead& head) {
    if (head.count.fetch_add(1, std::memory_order_relaxed) < StringCore::kMostSharers) return true;
    head.count.fetch_sub(1, std::memory_order_relaxed);
    return false;
}

// Takes a reference away; true when it was the last.
bool Leave(BlockHead& head) {
    const std::int32_t left = head.count.fetch_sub(1, std::memory_order_acq_rel) - 1;
    ObAssert(left >= 0);
    return left == 0;
}

wchar_t* CopyToBlock(const wchar_t* source, std::uint64_t units) {
    wchar_t* const block = NewBlock(units);
    std::memcpy(block, source, units * sizeof(wchar_t));
    return block;
}

// As the checked copy of the C library: 0, or an error.
int CopyChecked(wchar_t* out, std::uint64_t capacity, const wchar_t* source, std::uint64_t units) {
    if (out == nullptr || source == nullptr) return 22;
    if (units >= capacity) return 34;
    std::memcpy(out, source, units * sizeof(wchar_t));
    out[units] = L'\0';
    return 0;
}

} // namespace

void CheckTextCopy(int result) { ObAssert(result == 0 || result == kStringTruncated); }

void* StringCore::operator new(std::size_t size) { return PoolAllocate(size); }

// A destructor can't report a full list, so that the core is then released to the heap.
void StringCore::operator delete(void* memory) noexcept {
    try {
        PoolFree(memory, sizeof(StringCore));
    } catch (const std::exception&) {
        ::operator delete(memory);
    }
}

StringCore::StringCore(const wchar_t* source, std::uint64_t units) {
    inlineText[0] = L'\0';
    text = units <= kInlineUnits ? inlineText : NewBlock(units);
    length = units;
    CheckTextCopy(CopyChecked(text, units + 1, source, units));
}

void StringCore::TakeBlock(const StringCore& other) {
    text = Join(HeadOf(other.text)) ? other.text : CopyToBlock(other.text, other.length);
}

void StringCore::LetGo(wchar_t* blockText) noexcept {
    BlockHead& head = HeadOf(blockText);
    if (!Leave(head)) return;
    if (secure != 0) Wipe(blockText, length * sizeof(wchar_t));
    ::operator delete(&head);
}

// The core that releases the last reference wipes the block.
void StringCore::WipeOwn() noexcept {
    Wipe(inlineText, sizeof inlineText);
    Wipe(buffer.data, buffer.capacity);
}

std::int32_t StringCore::ShareCount() const noexcept {
    return IsShared() ? HeadOf(text).count.load(std::memory_order_relaxed) : 0;
}

void StringCore::MakeUnique() {
    if (!IsShared() || HeadOf(text).count.load(std::memory_order_acquire) <= 1) return;
    wchar_t* const own = CopyToBlock(text, length);
    LetGo(std::exchange(text, own));
}

void StringCore::SetLength(std::uint64_t units) {
    wchar_t* const old = text;
    wchar_t* const made = units <= kInlineUnits ? inlineText : NewBlock(units);
    const std::uint64_t kept = std::min(units, length);
    if (old != nullptr && old != made) std::memcpy(made, old, kept * sizeof(wchar_t));
    text = made;
    text[units] = L'\0';
    // Pass the old length: it is the number of units to wipe.
    if (old != nullptr && old != inlineText) LetGo(old);
    if (secure != 0 && text != inlineText) Wipe(inlineText, sizeof inlineText);
    length = units;
}

void StringCore::Swap(StringCore& other) noexcept {
    const bool isInline = IsInline();
    const bool otherIsInline = other.IsInline();
    std::swap(inlineText, other.inlineText);
    std::swap(text, other.text);
    if (otherIsInline) text = inlineText;
    if (isInline) other.text = other.inlineText;
    std::swap(length, other.length);
    secure = other.secure = secure | other.secure;
    buffer.Swap(other.buffer);
}

void StringCore::ShareText(const StringCore& other) {
    if (this == &other) return;
    wchar_t* const old = IsShared() ? text : nullptr;
    if (other.IsShared())
        TakeBlock(other);
    else if (other.IsInline())
        TakeText(other);
    else
        text = nullptr;
    if (old != nullptr) LetGo(old);
    length = other.length;
}

} // namespace ObLib
