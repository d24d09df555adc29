// Downloads by curl, which shares no code with what is tested.
#pragma once

#include <optional>
#include <string>

namespace obtest {

// What curl gets at an address, with a login where `user` isn't empty; nothing when it fails, after
// a test failure that names its exit code.
std::optional<std::string> CurlGet(const std::wstring& address, const std::wstring& user = L"",
                                   const std::wstring& password = L"");

} // namespace obtest
