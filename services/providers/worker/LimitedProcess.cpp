#include "services/providers/worker/LimitedProcess.h"

#include <cstdint>

#include "services/providers/worker/AttributeList.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

// Named by the system's documentation; the compiler's headers lack some.
constexpr DWORD64 kAlwaysOn = 1;
constexpr DWORD64 kMitigations = kAlwaysOn << 12    // heap damage ends the process
                                 | kAlwaysOn << 16  // addresses by chance, bottom up
                                 | kAlwaysOn << 24  // a handle that isn't valid ends the process
                                 | kAlwaysOn << 32  // no extension points of others
                                 | kAlwaysOn << 36  // no code that is made at run time
                                 | kAlwaysOn << 48  // fonts of the system only
                                 | kAlwaysOn << 52  // no modules from other machines
                                 | kAlwaysOn << 56  // nor ones written at low integrity
                                 | kAlwaysOn << 60; // modules of the system come first

constexpr DWORD kEverythingOfOthers =
    JOB_OBJECT_UILIMIT_HANDLES | JOB_OBJECT_UILIMIT_READCLIPBOARD |
    JOB_OBJECT_UILIMIT_WRITECLIPBOARD | JOB_OBJECT_UILIMIT_SYSTEMPARAMETERS |
    JOB_OBJECT_UILIMIT_DISPLAYSETTINGS | JOB_OBJECT_UILIMIT_GLOBALATOMS |
    JOB_OBJECT_UILIMIT_DESKTOP | JOB_OBJECT_UILIMIT_EXITWINDOWS;

UniqueKernelHandle MakeJob(const ProcessLimits& limits) {
    UniqueKernelHandle job(CreateJobObjectW(nullptr, nullptr));
    if (!job) return {};
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION extended{};
    extended.BasicLimitInformation.LimitFlags =
        JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_PROCESS_MEMORY |
        JOB_OBJECT_LIMIT_ACTIVE_PROCESS | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
    extended.BasicLimitInformation.ActiveProcessLimit = 1;
    extended.ProcessMemoryLimit = limits.memory;
    JOBOBJECT_BASIC_UI_RESTRICTIONS windows{kEverythingOfOthers};
    if (!SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &extended,
                                 sizeof extended) ||
        !SetInformationJobObject(job.Get(), JobObjectBasicUIRestrictions, &windows,
                                 sizeof windows)) {
        return {};
    }
    return job;
}

bool LowerIntegrity(HANDLE token) {
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_MANDATORY_LABEL_AUTHORITY;
    PSID low = nullptr;
    if (!AllocateAndInitializeSid(&authority, 1, SECURITY_MANDATORY_LOW_RID, 0, 0, 0, 0, 0, 0, 0,
                                  &low)) {
        return false;
    }
    TOKEN_MANDATORY_LABEL label{{low, SE_GROUP_INTEGRITY}};
    const bool lowered = SetTokenInformation(token, TokenIntegrityLevel, &label,
                                             sizeof label + GetLengthSid(low)) != FALSE;
    FreeSid(low);
    return lowered;
}

// This process's own token without its privileges and at low integrity.
UniqueKernelHandle MakeToken() {
    UniqueKernelHandle own;
    constexpr DWORD kAccess = TOKEN_DUPLICATE | TOKEN_QUERY | TOKEN_ASSIGN_PRIMARY |
                              TOKEN_ADJUST_DEFAULT | TOKEN_ADJUST_SESSIONID;
    if (!OpenProcessToken(GetCurrentProcess(), kAccess, own.Put())) return {};
    UniqueKernelHandle limited;
    if (!CreateRestrictedToken(own.Get(), DISABLE_MAX_PRIVILEGE, 0, nullptr, 0, nullptr, 0, nullptr,
                               limited.Put())) {
        return {};
    }
    return LowerIntegrity(limited.Get()) ? std::move(limited) : UniqueKernelHandle();
}

std::wstring CommandLine(const std::wstring& program, HANDLE first, HANDLE second) {
    const auto number = [](HANDLE handle) {
        return std::to_wstring(reinterpret_cast<std::uintptr_t>(handle));
    };
    return L'"' + program + L"\" " + number(first) + L' ' + number(second);
}

// The working folder of the process: one that nobody wants to delete.
std::wstring SystemFolder() {
    wchar_t folder[MAX_PATH];
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    return length < MAX_PATH ? std::wstring(folder, length) : std::wstring();
}

UniqueKernelHandle Create(const std::wstring& program, HANDLE token, AttributeList& attributes,
                          std::wstring commandLine) {
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_FORCEOFFFEEDBACK;
    startup.lpAttributeList = attributes.Get();
    PROCESS_INFORMATION made{};
    if (!CreateProcessAsUserW(token, program.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                              EXTENDED_STARTUPINFO_PRESENT | CREATE_NO_WINDOW, nullptr,
                              SystemFolder().c_str(), &startup.StartupInfo, &made)) {
        return {};
    }
    const UniqueKernelHandle thread(made.hThread); // closed
    return UniqueKernelHandle(made.hProcess);
}

} // namespace

// The job is an attribute, so that the process is never outside it, whenever this one is killed.
LimitedProcess StartLimited(const std::wstring& program, HANDLE first, HANDLE second,
                            const ProcessLimits& limits) {
    LimitedProcess started;
    UniqueKernelHandle job = MakeJob(limits);
    const UniqueKernelHandle token = job ? MakeToken() : UniqueKernelHandle();
    if (!token) return started;
    HANDLE jobs[] = {job.Get()};
    HANDLE inherited[] = {first, second};
    DWORD64 mitigations = kMitigations;
    AttributeList attributes(3);
    if (!attributes.Add(PROC_THREAD_ATTRIBUTE_JOB_LIST, jobs, sizeof jobs) ||
        !attributes.Add(PROC_THREAD_ATTRIBUTE_HANDLE_LIST, inherited, sizeof inherited) ||
        !attributes.Add(PROC_THREAD_ATTRIBUTE_MITIGATION_POLICY, &mitigations,
                        sizeof mitigations)) {
        return started;
    }
    started.process = Create(program, token.Get(), attributes, CommandLine(program, first, second));
    if (started.process) started.job = std::move(job);
    return started;
}

} // namespace providers
