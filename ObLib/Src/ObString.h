// The wide string of the base library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "ObLib/Src/ObSystem.h"
#include "ObLib/Src/StringCore.h"

// A macro of the system's headers renames LoadString. Without it the method has one name, whichever
// header is included first.
#undef LoadString

namespace ObLib {

// One pointer to a core, which the string owns. A copy shares a text of more than 12 units; a
// change first copies a shared text. Lengths are UTF-16 units. One object belongs to one thread;
// copies of it may belong to others. A method that runs out of memory throws std::bad_alloc and
// leaves the string as it was.
//
// A null string has no text at all. It reads as the empty text, sorts before the empty text and
// isn't equal to it. A new string, a cleared string and a string that was moved from are null.
class ObString {
public:
    ObString() noexcept = default;
    // Null makes a null string.
    ObString(const wchar_t* text) { AssignText(text); }
    ObString(const ObString& other)
        : core_(other.core_ != nullptr ? new StringCore(*other.core_) : nullptr) {}
    ObString(ObString&& other) noexcept : core_(std::exchange(other.core_, nullptr)) {}
    // The units of a view; an empty view makes an empty string.
    explicit ObString(std::wstring_view text)
        : core_(new StringCore(text.empty() ? L"" : text.data(), text.size())) {}
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

    // Takes the text and the buffer of `other`. A secure string stays secure, and a string that
    // gets a secure text becomes so.
    void Assign(const ObString& other);
    // `text` may be part of this string's own; null makes a null string.
    void AssignText(const wchar_t* text);
    void Swap(ObString& other);
    void Clear();

    // Exact, with case. A null string equals null only.
    [[nodiscard]] bool Equals(const wchar_t* text) const;
    // Whether this string sorts before `other`, unit by unit; for ordered containers.
    [[nodiscard]] bool Compare(const ObString& other) const;
    // As _wcsicmp: 0 for equal texts. A string that isn't empty never equals an empty one; a null
    // and an empty string are equal.
    [[nodiscard]] int CompareNoCase(const ObString& other) const;

    // NUL-ended, never null; valid until the string changes.
    [[nodiscard]] const wchar_t* CStr() const noexcept {
        return core_ != nullptr && core_->text != nullptr ? core_->text : L"";
    }
    [[nodiscard]] std::uint64_t Length() const noexcept {
        return core_ != nullptr && core_->text != nullptr ? core_->length : 0;
    }
    [[nodiscard]] bool IsNull() const noexcept { return core_ == nullptr || core_->IsNull(); }
    // Whether there is a text of at least one unit.
    [[nodiscard]] bool HasText() const noexcept { return Length() != 0; }

    // Null appends nothing. Any other text, the empty one too, makes a null string a text.
    void Append(const wchar_t* text);
    void AppendString(const ObString& other);
    // Loads the text `id` of the string table of the language module, or else of the program. False
    // when neither has one; the string is then null. A negative id ends the process.
    bool LoadString(std::int32_t id);
    bool LoadStringW(std::int32_t id) {
        return LoadString(id);
    } // the name that the system's macro makes of it
    // By the C library's locale, as in CompareNoCase.
    void ToLower();
    // These take off blanks (code 32) only.
    void TrimLeft();
    void TrimRight();
    void DropLast(); // removes the last unit, if there is one

    // As vswprintf: %ls is wide, %s narrow. Arguments may be this string's own text. False when the
    // C library refuses the format; the string is then as it was.
    bool Format(const wchar_t* format, ...);

    // One digit, or an optional sign and one to nine digits; nothing else.
    [[nodiscard]] bool IsInteger() const;
    // -2147483648 when IsInteger is false.
    [[nodiscard]] std::int32_t ToInteger() const;

    // From now on the text is wiped before its memory is released, and so is the text of every copy
    // made later. Earlier copies, which may share the text, don't wipe it.
    void MakeSecure();
    // Memory for the client's use, which is copied and exchanged with the text.
    ObBuffer& Buffer() { return Own().buffer; }
    // For tests; null when the string never had a text.
    [[nodiscard]] const StringCore* Core() const noexcept { return core_; }

private:
    StringCore& Own() {
        if (core_ == nullptr) core_ = new StringCore;
        return *core_;
    }
    // Takes the new value; the old one is released with `value`.
    void TakeValue(StringCore& value) { Own().Swap(value); }
    void AppendUnits(const wchar_t* text, std::uint64_t units);
    void AssignUnits(const wchar_t* text, std::uint64_t units);

    StringCore* core_ = nullptr;
};

static_assert(sizeof(ObString) == sizeof(void*));

inline bool operator<(const ObString& one, const ObString& other) { return one.Compare(other); }

} // namespace ObLib
