// The few types, values and calls of the system's headers that the exchange block and the archive
// service's parsers use, so that both are fuzzed natively from their own sources. Types have the
// sizes that they have on 64-bit Windows. What is declared for closing handles only is never called
// here, and so isn't implemented. WindowsCalls.h has the state that the calls answer from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cwchar>

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define CP_UTF8 65001U

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using LPARAM = std::intptr_t;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using REGSAM = DWORD;
using LSTATUS = LONG;

using HANDLE = void*;
using HINSTANCE = void*;
using HMODULE = HINSTANCE;
using HKEY = struct HKEY__*;
using HWND = struct HWND__*;
using HHOOK = struct HHOOK__*;
using HDC = struct HDC__*;
using HBITMAP = struct HBITMAP__*;
using HFONT = struct HFONT__*;
using HBRUSH = struct HBRUSH__*;
using HPEN = struct HPEN__*;
using HMENU = struct HMENU__*;

struct IMAGE_DOS_HEADER {
    WORD e_magic;
};

inline constexpr int CSTR_LESS_THAN = 1;
inline constexpr int CSTR_EQUAL = 2;
inline constexpr int CSTR_GREATER_THAN = 3;
inline constexpr LSTATUS ERROR_SUCCESS = 0;
inline constexpr LSTATUS ERROR_FILE_NOT_FOUND = 2;
inline constexpr LSTATUS ERROR_MORE_DATA = 234;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD RRF_RT_REG_SZ = 0x02;
inline constexpr DWORD RRF_RT_REG_DWORD = 0x10;
inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_WOW64_64KEY = 0x0100;
inline constexpr REGSAM KEY_WOW64_32KEY = 0x0200;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD FILE_SHARE_DELETE = 4;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;
inline constexpr DWORD LOAD_LIBRARY_AS_DATAFILE = 0x02;
inline constexpr DWORD LOAD_LIBRARY_AS_IMAGE_RESOURCE = 0x20;
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(std::uintptr_t{0x80000002}))
#define IS_HIGH_SURROGATE(unit) ((unit) >= 0xD800 && (unit) <= 0xDBFF)
#define IS_LOW_SURROGATE(unit) ((unit) >= 0xDC00 && (unit) <= 0xDFFF)
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(std::intptr_t{-1}))

struct BY_HANDLE_FILE_INFORMATION {
    DWORD dwVolumeSerialNumber;
    DWORD nFileIndexHigh;
    DWORD nFileIndexLow;
};

extern "C" {
DWORD GetLastError();
void SetLastError(DWORD error);
BOOL CloseHandle(HANDLE handle);
BOOL FindClose(HANDLE search);
BOOL FreeLibrary(HMODULE module);
LSTATUS RegCloseKey(HKEY key);
BOOL DestroyWindow(HWND window);
BOOL UnhookWindowsHookEx(HHOOK hook);
BOOL DestroyMenu(HMENU menu);
BOOL DeleteObject(void* object);
BOOL DeleteDC(HDC context);
BOOL UnmapViewOfFile(const void* view);

int CompareStringOrdinal(LPCWSTR first, int firstLength, LPCWSTR second, int secondLength,
                         BOOL ignoreCase);
DWORD GetFullPathNameW(LPCWSTR path, DWORD capacity, LPWSTR full, LPWSTR* name);
int WideCharToMultiByte(UINT page, DWORD flags, LPCWSTR text, int length, char* bytes, int capacity,
                        const char* replacement, BOOL* replaced);

DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD capacity);
HMODULE LoadLibraryExW(LPCWSTR path, HANDLE file, DWORD flags);
int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int capacity);

LSTATUS RegOpenKeyExW(HKEY root, LPCWSTR path, DWORD options, REGSAM access, HKEY* key);
LSTATUS RegGetValueW(HKEY key, LPCWSTR subkey, LPCWSTR name, DWORD flags, DWORD* type, void* data,
                     DWORD* bytes);

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, void* security, DWORD creation,
                   DWORD flags, HANDLE model);
BOOL GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* identity);
}
