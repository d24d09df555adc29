#include "services/transforms/documents/XmlNames.h"

#include <algorithm>
#include <iterator>

namespace transforms::documents {
namespace {

struct NsRow {
    std::string_view address;
    Ns ns;
};

constexpr NsRow kNamespaces[] = {
    {"http://schemas.openxmlformats.org/wordprocessingml/2006/main", Ns::Word},
    {"http://purl.oclc.org/ooxml/wordprocessingml/main", Ns::Word},
    {"http://schemas.microsoft.com/office/word/2010/wordml", Ns::Word2010},
    {"http://schemas.microsoft.com/office/word/2012/wordml", Ns::Word2012},
    {"http://schemas.microsoft.com/office/word/2018/wordml/cex", Ns::WordDates},
    {"http://schemas.microsoft.com/office/word/2023/wordml/word16du", Ns::WordDates},
    {"http://schemas.openxmlformats.org/spreadsheetml/2006/main", Ns::Sheet},
    {"http://purl.oclc.org/ooxml/spreadsheetml/main", Ns::Sheet},
    {"http://schemas.microsoft.com/office/spreadsheetml/2014/revision", Ns::SheetRevision},
    {"http://schemas.microsoft.com/office/spreadsheetml/2015/revision2", Ns::SheetRevision},
    {"http://schemas.microsoft.com/office/spreadsheetml/2016/revision3", Ns::SheetRevision},
    {"http://schemas.microsoft.com/office/spreadsheetml/2010/11/ac", Ns::SheetPath},
    {"http://schemas.microsoft.com/office/spreadsheetml/2018/threadedcomments", Ns::SheetThreads},
    {"http://schemas.openxmlformats.org/presentationml/2006/main", Ns::Slides},
    {"http://purl.oclc.org/ooxml/presentationml/main", Ns::Slides},
    {"http://schemas.microsoft.com/office/powerpoint/2012/main", Ns::Slides2012},
    {"http://schemas.microsoft.com/office/powerpoint/2018/8/main", Ns::Slides2018},
    {"http://schemas.openxmlformats.org/markup-compatibility/2006", Ns::Compatibility},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships", Ns::Relationship},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships", Ns::Relationship},
    {"http://schemas.openxmlformats.org/package/2006/relationships", Ns::PackageRelationships},
    {"http://schemas.openxmlformats.org/package/2006/content-types", Ns::ContentTypes},
    {"urn:oasis:names:tc:opendocument:xmlns:office:1.0", Ns::Office},
    {"urn:oasis:names:tc:opendocument:xmlns:text:1.0", Ns::OdfText},
    {"urn:oasis:names:tc:opendocument:xmlns:meta:1.0", Ns::OdfMeta},
    {"urn:oasis:names:tc:opendocument:xmlns:config:1.0", Ns::OdfConfig},
    {"urn:oasis:names:tc:opendocument:xmlns:table:1.0", Ns::OdfTable},
    {"urn:oasis:names:tc:opendocument:xmlns:style:1.0", Ns::OdfStyle},
    {"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0", Ns::OdfDraw},
    {"urn:oasis:names:tc:opendocument:xmlns:presentation:1.0", Ns::OdfPresentation},
    {"urn:oasis:names:tc:opendocument:xmlns:manifest:1.0", Ns::OdfManifest},
    {"urn:org:documentfoundation:names:experimental:office:xmlns:loext:1.0", Ns::OfficeExtension},
    {"http://openoffice.org/2009/office", Ns::OfficeExtension},
    {"http://purl.org/dc/elements/1.1/", Ns::DublinCore},
    {"http://www.w3.org/1999/xlink", Ns::XLink},
};

} // namespace

Ns NsOf(std::string_view address) {
    if (address.empty()) return Ns::None;
    const auto row = std::ranges::find(kNamespaces, address, &NsRow::address);
    return row == std::end(kNamespaces) ? Ns::Other : row->ns;
}

} // namespace transforms::documents
