#include "services/providers/ui/SizeText.h"

#include <windows.h>

#include "services/providers/settings/ResizeSettings.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

std::wstring DecimalSign() {
    wchar_t sign[8] = L"";
    if (GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, sign, 8) <= 1) return L".";
    return sign;
}

std::uint64_t In(std::uint64_t unit, std::uint64_t bytes, Rounding rounding) {
    return bytes / unit + (rounding == Rounding::Up && bytes % unit != 0 ? 1 : 0);
}

} // namespace

std::wstring SizeText(std::uint64_t bytes, Rounding rounding) {
    const std::uint64_t kilobytes = In(kBytesOfKilobyte, bytes, rounding);
    if (kilobytes < 1'000) return FormatOwnText(OB_TEXT_KILOBYTES, {std::to_wstring(kilobytes)});
    const std::uint64_t tenths = In(kBytesOfMegabyte / 10, bytes, rounding);
    if (tenths >= 100) {
        return FormatOwnText(OB_TEXT_MEGABYTES,
                             {std::to_wstring(In(kBytesOfMegabyte, bytes, rounding))});
    }
    return FormatOwnText(OB_TEXT_MEGABYTES, {std::to_wstring(tenths / 10) + DecimalSign() +
                                             std::to_wstring(tenths % 10)});
}

} // namespace providers
