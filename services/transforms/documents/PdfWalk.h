// Visits the objects of a PDF.
#pragma once

#include <functional>

#include <qpdf/QPDFObjectHandle.hh>

#include "services/transforms/raster/PictureControl.h"

namespace transforms::documents {

// Calls `visit` with every array, dictionary and stream that can be reached from `root`, each once
// and before what it contains, without recursion: objects refer to each other as their file likes.
// `steps`, which may be null, learns of each.
void VisitPdfObjects(QPDFObjectHandle root, const std::function<void(QPDFObjectHandle&)>& visit,
                     PictureSteps* steps = nullptr);

} // namespace transforms::documents
