// Move-only owners of the system's handles: one template, and one policy a kind of handle.
//
// An owner closes its handle exactly once and preserves the thread's last error over the closing,
// so that a caller can still ask why an earlier call failed.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <utility>

namespace ObLib {

// Policy: `Handle`, `Empty()`, `Close(handle)`. A policy may accept a second empty value.
template <class Policy>
class UniqueResource {
public:
    using Handle = typename Policy::Handle;

    UniqueResource() noexcept = default;
    explicit UniqueResource(Handle handle) noexcept : handle_(Policy::Normalized(handle)) {}
    UniqueResource(UniqueResource&& other) noexcept : handle_(other.Release()) {}
    UniqueResource& operator=(UniqueResource&& other) noexcept {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    UniqueResource(const UniqueResource&) = delete;
    UniqueResource& operator=(const UniqueResource&) = delete;
    ~UniqueResource() { Reset(); }

    [[nodiscard]] Handle Get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return handle_ != Policy::Empty(); }

    // Gives the handle away; the owner is empty afterwards.
    [[nodiscard]] Handle Release() noexcept { return std::exchange(handle_, Policy::Empty()); }

    void Reset(Handle handle = Policy::Empty()) noexcept {
        const Handle old = std::exchange(handle_, Policy::Normalized(handle));
        if (old == Policy::Empty()) return;
        const DWORD error = GetLastError();
        Policy::Close(old);
        SetLastError(error);
    }

    // For calls that answer through an out parameter; what was held is closed first.
    [[nodiscard]] Handle* Put() noexcept {
        Reset();
        return &handle_;
    }

private:
    Handle handle_ = Policy::Empty();
};

template <class HandleType>
struct NullPolicy {
    using Handle = HandleType;
    static Handle Empty() noexcept { return nullptr; }
    static Handle Normalized(Handle handle) noexcept { return handle; }
};

// Kernel objects. INVALID_HANDLE_VALUE, the failure value of CreateFileW, counts as empty.
struct KernelHandlePolicy : NullPolicy<HANDLE> {
    static Handle Normalized(Handle handle) noexcept {
        return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
    }
    static void Close(Handle handle) noexcept { CloseHandle(handle); }
};
using UniqueKernelHandle = UniqueResource<KernelHandlePolicy>;

// A search of FindFirstFileW.
struct FindHandlePolicy : KernelHandlePolicy {
    static void Close(Handle handle) noexcept { FindClose(handle); }
};
using UniqueFindHandle = UniqueResource<FindHandlePolicy>;

struct ModulePolicy : NullPolicy<HMODULE> {
    static void Close(Handle handle) noexcept { FreeLibrary(handle); }
};
using UniqueModule = UniqueResource<ModulePolicy>;

struct RegistryKeyPolicy : NullPolicy<HKEY> {
    static void Close(Handle handle) noexcept { RegCloseKey(handle); }
};
using UniqueRegistryKey = UniqueResource<RegistryKeyPolicy>;

// A window that this thread created and destroys.
struct WindowPolicy : NullPolicy<HWND> {
    static void Close(Handle handle) noexcept { DestroyWindow(handle); }
};
using UniqueWindow = UniqueResource<WindowPolicy>;

struct WindowHookPolicy : NullPolicy<HHOOK> {
    static void Close(Handle handle) noexcept { UnhookWindowsHookEx(handle); }
};
using UniqueWindowHook = UniqueResource<WindowHookPolicy>;

template <class GdiHandle>
struct GdiObjectPolicy : NullPolicy<GdiHandle> {
    static void Close(GdiHandle handle) noexcept { DeleteObject(handle); }
};
using UniqueBitmap = UniqueResource<GdiObjectPolicy<HBITMAP>>;
using UniqueFont = UniqueResource<GdiObjectPolicy<HFONT>>;
using UniqueBrush = UniqueResource<GdiObjectPolicy<HBRUSH>>;
using UniquePen = UniqueResource<GdiObjectPolicy<HPEN>>;

// A menu that no window has: windows destroy their own.
struct MenuPolicy : NullPolicy<HMENU> {
    static void Close(Handle handle) noexcept { DestroyMenu(handle); }
};
using UniqueMenu = UniqueResource<MenuPolicy>;

// Who uses it links the common controls.
struct ImageListPolicy : NullPolicy<HIMAGELIST> {
    static void Close(Handle handle) noexcept { ImageList_Destroy(handle); }
};
using UniqueImageList = UniqueResource<ImageListPolicy>;

struct MemoryDcPolicy : NullPolicy<HDC> {
    static void Close(Handle handle) noexcept { DeleteDC(handle); }
};
using UniqueMemoryDc = UniqueResource<MemoryDcPolicy>;

// A mapped view of a file mapping, typed by its content.
template <class Type>
struct MappedViewPolicy : NullPolicy<Type*> {
    static void Close(Type* view) noexcept { UnmapViewOfFile(view); }
};
template <class Type>
using UniqueMappedView = UniqueResource<MappedViewPolicy<Type>>;

} // namespace ObLib
