#include "services/archive/zip/FileNameRules.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "contracts/ArchiveService.h"
#include "services/archive/Paths.h"

namespace obarchive {
namespace {

constexpr std::size_t kLongest = 255;
constexpr std::wstring_view kForbidden = L"\\/:*?\"<>|";

// The superscript digits are digits to the device names' parser.
constexpr std::wstring_view kDevices[] = {
    L"CON",  L"PRN",  L"AUX",  L"NUL",       L"CONIN$",    L"CONOUT$",
    L"COM1", L"COM2", L"COM3", L"COM4",      L"COM5",      L"COM6",
    L"COM7", L"COM8", L"COM9", L"COM\u00B9", L"COM\u00B2", L"COM\u00B3",
    L"LPT1", L"LPT2", L"LPT3", L"LPT4",      L"LPT5",      L"LPT6",
    L"LPT7", L"LPT8", L"LPT9", L"LPT\u00B9", L"LPT\u00B2", L"LPT\u00B3",
};

bool IsForbidden(wchar_t unit) {
    const bool control = unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
    return control || kForbidden.find(unit) != std::wstring_view::npos;
}

// What both kinds of text have in common.
NameVerdict CheckCharacters(std::wstring_view text) {
    if (text.empty()) return NameVerdict::Empty;
    if (text.size() > kLongest) return NameVerdict::TooLong;
    if (std::any_of(text.begin(), text.end(), IsForbidden)) return NameVerdict::ForbiddenCharacter;
    return NameVerdict::Accepted;
}

// The system compares the part before the first point, without blanks at its end.
bool IsDevice(std::wstring_view name) {
    std::wstring_view stem = name.substr(0, name.find(L'.'));
    while (stem.ends_with(L' ')) stem.remove_suffix(1);
    return std::any_of(std::begin(kDevices), std::end(kDevices), [stem](std::wstring_view device) {
        return EqualIgnoringCase(stem, device);
    });
}

} // namespace

NameVerdict CheckFileName(const wchar_t* name) {
    if (!name) return NameVerdict::NoText;
    const std::wstring_view text = name;
    const NameVerdict verdict = CheckCharacters(text);
    if (verdict != NameVerdict::Accepted) return verdict;
    if (text.ends_with(L' ') || text.ends_with(L'.')) return NameVerdict::BadEnd;
    return IsDevice(text) ? NameVerdict::ReservedName : NameVerdict::Accepted;
}

NameVerdict CheckExtension(const wchar_t* extension) {
    if (!extension) return NameVerdict::NoText;
    const std::wstring_view text = extension;
    const NameVerdict verdict = CheckCharacters(text);
    if (verdict != NameVerdict::Accepted) return verdict;
    const bool blank = text.find(L' ') != std::wstring_view::npos;
    if (blank || text.starts_with(L'.') || text.ends_with(L'.')) return NameVerdict::BadEnd;
    return NameVerdict::Accepted;
}

NameVerdict CheckFilespec(const wchar_t* text, std::uint32_t mode) {
    if (mode == obcontract::kFileNameRules) return CheckFileName(text);
    if (mode == obcontract::kExtensionRules) return CheckExtension(text);
    return NameVerdict::UnknownMode;
}

} // namespace obarchive
