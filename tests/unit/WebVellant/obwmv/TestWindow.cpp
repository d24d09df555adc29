#include "tests/unit/WebVellant/obwmv/TestWindow.h"

namespace obtest {
namespace {

constexpr DWORD kViolated = 77;

DWORD WINAPI RunBody(void* body) {
    reinterpret_cast<void (*)()>(body)();
    return 0;
}

DWORD watchedThread = 0;

LONG CALLBACK EndThread(EXCEPTION_POINTERS* info) {
    if (GetCurrentThreadId() == watchedThread &&
        info->ExceptionRecord->ExceptionCode == STATUS_ACCESS_VIOLATION) {
        ExitThread(kViolated);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

ObLib::UniqueWindow MakeWindow(const wchar_t* className, Icon icon, DWORD style, const RECT& place,
                               HWND owner) {
    WNDCLASSEXW description{.cbSize = sizeof(WNDCLASSEXW)};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = className;
    if (icon == Icon::Application) description.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    RegisterClassExW(&description);
    return ObLib::UniqueWindow(CreateWindowExW(0, className, L"", style, place.left, place.top,
                                               place.right - place.left, place.bottom - place.top,
                                               owner, nullptr, description.hInstance, nullptr));
}

bool EndsInAccessViolation(void (*body)()) {
    void* handler = AddVectoredExceptionHandler(1, &EndThread);
    const ObLib::UniqueKernelHandle thread(CreateThread(
        nullptr, 0, &RunBody, reinterpret_cast<void*>(body), CREATE_SUSPENDED, &watchedThread));
    ResumeThread(thread.Get());
    const bool ended = WaitForSingleObject(thread.Get(), 20000) == WAIT_OBJECT_0;
    DWORD code = 0;
    GetExitCodeThread(thread.Get(), &code);
    RemoveVectoredExceptionHandler(handler);
    return ended && code == kViolated;
}

} // namespace obtest
