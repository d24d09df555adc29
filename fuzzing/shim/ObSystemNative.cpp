// The native side of ObSystem.h: the conversions of SystemCallsNative.cpp, and no string table.
#include "ObLib/Src/ObSystem.h"

#include "ObLibX/src/xml/encoding/SystemCalls.h"

namespace ObLib {

std::int32_t SystemBytesToWide(std::int32_t kind, const char* bytes, std::int32_t length,
                               wchar_t* out, std::int32_t capacity) {
    const std::uint32_t page = kind == kCodePageUtf8   ? 65001
                               : kind == kCodePageAnsi ? ObLibX::SystemCodePage()
                                                       : 437;
    return ObLibX::SystemToWide(page, bytes, length, out, capacity);
}

const wchar_t* SystemTableText(std::uint32_t, std::size_t& length) {
    length = 0;
    return nullptr;
}

} // namespace ObLib
