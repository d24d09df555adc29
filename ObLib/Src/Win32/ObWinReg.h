// One key of the registry, for reading.
#pragma once

#include <windows.h>

#include "ObLib/Src/ObBuffer.h"
#include "ObLib/Src/ObString.h"

namespace ObLib {

// Types that ReadValue accepts.
inline constexpr DWORD kAcceptString = 1u << 16;       // REG_SZ
inline constexpr DWORD kAcceptExpandString = 1u << 17; // REG_EXPAND_SZ
inline constexpr DWORD kAcceptMultiString = 1u << 18;  // REG_MULTI_SZ
inline constexpr DWORD kAcceptNumber = 1u << 19;       // REG_DWORD
inline constexpr DWORD kAcceptBinary = 1u << 20;       // REG_BINARY
inline constexpr DWORD kAcceptNone = 1u << 21;         // REG_NONE
inline constexpr DWORD kAcceptOther = 1u << 22;        // every other type

// Owns `key`; `root` is the caller's, a predefined key as a rule. Belongs to one thread. Nothing is
// thrown but std::bad_alloc.
class ObRegKey {
public:
    ObRegKey(HKEY rootKey, const ObString& keyPath) : root(rootKey), path(keyPath) {}
    ObRegKey(const ObRegKey&) = delete;
    ObRegKey& operator=(const ObRegKey&) = delete;
    ~ObRegKey() { Close(); }

    // Opens `path` below `root`, in the view of the registry that the process has; a key that is
    // open is closed first. False without a root or a path.
    bool Open();
    // True also when nothing is open.
    bool Close();

    // The value's data, put in order, as the registry needn't contain a text's NULs: a text ends
    // with one and a multi-string with two, and they count in `outBuffer.size`. Of a multi-string
    // without any NUL one is counted; where the last unit but one is a NUL and the last isn't, none
    // is. The 4 bytes after `outBuffer.size` are always zero, so that these end with two NULs as
    // well. `typeMask` is made of kAccept...; other types give false, and so does every failure,
    // also that of a value that changed its size meanwhile. `outBuffer` is empty then. `outType` is
    // what the system answered last.
    bool ReadValue(const wchar_t* name, DWORD& outType, ObBuffer& outBuffer, DWORD typeMask);

    HKEY root;
    HKEY key = nullptr; // null when closed
    ObString path;
    LONG lastError = ERROR_SUCCESS; // the result of the last call of the registry
};

} // namespace ObLib
