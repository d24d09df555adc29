// The rules for a zip's name and extension, beside the same rules put as plain questions.
#include <algorithm>
#include <string>

#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "services/archive/zip/FileNameRules.h"

using namespace obarchive;

namespace {

bool HasForbidden(const std::wstring& text) {
    return std::any_of(text.begin(), text.end(), [](wchar_t unit) {
        return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F) ||
               std::wstring(L"\\/:*?\"<>|").find(unit) != std::wstring::npos;
    });
}

bool IsNumberedDevice(const std::wstring& stem) {
    if (stem.size() != 4 || (!stem.starts_with(L"COM") && !stem.starts_with(L"LPT"))) return false;
    const wchar_t digit = stem[3];
    return (digit >= L'1' && digit <= L'9') || digit == 0xB9 || digit == 0xB2 || digit == 0xB3;
}

bool IsDeviceName(const std::wstring& name) {
    std::wstring stem = name.substr(0, name.find(L'.'));
    stem.erase(stem.find_last_not_of(L' ') + 1);
    for (wchar_t& unit : stem) {
        if (unit >= L'a' && unit <= L'z') unit = static_cast<wchar_t>(unit - 0x20);
    }
    for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"}) {
        if (stem == device) return true;
    }
    return IsNumberedDevice(stem);
}

bool IsGoodName(const std::wstring& name) {
    return !name.empty() && name.size() <= 255 && !HasForbidden(name) && name.back() != L' ' &&
           name.back() != L'.' && !IsDeviceName(name);
}

bool IsGoodExtension(const std::wstring& text) {
    return !text.empty() && text.size() <= 255 && !HasForbidden(text) &&
           text.find(L' ') == std::wstring::npos && text.front() != L'.' && text.back() != L'.';
}

void Check(const std::wstring& text) {
    const std::wstring whole = text.c_str(); // up to the first NUL, as a caller's text is
    const bool name = CheckFileName(text.c_str()) == NameVerdict::Accepted;
    Require(name == IsGoodName(whole), "a name is accepted exactly when it is a good one");
    const bool extension = CheckExtension(text.c_str()) == NameVerdict::Accepted;
    Require(extension == IsGoodExtension(whole), "and an extension likewise");
    Require(CheckFilespec(text.c_str(), 2) == CheckFileName(text.c_str()), "mode 2 is for names");
    Require(CheckFilespec(text.c_str(), 4) == CheckExtension(text.c_str()),
            "mode 4 is for extensions");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::uint32_t mode = input.Byte();
    const std::wstring text = input.Rest();
    Check(text);
    constexpr const wchar_t* kDevices[] = {L"con",  L"Prn",  L"AUX",       L"nuL", L"conin$",
                                           L"COM1", L"lpt9", L"com\u00B2", L"com0"};
    Check(kDevices[mode % std::size(kDevices)] + text);
    for (const wchar_t* device : {L"cOm", L"LPt"}) Check(device + text.substr(0, 1));
    Check(text + std::wstring(mode, L'n'));
    if (mode != 2 && mode != 4)
        Require(CheckFilespec(text.c_str(), mode) == NameVerdict::UnknownMode,
                "there are two modes");
    return 0;
}
