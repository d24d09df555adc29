// The bookmarks of several PDFs in one: each part has one, with its own below.
#pragma once

#include <string>

#include <qpdf/QPDF.hh>

#include "services/transforms/combine/PdfCopier.h"

namespace transforms::combine {

class PdfBookmarks {
public:
    explicit PdfBookmarks(QPDF& target);

    // A bookmark of the target that leads to the page, with copies of the source's bookmarks below.
    // Throws PdfRefusal when those are nested too deeply.
    QPDFObjectHandle Copy(PdfCopier& copier, PdfDestinations& places, QPDF& source,
                          const std::string& title, const QPDFObjectHandle& page);
    void Add(QPDFObjectHandle bookmark);
    void Write(QPDFObjectHandle catalog) { catalog.replaceKey("/Outlines", root_); }

private:
    void AddBelow(QPDFObjectHandle parent, QPDFObjectHandle item);

    QPDF& target_;
    QPDFObjectHandle root_;
};

} // namespace transforms::combine
