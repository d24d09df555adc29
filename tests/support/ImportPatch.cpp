#include "tests/support/ImportPatch.h"

#include <cstring>

namespace obtest {
namespace {

template <class Type>
Type* At(HMODULE module, DWORD offset) {
    return reinterpret_cast<Type*>(reinterpret_cast<BYTE*>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* Imports(HMODULE module) {
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS64>(module, static_cast<DWORD>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return At<const IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
}

void** FindIn(HMODULE module, const IMAGE_IMPORT_DESCRIPTOR& library, const char* name) {
    const auto* names = At<const IMAGE_THUNK_DATA64>(module, library.OriginalFirstThunk);
    auto* slots = At<IMAGE_THUNK_DATA64>(module, library.FirstThunk);
    for (; names->u1.AddressOfData; ++names, ++slots) {
        if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
        const auto* entry =
            At<const IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(names->u1.AddressOfData));
        if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) {
            return reinterpret_cast<void**>(&slots->u1.Function);
        }
    }
    return nullptr;
}

} // namespace

void** FindImport(HMODULE module, const char* library, const char* name) {
    if (!module) module = GetModuleHandleW(nullptr);
    for (const auto* entry = Imports(module); entry->Name; ++entry) {
        if (_stricmp(At<const char>(module, entry->Name), library) != 0) continue;
        if (void** slot = FindIn(module, *entry, name)) return slot;
    }
    return nullptr;
}

void* ExchangeImport(void** slot, void* function) {
    DWORD protection = 0;
    VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection);
    void* old = *slot;
    *slot = function;
    VirtualProtect(slot, sizeof(*slot), protection, &protection);
    return old;
}

} // namespace obtest
