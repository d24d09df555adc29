// Names of charsets and of character entities.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ObLibX {

inline constexpr std::int32_t kCodePageUtf32 = 65005; // private to this library
inline constexpr std::int32_t kCodePageUtf16 = 1200;
inline constexpr std::int32_t kCodePageUtf8 = 65001;

// The code page of a charset name: 65005 for every name that begins with "UTF-32" in upper case, 0
// for the empty name, -1 for an unknown name and for one of 100 or more characters. Allocates
// nothing.
std::int32_t LookupCodePage(std::wstring_view name);

// The code point of an entity, whose name is given without & and ;, 0 for an unknown name. Folds
// ASCII case, so that of two entities that differ in case only the upper-case one is ever found.
// Allocates nothing.
std::uint32_t LookupEntity(std::wstring_view name);

// ---- The packed tables, as the build makes them from charsets.txt and entities.txt. Only the
// lookups above and the tests that count the rows read them.

inline constexpr std::size_t kCharsetBucketCount = 155;
inline constexpr std::size_t kEntityBucketCount = 130;

// A name's bucket is the sum of its units modulo the number of buckets. A bucket is one NUL-ended
// text in which each row follows the one before directly; an empty bucket is the empty text.
//
// A charset row: two digits of name length, five digits of code page, the name in lower case:
// "0800949ksc_5601".
extern const wchar_t* const kCharsetBuckets[kCharsetBucketCount];
// An entity row: one character '0' + name length, four digits of the code point, the name in lower
// case: "60216oslash".
extern const wchar_t* const kEntityBuckets[kEntityBucketCount];

} // namespace ObLibX
