// Places inside a PDF to which links, bookmarks and actions lead.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "services/transforms/documents/PdfPages.h"

namespace transforms::combine {

// Of one file; the pages are the file's. One thread.
class PdfDestinations {
public:
    PdfDestinations(QPDF& pdf, const std::vector<documents::PdfPage>& pages);

    // An array whose first item is a page of the file, for a name, an array with a page and one
    // with the page's number from 0 on. Null for a place that the file doesn't have.
    QPDFObjectHandle Place(QPDFObjectHandle destination);

    // Whether the key's value is a place in the file itself: a link's, or of an action that leads
    // there. A bookmark's isn't known by its dictionary alone.
    static bool IsPlace(QPDFObjectHandle& holder, const std::string& key);

private:
    using Names = std::map<std::string, QPDFObjectHandle>;
    const Names& ReadNames();

    QPDF& pdf_;
    std::vector<QPDFObjectHandle> pages_;
    std::set<QPDFObjGen> isPage_;
    std::optional<Names> names_; // read when the first name is met
};

} // namespace transforms::combine
