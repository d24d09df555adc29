// The bound on streams that are decoded whole into memory: a megabyte of a file can become a
// gigabyte. Streams that are copied as they are coded have no such bound.
#pragma once

#include <cstdint>
#include <vector>

#include <qpdf/QPDF.hh>

#include "services/transforms/raster/PictureControl.h"

namespace transforms::documents {

// Bytes. The library has up to six times as much at once, and the work process has a limit.
inline constexpr std::uint64_t kMostDecoded = std::uint64_t{128} << 20;

// Throws PdfRefusal with TooLarge when these streams decode to more than kMostDecoded in sum. They
// are decoded block by block, and no further than that. A stream in a coding that the library
// doesn't know, or a damaged one, counts as far as it is decoded: whoever reads it then learns of
// it. `steps`, which may be null, learns of each block.
void RequireStreamsFit(const std::vector<QPDFObjectHandle>& streams, PictureSteps* steps = nullptr);

// The same for the contents of a page, which are one stream or an array of streams.
void RequireContentsFit(QPDFObjectHandle page, PictureSteps* steps = nullptr);

// The same for each stream in which the file packs objects; before any of these is asked for, but
// for those that the library asks for while it opens the file: what the keys of encryption are made
// of. Damaged when such a stream is itself in a packed stream.
void RequirePackedObjectsFit(QPDF& pdf, PictureSteps* steps = nullptr);

} // namespace transforms::documents
