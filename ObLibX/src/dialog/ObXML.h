// The description of all dialogs, as a tree.
#pragma once

#include "ObLibX/src/dialog/ObXMLNode.h"

namespace ObLibX {

// The root element of the description. One a process, on the thread of the dialogs.
class ObXML : public ObXMLNode {
public:
    // Replaces the tree by that of `text`, which is read as far as it could be indexed: what else
    // is wrong with it isn't reported. False when there is no element at all: the tree is then
    // empty and Error() is the text 62003. Throws std::bad_alloc and keeps the tree.
    bool LoadText(const ObLib::ObString& text);

    // Of the last LoadText; empty after a success.
    [[nodiscard]] const ObLib::ObString& Error() const { return error_; }

private:
    ObLib::ObString error_;
};

} // namespace ObLibX
