#include "services/archive/texts/ProductTexts.h"

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/ThisModule.h"

namespace obarchive {
namespace {

constexpr wchar_t kProductLibrary[] = L"obwmcore64.dll";
constexpr int kLongestText = 1024; // UTF-16 units

ObLib::UniqueModule MapProductLibrary() {
    const std::wstring path = PathBesideModule(kProductLibrary);
    if (path.empty()) return {};
    return ObLib::UniqueModule(LoadLibraryExW(
        path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
}

} // namespace

std::wstring ProductText(UINT id) {
    const ObLib::UniqueModule library = MapProductLibrary();
    if (!library) return {};
    wchar_t text[kLongestText];
    const int length = LoadStringW(library.Get(), id, text, kLongestText);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

} // namespace obarchive
