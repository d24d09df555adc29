#include "services/providers/storage/UploadTimes.h"

#include <windows.h>

#include <shlwapi.h>

#include <iterator>

#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {

std::wstring ByteText(std::uint64_t bytes) {
    wchar_t text[64] = L"";
    StrFormatByteSizeW(static_cast<LONGLONG>(bytes), text, static_cast<UINT>(std::size(text)));
    return text;
}

std::wstring UploadSpeedText(std::uint64_t sent, std::uint64_t total,
                             std::optional<std::uint64_t> bytesPerSecond) {
    if (total == 0) return {};
    if (!bytesPerSecond)
        return FormatOwnText(OB_TEXT_UPLOAD_SENT, {ByteText(sent), ByteText(total)});
    return FormatOwnText(OB_TEXT_UPLOAD_SPEED,
                         {ByteText(sent), ByteText(total), ByteText(*bytesPerSecond)});
}

std::wstring UploadTimeText(std::uint64_t secondsLeft) {
    constexpr std::uint64_t kStep = 5;
    constexpr std::uint64_t kMinute = 60;
    constexpr std::uint64_t kHour = 3600;
    const auto rounded = [&](std::uint64_t unit) {
        return std::to_wstring((secondsLeft + unit / 2) / unit);
    };
    if (secondsLeft <= kStep) return OwnText(OB_TEXT_UPLOAD_FEW_SECONDS);
    const std::uint64_t steps = (secondsLeft + kStep - 1) / kStep * kStep;
    if (steps < kMinute) return FormatOwnText(OB_TEXT_UPLOAD_SECONDS, {std::to_wstring(steps)});
    if (secondsLeft < kMinute + kMinute / 2) return OwnText(OB_TEXT_UPLOAD_ONE_MINUTE);
    if (secondsLeft < 2 * kHour) return FormatOwnText(OB_TEXT_UPLOAD_MINUTES, {rounded(kMinute)});
    return FormatOwnText(OB_TEXT_UPLOAD_HOURS, {rounded(kHour)});
}

} // namespace providers
