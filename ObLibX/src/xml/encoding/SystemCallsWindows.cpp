// The only source of this room that includes the system's header.
#include <windows.h>

#include <algorithm>
#include <iterator>

#include "ObLibX/src/xml/encoding/SystemCalls.h"

namespace ObLibX {
namespace {

constexpr std::size_t kMostErrorText = 100;

} // namespace

std::int32_t SystemToWide(std::uint32_t codePage, const char* in, std::int32_t length, wchar_t* out,
                          std::int32_t capacity) {
    return MultiByteToWideChar(codePage, 0, in, length, out, out == nullptr ? 0 : capacity);
}

std::int32_t SystemFromWide(std::uint32_t codePage, const wchar_t* in, std::int32_t length,
                            char* out, std::int32_t capacity, std::int32_t* usedDefault) {
    BOOL used = FALSE;
    const int bytes =
        WideCharToMultiByte(codePage, 0, in, length, out, out == nullptr ? 0 : capacity, nullptr,
                            usedDefault == nullptr ? nullptr : &used);
    if (usedDefault != nullptr) {
        *usedDefault = used;
    }
    return bytes;
}

std::uint32_t SystemCodePage() { return GetACP(); }

std::uint32_t SystemLastError() { return GetLastError(); }

// The system returns no text at all for a buffer that is too small, so the buffer is larger than
// the text that is wanted.
std::wstring SystemErrorText(std::uint32_t error) {
    wchar_t text[1024];
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                       0, text, static_cast<DWORD>(std::size(text)), nullptr);
    return {text, std::min<std::size_t>(length, kMostErrorText)};
}

std::FILE* OpenFileStream(const wchar_t* path, bool forWriting) {
    return _wfopen(path, forWriting ? L"wb" : L"rb");
}

std::int64_t FileStreamLength(std::FILE* file) {
    if (_fseeki64(file, 0, SEEK_END) != 0) return -1;
    const std::int64_t length = _ftelli64(file);
    return _fseeki64(file, 0, SEEK_SET) == 0 ? length : -1;
}

} // namespace ObLibX
