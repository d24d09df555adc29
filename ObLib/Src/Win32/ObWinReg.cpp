#include "ObLib/Src/Win32/ObWinReg.h"

#include <cstddef>
#include <cstring>
#include <utility>

namespace ObLib {
namespace {

static_assert(offsetof(ObRegKey, root) == 0 && offsetof(ObRegKey, key) == 8 &&
              offsetof(ObRegKey, path) == 16 && offsetof(ObRegKey, lastError) == 24 &&
              sizeof(LONG) == 4);

constexpr DWORD kSpareBytes = 4;

struct TypeBit {
    DWORD type;
    DWORD bit;
};
constexpr TypeBit kTypeBits[] = {
    {REG_SZ, kAcceptString},
    {REG_EXPAND_SZ, kAcceptExpandString},
    {REG_MULTI_SZ, kAcceptMultiString},
    {REG_DWORD, kAcceptNumber},
    {REG_BINARY, kAcceptBinary},
    {REG_NONE, kAcceptNone},
};

DWORD BitOf(DWORD type) {
    for (const TypeBit& row : kTypeBits)
        if (row.type == type) return row.bit;
    return kAcceptOther;
}

// How many units a text of `units` units takes with its end. Two more units after them are in the
// buffer and are zero.
std::size_t UnitsWithEnd(DWORD type, const wchar_t* text, std::size_t units) {
    if (type != REG_MULTI_SZ) return units != 0 && text[units - 1] == L'\0' ? units : units + 1;
    const bool isEmpty = units == 0 || (units == 1 && text[0] == L'\0');
    if (isEmpty) return 2;
    // The last unit but one decides. A list that lacks its second NUL gets it; a list without any
    // NUL is counted with one, and its second one is a spare unit.
    return units >= 2 && text[units - 2] == L'\0' ? units : units + 1;
}

// The bytes in use of a value of `bytes` bytes; the bytes after them are made zero.
std::size_t Normalize(DWORD type, ObBuffer& buffer, std::size_t bytes) {
    auto* const data = static_cast<char*>(buffer.data);
    const bool isText = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    // Half a unit at the end of a text is dropped.
    const std::size_t read = isText ? bytes / sizeof(wchar_t) * sizeof(wchar_t) : bytes;
    std::memset(data + read, 0, bytes + kSpareBytes - read);
    if (!isText) return bytes;
    const auto* const text = static_cast<const wchar_t*>(buffer.data);
    return UnitsWithEnd(type, text, read / sizeof(wchar_t)) * sizeof(wchar_t);
}

} // namespace

bool ObRegKey::Open() {
    if (root == nullptr || !path.HasText()) return false;
    Close();
    lastError = RegOpenKeyW(root, path.CStr(), &key);
    if (lastError != ERROR_SUCCESS) key = nullptr;
    return lastError == ERROR_SUCCESS;
}

bool ObRegKey::Close() {
    if (key == nullptr) return true;
    lastError = RegCloseKey(std::exchange(key, nullptr));
    return lastError == ERROR_SUCCESS;
}

bool ObRegKey::ReadValue(const wchar_t* name, DWORD& outType, ObBuffer& outBuffer, DWORD typeMask) {
    DWORD bytes = 0;
    lastError = RegQueryValueExW(key, name, nullptr, &outType, nullptr, &bytes);
    if (lastError == ERROR_SUCCESS) {
        outBuffer.Resize(std::uint64_t{bytes} + kSpareBytes, kResizeLeaves);
        // The spare bytes are offered too; a value that grew into them is found by its size.
        bytes += kSpareBytes;
        lastError = RegQueryValueExW(key, name, nullptr, &outType,
                                     static_cast<BYTE*>(outBuffer.data), &bytes);
        const bool sameSize = std::uint64_t{bytes} + kSpareBytes == outBuffer.size;
        if (lastError == ERROR_SUCCESS && sameSize && (BitOf(outType) & typeMask) != 0) {
            outBuffer.Resize(Normalize(outType, outBuffer, bytes), kResizeLeaves);
            return true;
        }
    }
    outBuffer.Resize(0, kResizeLeaves);
    return false;
}

} // namespace ObLib
