// Lists in one text, with a separator between their items.
#pragma once

#include <string_view>

namespace obcore {

// Whether some item of `list`, without the blanks at its ends, equals `item`, ignoring case.
bool HasItem(std::wstring_view list, wchar_t separator, std::wstring_view item);

} // namespace obcore
