// Loading and unloading of the library, and the activation context in which its windows are made.
#pragma once

#include <windows.h>

namespace obwmv {

// On process attach, under the loader's lock: keeps the activation context that is current while
// the library loads, which carries its manifest (common controls of version 6), and enters the
// module in AppGlobals(). Nothing else happens at that point.
void OnProcessAttach(HMODULE module);

// On process detach: frees the sister modules that are bound, then the resource module.
void OnProcessDetach() noexcept;

// The context that OnProcessAttach kept; null means the one of the process.
HANDLE LibraryActivationContext() noexcept;

// Runs a scope in the library's activation context. Lives on the stack of one thread, and scopes
// of a thread nest. The destructor restores the context and nothing else.
class [[nodiscard]] ActivationScope {
public:
    ActivationScope() noexcept;
    ActivationScope(const ActivationScope&) = delete;
    ActivationScope& operator=(const ActivationScope&) = delete;
    ~ActivationScope();

    // False when the context couldn't be activated; the destructor then does nothing.
    explicit operator bool() const noexcept { return active_; }

private:
    ULONG_PTR cookie_ = 0;
    bool active_;
};

} // namespace obwmv
