// Takes the place of the host program: its command line is recorded, and what it does to the block
// is in a script. See Script.h.
#include <windows.h>

#include <shellapi.h>

#include "tests/fakes/Recording.h"
#include "tests/fakes/host/Commands.h"

namespace {

// The id and the owner window are the first and the second value of the command line.
obtest::HostRun RunFromCommandLine() {
    obtest::HostRun run;
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    if (count > 1) run.id = static_cast<std::uint32_t>(obtest::HostNumber(values[1]));
    if (count > 2) run.owner = reinterpret_cast<HWND>(obtest::HostNumber(values[2]));
    LocalFree(values);
    return run;
}

// A crash ends the process with the exception's code at once, whatever debugger the system has.
LONG WINAPI EndAtOnce(EXCEPTION_POINTERS* info) {
    TerminateProcess(GetCurrentProcess(), info->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(&EndAtOnce);
    obtest::RecordHostLine(std::wstring(L"start ") + GetCommandLineW());
    obtest::HostRun run = RunFromCommandLine();
    const std::wstring script =
        obtest::ReadUtf8File(obtest::BesideProgram(obtest::kHostScriptFileName));
    for (const obtest::HostCommand& command : obtest::ParseHostScript(script)) {
        const auto exitCode = obtest::RunHostCommand(command, run);
        if (exitCode) return *exitCode;
    }
    return 0;
}
