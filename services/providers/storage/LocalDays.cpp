#include "services/providers/storage/LocalDays.h"

#include <windows.h>

#include <algorithm>

namespace providers {
namespace {

constexpr std::uint64_t kDay = 24ull * 60 * 60 * 10'000'000;
constexpr std::uint32_t kMostDays = 2'000'000; // more than 5,000 years

FILETIME FileTimeOf(std::uint64_t time) {
    return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
}

std::uint64_t TimeOf(const FILETIME& time) {
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

// `time` when the system can't convert it.
std::uint64_t LocalOf(std::uint64_t time) {
    const FILETIME utc = FileTimeOf(time);
    SYSTEMTIME fields{};
    SYSTEMTIME local{};
    FILETIME result{};
    const bool isConverted = FileTimeToSystemTime(&utc, &fields) &&
                             SystemTimeToTzSpecificLocalTime(nullptr, &fields, &local) &&
                             SystemTimeToFileTime(&local, &result);
    return isConverted ? TimeOf(result) : time;
}

std::uint64_t UtcOf(std::uint64_t time) {
    const FILETIME local = FileTimeOf(time);
    SYSTEMTIME fields{};
    SYSTEMTIME utc{};
    FILETIME result{};
    const bool isConverted = FileTimeToSystemTime(&local, &fields) &&
                             TzSpecificLocalTimeToSystemTime(nullptr, &fields, &utc) &&
                             SystemTimeToFileTime(&utc, &result);
    return isConverted ? TimeOf(result) : time;
}

} // namespace

std::uint64_t TimeNow() {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return TimeOf(now);
}

std::uint64_t EndOfLocalDay(std::uint64_t time, std::uint32_t days) {
    const std::uint64_t today = LocalOf(time) / kDay;
    return UtcOf((today + std::min(days, kMostDays) + 1) * kDay);
}

} // namespace providers
