// The result report: sibling XML elements, one for everything that was wrong or done.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ObLibX {

// Which attributes a report gets. In this order: the value as msg, type, encoding or tagname; the
// number as n, count, length or offset; number2 as offset2.
inline constexpr std::uint32_t kReportCount = 0x1;
inline constexpr std::uint32_t kReportType = 0x2;
inline constexpr std::uint32_t kReportN = 0x4;
inline constexpr std::uint32_t kReportEncoding = 0x8;
inline constexpr std::uint32_t kReportLength = 0x10;
inline constexpr std::uint32_t kReportUpdate =
    0x20; // no new element: the last one of that name changes
inline constexpr std::uint32_t kReportMsg = 0x40;

// At this many units a report takes no more: a very broken document stays cheap.
inline constexpr std::size_t kReportLimit = 1000;

// Appends <name .../> to `report`, unless it holds kReportLimit units or more already; that is
// asked before, so the last one may go over. `value` null: no attribute from it. `number` and
// `number2` -1: none. Throws std::bad_alloc and leaves `report` as it was.
void Report(std::wstring& report, const wchar_t* name, const wchar_t* value, std::uint32_t flags,
            std::int32_t number = -1, std::int32_t number2 = -1);

} // namespace ObLibX
