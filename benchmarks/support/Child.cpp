#include "benchmarks/support/Child.h"

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace bench {
namespace {

// What the child wrote until its end.
std::string ReadAll(HANDLE pipe) {
    std::string text;
    char piece[256];
    DWORD count = 0;
    while (ReadFile(pipe, piece, sizeof(piece), &count, nullptr) && count != 0) {
        text.append(piece, count);
    }
    return text;
}

// Starts this program again with its output in `pipe`.
bool StartChild(const std::wstring& arguments, HANDLE pipe) {
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring line = L"\"" + std::wstring(self) + L"\" --child " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = pipe;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &process)) {
        return false;
    }
    const ObLib::UniqueKernelHandle thread(process.hThread);
    const ObLib::UniqueKernelHandle child(process.hProcess);
    return true;
}

} // namespace

std::string OutputOfChild(const std::wstring& arguments) {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    ObLib::UniqueKernelHandle reading;
    ObLib::UniqueKernelHandle writing;
    if (!CreatePipe(reading.Put(), writing.Put(), &inherited, 0)) return {};
    if (!StartChild(arguments, writing.Get())) return {};
    writing.Reset();
    return ReadAll(reading.Get());
}

} // namespace bench
