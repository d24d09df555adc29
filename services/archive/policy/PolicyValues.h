// The machine's policies by registry view, for texts of any length and for numbers. MachinePolicy.h
// combines the views.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "ObLib/Src/Win32/RegistryView.h"

namespace obarchive {

using PolicyView = ObLib::RegistryView;

// Whether the view has the key of the policies at all.
bool HasPolicies(PolicyView view);

// The value's text up to its first NUL, or the decimal digits of a REG_DWORD. Empty when the value
// is absent, empty or of another type. Any thread, as everything here; throws only std::bad_alloc.
std::wstring PolicyTextIn(PolicyView view, const wchar_t* name);

// The value of a text of one to nine decimal digits; nothing for every other text.
std::optional<std::uint32_t> PolicyNumberIn(PolicyView view, const wchar_t* name);

} // namespace obarchive
