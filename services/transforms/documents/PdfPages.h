// The pages of a PDF in their order, found without recursion: a damaged tree may be as deep as its
// file is long.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include <qpdf/QPDF.hh>

#include "services/transforms/documents/PdfRefusal.h"

namespace transforms::documents {

// Trees of pages, bookmarks and form fields that are deeper count as damaged: whoever reads the
// result may recurse.
inline constexpr std::size_t kDeepestTree = 500;

inline constexpr std::array kInheritedByPages = {"/Resources", "/MediaBox", "/CropBox", "/Rotate"};
using InheritedByPage = std::array<QPDFObjectHandle, kInheritedByPages.size()>;

struct PdfPage {
    QPDFObjectHandle page;
    InheritedByPage inherited; // from the nodes above; not initialized where there is none
};

// A page that is twice in the tree is twice in the list. Throws PdfRefusal for a tree that loops,
// is too deep, or has no page.
std::vector<PdfPage> PagesOf(QPDF& pdf);

// The dictionaries among the items of an array; none of anything else.
std::vector<QPDFObjectHandle> DictionariesOf(const QPDFObjectHandle& array);

} // namespace transforms::documents
