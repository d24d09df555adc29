// The packed tables, counted and walked by a reader of their own, and both lookups over every row.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ObLibX/src/xml/names/NameTables.h"

namespace {

using ObLibX::LookupCodePage;
using ObLibX::LookupEntity;

struct Row {
    std::size_t bucket;
    std::uint32_t value;
    std::wstring name;
};

std::vector<Row> ReadRows(const wchar_t* const* buckets, std::size_t count,
                          std::size_t lengthDigits, std::size_t valueDigits) {
    std::vector<Row> rows;
    for (std::size_t bucket = 0; bucket < count; ++bucket) {
        std::wstring text = buckets[bucket];
        while (!text.empty()) {
            const auto number = [&text](std::size_t digits) {
                std::uint32_t value = 0;
                for (std::size_t i = 0; i < digits; ++i) {
                    EXPECT_TRUE(text.at(i) >= L'0' && text.at(i) <= L'9');
                    value = value * 10 + (text.at(i) - L'0');
                }
                text.erase(0, digits);
                return value;
            };
            const std::uint32_t length = number(lengthDigits);
            const std::uint32_t value = number(valueDigits);
            EXPECT_GE(text.size(), length);
            rows.push_back({bucket, value, text.substr(0, length)});
            text.erase(0, length);
        }
    }
    return rows;
}

std::vector<Row> CharsetRows() {
    return ReadRows(ObLibX::kCharsetBuckets, ObLibX::kCharsetBucketCount, 2, 5);
}

std::vector<Row> EntityRows() {
    return ReadRows(ObLibX::kEntityBuckets, ObLibX::kEntityBucketCount, 1, 4);
}

std::size_t Sum(const std::wstring& name) {
    return std::accumulate(name.begin(), name.end(), std::size_t{0});
}

std::string Narrow(const std::wstring& name) { return {name.begin(), name.end()}; }

// FNV-1a over "name=value" lines in the order of the names; rows of one name keep theirs.
std::uint64_t Digest(const std::vector<Row>& rows) {
    std::map<std::wstring, std::vector<std::uint32_t>> values;
    for (const Row& row : rows) {
        values[row.name].push_back(row.value);
    }
    std::string lines;
    for (const auto& [name, ofName] : values) {
        for (const std::uint32_t value : ofName) {
            lines += Narrow(name) + "=" + std::to_string(value) + "\n";
        }
    }
    return std::accumulate(lines.begin(), lines.end(), std::uint64_t{0xCBF29CE484222325},
                           [](std::uint64_t digest, char each) {
                               return (digest ^ static_cast<unsigned char>(each)) * 0x100000001B3;
                           });
}

std::wstring Upper(std::wstring name) {
    std::transform(name.begin(), name.end(), name.begin(), [](wchar_t unit) {
        return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - 32) : unit;
    });
    return name;
}

const std::set<std::wstring> kMisplaced = {L"_iso-2023-jp", L"iso-2023-jp-ms", L"_iso-2023-jp$sio",
                                           L"iso-2023-jp", L"iso-2023-kr"};

TEST(CharsetTable, Has365RowsOf110PagesIn155BucketsOfAtMostSixRows) {
    const std::vector<Row> rows = CharsetRows();
    std::set<std::uint32_t> pages;
    std::set<std::wstring> names;
    std::map<std::size_t, int> inBucket;
    for (const Row& row : rows) {
        pages.insert(row.value);
        names.insert(row.name);
        ++inBucket[row.bucket];
    }
    EXPECT_EQ(std::size(ObLibX::kCharsetBuckets), 155u);
    EXPECT_EQ(rows.size(), 365u);
    EXPECT_EQ(names.size(), 365u);
    EXPECT_EQ(pages.size(), 110u);
    const auto fullest =
        std::max_element(inBucket.begin(), inBucket.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    EXPECT_EQ(fullest->second, 6);
}

// Whoever changes a row on purpose takes the new digest over from the failure.
TEST(CharsetTable, ContainsTheAgreedRowsAndNoOthers) {
    EXPECT_EQ(Digest(CharsetRows()), 0x4D1DF5E7E0728A04u);
}

TEST(CharsetTable, PutsEachRowInTheBucketOfItsSumAndFiveInTheOneBelow) {
    std::set<std::wstring> below;
    for (const Row& row : CharsetRows()) {
        const std::size_t own = Sum(row.name) % ObLibX::kCharsetBucketCount;
        if (row.bucket != own) {
            EXPECT_EQ(row.bucket + 1, own) << Narrow(row.name);
            below.insert(row.name);
        }
    }
    EXPECT_EQ(below, kMisplaced);
}

TEST(CharsetTable, WritesRowsWithTwoDigitsOfLengthAndFiveOfPage) {
    const std::wstring first = ObLibX::kCharsetBuckets[0];
    EXPECT_EQ(first.substr(0, 15), L"0800949ksc_5601");
}

TEST(CharsetTable, KeepsTheOddRows) {
    std::map<std::wstring, std::uint32_t> byName;
    for (const Row& row : CharsetRows()) {
        byName[row.name] = row.value;
    }
    EXPECT_EQ(byName.at(L"cp1256 "), 1256u);
    EXPECT_EQ(byName.at(L"cp1256"), 1256u);
    EXPECT_EQ(byName.at(L"shifft_jis"), 932u);
    EXPECT_EQ(byName.at(L"shifft_jis-ms"), 932u);
    EXPECT_EQ(byName.at(L"shift_jis"), 932u);
    EXPECT_EQ(byName.at(L"cp500"), 775u);
    EXPECT_EQ(byName.at(L"iso-2023-jp"), 50220u);
    EXPECT_EQ(byName.at(L"_iso-2023-jp$sio"), 50222u);
    for (const auto& [name, page] : byName) {
        EXPECT_FALSE(name[0] >= L'0' && name[0] <= L'9') << Narrow(name);
    }
}

TEST(LookupCodePage, FindsEveryRowButTheFiveInAnyCase) {
    int found = 0;
    for (const Row& row : CharsetRows()) {
        const auto page = static_cast<std::int32_t>(row.value);
        const bool hidden = kMisplaced.contains(row.name);
        EXPECT_EQ(LookupCodePage(row.name), hidden ? -1 : page) << Narrow(row.name);
        const std::wstring upper = Upper(row.name);
        const bool utf32 = upper.starts_with(L"UTF-32");
        EXPECT_EQ(LookupCodePage(upper), hidden ? -1 : utf32 ? 65005 : page) << Narrow(upper);
        found += hidden ? 0 : 1;
    }
    EXPECT_EQ(found, 360);
}

TEST(LookupCodePage, AnswersForTheNamesOfEveryDay) {
    EXPECT_EQ(LookupCodePage(L"UTF-8"), 65001);
    EXPECT_EQ(LookupCodePage(L"Latin1"), 28591);
    EXPECT_EQ(LookupCodePage(L"utf-16"), 1200);
    EXPECT_EQ(LookupCodePage(L"UTF-16BE"), 1201);
    EXPECT_EQ(LookupCodePage(L"Windows-1252"), 1252);
    EXPECT_EQ(LookupCodePage(L"extended_unix_code_packed_format_for_japanese"), 20932);
    EXPECT_EQ(LookupCodePage(L""), 0);
}

TEST(LookupCodePage, TakesUtf32ByItsCapitalPrefixForItsOwnCodePage) {
    EXPECT_EQ(LookupCodePage(L"UTF-32"), 65005);
    EXPECT_EQ(LookupCodePage(L"UTF-32LE"), 65005);
    EXPECT_EQ(LookupCodePage(L"UTF-32 whatever follows"), 65005);
    EXPECT_EQ(LookupCodePage(L"UTF-32" + std::wstring(200, L'x')), 65005);
    EXPECT_EQ(LookupCodePage(L"utf-32"), 12000);
    EXPECT_EQ(LookupCodePage(L"utf-32le"), 12000);
    EXPECT_EQ(LookupCodePage(L"Utf-32"), 12000);
    EXPECT_EQ(LookupCodePage(L"UTF-3"), -1);
}

TEST(LookupCodePage, DoesNotKnowTheFormsWith2022Either) {
    for (const wchar_t* name : {L"iso-2022-jp", L"iso-2023-jp", L"_iso-2022-jp", L"iso-2022-jp-ms",
                                L"_iso-2022-jp$sio", L"iso-2022-kr", L"ISO-2022-JP"}) {
        EXPECT_EQ(LookupCodePage(name), -1) << Narrow(name);
    }
    EXPECT_EQ(LookupCodePage(L"iso2022-jp-ms"), 50221);
    EXPECT_EQ(LookupCodePage(L"csiso2022kr"), 50225);
}

TEST(LookupCodePage, RefusesNamesOfAHundredUnits) {
    EXPECT_EQ(LookupCodePage(std::wstring(100, L'a')), -1);
    EXPECT_EQ(LookupCodePage(std::wstring(99, L'a')), -1);
    EXPECT_EQ(LookupCodePage(std::wstring(100'000, L'\xffff')), -1);
}

TEST(LookupCodePage, WantsTheWholeNameAndNothingMore) {
    EXPECT_EQ(LookupCodePage(L"cp1256 "), 1256);
    EXPECT_EQ(LookupCodePage(L"cp1255 "), -1);
    EXPECT_EQ(LookupCodePage(L" utf-8"), -1);
    EXPECT_EQ(LookupCodePage(L"utf-"), -1);
    EXPECT_EQ(LookupCodePage(L"utf-88"), -1);
    EXPECT_EQ(LookupCodePage(L"ftu-8"), -1); // the same sum
    EXPECT_EQ(LookupCodePage(std::wstring(L"utf-8\0", 6)), -1);
    EXPECT_EQ(LookupCodePage(L"\x212Aoi8-r"), -1); // a Kelvin sign isn't folded to k
    // The units after an 's' of a row are part of no name.
    EXPECT_EQ(LookupCodePage(L"0800949ksc_5601"), -1);
}

TEST(EntityTable, Has253RowsOf189NamesIn130Buckets) {
    const std::vector<Row> rows = EntityRows();
    std::set<std::wstring> names;
    for (const Row& row : rows) {
        names.insert(row.name);
        EXPECT_EQ(row.bucket, Sum(row.name) % ObLibX::kEntityBucketCount) << Narrow(row.name);
        EXPECT_LE(row.name.size(), 8u) << Narrow(row.name);
    }
    EXPECT_EQ(std::size(ObLibX::kEntityBuckets), 130u);
    EXPECT_EQ(rows.size(), 253u);
    EXPECT_EQ(names.size(), 189u);
}

TEST(EntityTable, ContainsTheAgreedRowsAndNoOthers) {
    EXPECT_EQ(Digest(EntityRows()), 0x94D82E3BCCD65D90u);
}

TEST(EntityTable, WritesRowsWithOneDigitOfLengthAndFourOfCodePoint) {
    const std::size_t bucket = Sum(L"oslash") % ObLibX::kEntityBucketCount;
    const std::wstring rows = ObLibX::kEntityBuckets[bucket];
    const std::size_t upper = rows.find(L"60216oslash");
    const std::size_t lower = rows.find(L"60248oslash");
    ASSERT_NE(upper, std::wstring::npos);
    ASSERT_NE(lower, std::wstring::npos);
    EXPECT_LT(upper, lower);
}

TEST(LookupEntity, FindsTheFirstRowOfEveryNameAndNeverTheSecond) {
    std::map<std::wstring, std::vector<std::uint32_t>> values;
    for (const Row& row : EntityRows()) {
        values[row.name].push_back(row.value);
    }
    int pairs = 0;
    for (const auto& [name, rows] : values) {
        EXPECT_EQ(LookupEntity(name), rows[0]) << Narrow(name);
        EXPECT_EQ(LookupEntity(Upper(name)), rows[0]) << Narrow(name);
        pairs += rows.size() == 2 ? 1 : 0;
        EXPECT_LE(rows.size(), 2u);
    }
    EXPECT_EQ(pairs, 64);
}

TEST(LookupEntity, GivesTheUpperOneForBothCases) {
    EXPECT_EQ(LookupEntity(L"Oslash"), 216u);
    EXPECT_EQ(LookupEntity(L"oslash"), 216u);
    EXPECT_EQ(LookupEntity(L"dagger"), 8225u);
    EXPECT_EQ(LookupEntity(L"prime"), 8243u);
    EXPECT_EQ(LookupEntity(L"yuml"), 376u);
    EXPECT_EQ(LookupEntity(L"aacute"), 193u);
}

TEST(LookupEntity, KnowsTheFiveOfXml) {
    EXPECT_EQ(LookupEntity(L"lt"), 60u);
    EXPECT_EQ(LookupEntity(L"gt"), 62u);
    EXPECT_EQ(LookupEntity(L"amp"), 38u);
    EXPECT_EQ(LookupEntity(L"quot"), 34u);
    EXPECT_EQ(LookupEntity(L"apos"), 39u);
}

TEST(LookupEntity, AnswersNothingForOtherNames) {
    for (const wchar_t* name :
         {L"", L"tl", L"ampx", L"am", L"thetasymb", L"oslas", L"6", L"\xE6"}) {
        EXPECT_EQ(LookupEntity(name), 0u) << Narrow(name);
    }
    EXPECT_EQ(LookupEntity(std::wstring(1'000'000, L'a')), 0u);
    EXPECT_EQ(LookupEntity(std::wstring(L"lt\0", 3)), 0u);
}

} // namespace
