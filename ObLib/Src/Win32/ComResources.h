// Owners of what COM and the shell hand out, apart from those of UniqueHandle.h: the shell's header
// is large, and most sources don't need it.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace ObLib {

// An item identifier list of the shell.
struct ItemIdListPolicy : NullPolicy<PIDLIST_ABSOLUTE> {
    static void Close(Handle handle) noexcept { ILFree(handle); }
};
using UniqueItemIdList = UniqueResource<ItemIdListPolicy>;

// Memory of the COM task allocator.
template <class Type>
struct CoTaskMemoryPolicy : NullPolicy<Type*> {
    static void Close(Type* memory) noexcept { CoTaskMemFree(memory); }
};
template <class Type>
using UniqueCoTaskMemory = UniqueResource<CoTaskMemoryPolicy<Type>>;

// One reference on a COM object.
template <class Interface>
struct ComPolicy : NullPolicy<Interface*> {
    static void Close(Interface* object) noexcept { object->Release(); }
};

template <class Interface>
class ComPtr : public UniqueResource<ComPolicy<Interface>> {
public:
    using UniqueResource<ComPolicy<Interface>>::UniqueResource;
    Interface* operator->() const noexcept { return this->Get(); }
};

} // namespace ObLib
