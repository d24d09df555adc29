// The encoding that a text declares.
#pragma once

#include <string>
#include <string_view>

namespace ObLibX {

// What the text's XML declaration or an HTML meta element of it declares; empty when it declares
// none. Linear. Throws std::bad_alloc.
std::wstring GetDeclaredEncoding(std::wstring_view text);

} // namespace ObLibX
