// The wide string of the base library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "ObLib/Src/ObSystem.h"
#include "ObLib/Src/StringCore.h"

// The system's headers make LoadString another word; the method has one name whichever comes first.
#undef LoadString

namespace ObLib {

// One pointer to a core, which it owns. A copy shares a text of more than 12 units; a change makes
// the text its own first. Lengths are UTF-16 units. One object belongs to one thread; copies of it
// may belong to others. Exhausted memory throws std::bad_alloc out of whatever needs some, and the
// string is then as it was.
//
// A null string has no text at all. It reads as the empty text, comes before the empty text in an
// order, and isn't equal to it; a new string, a cleared one and one that was moved from are null.
class ObString {
public:
    ObString() noexcept = default;
    // Null makes a null string.
    ObString(const wchar_t* text) { AssignText(text); }
    ObString(const ObString& other)
        : core_(other.core_ != nullptr ? new StringCore(*other.core_) : nullptr) {}
    ObString(ObString&& other) noexcept : core_(std::exchange(other.core_, nullptr)) {}
    // The text `id` of the string table, as LoadString finds it.
    explicit ObString(std::int32_t id) { LoadString(id); }
    // NUL-ended bytes in the encoding `codePageKind` (a CodePageKind); null makes a null string.
    // Kind 2 ends the process.
    ObString(const char* bytes, std::int32_t codePageKind);
    ~ObString() { delete core_; }

    ObString& operator=(const ObString& other) {
        Assign(other);
        return *this;
    }
    ObString& operator=(ObString&& other) noexcept {
        if (this != &other) delete std::exchange(core_, std::exchange(other.core_, nullptr));
        return *this;
    }

    // Takes text and buffer of `other`. A string that is secure, or gets a secure text, stays so.
    void Assign(const ObString& other);
    // `text` may lie in this string; null makes a null string.
    void AssignText(const wchar_t* text);
    void Swap(ObString& other);
    void Clear();

    // Exactly: a null string equals null only.
    [[nodiscard]] bool Equals(const wchar_t* text) const;
    // Whether this comes before `other`, unit by unit; for ordered containers.
    [[nodiscard]] bool Compare(const ObString& other) const;
    // As _wcsicmp: 0 for equal texts. A string that isn't empty never equals an empty one; null and
    // empty ones are equal.
    [[nodiscard]] int CompareNoCase(const ObString& other) const;

    // NUL-ended, never null; good until the string changes.
    [[nodiscard]] const wchar_t* CStr() const noexcept {
        return core_ != nullptr && core_->text != nullptr ? core_->text : L"";
    }
    [[nodiscard]] std::uint64_t Length() const noexcept {
        return core_ != nullptr && core_->text != nullptr ? core_->length : 0;
    }
    [[nodiscard]] bool IsNull() const noexcept { return core_ == nullptr || core_->IsNull(); }
    // Whether there is a text of at least one unit.
    [[nodiscard]] bool HasText() const noexcept { return Length() != 0; }

    // Null appends nothing; any other text makes a null string a text.
    void Append(const wchar_t* text);
    void AppendString(const ObString& other);
    // True with the text `id` of the language module's string table, or of the program's. False
    // where neither has one; the string is null then. A negative id ends the process.
    bool LoadString(std::int32_t id);
    bool LoadStringW(std::int32_t id) { return LoadString(id); } // what that word is
    // By the C library's rule for its locale, as CompareNoCase.
    void ToLower();
    // Blanks (code 32) only.
    void TrimLeft();
    void TrimRight();
    void DropLast(); // the last unit; nothing where there is none

    // As vswprintf: %ls is wide, %s narrow. Arguments may be this string's own text. False for a
    // format that the C library refuses; the string is then as it was.
    bool Format(const wchar_t* format, ...);

    // One digit, or an optional sign and one to nine digits; nothing else.
    [[nodiscard]] bool IsInteger() const;
    // -2147483648 for what is no integer.
    [[nodiscard]] std::int32_t ToInteger() const;

    // From now on the text is wiped before its memory is released, and so is that of every copy.
    // Copies from before, which share the text, don't know of it.
    void MakeSecure();
    // Scratch of the client, which is copied and exchanged with the text.
    ObBuffer& Buffer() { return Own().buffer; }
    // For tests; null for a string that never had a text.
    [[nodiscard]] const StringCore* Core() const noexcept { return core_; }

private:
    StringCore& Own() {
        if (core_ == nullptr) core_ = new StringCore;
        return *core_;
    }
    // Puts the new value in; what was there is released with it.
    void TakeValue(StringCore& value) { Own().Swap(value); }
    void AppendUnits(const wchar_t* text, std::uint64_t units);
    void AssignUnits(const wchar_t* text, std::uint64_t units);

    StringCore* core_ = nullptr;
};

static_assert(sizeof(ObString) == sizeof(void*));

inline bool operator<(const ObString& one, const ObString& other) { return one.Compare(other); }

} // namespace ObLib
