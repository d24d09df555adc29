#include "OBCore/picker/UpdateCheck.h"

#include <windows.h>

#include <cstdio>
#include <optional>

#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

std::optional<std::time_t> ParseDate(const std::wstring& text) {
    int month = 0;
    int day = 0;
    int year = 0;
    if (std::swscanf(text.c_str(), L"%d/%d/%d", &month, &day, &year) != 3) return std::nullopt;
    // The text is a registry value and may contain any number: the subtraction must not overflow.
    std::tm midnight{};
    midnight.tm_year = static_cast<int>(static_cast<unsigned>(year) - 1900U);
    midnight.tm_mon = static_cast<int>(static_cast<unsigned>(month) - 1U);
    midnight.tm_mday = day;
    midnight.tm_isdst = 0;
    return std::mktime(&midnight);
}

void StartUpdateChecker() {
    std::optional<std::wstring> commandLine = PathBesideOwnModule(kUpdateCheckerFileName);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    static_assert(sizeof(startup) == 104);
    PROCESS_INFORMATION process{};
    // The bare path is the command line, without quotes and without an application name.
    if (!commandLine || !CreateProcessW(nullptr, commandLine->data(), nullptr, nullptr, FALSE, 0,
                                        nullptr, nullptr, &startup, &process)) {
        ObTrace("CreateProcess CheckUpdater.exe failed %x", GetLastError());
        return;
    }
    const ObLib::UniqueKernelHandle thread(process.hThread);
    const ObLib::UniqueKernelHandle checker(process.hProcess);
}

} // namespace

std::time_t CurrentTime() { return std::time(nullptr); }

bool IsUpdateCheckDue(const std::wstring& lastCheck, std::uint32_t intervalDays, std::time_t now) {
    const std::optional<std::time_t> last = ParseDate(lastCheck);
    if (!last) return true;
    const std::uint32_t hours = intervalDays * 24; // 32 bits wide, before it becomes a double
    return std::difftime(now, *last) > hours * 60.0 * 60.0;
}

void RunUpdateCheck(const OBOptions& options, std::time_t now) {
    if (!options.UpdateCheckEnabled) return;
    if (!IsUpdateCheckDue(options.LastUpdateCheck, options.UpdateCheckIntervalDays, now)) return;
    StartUpdateChecker();
}

} // namespace obcore
