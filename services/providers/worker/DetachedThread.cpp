#include "services/providers/worker/DetachedThread.h"

#include <windows.h>

#include <memory>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {
namespace {

struct Start {
    std::function<void()> work;
    ObLib::UniqueModule module; // the reference that the thread has
};

// What the work owns is destroyed while the module is certainly there; then the thread's last step
// in it is a call that doesn't return.
DWORD WINAPI Entry(void* given) noexcept {
    HMODULE module = nullptr;
    {
        const std::unique_ptr<Start> start(static_cast<Start*>(given));
        module = start->module.Release();
        ObLib::RanGuarded(start->work);
    }
    FreeLibraryAndExitThread(module, 0);
}

} // namespace

bool RunDetached(std::function<void()> work) {
    auto start = std::make_unique<Start>(Start{std::move(work), ObLib::KeepThisModule()});
    if (!start->module) return false;
    const ObLib::UniqueKernelHandle thread(
        CreateThread(nullptr, 0, &Entry, start.get(), 0, nullptr));
    if (!thread) return false;
    static_cast<void>(start.release()); // the thread's
    return true;
}

} // namespace providers
