#include "OBCore/files/Wipe.h"

#include <windows.h>

#include <shlwapi.h>

#include <cstdint>
#include <cwchar>
#include <optional>

#include "OBCore/files/Paths.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/RegistryView.h"

namespace obcore {
namespace {

constexpr wchar_t kWipeProgram[] = L"obwipe64.exe";
constexpr wchar_t kProductAppPath[] =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ombrix.exe";
constexpr DWORD kRegisteredPathBytes = 520;

// The program's first word is empty; its path goes to the system separately.
constexpr wchar_t kEmptyFirstWord[] = L"\"\" ";

// The program's own time limit, in seconds.
constexpr wchar_t kTimeoutArgument[] = L"/timeout:120";

// The key's default value as the main product's setup wrote it.
std::optional<std::wstring> RegisteredProductPath() {
    const auto key = ObLib::OpenRegistryKey(HKEY_LOCAL_MACHINE, kProductAppPath, KEY_QUERY_VALUE);
    if (!key) return std::nullopt;
    // One character more than is read: a value in the registry need not be terminated.
    wchar_t value[kRegisteredPathBytes / sizeof(wchar_t) + 1];
    DWORD type = REG_NONE;
    DWORD size = kRegisteredPathBytes;
    const LSTATUS status =
        RegQueryValueExW(key.Get(), nullptr, nullptr, &type, reinterpret_cast<BYTE*>(value), &size);
    if (status != ERROR_SUCCESS || type != REG_SZ) return std::nullopt;
    value[size / sizeof(wchar_t)] = L'\0';
    return std::wstring(value);
}

// The value is cut after its last backslash before it is unquoted: one that is quoted as a whole
// has lost its closing mark by then, keeps the opening one and leads to no program.
std::optional<std::wstring> RegisteredProgram() {
    std::optional<std::wstring> path = RegisteredProductPath();
    if (!path) return std::nullopt;
    const std::size_t separator = path->rfind(L'\\');
    // Without a folder the program would be looked for in the current one.
    if (separator == std::wstring::npos) return std::nullopt;
    path->resize(separator + 1);
    PathUnquoteSpacesW(path->data());
    return CombinePath(path->c_str(), kWipeProgram);
}

std::optional<std::wstring> FindWipeProgram() {
    std::optional<std::wstring> program = PathBesideOwnModule(kWipeProgram);
    if (program && PathFileExistsW(program->c_str())) return program;
    program = RegisteredProgram();
    if (program && PathFileExistsW(program->c_str())) return program;
    return std::nullopt;
}

// The root of a drive keeps its backslash: without it the name means the drive's current folder.
std::wstring FolderOf(std::wstring program) {
    PathRemoveFileSpecW(program.data());
    return program.c_str();
}

} // namespace

ObLib::UniqueKernelHandle StartWipeProcess(const std::wstring& arguments) {
    const std::optional<std::wstring> program = FindWipeProgram();
    if (!program) return {};
    std::wstring commandLine = kEmptyFirstWord + arguments;
    STARTUPINFOW startup = {sizeof(startup)};
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(program->c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        FolderOf(*program).c_str(), &startup, &started)) {
        return {};
    }
    ObLib::UniqueKernelHandle thread(started.hThread);
    return ObLib::UniqueKernelHandle(started.hProcess);
}

void LaunchWipe(std::vector<std::wstring>& items) {
    std::wstring arguments = kTimeoutArgument;
    for (const std::wstring& item : items) arguments += L" \"" + item + L"\"";
    if (!StartWipeProcess(arguments)) {
        ObTrace("CreateProcess ObWipe failed %p",
                reinterpret_cast<void*>(static_cast<std::uintptr_t>(GetLastError())));
        return;
    }
    ObTrace("CreateProcess ObWipe success");
    items.clear();
}

void WipeFiles(std::vector<std::wstring>& files, std::vector<std::wstring>& folders) {
    std::vector<std::wstring> items = files;
    items.insert(items.end(), folders.begin(), folders.end());
    LaunchWipe(items);
    if (!items.empty()) return;
    files.clear();
    folders.clear();
}

} // namespace obcore
