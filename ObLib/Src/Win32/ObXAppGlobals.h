// The process-wide object through which texts and dialogs are found: which module is the program
// and which contains the language resources.
#pragma once

#include <windows.h>

#include <cstdint>

namespace ObLib {

// Built while the library loads and zeroed at unload. Written on load and by the configuration
// entry, read on any thread afterwards; no lock.
//
// The slot order and the field order are fixed. Slot 0 is one destructor slot: a plain virtual
// function with a flags word, since a C++ destructor takes two slots here.
class ObXAppGlobals {
public:
    static constexpr std::size_t kTextCapacity = 261; // wide characters

    // Clears the fields; frees nothing, since the object is static. `flags` is not looked at.
    virtual void* Destroy(std::uint32_t flags);

    // Texts of more than 260 characters end the process.
    virtual void SetModules(HMODULE program, HMODULE language, const wchar_t* firstText,
                            const wchar_t* secondText);

    // As SetModules with the one module in both fields.
    virtual void SetModule(HMODULE module, const wchar_t* firstText, const wchar_t* secondText);

    virtual void Clear();

    HMODULE programModule = nullptr;
    HMODULE languageModule = nullptr;
    std::uint64_t word64 = 0; // cleared, not used
    std::uint32_t word32 = 0; // cleared, not used
    wchar_t firstText[kTextCapacity] = {};
    wchar_t secondText[kTextCapacity] = {};
};

// The one object of the process.
ObXAppGlobals& AppGlobals() noexcept;

} // namespace ObLib
