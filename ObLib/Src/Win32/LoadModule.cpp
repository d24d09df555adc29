#include "ObLib/Src/Win32/LoadModule.h"

namespace ObLib {
namespace {

// Sets the error mode of this thread and puts the old one back.
class QuietErrorMode {
public:
    QuietErrorMode() noexcept {
        wasSet_ = SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before_);
    }
    QuietErrorMode(const QuietErrorMode&) = delete;
    QuietErrorMode& operator=(const QuietErrorMode&) = delete;
    ~QuietErrorMode() {
        const DWORD error = GetLastError();
        if (wasSet_) SetThreadErrorMode(before_, nullptr);
        SetLastError(error);
    }

private:
    DWORD before_ = 0;
    BOOL wasSet_ = FALSE;
};

} // namespace

UniqueModule LoadModule(const wchar_t* path) noexcept {
    const QuietErrorMode quiet;
    return UniqueModule(LoadLibraryW(path));
}

UniqueModule KeepThisModule() noexcept {
    HMODULE module = nullptr;
    const BOOL isKept =
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<const wchar_t*>(&KeepThisModule), &module);
    return UniqueModule(isKept ? module : nullptr);
}

} // namespace ObLib
