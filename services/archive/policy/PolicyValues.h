// The machine's policies by view, for values of any length and for numbers. MachinePolicy.h has the
// plainer questions.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace obarchive {

// A 32-bit installer may have written into its own half of the registry.
enum class PolicyView : REGSAM { Bits64 = KEY_WOW64_64KEY, Bits32 = KEY_WOW64_32KEY };

// Whether the view has the key of the policies at all.
bool HasPolicies(PolicyView view);

// The value's text up to its first NUL; empty when the value is absent, empty or no REG_SZ. Any
// thread, as everything here; throws only what memory shortage throws.
std::wstring PolicyTextIn(PolicyView view, const wchar_t* name);

// A decimal number and nothing else; everything else is as good as absent.
std::optional<std::uint32_t> PolicyNumberIn(PolicyView view, const wchar_t* name);

} // namespace obarchive
