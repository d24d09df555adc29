#include "tests/fakes/host/HostScript.h"

#include <windows.h>

#include "tests/fakes/Recording.h"
#include "tests/fakes/host/Script.h"

namespace obtest {

void HostScript::Play(const std::wstring& script) {
    DeleteFileW(BesideProgram(kHostCallsFileName).c_str());
    const std::wstring path = BesideProgram(kHostScriptFileName);
    DeleteFileW(path.c_str());
    AppendUtf8File(path, script);
}

std::vector<std::wstring> HostScript::Record() {
    const std::wstring text = ReadUtf8File(BesideProgram(kHostCallsFileName));
    std::vector<std::wstring> lines;
    std::size_t at = 0;
    for (std::size_t end; (end = text.find(L'\n', at)) != std::wstring::npos; at = end + 1)
        lines.push_back(text.substr(at, end - at));
    return lines;
}

std::vector<std::wstring> HostScript::RecordOf(const std::wstring& word) {
    std::vector<std::wstring> found;
    for (const std::wstring& line : Record())
        if (line.starts_with(word + L" ")) found.push_back(line.substr(word.size() + 1));
    return found;
}

} // namespace obtest
