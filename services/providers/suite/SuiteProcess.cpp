#include "services/providers/suite/SuiteProcess.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/StringList.h"
#include "services/providers/worker/AttributeList.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

// This process's own token without its privileges and, when an administrator runs it, rights.
UniqueKernelHandle MakeToken() {
    UniqueKernelHandle own;
    constexpr DWORD kAccess = TOKEN_DUPLICATE | TOKEN_QUERY | TOKEN_ASSIGN_PRIMARY;
    if (!OpenProcessToken(GetCurrentProcess(), kAccess, own.Put())) return {};
    UniqueKernelHandle limited;
    if (!CreateRestrictedToken(own.Get(), DISABLE_MAX_PRIVILEGE | LUA_TOKEN, 0, nullptr, 0, nullptr,
                               0, nullptr, limited.Put())) {
        return {};
    }
    return limited;
}

std::wstring_view NameOf(std::wstring_view variable) {
    // Names of the system's own begin with an equals sign.
    return variable.substr(0, variable.find(L'=', 1));
}

bool IsBefore(const std::wstring& left, const std::wstring& right) {
    const auto one = NameOf(left);
    const auto other = NameOf(right);
    return CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(),
                                static_cast<int>(other.size()), TRUE) == CSTR_LESS_THAN;
}

bool IsTemporary(const std::wstring& variable) {
    return std::ranges::any_of(std::initializer_list<std::wstring>{L"TMP", L"TEMP"},
                               [&](const std::wstring& name) {
                                   return !IsBefore(variable, name) && !IsBefore(name, variable);
                               });
}

// This process's environment with another temporary folder, in the system's order.
std::wstring Environment(const std::wstring& temporary) {
    std::vector<std::wstring> variables{L"TMP=" + temporary, L"TEMP=" + temporary};
    wchar_t* const own = GetEnvironmentStringsW();
    if (!own) return {};
    const ObLib::ScopeExit release([&] { FreeEnvironmentStringsW(own); });
    ObLib::WalkList({own, ObLib::ListLength(own)}, [&](std::wstring_view variable) {
        if (!IsTemporary(std::wstring(variable))) variables.emplace_back(variable);
    });
    std::ranges::stable_sort(variables, IsBefore);
    std::wstring block;
    for (const std::wstring& variable : variables) (block += variable) += L'\0';
    return block += L'\0';
}

} // namespace

UniqueKernelHandle MakeSuiteJob() {
    UniqueKernelHandle job(CreateJobObjectW(nullptr, nullptr));
    if (!job) return {};
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION extended{};
    extended.BasicLimitInformation.LimitFlags =
        JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
    if (!SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &extended,
                                 sizeof extended)) {
        return {};
    }
    return job;
}

std::uint64_t TimeOfJob(HANDLE job) noexcept {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION counted{};
    if (!QueryInformationJobObject(job, JobObjectBasicAccountingInformation, &counted,
                                   sizeof counted, nullptr)) {
        return 0;
    }
    return static_cast<std::uint64_t>(counted.TotalUserTime.QuadPart) +
           static_cast<std::uint64_t>(counted.TotalKernelTime.QuadPart);
}

void EndJob(HANDLE job) noexcept { TerminateJobObject(job, 1); }

void FreeJob(HANDLE job) noexcept {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION none{};
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &none, sizeof none);
}

UniqueKernelHandle StartSuite(const SuiteStart& start, HANDLE job) {
    const UniqueKernelHandle token = MakeToken();
    HANDLE jobs[] = {job};
    AttributeList attributes(1);
    if (!token || !attributes.Add(PROC_THREAD_ATTRIBUTE_JOB_LIST, jobs, sizeof jobs)) return {};
    std::wstring commandLine = L'"' + start.program + L"\" " + start.arguments;
    std::wstring environment = Environment(start.temporary);
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESHOWWINDOW | STARTF_FORCEOFFFEEDBACK;
    startup.StartupInfo.wShowWindow = SW_HIDE;
    startup.lpAttributeList = attributes.Get();
    constexpr DWORD kHow =
        EXTENDED_STARTUPINFO_PRESENT | CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT;
    PROCESS_INFORMATION made{};
    if (environment.empty() ||
        !CreateProcessAsUserW(token.Get(), start.program.c_str(), commandLine.data(), nullptr,
                              nullptr, FALSE, kHow, environment.data(), start.temporary.c_str(),
                              &startup.StartupInfo, &made)) {
        return {};
    }
    const UniqueKernelHandle thread(made.hThread); // closed
    return UniqueKernelHandle(made.hProcess);
}

} // namespace providers
