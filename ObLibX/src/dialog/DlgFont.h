// The fonts of all dialogs. On the thread of the dialogs. Each font lives to the end of the process
// and belongs to nobody else. Functions throw std::bad_alloc.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLib/Src/ObString.h"

namespace ObLibX {

// The face of all dialogs, and its size in points: what the description states, else Segoe UI 9, or
// before Windows Vista the system's message font.
ObLib::ObString GetBaseFont(std::int32_t& outSize);

// A font for the screen, after substitution, the same handle for the same one. `size` in points, 0:
// the base size; an empty `name`: the base font; `style`: kFontItalic and the others. Null when the
// system can't make it.
HFONT GetFont(std::int32_t size, const ObLib::ObString& name, std::int32_t weight,
              std::int32_t style);

// From now on another font takes the place of this one; kAnyFontSize: at any size.
void AddFontSubstitution(const ObLib::ObString& origName, std::int32_t origSize,
                         const ObLib::ObString& substName, std::int32_t substSize);

// The face for a dialog's template, cut to `nameCapacity` characters with the NUL, and its size in
// points: the base font if it can be made, else the system's message font. False before Windows
// Vista: the template keeps its own. `module` isn't used.
bool FindDialogFont(HMODULE module, wchar_t* outName, std::size_t nameCapacity,
                    std::int32_t& outSize);

// The font of the first window that this was asked for, and that font in bold, for all windows. One
// that can't be made is null and tried again when it is asked for the next time.
struct SharedFonts {
    HFONT normal = nullptr;
    HFONT bold = nullptr;
};
const SharedFonts& InitSharedBoldFont(HWND window);

// A font that GetFont made.
struct FontEntry {
    ObLib::ObString key; // FontKey
    ObLib::ObString name;
    std::int32_t size = 0;
    std::int32_t weight = 0;
    std::int32_t style = 0;
    HFONT handle = nullptr;
};

// Null for a font that GetFont didn't make.
const FontEntry* FindFontEntry(HFONT handle);

} // namespace ObLibX
