#include "services/providers/suite/OfficeProcess.h"

#include <tlhelp32.h>

#include <algorithm>
#include <iterator>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/suite/TrustedProgram.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

bool Runs(DWORD process, const std::wstring& program) {
    const UniqueKernelHandle open(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process));
    std::wstring path(32768, L'\0');
    auto length = static_cast<DWORD>(path.size());
    if (!open || !QueryFullProcessImageNameW(open.Get(), 0, path.data(), &length)) return false;
    path.resize(length);
    return TrustedProgram(path) == program;
}

bool HasNameOf(const wchar_t* file, const std::wstring& program) {
    const std::wstring name = program.substr(program.find_last_of(L'\\') + 1);
    return CompareStringOrdinal(file, -1, name.c_str(), -1, TRUE) == CSTR_EQUAL;
}

struct WindowSearch {
    DWORD process;
    bool isFound;
};

bool IsUsersWindow(HWND window) {
    constexpr ATOM kDialog = 32770;
    return IsWindowVisible(window) && !GetWindow(window, GW_OWNER) &&
           GetClassLongPtrW(window, GCW_ATOM) != kDialog;
}

BOOL CALLBACK Look(HWND window, LPARAM parameter) noexcept {
    auto& search = *reinterpret_cast<WindowSearch*>(parameter);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    search.isFound = process == search.process && IsUsersWindow(window);
    return !search.isFound;
}

} // namespace

std::vector<DWORD> ProcessesOf(const std::wstring& program) {
    const UniqueKernelHandle all(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    std::vector<DWORD> ids;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = all && Process32FirstW(all.Get(), &entry); more;
         more = Process32NextW(all.Get(), &entry)) {
        if (HasNameOf(entry.szExeFile, program) && Runs(entry.th32ProcessID, program)) {
            ids.push_back(entry.th32ProcessID);
        }
    }
    std::ranges::sort(ids);
    return ids;
}

std::vector<DWORD> NewOf(const std::vector<DWORD>& before, const std::vector<DWORD>& now) {
    std::vector<DWORD> added;
    std::ranges::set_difference(now, before, std::back_inserter(added));
    return added;
}

bool HasUsersWindow(DWORD process) noexcept {
    WindowSearch search{process, false};
    if (process) EnumWindows(&Look, reinterpret_cast<LPARAM>(&search));
    return search.isFound;
}

} // namespace providers
