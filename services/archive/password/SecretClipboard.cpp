#include "services/archive/password/SecretClipboard.h"

#include <cstring>
#include <cwchar>

#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obarchive {
namespace {

struct GlobalMemoryPolicy : ObLib::NullPolicy<HGLOBAL> {
    static void Close(Handle memory) noexcept { GlobalFree(memory); }
};
using UniqueGlobalMemory = ObLib::UniqueResource<GlobalMemoryPolicy>;

// The first says to monitors that they should pass this over; the others are numbers, 0 for no.
constexpr const wchar_t* kKeepPrivate[] = {
    L"ExcludeClipboardContentFromMonitorProcessing",
    L"CanIncludeInClipboardHistory",
    L"CanUploadToCloudClipboard",
};

// The clipboard owns the memory once it has taken it.
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

} // namespace

bool CopySecret(HWND window, const wchar_t* text) {
    if (!OpenClipboard(window)) return false;
    const ObLib::ScopeExit close([] { CloseClipboard(); });
    if (!EmptyClipboard()) return false;
    const DWORD no = 0;
    for (const wchar_t* format : kKeepPrivate) {
        Put(RegisterClipboardFormatW(format), &no, sizeof no);
    }
    return Put(CF_UNICODETEXT, text, (std::wcslen(text) + 1) * sizeof(wchar_t));
}

} // namespace obarchive
