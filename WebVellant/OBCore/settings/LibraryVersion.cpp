#include "OBCore/settings/LibraryVersion.h"

#include <windows.h>

#include <cstddef>
#include <cwchar>
#include <vector>

#include "OBCore/modules/OwnModule.h"

namespace obcore {
namespace {

using Block = std::vector<std::byte>;

struct Translation {
    WORD language;
    WORD codePage;
};

// VerQueryValueW may change its input, so this is a copy of the read-only resource.
Block VersionBlock() {
    const HMODULE module = OwnModule();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO),
                                      reinterpret_cast<const wchar_t*>(RT_VERSION));
    const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    const auto* const start =
        static_cast<const std::byte*>(loaded ? LockResource(loaded) : nullptr);
    return start ? Block(start, start + SizeofResource(module, found)) : Block();
}

// Null when the block has no such value.
template <class Value>
const Value* Query(Block& block, const wchar_t* path, UINT& size) {
    void* value = nullptr;
    if (block.empty() || !VerQueryValueW(block.data(), path, &value, &size)) return nullptr;
    return static_cast<const Value*>(value);
}

std::wstring TextOf(Block& block, const Translation& translation, const wchar_t* name) {
    wchar_t path[64];
    _snwprintf(path, std::size(path), L"\\StringFileInfo\\%04x%04x\\%ls", translation.language,
               translation.codePage, name);
    UINT length = 0;
    const auto* const text = Query<wchar_t>(block, path, length);
    return text ? std::wstring(text, wcsnlen(text, length)) : std::wstring();
}

} // namespace

LibraryVersion ReadLibraryVersion() {
    Block block = VersionBlock();
    UINT size = 0;
    const auto* const first = Query<Translation>(block, L"\\VarFileInfo\\Translation", size);
    if (!first || size < sizeof *first) return {};
    const Translation translation = *first;
    return {TextOf(block, translation, L"FileVersion"),
            TextOf(block, translation, L"ProductVersion")};
}

} // namespace obcore
