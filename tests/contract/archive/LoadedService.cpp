#include "tests/contract/archive/LoadedService.h"

#include <string>

using namespace obcontract; // the contract's tables name its types bare

namespace obtest {
namespace {

std::wstring PathBesideProgram(const wchar_t* name) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.rfind(L'\\') + 1) + name;
}

template <class Function>
bool Bind(HMODULE module, const char* name, Function*& entry) {
    entry = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return entry != nullptr;
}

} // namespace

LoadedService::LoadedService()
    : module_(LoadLibraryW(PathBesideProgram(obcontract::kArchiveServiceFileName).c_str())) {
    complete_ = static_cast<bool>(module_);
#define OB_BIND_ENTRY(name, result, arguments)                                                     \
    complete_ = complete_ && Bind(module_.Get(), #name, entries_.name);
    OB_ARCHIVE_SERVICE_ENTRIES(OB_BIND_ENTRY)
#undef OB_BIND_ENTRY
}

} // namespace obtest
