#include "fuzzing/shim/WindowsCalls.h"

#include <algorithm>
#include <cstring>
#include <string_view>

IMAGE_DOS_HEADER shimImageBase asm("__ImageBase");

namespace {

SystemState state;
DWORD lastError = 0;
char productLibrary; // its address is the library's handle

// The case pairs of ASCII and Latin-1, which are enough to make names meet.
wchar_t UpperCase(wchar_t unit) {
    const bool ascii = unit >= L'a' && unit <= L'z';
    const bool latin = unit >= 0xE0 && unit <= 0xFE && unit != 0xF7;
    return ascii || latin ? static_cast<wchar_t>(unit - 0x20) : unit;
}

void AppendUtf8(std::string& out, std::uint32_t value) {
    const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (value < 0x80) return put(value);
    if (value < 0x800) {
        put(0xC0 | value >> 6);
    } else if (value < 0x10000) {
        put(0xE0 | value >> 12);
        put(0x80 | (value >> 6 & 0x3F));
    } else {
        put(0xF0 | value >> 18);
        put(0x80 | (value >> 12 & 0x3F));
        put(0x80 | (value >> 6 & 0x3F));
    }
    put(0x80 | (value & 0x3F));
}

std::string Utf8Of(std::wstring_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::uint32_t value = text[at];
        const bool half = value >= 0xD800 && value <= 0xDFFF;
        const std::uint32_t next = at + 1 < text.size() ? text[at + 1] : 0;
        if (half && value <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
            value = 0x10000 + ((value - 0xD800) << 10) + (next - 0xDC00);
            ++at;
        } else if (half) {
            value = 0xFFFD;
        }
        AppendUtf8(out, value);
    }
    return out;
}

// The text up to its first NUL or its last whole unit, and a NUL, as RegGetValueW promises.
std::wstring EndedText(const std::vector<BYTE>& data) {
    std::wstring text(data.size() / sizeof(wchar_t), L'\0');
    if (!text.empty()) std::memcpy(text.data(), data.data(), text.size() * sizeof(wchar_t));
    if (text.empty() || text.back() != L'\0') text += L'\0';
    return text;
}

bool IsAllowed(DWORD type, DWORD flags) {
    return (type == REG_SZ && (flags & RRF_RT_REG_SZ)) ||
           (type == REG_DWORD && (flags & RRF_RT_REG_DWORD));
}

LSTATUS CopyOut(const void* from, std::size_t size, void* data, DWORD* bytes) {
    const DWORD capacity = *bytes;
    *bytes = static_cast<DWORD>(size);
    if (!data) return ERROR_SUCCESS;
    if (capacity < size) return ERROR_MORE_DATA;
    std::memcpy(data, from, size);
    return ERROR_SUCCESS;
}

} // namespace

SystemState& System() { return state; }

extern "C" {

DWORD GetLastError() { return lastError; }
void SetLastError(DWORD error) { lastError = error; }
BOOL CloseHandle(HANDLE) { return TRUE; }
BOOL FreeLibrary(HMODULE) { return TRUE; }
LSTATUS RegCloseKey(HKEY) { return ERROR_SUCCESS; }

int CompareStringOrdinal(LPCWSTR first, int firstLength, LPCWSTR second, int secondLength,
                         BOOL ignoreCase) {
    const auto prepared = [ignoreCase](LPCWSTR text, int length) {
        std::wstring copy(text, static_cast<std::size_t>(length));
        if (ignoreCase) std::transform(copy.begin(), copy.end(), copy.begin(), UpperCase);
        return copy;
    };
    const int order = prepared(first, firstLength).compare(prepared(second, secondLength));
    if (order == 0) return CSTR_EQUAL;
    return order < 0 ? CSTR_LESS_THAN : CSTR_GREATER_THAN;
}

DWORD GetFullPathNameW(LPCWSTR path, DWORD capacity, LPWSTR full, LPWSTR*) {
    std::wstring made = path;
    std::replace(made.begin(), made.end(), L'/', L'\\');
    const bool absolute = made.starts_with(L"\\\\") || made.find(L':') == 1;
    if (!absolute) made.insert(0, L"C:\\current\\");
    const auto length = static_cast<DWORD>(made.size());
    if (capacity <= length) return length + 1;
    std::copy_n(made.c_str(), length + 1, full);
    return length;
}

int WideCharToMultiByte(UINT, DWORD, LPCWSTR text, int length, char* bytes, int capacity,
                        const char*, BOOL*) {
    const std::string utf8 = Utf8Of({text, static_cast<std::size_t>(length)});
    const int size = static_cast<int>(utf8.size());
    if (capacity == 0) return size;
    if (capacity < size) return 0;
    utf8.copy(bytes, utf8.size());
    return size;
}

DWORD GetModuleFileNameW(HMODULE, LPWSTR path, DWORD capacity) {
    const std::wstring_view own = L"C:\\app\\module.dll";
    if (capacity <= own.size()) return capacity;
    path[own.copy(path, own.size())] = L'\0';
    return static_cast<DWORD>(own.size());
}

HMODULE LoadLibraryExW(LPCWSTR, HANDLE, DWORD) { return &productLibrary; }

int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int capacity) {
    const auto& table = module == &productLibrary ? state.productTexts : state.ownTexts;
    const auto row = table.find(id);
    if (row == table.end()) return 0;
    const std::wstring& found = row->second;
    if (capacity == 0) {
        const wchar_t* const place = found.data();
        std::memcpy(static_cast<void*>(text), &place, sizeof place);
        return static_cast<int>(found.size());
    }
    const std::size_t room = static_cast<std::size_t>(capacity) - 1;
    const std::size_t copied = found.copy(text, room);
    text[copied] = L'\0';
    return static_cast<int>(copied);
}

LSTATUS RegOpenKeyExW(HKEY, LPCWSTR, DWORD, REGSAM access, HKEY* key) {
    const REGSAM view = access & (KEY_WOW64_64KEY | KEY_WOW64_32KEY);
    if (!state.policies.contains(view)) return ERROR_FILE_NOT_FOUND;
    *key = reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(view));
    return ERROR_SUCCESS;
}

LSTATUS RegGetValueW(HKEY key, LPCWSTR, LPCWSTR name, DWORD flags, DWORD* type, void* data,
                     DWORD* bytes) {
    const auto& values =
        state.policies.at(static_cast<REGSAM>(reinterpret_cast<std::uintptr_t>(key)));
    const auto value = values.find(name);
    if (value == values.end() || !IsAllowed(value->second.type, flags)) return ERROR_FILE_NOT_FOUND;
    if (type) *type = value->second.type;
    const std::vector<BYTE>& stored = value->second.data;
    if (value->second.type != REG_SZ) return CopyOut(stored.data(), stored.size(), data, bytes);
    const std::wstring text = EndedText(stored);
    return CopyOut(text.data(), text.size() * sizeof(wchar_t), data, bytes);
}

HANDLE CreateFileW(LPCWSTR path, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
    const auto file = state.files.find(path);
    if (file == state.files.end()) return INVALID_HANDLE_VALUE;
    return const_cast<std::uint64_t*>(&file->second);
}

BOOL GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* identity) {
    const std::uint64_t number = *static_cast<const std::uint64_t*>(file);
    *identity = {1, static_cast<DWORD>(number >> 32), static_cast<DWORD>(number)};
    return TRUE;
}

} // extern "C"
