// Where an administrator's policies are. The product, the archive service and the provider manager
// read their own values of this key.
#pragma once

namespace obcontract {

// Below HKEY_LOCAL_MACHINE, in the 64-bit and in the 32-bit view.
inline constexpr wchar_t kPolicyKey[] = L"SOFTWARE\\Tavi Ren Computing\\Ombrix\\Policies";

} // namespace obcontract
