#include "ObLibX/src/xml/names/XmlCharacters.h"

namespace ObLibX {

bool SameName(const wchar_t* one, const wchar_t* other, std::size_t length, bool ignoreCase) {
    bool folds = ignoreCase;
    for (std::size_t i = 0; i < length; ++i) {
        if (one[i] != other[i]) {
            if (!folds || FoldAscii(one[i]) != FoldAscii(other[i])) {
                return false;
            }
        } else if (one[i] >= 0x80) {
            folds = false;
        }
    }
    return true;
}

} // namespace ObLibX
