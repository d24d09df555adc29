// Starts a program inside the emulated Windows, waits for it and writes its exit code to a file.
// The host system sees only the low eight bits of an exit code; this file has all 32.
//
//   winlaunch.exe CODE-FILE PROGRAM [ARGUMENT...]
//
// The code file appears complete: ten characters at most, decimal, unsigned.
#include <windows.h>

#include <cstdio>

namespace {

// Returns the rest of a command line after its first argument and the blanks there. The program's
// own command line is passed on unchanged, so that no argument is quoted twice.
wchar_t* SkipArgument(wchar_t* text) {
    bool quoted = false;
    for (; *text != L'\0' && (quoted || (*text != L' ' && *text != L'\t')); ++text) {
        if (*text == L'"') {
            quoted = !quoted;
        }
    }
    while (*text == L' ' || *text == L'\t') {
        ++text;
    }
    return text;
}

bool WriteCode(const wchar_t* path, DWORD code) {
    char text[16];
    const int length = snprintf(text, sizeof text, "%lu", code);
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD written = 0;
    const BOOL done = WriteFile(file, text, static_cast<DWORD>(length), &written, nullptr);
    CloseHandle(file);
    return done && written == static_cast<DWORD>(length);
}

// A program that can't be started reads as exit code 125 and a line on stderr.
DWORD RunAndWait(wchar_t* commandLine) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, commandLine, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &process)) {
        fprintf(stderr, "winlaunch: error %lu: %ls can't be started\n", GetLastError(),
                commandLine);
        return 125;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 125;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: winlaunch CODE-FILE PROGRAM [ARGUMENT...]\n");
        return 125;
    }
    // A crash ends the program at once with its own code; nobody is there to click a box away.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    wchar_t* const program = SkipArgument(SkipArgument(GetCommandLineW()));
    return WriteCode(argv[1], RunAndWait(program)) ? 0 : 125;
}
