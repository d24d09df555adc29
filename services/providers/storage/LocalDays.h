// Days as the user counts them.
#pragma once

#include <cstdint>

namespace providers {

// Units of 100 nanoseconds since 1601 in UTC, as the system counts.
std::uint64_t TimeNow();

// The end of the local day that is so many days after that of `time`; also with a change to or from
// daylight saving time in between. More days than fit the calendar count as the last ones that do.
std::uint64_t EndOfLocalDay(std::uint64_t time, std::uint32_t days);

} // namespace providers
