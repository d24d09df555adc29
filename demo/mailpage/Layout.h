// The places of everything in the mail page's window.
#pragma once

#include <windows.h>

#include "demo/mailpage/Drawing.h"

namespace mailpage {

// Areas of the client area, in pixels.
struct Layout {
    RECT frame;   // the browser's own strip at the top
    RECT address; // in it
    RECT card;    // the mail
    RECT title;   // of the card
    RECT toLabel, toField;
    RECT subjectLabel, subjectField;
    RECT body;
    RECT attachments;
    RECT send, attach;
    RECT status;
    int firstLine, secondLine, thirdLine; // below the two fields, above the attachments
};

inline constexpr int kRowHeight = 46; // of an attachment, at 96 dpi

// `rows` is how many attachments are to be seen at once.
Layout MakeLayout(const RECT& client, Scale scale, int rows);

} // namespace mailpage
