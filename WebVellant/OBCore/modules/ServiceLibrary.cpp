#include "OBCore/modules/ServiceLibrary.h"

#include <cwchar>
#include <utility>

#include "OBCore/modules/BoundEntries.h"
#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

using namespace obcontract; // the contract's tables name its types bare

namespace obcore {
namespace {

// Freed by hand on process detach; see FreeArchiveService.
HMODULE boundLibrary = nullptr;
ArchiveServiceEntries entries{};

// The path of the service in this library's folder, in a buffer of 260 characters. False when fewer
// than 16 of them remain behind the last backslash.
bool MakeServicePath(wchar_t (&path)[kPathCapacity]) {
    constexpr std::size_t kLeastRoom = 16; // wide characters
    const DWORD length = GetModuleFileNameW(OwnModule(), path, kPathCapacity);
    if (length == 0 || length == kPathCapacity) return false;
    wchar_t* separator = std::wcsrchr(path, L'\\');
    if (!separator) return false;
    wchar_t* name = separator + 1;
    const auto room = static_cast<std::size_t>(path + kPathCapacity - name);
    if (room < kLeastRoom) return false;
    return wcscpy_s(name, room, kArchiveServiceFileName) == 0;
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
    wchar_t path[kPathCapacity];
    if (!MakeServicePath(path)) return false;
    ObLib::UniqueModule library(LoadLibraryW(path));
    if (!library) {
        ObTrace("LoadLibrary %S failed", path);
        return false;
    }
    if (!FetchAllEntries(library.Get())) return false;
    boundLibrary = library.Release();
    return true;
}

const ArchiveServiceEntries& ArchiveService() noexcept { return entries; }

void FreeArchiveService() noexcept {
    ObLib::UniqueModule ended(std::exchange(boundLibrary, nullptr));
}

} // namespace obcore
