// Documents of so many pages, paragraphs or parts.
#pragma once

#include <string>

#include "tests/unit/services/transforms/documents/OoxmlSamples.h"
#include "tests/unit/services/transforms/documents/PdfBuilder.h"

namespace samples {

// Square pages of so many points.
inline std::string ManyPages(int count, int side = 9) {
    const std::string box = std::to_string(side) + " " + std::to_string(side);
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    std::string kids;
    for (int page = 0; page < count; ++page) kids += std::to_string(page + 4) + " 0 R ";
    pdf.Add("<</Type /Pages /Kids [" + kids + "] /Count " + std::to_string(count) + ">>");
    pdf.AddStream("", "KEPT");
    for (int page = 0; page < count; ++page) {
        pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 " + box +
                "] /Contents 3 0 R /PieceInfo <</A (CANARY)>>>>");
    }
    return pdf.File();
}

inline std::string ManyParagraphs(int count) {
    std::string text = std::string(kXmlStart) + "<w:document xmlns:w=\"" OB_W "\"><w:body>";
    for (int at = 0; at < count; ++at) {
        text += "<w:p w:rsidR=\"00CANARY\"><w:r><w:t>KEPT</w:t></w:r></w:p>";
    }
    ZipBuilder zip = Docx();
    return zip.Set("word/document.xml", text + "</w:body></w:document>").File();
}

inline std::string ManyPictures(int count) {
    ZipBuilder zip = Docx();
    std::string links = zip.Content("word/_rels/document.xml.rels");
    std::string more;
    for (int at = 0; at < count; ++at) {
        const std::string name = "media/more" + std::to_string(at) + ".jpeg";
        zip.Add("word/" + name, Photo());
        more += "<Relationship Id=\"more" + std::to_string(at) +
                "\" Type=\"" OB_OFFICE "/relationships/image\" Target=\"" + name + "\"/>";
    }
    links.insert(links.find("</Relationships>"), more);
    return zip.Set("word/_rels/document.xml.rels", links).File();
}

} // namespace samples
