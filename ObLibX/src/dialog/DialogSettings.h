// What all dialogs of the process share: the description, read once, and the fonts that it states.
#pragma once

#include "ObLibX/src/dialog/DialogDescription.h"

namespace ObLibX {

// Written once, on the thread of the dialogs, which alone reads it; no lock.
struct DialogSettings {
    BaseFont font;                 // without a name until the first GetBaseFont
    FontSubstitution substitution; // AddFontSubstitution
    ObXML description;
    bool isTried = false; // the description was looked for
};

DialogSettings& ProcessDialogSettings();

// Reads the description at the first call, and never again, whether it was found or not: the
// resource DLG_XML of type RT_HTML in the language module, or else in the program's. Its bytes are
// text in the system's ANSI code page. Throws std::bad_alloc.
void LoadDialogDefaults();

} // namespace ObLibX
