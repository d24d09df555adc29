#include "ObLib/Src/Win32/ObXAppGlobals.h"

#include <cwchar>

#include "ObLib/Src/Win32/FailFast.h"

namespace ObLib {

void* ObXAppGlobals::Destroy(std::uint32_t) {
    ObXAppGlobals::Clear();
    return this;
}

void ObXAppGlobals::SetModules(HMODULE program, HMODULE language, const wchar_t* first,
                               const wchar_t* second) {
    programModule = program;
    languageModule = language;
    CopyOrFailFast(firstText, kTextCapacity, first);
    CopyOrFailFast(secondText, kTextCapacity, second);
}

void ObXAppGlobals::SetModule(HMODULE module, const wchar_t* first, const wchar_t* second) {
    SetModules(module, module, first, second);
}

void ObXAppGlobals::Clear() {
    programModule = nullptr;
    languageModule = nullptr;
    word64 = 0;
    word32 = 0;
    std::wmemset(firstText, L'\0', kTextCapacity);
    std::wmemset(secondText, L'\0', kTextCapacity);
}

ObXAppGlobals& AppGlobals() noexcept {
    static constinit ObXAppGlobals globals;
    return globals;
}

} // namespace ObLib
