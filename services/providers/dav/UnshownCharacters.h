// Characters that change how a line of text looks without being seen in it.
#pragma once

#include <algorithm>
#include <iterator>

namespace providers {

// Control characters, separators of lines and paragraphs, and the marks, embeddings and isolates
// that turn round the order in which others are shown. Joiners aren't among them: scripts and
// pictures of several characters need these.
inline bool IsUnshown(wchar_t character) {
    struct Range {
        wchar_t first;
        wchar_t last;
    };
    constexpr Range kRanges[] = {
        {0x0000, 0x001F}, {0x007F, 0x009F}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069},
    };
    return std::any_of(std::begin(kRanges), std::end(kRanges), [character](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

} // namespace providers
