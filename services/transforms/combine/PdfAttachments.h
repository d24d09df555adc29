// The files that are attached to several PDFs, in one.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <qpdf/QPDF.hh>

#include "services/transforms/combine/PdfCopier.h"
#include "services/transforms/combine/PdfNames.h"

namespace transforms::combine {

// Those of the table that readers show; a file in a comment is part of its page.
class PdfAttachments {
public:
    // Objects of the target; names may be equal.
    using Files = std::vector<PdfName>;
    static Files Copy(PdfCopier& copier, QPDF& source);

    // A name that is taken gets a number.
    void Add(const Files& files);
    void Write(QPDFObjectHandle catalog);

private:
    std::map<std::string, QPDFObjectHandle> files_;
    std::map<std::string, int> numbers_; // the last one that a name got
};

} // namespace transforms::combine
