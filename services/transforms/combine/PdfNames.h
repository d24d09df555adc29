// The tables of names in a PDF: trees of strings, each with a value.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <qpdf/QPDFObjectHandle.hh>

namespace transforms::combine {

struct PdfName {
    std::string name; // UTF-8
    QPDFObjectHandle value;
};

// The names of the tree in its order, equal ones too; none of what isn't a dictionary. Found
// without recursion, each node once. Throws PdfRefusal for a tree that loops, is too deep or isn't
// made of pairs.
std::vector<PdfName> NamesOf(const QPDFObjectHandle& tree);

} // namespace transforms::combine
