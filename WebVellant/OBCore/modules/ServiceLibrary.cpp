#include "OBCore/modules/ServiceLibrary.h"

#include <optional>
#include <string>
#include <utility>

#include "OBCore/modules/BoundEntries.h"
#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

using namespace obcontract; // the contract's tables name its types bare

namespace obcore {
namespace {

// Freed by hand on process detach; see FreeArchiveService.
HMODULE boundLibrary = nullptr;
ArchiveServiceEntries entries{};

// The path of the service in this library's folder. Nothing when fewer than 16 of 260 characters
// remain after the last backslash.
std::optional<std::wstring> ServicePath() {
    constexpr std::size_t kLeastRoom = 16; // wide characters
    const auto folder = ObLib::ModuleFolder(OwnModule(), kPathCapacity);
    if (!folder || folder->size() + kLeastRoom > kPathCapacity) return std::nullopt;
    return *folder + kArchiveServiceFileName;
}

bool FetchAllEntries(HMODULE library) {
#define OB_FETCH_ENTRY(name, result, arguments)                                                    \
    if (!FetchEntry(library, #name, entries.name)) return false;
    OB_ARCHIVE_SERVICE_ENTRIES(OB_FETCH_ENTRY)
#undef OB_FETCH_ENTRY
    return true;
}

} // namespace

bool LoadArchiveService() {
    if (boundLibrary) return true;
    if (const auto path = ServicePath()) boundLibrary = BindModule(*path, FetchAllEntries);
    return boundLibrary != nullptr;
}

const ArchiveServiceEntries& ArchiveService() noexcept { return entries; }

void FreeArchiveService() noexcept {
    ObLib::UniqueModule ended(std::exchange(boundLibrary, nullptr));
}

} // namespace obcore
