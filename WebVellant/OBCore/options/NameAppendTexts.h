// How the kinds of a zip name's appendix are stored.
#pragma once

#include <array>
#include <cstddef>

#include "OBCore/options/OBOptions.h"

namespace obcore {

// Indexed by NameAppendKind.
inline constexpr std::array<const wchar_t*, 5> kNameAppendTexts{
    L"none", L"dateyy", L"dateyyyy", L"time", L"datetime",
};

static_assert(static_cast<std::size_t>(NameAppendKind::None) == 0);
static_assert(static_cast<std::size_t>(NameAppendKind::DateTime) == kNameAppendTexts.size() - 1);

} // namespace obcore
