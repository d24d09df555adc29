// The packed name tables as the build makes them from names/*.txt. Seen by NameTables.cpp and by
// the tests that count the tables; everybody else asks NameTables.h.
#pragma once

#include <cstddef>

namespace ObLibX {

inline constexpr std::size_t kCharsetBucketCount = 155;
inline constexpr std::size_t kEntityBucketCount = 130;

// A bucket is the sum of the name's units modulo the number of buckets. It is one text, NUL-ended,
// in which rows stand directly behind each other; an empty bucket is the empty text.
//
// A charset row: two digits of name length, five digits of code page, the name in lower case:
// "0800949ksc_5601".
extern const wchar_t* const kCharsetBuckets[kCharsetBucketCount];
// An entity row: one character '0' + name length, four digits of the code point, the name in lower
// case: "60216oslash".
extern const wchar_t* const kEntityBuckets[kEntityBucketCount];

} // namespace ObLibX
