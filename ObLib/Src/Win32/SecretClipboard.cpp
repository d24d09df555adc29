#include "ObLib/Src/Win32/SecretClipboard.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>

#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace ObLib {
namespace {

struct GlobalMemoryPolicy : NullPolicy<HGLOBAL> {
    static void Close(Handle memory) noexcept { GlobalFree(memory); }
};
using UniqueGlobalMemory = UniqueResource<GlobalMemoryPolicy>;

// Monitors look for the first one, whatever its content; the others are numbers, 0 for no.
constexpr const wchar_t* kMarks[] = {
    L"ExcludeClipboardContentFromMonitorProcessing",
    L"CanIncludeInClipboardHistory",
    L"CanUploadToCloudClipboard",
};

constexpr UINT kRetryInterval = 1000; // milliseconds

struct CopiedSecret {
    DWORD sequence = 0; // the clipboard's number after the copy; 0 when nothing is to be cleared
    UINT_PTR timer = 0; // of the thread, as it outlives the dialog
};
CopiedSecret copied;

// The clipboard owns the memory after a success.
bool Put(UINT format, const void* data, std::size_t size) {
    UniqueGlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, size));
    void* const bytes = memory ? GlobalLock(memory.Get()) : nullptr;
    if (!bytes) return false;
    std::memcpy(bytes, data, size);
    GlobalUnlock(memory.Get());
    if (!SetClipboardData(format, memory.Get())) return false;
    static_cast<void>(memory.Release());
    return true;
}

bool PutMark(const wchar_t* name) {
    const DWORD no = 0;
    const UINT format = RegisterClipboardFormatW(name);
    return format != 0 && Put(format, &no, sizeof no);
}

bool PutMarkedText(HWND window, const wchar_t* text) {
    if (!OpenClipboard(window)) return false;
    const ScopeExit close([] { CloseClipboard(); });
    if (!EmptyClipboard()) return false;
    const std::size_t size = (std::wcslen(text) + 1) * sizeof(wchar_t);
    if (std::all_of(std::begin(kMarks), std::end(kMarks), &PutMark) &&
        Put(CF_UNICODETEXT, text, size)) {
        return true;
    }
    EmptyClipboard();
    return false;
}

void StopTimer() {
    if (copied.timer != 0) KillTimer(nullptr, copied.timer);
    copied = {};
}

void CALLBACK OnLifetimeOver(HWND, UINT, UINT_PTR, DWORD) { ForgetCopiedSecret(); }

void StartTimer(UINT interval) {
    copied.timer = SetTimer(nullptr, copied.timer, interval, &OnLifetimeOver);
}

} // namespace

bool CopySecret(HWND window, const wchar_t* text) {
    StopTimer();
    if (!PutMarkedText(window, text)) return false;
    copied.sequence = GetClipboardSequenceNumber();
    StartTimer(kCopiedSecretLifetime);
    return true;
}

void ForgetCopiedSecret() {
    if (copied.sequence == 0) return;
    if (!OpenClipboard(nullptr)) return StartTimer(kRetryInterval);
    // Compared while nobody else can change the clipboard.
    if (GetClipboardSequenceNumber() == copied.sequence) EmptyClipboard();
    CloseClipboard();
    StopTimer();
}

} // namespace ObLib
