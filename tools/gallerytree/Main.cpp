// Opens each page of the gallery in a process of its own and prints its controls as that process
// describes them to a screen reader, a line each: id, role, name, state, value, range, action.
//
// gallery.exe has to be beside this program. Ends with 0 when every page was read.
#include <windows.h>

#include <objbase.h>

#include <cstdio>

#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/AccessibleTree.h"
#include "tests/support/Utf8.h"
#include "tests/support/WindowKit.h"

namespace {

ObLib::UniqueKernelHandle StartGallery() {
    const auto path = ObLib::PathBesideModule(nullptr, L"gallery.exe");
    if (!path) return {};
    wchar_t command[] = L"gallery.exe";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(path->c_str(), command, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started)) {
        return {};
    }
    CloseHandle(started.hThread);
    return ObLib::UniqueKernelHandle(started.hProcess);
}

bool HasEnded(HANDLE process) { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; }

// The dialog that isn't `last`; null when the gallery has ended first, or nothing came.
HWND NextPage(HANDLE process, HWND last) {
    HWND page = nullptr;
    obtest::WaitUntil([&] {
        page = obtest::FindTopWindow(
            [&](HWND window) { return window != last && obtest::IsDialog(window); },
            GetProcessId(process));
        return page != nullptr || HasEnded(process);
    });
    return page;
}

void Print(HWND page) {
    std::printf("%s\n", obtest::Utf8(obtest::TextOf(page)).c_str());
    for (const obtest::AccessibleNode& node : obtest::AccessibleNodes(page)) {
        std::printf("  %s\n", obtest::Utf8(obtest::Line(node)).c_str());
    }
}

// The number of pages.
int PrintPages(HANDLE gallery) {
    int pages = 0;
    for (HWND page = NextPage(gallery, nullptr); page != nullptr;
         page = NextPage(gallery, page), ++pages) {
        Print(page);
        obtest::PressCommand(page, IDOK);
    }
    return pages;
}

} // namespace

int wmain() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    const ObLib::UniqueKernelHandle gallery = StartGallery();
    if (!gallery) {
        std::fprintf(stderr, "gallerytree: gallery.exe isn't beside this program\n");
        return 1;
    }
    const int pages = PrintPages(gallery.Get());
    if (!HasEnded(gallery.Get())) {
        std::fprintf(stderr, "gallerytree: the gallery shows nothing after page %d\n", pages);
        TerminateProcess(gallery.Get(), 1);
        return 1;
    }
    return pages > 0 ? 0 : 1;
}
