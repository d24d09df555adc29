// Finding charsets and entities by name, beside a hash map with the same names. The two take turns
// with every sample.
#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ObLibX/src/xml/names/NameTables.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"

namespace {

struct ViewHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const {
        return std::hash<std::wstring_view>()(text);
    }
};
using Map = std::unordered_map<std::wstring, std::uint32_t, ViewHash, std::equal_to<>>;

// The names as they are asked for, every second one in capitals, and a map of them.
struct Names {
    std::vector<std::wstring> asked;
    Map map;
};

Names ReadNames(const wchar_t* const* buckets, std::size_t count, std::size_t lengthDigits,
                std::size_t valueDigits) {
    Names names;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::wstring rows = buckets[i]; !rows.empty();) {
            const auto length = static_cast<std::size_t>(
                std::wcstoul(rows.substr(0, lengthDigits).c_str(), nullptr, 10));
            const std::wstring value = rows.substr(lengthDigits, valueDigits);
            std::wstring name = rows.substr(lengthDigits + valueDigits, length);
            rows.erase(0, lengthDigits + valueDigits + length);
            names.map.emplace(name, std::wcstoul(value.c_str(), nullptr, 10));
            if (names.asked.size() % 2 == 1) {
                for (wchar_t& unit : name) {
                    unit = unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - 32) : unit;
                }
            }
            names.asked.push_back(name);
        }
    }
    return names;
}

// Folded into a buffer as well, so that it neither allocates.
std::uint32_t FindInMap(const Map& map, std::wstring_view name) {
    wchar_t folded[100];
    for (std::size_t i = 0; i < name.size(); ++i) {
        folded[i] = ObLibX::FoldAscii(name[i]);
    }
    const auto found = map.find(std::wstring_view(folded, name.size()));
    return found == map.end() ? 0 : found->second;
}

std::uint64_t g_seen = 0; // what was found, so that no search is left out

template <typename Find>
double NanosecondsEach(const std::vector<std::wstring>& names, Find find) {
    constexpr int kRounds = 100;
    const bench::Stopwatch watch;
    for (int round = 0; round < kRounds; ++round) {
        for (const std::wstring& name : names) {
            g_seen += find(name);
        }
    }
    return watch.Nanoseconds() / (kRounds * static_cast<double>(names.size()));
}

template <typename Find>
void Print(const std::string& name, const std::vector<std::wstring>& asked, const Map& map,
           int samples, Find find) {
    std::vector<double> ours, theirs, ratio;
    for (int i = 0; i < samples; ++i) {
        ours.push_back(NanosecondsEach(asked, find));
        theirs.push_back(NanosecondsEach(
            asked, [&map](std::wstring_view each) { return FindInMap(map, each); }));
        ratio.push_back(ours.back() / theirs.back());
    }
    bench::PrintSeries((name + " ours").c_str(), ours);
    bench::PrintSeries((name + " theirs").c_str(), theirs);
    bench::PrintSeries((name + " ratio").c_str(), ratio);
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    const int samples = argc > 1 ? static_cast<int>(std::wcstol(argv[1], nullptr, 10)) : 101;
    const Names charsets = ReadNames(ObLibX::kCharsetBuckets, ObLibX::kCharsetBucketCount, 2, 5);
    const Names entities = ReadNames(ObLibX::kEntityBuckets, ObLibX::kEntityBucketCount, 1, 4);
    std::vector<std::wstring> unknown = charsets.asked;
    for (std::wstring& name : unknown) {
        name.back() = L'_';
    }
    const auto page = [](std::wstring_view name) {
        return static_cast<std::uint32_t>(ObLibX::LookupCodePage(name));
    };
    Print("charset", charsets.asked, charsets.map, samples, page);
    Print("unknown", unknown, charsets.map, samples, page);
    Print("entity", entities.asked, entities.map, samples, ObLibX::LookupEntity);
    return g_seen == 0 ? bench::Fail("no name was found") : 0;
}
