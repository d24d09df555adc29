#include "tests/faults/HostProcess.h"

#include <tlhelp32.h>

#include <string_view>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {
namespace {

constexpr DWORD kLimit = 20000; // milliseconds
constexpr std::wstring_view kHost = L"obwmvapp.exe";

DWORD HostId() {
    const ObLib::UniqueKernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more;
         more = Process32NextW(snapshot.Get(), &entry)) {
        if (entry.th32ParentProcessID == GetCurrentProcessId() && kHost == entry.szExeFile)
            return entry.th32ProcessID;
    }
    return 0;
}

ObLib::UniqueKernelHandle OpenHost() {
    const DWORD id = HostId();
    return ObLib::UniqueKernelHandle(id ? OpenProcess(PROCESS_ALL_ACCESS, FALSE, id) : nullptr);
}

bool IsGone(const ObLib::UniqueKernelHandle& host) {
    return WaitForSingleObject(host.Get(), kLimit) == WAIT_OBJECT_0;
}

} // namespace

bool HostRuns() { return HostId() != 0; }

bool KillHost(UINT exitCode) {
    const ObLib::UniqueKernelHandle host = OpenHost();
    return host && TerminateProcess(host.Get(), exitCode) && IsGone(host);
}

bool CrashHost() {
    const ObLib::UniqueKernelHandle host = OpenHost();
    if (!host) return false;
    const ObLib::UniqueKernelHandle thread(
        CreateRemoteThread(host.Get(), nullptr, 0, nullptr, nullptr, 0, nullptr));
    return thread && IsGone(host);
}

} // namespace obtest
