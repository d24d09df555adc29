// Reads many units at once: looks for a unit of a small set, eight at a time, and reads whole nodes
// that way. On 64-bit Windows the processor always has the vector instructions for it.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/names/XmlCharacters.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ObLibX {

struct NodeScan;
struct ScannerState;

// ---- One unit of a small set

// A set is a type with One(unit), which is true for its members, and with Eight(units), which marks
// the SIMD lane of each member. Eight may mark others too: FindUnit asks One about a marked lane.
struct EqualTo {
    wchar_t unit;
    bool One(wchar_t other) const { return other == unit; }
#if defined(__SSE2__)
    __m128i Eight(__m128i units) const {
        return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
    }
#endif
};

// What ends a value, or the part of a tag between values.
struct EqualsOrGreater {
    bool One(wchar_t unit) const { return unit == L'=' || unit == L'>'; }
#if defined(__SSE2__)
    __m128i Eight(__m128i units) const {
        return _mm_or_si128(EqualTo{L'='}.Eight(units), EqualTo{L'>'}.Eight(units));
    }
#endif
};

#if defined(__SSE2__)
// White space and all other control characters.
inline __m128i EightUpToBlank(__m128i units) {
    return _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(L' ')), _mm_setzero_si128());
}
#endif

struct TagNameEnd {
    bool One(wchar_t unit) const { return EndsTagName(unit); }
#if defined(__SSE2__)
    __m128i Eight(__m128i units) const {
        return _mm_or_si128(EightUpToBlank(units),
                            _mm_or_si128(EqualTo{L'/'}.Eight(units), EqualTo{L'>'}.Eight(units)));
    }
#endif
};

struct NameEnd {
    bool One(wchar_t unit) const { return EndsName(unit); }
#if defined(__SSE2__)
    // The backslash, and all units up to '?': each that ends a name, and '0' to '9' and ':' too.
    __m128i Eight(__m128i units) const {
        const __m128i beyond = _mm_subs_epu16(units, _mm_set1_epi16(L'?'));
        return _mm_or_si128(_mm_cmpeq_epi16(beyond, _mm_setzero_si128()),
                            EqualTo{L'\\'}.Eight(units));
    }
#endif
};

struct AttributeNameEnd {
    bool One(wchar_t unit) const { return EndsAttributeName(unit); }
#if defined(__SSE2__)
    __m128i Eight(__m128i units) const {
        const __m128i fromEquals = _mm_sub_epi16(units, _mm_set1_epi16(L'=')); // = > ? are 0 1 2
        const __m128i beyond = _mm_subs_epu16(fromEquals, _mm_set1_epi16(2));
        return _mm_or_si128(_mm_or_si128(EightUpToBlank(units), EqualTo{L'/'}.Eight(units)),
                            _mm_cmpeq_epi16(beyond, _mm_setzero_si128()));
    }
#endif
};

struct UnquotedValueEnd {
    bool One(wchar_t unit) const { return EndsUnquotedValue(unit); }
#if defined(__SSE2__)
    __m128i Eight(__m128i units) const {
        return _mm_or_si128(EightUpToBlank(units), EqualTo{L'>'}.Eight(units));
    }
#endif
};

// The first unit of the set in [at, end), `end` when there is none.
template <typename Set>
inline const wchar_t* FindUnit(const wchar_t* at, const wchar_t* end, Set set) {
#if defined(__SSE2__)
    static_assert(sizeof(wchar_t) == 2);
    while (end - at >= 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int found = _mm_movemask_epi8(set.Eight(units));
        if (found == 0) {
            at += 8;
            continue;
        }
        at += __builtin_ctz(static_cast<unsigned>(found)) / 2;
        if (set.One(*at)) {
            return at;
        }
        ++at;
    }
#endif
    while (at != end && !set.One(*at)) {
        ++at;
    }
    return at;
}

// ---- A whole node

// Reads one node, with the same result as NodeRules. False, with nothing changed, for what is left
// to the rules: document types, nodes with an error, and a node that the end of the buffer cuts
// off. Allocates nothing.
bool QuickNode(ScannerState& scanner, NodeScan& scan);

} // namespace ObLibX
