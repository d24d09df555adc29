// An office suite that does what a test asks. The file "suite.txt" beside it names in one word what
// it does with a document; without that file the command is handed on to a real suite. Each start
// appends to "suite-calls.txt" beside it: the number of the process, the temporary folder, each
// argument, and the settings in the profile.
#include <windows.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/fakes/Recording.h"
#include "tests/fakes/suite/HandOn.h"

namespace {

using Arguments = std::vector<std::wstring>;

std::string ContentOf(const std::wstring& path) {
    std::ifstream file(path.c_str(), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::wstring Mode() { return obtest::ReadUtf8File(obtest::BesideProgram(L"suite.txt")); }

void Note(const std::wstring& line) {
    obtest::AppendUtf8File(obtest::BesideProgram(L"suite-calls.txt"), line + L'\n');
}

std::wstring After(const Arguments& arguments, const std::wstring& name) {
    for (std::size_t at = 0; at + 1 < arguments.size(); ++at) {
        if (arguments[at] == name) return arguments[at + 1];
    }
    return {};
}

std::wstring Profile(const Arguments& arguments) {
    const std::wstring name = L"-env:UserInstallation=file:///";
    for (const std::wstring& argument : arguments) {
        if (argument.starts_with(name)) return argument.substr(name.size());
    }
    return {};
}

void NoteStart(const Arguments& arguments) {
    wchar_t temporary[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, temporary);
    Note(L"process " + std::to_wstring(GetCurrentProcessId()));
    Note(std::wstring(L"temporary ") + temporary);
    for (const std::wstring& argument : arguments) Note(L"argument " + argument);
    Note(L"settings " +
         obtest::ReadUtf8File(Profile(arguments) + L"/user/registrymodifications.xcu"));
}

void WriteResult(const Arguments& arguments, const std::string& content) {
    std::ofstream file((After(arguments, L"--outdir") + L"\\document.pdf").c_str(),
                       std::ios::binary);
    file << content;
}

// The document's own bytes are in it, so that a test sees which one was converted.
std::string Pdf(const Arguments& arguments) {
    return "%PDF-1.6\n% " + ContentOf(arguments.back()) + "\n%%EOF\n";
}

[[noreturn]] void Hang() {
    for (;;) Sleep(INFINITE);
}

// A further process, as real suites have one that does the work.
[[noreturn]] void HangInAChild() {
    std::wstring program = obtest::BesideProgram(L"soffice.exe");
    std::wstring commandLine = L"\"" + program + L"\" --child";
    STARTUPINFOW startup{sizeof startup};
    PROCESS_INFORMATION made{};
    CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                   nullptr, &startup, &made);
    WaitForSingleObject(made.hProcess, INFINITE);
    Hang();
}

// A file that is read-only and one deep below, as profiles have them, are in the way of a clean-up.
void LeaveFiles(const Arguments& arguments) {
    const std::wstring folder = Profile(arguments) + L"/user/deep";
    CreateDirectoryW(folder.c_str(), nullptr);
    const std::wstring file = folder + L"/file.txt";
    obtest::AppendUtf8File(file, L"text");
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
}

// What a test of the start alone looks at; uses a processor for a moment.
int ShowStart() {
    STARTUPINFOW startup;
    GetStartupInfoW(&startup);
    wchar_t temporary[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, temporary);
    for (const wchar_t* name : {L"TMP", L"TEMP", L"Path", L"OB_KEPT"}) {
        wchar_t value[4096] = {};
        GetEnvironmentVariableW(name, value, 4096);
        Note(std::wstring(L"variable ") + name + L'=' + value);
    }
    Note(L"window " + std::to_wstring(startup.wShowWindow));
    volatile unsigned worked = 0;
    for (const ULONGLONG start = GetTickCount64(); GetTickCount64() - start < 200;)
        worked = worked + 1;
    return 42;
}

int Serve(const std::wstring& mode, const Arguments& arguments) {
    LeaveFiles(arguments);
    if (mode == L"hang") Hang();
    if (mode == L"hang-in-a-child") HangInAChild();
    if (mode == L"ask") {
        MessageBoxW(nullptr, L"Which one?", L"A question", MB_OKCANCEL);
        return 0;
    }
    if (mode == L"crash") *static_cast<volatile int*>(nullptr) = 1;
    if (mode == L"nothing") return 0;
    if (mode == L"empty") return WriteResult(arguments, ""), 0;
    if (mode == L"half") return WriteResult(arguments, "%PDF-1.6\nhalf a"), 0;
    if (mode == L"no-pdf") return WriteResult(arguments, "PK\x3\x4 %%EOF"), 0;
    WriteResult(arguments, Pdf(arguments));
    return mode == L"fail" ? 77 : 0;
}

} // namespace

int wmain(int count, wchar_t** texts) {
    SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS);
    const Arguments arguments(texts + 1, texts + count);
    if (!arguments.empty() && arguments[0] == L"--show") return ShowStart();
    if (!arguments.empty() && arguments[0] == L"--child") {
        Note(L"process " + std::to_wstring(GetCurrentProcessId()));
        Hang();
    }
    NoteStart(arguments);
    const std::wstring mode = Mode();
    return mode.empty() ? obtest::HandOn(arguments) : Serve(mode, arguments);
}
