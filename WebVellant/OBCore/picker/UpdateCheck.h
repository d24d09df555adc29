// Starts the update checker, a program of its own beside the library, when a check is due.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

#include "OBCore/options/OBOptions.h"

namespace obcore {

inline constexpr wchar_t kUpdateCheckerFileName[] = L"CheckUpdater.exe";

// The time now, in seconds; the one place where the check asks for it.
std::time_t CurrentTime();

// Whether more than `intervalDays` days have passed from midnight, local time, of `lastCheck`
// ("month/day/year") to `now`. A text of another form means that a check is due.
bool IsUpdateCheckDue(const std::wstring& lastCheck, std::uint32_t intervalDays, std::time_t now);

// Starts the checker if the options want checks and one is due at `now`, and doesn't wait for it.
// A checker that doesn't start is only traced. No code of this product writes LastUpdateCheck:
// where the value is absent, the checker starts each time.
void RunUpdateCheck(const OBOptions& options, std::time_t now);

} // namespace obcore
