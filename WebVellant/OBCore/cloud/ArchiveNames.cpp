#include "OBCore/cloud/ArchiveNames.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "ObLib/Src/AsciiLetters.h"

namespace obcore {
namespace {

// In the order in which they are tested. The last one is no extension of a known format; it is in
// the table on purpose.
constexpr std::wstring_view kArchiveExtensions[] = {
    L"zip", L"zipx", L"z",   L"gz",  L"tz",  L"taz", L"tgz", L"lzh",  L"lha", L"tar",    L"cab",
    L"wmz", L"yfs",  L"wsz", L"rar", L"bz2", L"bz",  L"tbz", L"tbz2", L"7z",  L"xz",     L"txz",
    L"iso", L"img",  L"exe", L"uu",  L"xxe", L"bhx", L"b64", L"hqx",  L"mim", L"roaming"};
static_assert(std::size(kArchiveExtensions) == 32);

std::size_t NameStart(const std::wstring& path) {
    return path.rfind(L'\\') + 1; // 0 without a separator
}

} // namespace

bool IsArchiveName(const std::wstring& path) {
    const std::wstring name = path.substr(NameStart(path));
    std::wstring extension = PathFindExtensionW(name.c_str());
    if (extension.empty()) return false;
    // Every extension of the table is plain ASCII, so no language's rules for case matter.
    std::ranges::transform(extension, extension.begin(), ObLib::FoldAscii<wchar_t>);
    const std::wstring_view bare = std::wstring_view(extension).substr(1); // without the point
    return std::ranges::find(kArchiveExtensions, bare) != std::end(kArchiveExtensions);
}

std::wstring WithExtension(const std::wstring& path, const wchar_t* extension) {
    const std::size_t start = NameStart(path);
    wchar_t name[MAX_PATH] = {};
    if (path.size() - start >= MAX_PATH) return path;
    path.copy(name, MAX_PATH - 1, start);
    if (!PathRenameExtensionW(name, extension)) return path;
    return path.substr(0, start) + name;
}

} // namespace obcore
