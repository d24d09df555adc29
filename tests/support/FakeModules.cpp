#include "tests/support/FakeModules.h"

#include <windows.h>

#include <algorithm>

#include "tests/fakes/Recording.h"
#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

// A thread that outlives its test's calls may have the file open for a moment.
void Delete(const wchar_t* fileName) {
    const std::wstring path = BesideProgram(fileName);
    WaitUntil([&] { return DeleteFileW(path.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND; });
}

} // namespace

void FakeModules::Reset() {
    ForgetCalls();
    Delete(kScriptFileName);
}

void FakeModules::ForgetCalls() { Delete(kCallsFileName); }

void FakeModules::Answer(std::wstring_view call, std::wstring_view answer) {
    AppendUtf8File(BesideProgram(kScriptFileName),
                   std::wstring(call) + L"=" + std::wstring(answer) + L"\n");
}

std::vector<std::wstring> FakeModules::Calls() {
    const std::wstring text = ReadUtf8File(BesideProgram(kCallsFileName));
    std::vector<std::wstring> calls;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(L'\n', start), text.size());
        calls.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return calls;
}

std::vector<std::wstring> FakeModules::CallsOf(const std::vector<std::wstring>& names) {
    std::vector<std::wstring> calls = Calls();
    std::erase_if(calls, [&](const std::wstring& call) {
        const std::wstring name = call.substr(0, call.find(L'('));
        return std::find(names.begin(), names.end(), name) == names.end();
    });
    return calls;
}

} // namespace obtest
