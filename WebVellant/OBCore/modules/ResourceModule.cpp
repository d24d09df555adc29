#include "OBCore/modules/ResourceModule.h"

#include <utility>
#include <vector>

#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

// Freed by hand on process detach, never by a static destructor: at that point the loader decides
// the order.
HMODULE boundModule = nullptr;

} // namespace

bool BindResourceModule() {
    if (boundModule) return true;
    const auto path = OwnModulePath();
    if (!path) return false;
    boundModule = LoadLibraryExW(path->c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    return boundModule != nullptr;
}

HMODULE ResourceModule() noexcept { return boundModule; }

void FreeResourceModule() noexcept {
    ObLib::UniqueModule ended(std::exchange(boundModule, nullptr));
}

std::wstring LoadText(TextId id, int capacity) {
    if (!boundModule) return {};
    std::vector<wchar_t> buffer(static_cast<std::size_t>(capacity));
    const int length = LoadStringW(boundModule, static_cast<UINT>(id), buffer.data(), capacity);
    return std::wstring(buffer.data(), static_cast<std::size_t>(length));
}

void FillIn(std::wstring& text, std::wstring_view placeholder, std::wstring_view value) {
    const std::size_t at = text.find(placeholder);
    if (at != std::wstring::npos) text.replace(at, placeholder.size(), value);
}

} // namespace obcore
