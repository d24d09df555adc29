// Texts that the product and this service share. They are in the resources of the product's
// library, beside this module.
#pragma once

#include <windows.h>

#include <string>

namespace obarchive {

inline constexpr UINT kPolicyMessageBase = 41000; // plus the mask of the classes asked for
inline constexpr UINT kPolicyErrorCaption = 41016;
inline constexpr UINT kModifyPasswordRequest = 41017;
inline constexpr UINT kEncryptionOffMessage = 41019;

// The caption of the product's messages.
inline constexpr wchar_t kProductCaption[] = L"Ombrix Vellant";

// The text as it is stored; empty when the library or the text isn't there. The library is mapped
// as data only, so none of its code runs, and unmapped before the return. Any thread.
std::wstring ProductText(UINT id);

} // namespace obarchive
