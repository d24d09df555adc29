// Places inside a PDF to which links and bookmarks lead.
//
// A page that is copied to another file takes along what it refers to, but no other page. So places
// are first written with the number that the page will have, and with the page itself at the end.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <qpdf/QPDF.hh>

namespace transforms::documents {

// Of one file whose pages are copied.
class PdfDestinations {
public:
    // `first` is the number that the file's first page will have.
    PdfDestinations(QPDF& pdf, std::size_t first);

    // Replaces pages and names by numbers in a link, a bookmark and the actions of either.
    void Number(QPDFObjectHandle holder);

private:
    QPDFObjectHandle Numbered(QPDFObjectHandle destination) const;
    void ReadNames(QPDF& pdf);

    std::map<QPDFObjGen, std::size_t> numbers_;
    std::map<std::string, QPDFObjectHandle> names_;
};

// Replaces numbers by pages again, once all pages are copied.
void PutPages(QPDFObjectHandle holder, const std::vector<QPDFObjectHandle>& pages);

} // namespace transforms::documents
