// Plays a browser with a mail page, as the hook in a browser would call the library.
#include <windows.h>

#include <objbase.h>
#include <shellapi.h>

#include "ObLib/Src/Win32/ScopeExit.h"
#include "demo/mailpage/MailWindow.h"

namespace {

constexpr int kBadOptions = 2;
constexpr int kNoLibrary = 3;

std::vector<std::wstring> Arguments() {
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!values) return {};
    const ObLib::ScopeExit release([values] { LocalFree(values); });
    return std::vector<std::wstring>(values + 1, values + count);
}

// A person sees a box; a program reads the exit code.
int Refuse(const mailpage::Options* options, const std::wstring& problem, int code) {
    if (!options || !options->automatic) {
        MessageBoxW(nullptr, problem.c_str(), L"Mail page", MB_ICONEXCLAMATION);
    }
    return code;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    std::wstring problem;
    const auto options = mailpage::ParseOptions(Arguments(), problem);
    if (!options) return Refuse(nullptr, problem, kBadOptions);
    mailpage::HookedLibrary library;
    if (!library.Load()) {
        return Refuse(&*options, L"obwmcore64.dll can't be loaded from this folder.", kNoLibrary);
    }
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return kNoLibrary;
    const ObLib::ScopeExit uninitialise([] { CoUninitialize(); });
    const mailpage::GdiplusSession drawing;
    mailpage::MailWindow window(*options, library);
    return window.Run();
}
