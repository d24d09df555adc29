// Which font takes the place of another one, and the text that identifies a font.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "ObLib/Src/ObString.h"

namespace ObLibX {

inline constexpr std::int32_t kAnyFontSize = -1;
inline constexpr std::int32_t kNormalFontWeight = 400;

// Bits of a font's style.
inline constexpr std::int32_t kFontItalic = 1;
inline constexpr std::int32_t kFontUnderline = 2;
inline constexpr std::int32_t kFontStrikeout = 4;

struct FontRequest {
    ObLib::ObString name;
    std::int32_t size = 0; // points
    std::int32_t weight = kNormalFontWeight;
    std::int32_t style = 0;
};

// "name/size/weight/style" with the name in lower case.
ObLib::ObString FontKey(const FontRequest& font);

// The substitutions of the dialog description. On the thread of the dialogs.
class FontSubstitution {
public:
    // Where one font is entered twice, the first entry counts.
    void Add(const ObLib::ObString& origName, std::int32_t origSize,
             const ObLib::ObString& substName, std::int32_t substSize);

    // The font to use for the wanted one: an entry of its name and size, else one of its name for
    // any size, which leaves the size as it is, else the wanted one. Weight and style stay.
    [[nodiscard]] FontRequest Apply(const FontRequest& wanted) const;

private:
    struct Entry {
        ObLib::ObString origName;
        std::int32_t origSize;
        ObLib::ObString substName;
        std::int32_t substSize;
    };
    [[nodiscard]] const Entry* Find(const FontRequest& wanted) const;

    std::map<ObLib::ObString, Entry> entries_; // by the FontKey of the replaced font
};

} // namespace ObLibX
