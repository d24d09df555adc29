// The calls of ObSystem.h on Windows.
#include "ObLib/Src/ObSystem.h"

#include <windows.h>

#include "ObLib/Src/Win32/ObXAppGlobals.h"

namespace ObLib {
namespace {

UINT PageOf(std::int32_t kind) {
    switch (kind) {
    case kCodePageAnsi:
        return CP_ACP;
    case kCodePageUtf8:
        return CP_UTF8;
    default:
        return CP_OEMCP;
    }
}

const wchar_t* TextIn(HMODULE module, std::uint32_t id, std::size_t& length) {
    // With a length of 0 the call returns the address of the text in the module.
    const wchar_t* text = nullptr;
    const int units = LoadStringW(module, id, reinterpret_cast<wchar_t*>(&text), 0);
    length = units > 0 ? static_cast<std::size_t>(units) : 0;
    return units > 0 ? text : nullptr;
}

} // namespace

std::int32_t SystemBytesToWide(std::int32_t kind, const char* bytes, std::int32_t length,
                               wchar_t* out, std::int32_t capacity) {
    // UTF-8 accepts no flag about composed characters.
    const DWORD flags = kind == kCodePageUtf8 ? 0 : MB_PRECOMPOSED;
    return MultiByteToWideChar(PageOf(kind), flags, bytes, length, out, capacity);
}

const wchar_t* SystemTableText(std::uint32_t id, std::size_t& length) {
    length = 0;
    // The table's ids have 16 bits; the call would cut a higher one.
    if (id > 0xFFFF) return nullptr;
    const HMODULE language = AppGlobals().languageModule;
    const wchar_t* const text = language != nullptr ? TextIn(language, id, length) : nullptr;
    return text != nullptr ? text : TextIn(GetModuleHandleW(nullptr), id, length);
}

} // namespace ObLib
