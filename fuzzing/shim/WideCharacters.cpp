// The wide functions of the C library for 16 bits: the library's own are for 32. They take its
// place at link time, for the tests and for the instances of std::wstring. No wide stream is used
// by any program of this build.
//
// This file is built without builtins, or the compiler would make each loop a call of itself.
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <cwctype>

static_assert(sizeof(wchar_t) == 2);

namespace {

std::size_t LengthOf(const wchar_t* text) {
    const wchar_t* end = text;
    while (*end != L'\0') ++end;
    return static_cast<std::size_t>(end - text);
}

const wchar_t* FindUnit(const wchar_t* text, wchar_t unit, std::size_t count) {
    for (; count > 0; --count, ++text)
        if (*text == unit) return text;
    return nullptr;
}

wchar_t Folded(wchar_t unit) { return static_cast<wchar_t>(std::towlower(unit)); }

// The digits as narrow characters for the library's own function: they are ASCII, or not digits.
template <class Number, class Convert>
Number ConvertDigits(const wchar_t* text, wchar_t** end, int base, Convert convert) {
    char digits[128];
    std::size_t used = 0;
    while (used + 1 < sizeof digits && text[used] != L'\0' && text[used] < 0x80) {
        digits[used] = static_cast<char>(text[used]);
        ++used;
    }
    digits[used] = '\0';
    char* stopped = nullptr;
    const Number number = convert(digits, &stopped, base);
    if (end != nullptr) *end = const_cast<wchar_t*>(text + (stopped - digits));
    return number;
}

} // namespace

extern "C" {

std::size_t wcslen(const wchar_t* text) noexcept { return LengthOf(text); }

std::size_t wcsnlen(const wchar_t* text, std::size_t limit) noexcept {
    const wchar_t* const end = FindUnit(text, L'\0', limit);
    return end != nullptr ? static_cast<std::size_t>(end - text) : limit;
}

wchar_t* wmemcpy(wchar_t* out, const wchar_t* in, std::size_t count) noexcept {
    return static_cast<wchar_t*>(__builtin_memcpy(out, in, count * sizeof(wchar_t)));
}

wchar_t* wmemmove(wchar_t* out, const wchar_t* in, std::size_t count) noexcept {
    return static_cast<wchar_t*>(__builtin_memmove(out, in, count * sizeof(wchar_t)));
}

wchar_t* wmemset(wchar_t* out, wchar_t unit, std::size_t count) noexcept {
    for (std::size_t index = 0; index < count; ++index) out[index] = unit;
    return out;
}

int wmemcmp(const wchar_t* one, const wchar_t* other, std::size_t count) noexcept {
    for (; count > 0; --count, ++one, ++other)
        if (*one != *other) return *one < *other ? -1 : 1;
    return 0;
}

int wcscmp(const wchar_t* one, const wchar_t* other) noexcept {
    while (*one != L'\0' && *one == *other) ++one, ++other;
    return *one == *other ? 0 : *one < *other ? -1 : 1;
}

int wcsncmp(const wchar_t* one, const wchar_t* other, std::size_t count) noexcept {
    for (; count > 0; --count, ++one, ++other) {
        if (*one != *other) return *one < *other ? -1 : 1;
        if (*one == L'\0') return 0;
    }
    return 0;
}

wchar_t* wcscpy(wchar_t* out, const wchar_t* in) noexcept {
    return wmemcpy(out, in, LengthOf(in) + 1);
}

wchar_t* wcscat(wchar_t* out, const wchar_t* in) noexcept {
    wcscpy(out + LengthOf(out), in);
    return out;
}

// Names of the Windows library; the standard declares them nowhere here.
int _wcsicmp(const wchar_t* one, const wchar_t* other) {
    while (*one != L'\0' && Folded(*one) == Folded(*other)) ++one, ++other;
    return static_cast<int>(Folded(*one)) - static_cast<int>(Folded(*other));
}

int _wcsnicmp(const wchar_t* one, const wchar_t* other, std::size_t count) {
    for (; count > 0; --count, ++one, ++other) {
        if (Folded(*one) != Folded(*other))
            return static_cast<int>(Folded(*one)) - static_cast<int>(Folded(*other));
        if (*one == L'\0') return 0;
    }
    return 0;
}

// `long` has 32 bits on Windows, and a number beyond them is out of range there.
long wcstol(const wchar_t* text, wchar_t** end, int base) noexcept {
    const long number = ConvertDigits<long>(text, end, base, &std::strtol);
    if (number >= INT_MIN && number <= INT_MAX) return number;
    errno = ERANGE;
    return number < 0 ? INT_MIN : INT_MAX;
}

unsigned long wcstoul(const wchar_t* text, wchar_t** end, int base) noexcept {
    const unsigned long number = ConvertDigits<unsigned long>(text, end, base, &std::strtoul);
    if (number <= UINT_MAX) return number;
    errno = ERANGE;
    return UINT_MAX;
}

// For messages, which are ASCII.
int fputws(const wchar_t* text, std::FILE* file) {
    for (; *text != L'\0'; ++text)
        if (std::fputc(*text < 0x80 ? *text : '?', file) == EOF) return -1;
    return 0;
}

} // extern "C"

// The headers declare these as pairs of overloads that go by one plain name.
namespace shim {

extern "C" wchar_t* ShimFindUnit(const wchar_t* text, wchar_t unit,
                                 std::size_t count) asm("wmemchr");
extern "C" wchar_t* ShimFindInText(const wchar_t* text, wchar_t unit) asm("wcschr");
extern "C" wchar_t* ShimFindLastInText(const wchar_t* text, wchar_t unit) asm("wcsrchr");
extern "C" wchar_t* ShimFindText(const wchar_t* text, const wchar_t* sought) asm("wcsstr");

wchar_t* ShimFindUnit(const wchar_t* text, wchar_t unit, std::size_t count) {
    return const_cast<wchar_t*>(FindUnit(text, unit, count));
}

wchar_t* ShimFindInText(const wchar_t* text, wchar_t unit) {
    return const_cast<wchar_t*>(FindUnit(text, unit, LengthOf(text) + 1));
}

wchar_t* ShimFindLastInText(const wchar_t* text, wchar_t unit) {
    for (std::size_t index = LengthOf(text) + 1; index > 0; --index)
        if (text[index - 1] == unit) return const_cast<wchar_t*>(text + index - 1);
    return nullptr;
}

wchar_t* ShimFindText(const wchar_t* text, const wchar_t* sought) {
    const std::size_t length = LengthOf(sought);
    for (;; ++text) {
        if (wcsncmp(text, sought, length) == 0) return const_cast<wchar_t*>(text);
        if (*text == L'\0') return nullptr;
    }
}

} // namespace shim
