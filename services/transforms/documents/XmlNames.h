// The XML namespaces of office documents that rules name.
#pragma once

#include <cstdint>
#include <string_view>

namespace transforms::documents {

// One value for a namespace in all of its spellings: the formats' strict form has others.
enum class Ns : std::uint8_t {
    None, // no namespace
    Other,
    Any, // in a rule: whatever the namespace is
    // OOXML.
    Word,
    Word2010,
    Word2012,
    WordDates, // later namespaces with a date in universal time
    Sheet,
    SheetRevision,
    SheetPath,
    SheetThreads,
    Slides,
    Slides2012,
    Slides2018,
    Compatibility,
    Relationship, // attributes that refer to a relationship
    PackageRelationships,
    ContentTypes,
    // ODF.
    Office,
    OdfText,
    OdfMeta,
    OdfConfig,
    OdfTable,
    OdfStyle,
    OdfDraw,
    OdfPresentation,
    OdfManifest,
    OfficeExtension, // one program's own attributes
    DublinCore,
    XLink,
};

Ns NsOf(std::string_view address);

} // namespace transforms::documents
