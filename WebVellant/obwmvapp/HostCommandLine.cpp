#include "obwmvapp/HostCommandLine.h"

#include <cerrno>
#include <cwchar>

namespace obwmvapp {
namespace {

bool IsBlank(wchar_t unit) { return unit == L' ' || unit == L'\t'; }

const wchar_t* SkipBlanks(const wchar_t* text) {
    while (IsBlank(*text)) ++text;
    return text;
}

// The text after the program's own path, which is in quotes when it contains a blank.
const wchar_t* SkipProgram(const wchar_t* text) {
    bool quoted = false;
    for (; *text && (quoted || !IsBlank(*text)); ++text) {
        if (*text == L'"') quoted = !quoted;
    }
    return text;
}

// A signed decimal number that ends at a blank or at the end of the text; `text` is moved past it.
// wcstoll alone would also accept leading line breaks and a plus sign.
std::optional<std::int64_t> TakeNumber(const wchar_t*& text) {
    text = SkipBlanks(text);
    const wchar_t* digits = *text == L'-' ? text + 1 : text;
    if (*digits < L'0' || *digits > L'9') return std::nullopt;
    wchar_t* end = nullptr;
    errno = 0;
    const long long value = std::wcstoll(text, &end, 10);
    if (errno == ERANGE || (*end && !IsBlank(*end))) return std::nullopt;
    text = end;
    return value;
}

} // namespace

std::optional<HostRequest> ParseHostCommandLine(const wchar_t* commandLine) {
    const wchar_t* text = SkipProgram(SkipBlanks(commandLine));
    const auto id = TakeNumber(text);
    if (!id || *id < INT32_MIN || *id > INT32_MAX) return std::nullopt;
    const auto owner = TakeNumber(text);
    if (!owner || *SkipBlanks(text)) return std::nullopt;
    return HostRequest{static_cast<std::int32_t>(*id), reinterpret_cast<HWND>(*owner)};
}

} // namespace obwmvapp
