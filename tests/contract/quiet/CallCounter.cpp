#include "tests/contract/quiet/CallCounter.h"

#include <psapi.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

#include "tests/support/ImportPatch.h"

namespace obtest {
namespace {

constexpr std::size_t kPageBytes = 64 * 1024;

// What a watched slot points to: code that counts and jumps to the real function. It changes no
// register, so one form serves every signature.
struct Thunk {
    std::uint8_t code[16];
    volatile std::uint64_t calls;
    void* real;
};

constexpr std::uint8_t kCode[16] = {
    0xF0, 0x48, 0xFF, 0x05, 0x08, 0x00, 0x00, 0x00, // lock inc qword [rip + 8]    (calls)
    0xFF, 0x25, 0x0A, 0x00, 0x00, 0x00,             // jmp qword [rip + 10]        (real)
    0xCC, 0xCC,
};
static_assert(offsetof(Thunk, calls) == 8 + 8);
static_assert(offsetof(Thunk, real) == 14 + 10);

template <class Type>
const Type* At(HMODULE module, DWORD offset) {
    return reinterpret_cast<const Type*>(reinterpret_cast<const BYTE*>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* Imports(HMODULE module) {
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS64>(module, static_cast<DWORD>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) return nullptr;
    return At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
}

// Calls `visit` with slot and name of every import by name of one library.
template <class Visit>
void ForEachName(HMODULE module, const IMAGE_IMPORT_DESCRIPTOR& library, Visit visit) {
    const auto* names = At<IMAGE_THUNK_DATA64>(module, library.OriginalFirstThunk);
    const auto* slots = At<IMAGE_THUNK_DATA64>(module, library.FirstThunk);
    for (; names->u1.AddressOfData; ++names, ++slots) {
        if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
        const auto* entry =
            At<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(names->u1.AddressOfData));
        void* const slot = const_cast<ULONGLONG*>(&slots->u1.Function);
        visit(static_cast<void**>(slot), reinterpret_cast<const char*>(entry->Name));
    }
}

std::vector<HMODULE> LoadedModules() {
    std::vector<HMODULE> modules(512);
    DWORD bytes = 0;
    const auto capacity = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
    if (!EnumProcessModules(GetCurrentProcess(), modules.data(), capacity, &bytes)) return {};
    modules.resize(std::min(modules.size(), bytes / sizeof(HMODULE)));
    return modules;
}

} // namespace

CallCounter::~CallCounter() {
    for (const Counted& counted : watched_) ExchangeImport(counted.slot, counted.real);
}

void CallCounter::Watch(HMODULE module, const Filter& filter) {
    const IMAGE_IMPORT_DESCRIPTOR* library = Imports(module);
    for (; library && library->Name; ++library) {
        if (library->OriginalFirstThunk == 0) continue;
        const std::string libraryName = At<char>(module, library->Name);
        ForEachName(module, *library, [&](void** slot, const char* name) {
            if (filter(libraryName, name)) WatchSlot(slot, name);
        });
    }
}

void CallCounter::WatchProcess(const Filter& filter) {
    for (const HMODULE module : LoadedModules()) Watch(module, filter);
}

void CallCounter::WatchSlot(void** slot, const std::string& name) {
    std::uint8_t* const thunk = NewThunk(*slot);
    if (!thunk) return;
    void* const real = ExchangeImport(slot, thunk);
    watched_.push_back({name, slot, real, &reinterpret_cast<Thunk*>(thunk)->calls});
}

// The memory is never freed: a caller may have read the slot just before it was put back.
std::uint8_t* CallCounter::NewThunk(void* real) {
    if (room_ < sizeof(Thunk)) {
        page_ = static_cast<std::uint8_t*>(
            VirtualAlloc(nullptr, kPageBytes, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
        room_ = page_ ? kPageBytes : 0;
        if (!page_) return nullptr;
    }
    auto* const thunk = new (page_) Thunk{};
    std::memcpy(thunk->code, kCode, sizeof(kCode));
    thunk->real = real;
    page_ += sizeof(Thunk);
    room_ -= sizeof(Thunk);
    return reinterpret_cast<std::uint8_t*>(thunk);
}

std::map<std::string, std::uint64_t> CallCounter::Calls() const {
    std::map<std::string, std::uint64_t> calls;
    for (const Counted& counted : watched_) {
        if (*counted.calls != 0) calls[counted.name] += *counted.calls;
    }
    return calls;
}

void CallCounter::Clear() noexcept {
    for (const Counted& counted : watched_) *counted.calls = 0;
}

} // namespace obtest
