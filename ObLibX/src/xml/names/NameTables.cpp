#include "ObLibX/src/xml/names/NameTables.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "ObLibX/src/xml/names/XmlCharacters.h"

namespace ObLibX {
namespace {

constexpr std::wstring_view kUtf32Prefix = L"UTF-32";
constexpr std::size_t kTooLongCharset = 100;
constexpr std::size_t kCharsetLengthDigits = 2;
constexpr std::size_t kCharsetRowHead = kCharsetLengthDigits + 5;
constexpr std::size_t kLongestEntity = 8;
constexpr std::size_t kEntityRowHead = 1 + 4;

// Folds `name` into `folded` and gives the sum of the folded units.
std::uint32_t FoldAndSum(std::wstring_view name, wchar_t* folded) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        folded[i] = FoldAscii(name[i]);
        sum += folded[i];
    }
    return sum;
}

bool RowIs(const wchar_t* rowName, std::wstring_view name) {
    return std::equal(name.begin(), name.end(), rowName);
}

constexpr std::uint32_t Digit(wchar_t unit) { return static_cast<std::uint32_t>(unit - L'0'); }

// No stored name of a charset starts with a digit, so its number ends where its name begins.
std::int32_t PageAt(const wchar_t* digits) {
    std::int32_t page = 0;
    for (; *digits >= L'0' && *digits <= L'9'; ++digits) {
        page = page * 10 + static_cast<std::int32_t>(Digit(*digits));
    }
    return page;
}

std::uint32_t CodePointAt(const wchar_t* digits) {
    return Digit(digits[0]) * 1000 + Digit(digits[1]) * 100 + Digit(digits[2]) * 10 +
           Digit(digits[3]);
}

} // namespace

std::int32_t LookupCodePage(std::wstring_view name) {
    if (name.starts_with(kUtf32Prefix)) {
        return kCodePageUtf32;
    }
    if (name.empty()) {
        return 0;
    }
    if (name.size() >= kTooLongCharset) {
        return -1;
    }
    wchar_t folded[kTooLongCharset];
    const std::uint32_t sum = FoldAndSum(name, folded);
    const wchar_t* row = kCharsetBuckets[sum % kCharsetBucketCount];
    while (*row != L'\0') {
        const std::size_t length = Digit(row[0]) * 10 + Digit(row[1]);
        if (length == name.size() && RowIs(row + kCharsetRowHead, {folded, length})) {
            return PageAt(row + kCharsetLengthDigits);
        }
        row += kCharsetRowHead + length;
    }
    return -1;
}

std::uint32_t LookupEntity(std::wstring_view name) {
    if (name.size() > kLongestEntity) {
        return 0;
    }
    wchar_t folded[kLongestEntity];
    const std::uint32_t sum = FoldAndSum(name, folded);
    const wchar_t* row = kEntityBuckets[sum % kEntityBucketCount];
    while (*row != L'\0') {
        const std::size_t length = Digit(row[0]);
        if (length == name.size() && RowIs(row + kEntityRowHead, {folded, length})) {
            return CodePointAt(row + 1);
        }
        row += kEntityRowHead + length;
    }
    return 0;
}

} // namespace ObLibX
