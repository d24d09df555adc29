// The methods of ObString that change its text, and those that read a number in it.
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cwchar>
#include <cwctype>

#include "ObLib/Src/ObString.h"

namespace ObLib {
namespace {

constexpr std::uint64_t kMostDigits = 9;

bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

int Measure(const wchar_t* format, va_list arguments) {
    va_list copy;
    va_copy(copy, arguments);
    const int units = std::vswprintf(nullptr, 0, format, copy);
    va_end(copy);
    return units;
}

// False when the C library refuses the format; `value` is then undefined.
bool FormatInto(StringCore& value, const wchar_t* format, va_list arguments) {
    const int units = Measure(format, arguments);
    if (units < 0) return false;
    const auto length = static_cast<std::uint64_t>(units);
    value.SetLength(length);
    return std::vswprintf(value.text, length + 1, format, arguments) == units;
}

} // namespace

void ObString::ToLower() {
    if (Length() == 0) return;
    core_->MakeUnique();
    for (std::uint64_t index = 0; index < core_->length; ++index)
        core_->text[index] = static_cast<wchar_t>(std::towlower(core_->text[index]));
}

void ObString::TrimLeft() {
    const wchar_t* const text = CStr();
    std::uint64_t blanks = 0;
    while (text[blanks] == L' ') ++blanks;
    if (blanks != 0) AssignUnits(text + blanks, Length() - blanks);
}

void ObString::TrimRight() {
    const wchar_t* const text = CStr();
    std::uint64_t units = Length();
    while (units != 0 && text[units - 1] == L' ') --units;
    if (units != Length()) AssignUnits(text, units);
}

void ObString::DropLast() {
    if (Length() != 0) AssignUnits(CStr(), Length() - 1);
}

bool ObString::Format(const wchar_t* format, ...) {
    StringCore value;
    // The formatted text is as secret as the string that gets it.
    value.secure = core_ != nullptr ? core_->secure : 0;
    va_list arguments;
    va_start(arguments, format);
    bool formatted = false;
    try {
        formatted = FormatInto(value, format, arguments);
    } catch (...) {
        va_end(arguments);
        throw;
    }
    va_end(arguments);
    if (formatted) TakeValue(value);
    return formatted;
}

bool ObString::IsInteger() const {
    const wchar_t* const text = CStr();
    const std::uint64_t first = text[0] == L'+' || text[0] == L'-' ? 1 : 0;
    const std::uint64_t digits = Length() - first;
    if (Length() <= first || digits > kMostDigits) return false;
    for (std::uint64_t index = first; index < Length(); ++index)
        if (!IsDigit(text[index])) return false;
    return true;
}

std::int32_t ObString::ToInteger() const {
    if (!IsInteger()) return INT_MIN;
    errno = 0;
    const long value = std::wcstol(CStr(), nullptr, 10);
    return errno == 0 ? static_cast<std::int32_t>(value) : INT_MIN;
}

} // namespace ObLib
