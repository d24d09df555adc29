// What a mail page makes of the text with links that it is handed.
#pragma once

#include <string>
#include <vector>

namespace mailpage {

struct LinkedFile {
    std::wstring name; // empty where the text is neither of the two forms
    std::wstring link;
};

struct LinkText {
    std::vector<LinkedFile> files;
    std::wstring message; // for the mail: lines that end in \n, without fields and marks
    std::wstring popup;   // for the sender, not for the mail; empty without one
};

// Reads both forms, whose fields are separated by "|":
//
//   0| |NAME|LINK|SENTENCE|...|#POPUP_MESSAGE_BEGIN#TEXT#POPUP_MESSAGE_END#   files that were
//       uploaded, the part after the 0 for each of them; five sentences, of which none is shown
//       where it is empty
//   ||NAME LINK||NAME LINK|||SENTENCE|||PROVIDER||PROVIDER||                   files that were
//   there
//
// A name may contain "|", a link has none. Any other text is one link and goes into the mail as it
// is.
LinkText ReadLinkText(const std::wstring& text);

} // namespace mailpage
