// Replaces one imported system call of a loaded module by a fake, for a scope.
#pragma once

#include <windows.h>

#include <type_traits>

namespace obtest {

// The slot of an import in a module's table, or null when the module doesn't import it. `module`
// null is the test program itself.
void** FindImport(HMODULE module, const char* library, const char* name);

// Writes a slot, whose memory is read-only, and returns its old value.
void* ExchangeImport(void** slot, void* function);

// Function is a plain function type or a pointer to one. Process-wide: tests that use it don't run
// threads that call the import.
template <class FunctionOrPointer>
class ImportPatch {
public:
    using Function = std::remove_pointer_t<FunctionOrPointer>;

    ImportPatch(const char* library, const char* name, Function* replacement,
                HMODULE module = nullptr)
        : slot_(FindImport(module, library, name)) {
        if (slot_) real_ = ExchangeImport(slot_, reinterpret_cast<void*>(replacement));
    }
    ~ImportPatch() {
        if (slot_) ExchangeImport(slot_, real_);
    }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    // False when the module doesn't import the call: the test must not go on then.
    bool Ok() const { return slot_ != nullptr; }

    // The replaced call.
    Function* Real() const { return reinterpret_cast<Function*>(real_); }

private:
    void** slot_;
    void* real_ = nullptr;
};

template <class Function>
ImportPatch(const char*, const char*, Function*, HMODULE = nullptr) -> ImportPatch<Function>;

} // namespace obtest
