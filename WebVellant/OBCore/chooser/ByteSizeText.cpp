#include "OBCore/chooser/ByteSizeText.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

constexpr SFBS_FLAGS kRoundToNearest = 1; // of the digit that is shown last
constexpr UINT kSizeCapacity = 64;        // wide characters

using RoundingFormat = decltype(&StrFormatByteSizeEx);

// Bound at run time: Wine's library lacks it, and an import that can't be bound would end the
// process.
bool FormatRounded(std::uint64_t size, wchar_t (&text)[kSizeCapacity]) {
    const ObLib::UniqueModule library(
        LoadLibraryExW(L"shlwapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (!library) return false;
    const FARPROC address = GetProcAddress(library.Get(), "StrFormatByteSizeEx");
    if (!address) return false;
    const auto format = reinterpret_cast<RoundingFormat>(reinterpret_cast<void*>(address));
    return SUCCEEDED(format(size, kRoundToNearest, text, kSizeCapacity));
}

// The older call takes a signed number.
void FormatCut(std::uint64_t size, wchar_t (&text)[kSizeCapacity]) {
    constexpr std::uint64_t largest = std::numeric_limits<LONGLONG>::max();
    StrFormatByteSizeW(static_cast<LONGLONG>(std::min(size, largest)), text, kSizeCapacity);
}

} // namespace

std::wstring ByteSizeText(std::int64_t bytes) {
    // Subtracted without a sign: the lowest number has no positive counterpart.
    const auto raw = static_cast<std::uint64_t>(bytes);
    const std::uint64_t size = bytes < 0 ? 0 - raw : raw;
    wchar_t text[kSizeCapacity] = L"";
    if (!FormatRounded(size, text)) FormatCut(size, text);
    wchar_t whole[kSizeCapacity + 1] = L"";
    _snwprintf(whole, std::size(whole) - 1, L"%ls%ls", bytes < 0 ? L"-" : L"", text);
    return whole;
}

} // namespace obcore
