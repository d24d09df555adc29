// The files that are attached to several PDFs, in one.
#pragma once

#include <map>
#include <string>

#include <qpdf/QPDF.hh>

#include "services/transforms/combine/PdfCopier.h"

namespace transforms::combine {

// Those of the table that readers show; a file in a comment is part of its page.
class PdfAttachments {
public:
    // By their names, as objects of the target.
    using Files = std::map<std::string, QPDFObjectHandle>;
    static Files Copy(PdfCopier& copier, QPDF& source);

    // A name that is taken gets a number.
    void Add(const Files& files);
    void Write(QPDFObjectHandle catalog);

private:
    Files files_; // in the order that readers search
};

} // namespace transforms::combine
