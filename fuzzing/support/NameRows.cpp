#include "fuzzing/support/NameRows.h"

#include <numeric>
#include <span>
#include <utility>

#include "ObLibX/src/xml/names/NameTables.h"

namespace {

std::uint32_t Number(const wchar_t* digits, std::size_t count) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < count; ++i) {
        number = number * 10 + static_cast<std::uint32_t>(digits[i] - L'0');
    }
    return number;
}

bool IsMisplaced(const std::wstring& name, std::size_t bucket, std::size_t buckets) {
    return std::accumulate(name.begin(), name.end(), std::size_t{0}) % buckets != bucket;
}

std::vector<NameRow> Rows(std::span<const wchar_t* const> buckets, std::size_t lengthDigits,
                          std::size_t valueDigits) {
    std::vector<NameRow> rows;
    for (std::size_t bucket = 0; bucket < buckets.size(); ++bucket) {
        const wchar_t* at = buckets[bucket];
        while (*at != L'\0') {
            const std::size_t length = Number(at, lengthDigits);
            const std::uint32_t value = Number(at + lengthDigits, valueDigits);
            at += lengthDigits + valueDigits;
            std::wstring name(at, length);
            const bool misplaced = IsMisplaced(name, bucket, buckets.size());
            rows.push_back({std::move(name), value, misplaced});
            at += length;
        }
    }
    return rows;
}

} // namespace

const std::vector<NameRow>& CharsetRows() {
    static const std::vector<NameRow> rows = Rows(ObLibX::kCharsetBuckets, 2, 5);
    return rows;
}

const std::vector<NameRow>& EntityRows() {
    static const std::vector<NameRow> rows = Rows(ObLibX::kEntityBuckets, 1, 4);
    return rows;
}
