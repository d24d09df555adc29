// Texts, workbooks and presentations in ODF with canaries in the places that are cleaned.
#pragma once

#include <string>

#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/documents/ZipBuilder.h"

namespace samples {

#define OB_ODF "urn:oasis:names:tc:opendocument:xmlns:"

inline constexpr char kOdfNamespaces[] =
    " xmlns:office=\"" OB_ODF "office:1.0\" xmlns:text=\"" OB_ODF "text:1.0\""
    " xmlns:meta=\"" OB_ODF "meta:1.0\" xmlns:config=\"" OB_ODF "config:1.0\""
    " xmlns:table=\"" OB_ODF "table:1.0\" xmlns:style=\"" OB_ODF "style:1.0\""
    " xmlns:draw=\"" OB_ODF "drawing:1.0\" xmlns:presentation=\"" OB_ODF "presentation:1.0\""
    " xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:xlink=\"http://www.w3.org/1999/xlink\""
    " xmlns:officeooo=\"http://openoffice.org/2009/office\""
    " xmlns:loext=\"urn:org:documentfoundation:names:experimental:office:xmlns:loext:1.0\"";

inline std::string OdfXml(const std::string& root, const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<office:" + root + kOdfNamespaces + ">" +
           content + "</office:" + root + ">";
}

// The mark of a manifest, and a row of it.
inline std::string ManifestRow(const std::string& path, const std::string& type,
                               const std::string& inside = {}) {
    const std::string start = "<manifest:file-entry manifest:full-path=\"" + path +
                              "\" manifest:media-type=\"" + type + "\"";
    return inside.empty() ? start + "/>" : start + ">" + inside + "</manifest:file-entry>";
}

inline std::string ManifestXml(const std::string& kind, const std::string& rows) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<manifest:manifest xmlns:manifest=\"" OB_ODF
           "manifest:1.0\">" +
           ManifestRow("/", "application/vnd.oasis.opendocument." + kind) +
           ManifestRow("content.xml", "text/xml") + ManifestRow("styles.xml", "text/xml") +
           ManifestRow("settings.xml", "text/xml") + ManifestRow("meta.xml", "text/xml") +
           ManifestRow("manifest.rdf", "application/rdf+xml") +
           ManifestRow("Thumbnails/thumbnail.png", "image/png") +
           ManifestRow("Pictures/photo.jpg", "image/jpeg") +
           ManifestRow("Configurations2/", "application/vnd.sun.xml.ui.configuration") +
           ManifestRow("Configurations2/accelerator/current.xml", "") + rows +
           "</manifest:manifest>";
}

inline ZipBuilder Odf(const std::string& kind, const std::string& content,
                      const std::string& rows = {}) {
    ZipBuilder zip;
    zip.Add("mimetype", "application/vnd.oasis.opendocument." + kind, true);
    zip.Add("Thumbnails/thumbnail.png", "CANARY", true);
    zip.Add("content.xml", OdfXml("document-content", content));
    zip.Add("styles.xml",
            OdfXml("document-styles", "<style:text-properties officeooo:rsid=\"CANARY\" "
                                      "officeooo:paragraph-rsid=\"CANARY\"/>"));
    zip.Add("settings.xml",
            OdfXml("document-settings",
                   "<config:config-item config:name=\"PrinterName\">CANARY</config:config-item>"
                   "<config:config-item config:name=\"PrinterSetup\">CANARY</config:config-item>"
                   "<config:config-item config:name=\"Rsid\">CANARY</config:config-item>"
                   "<config:config-item config:name=\"ColorTableURL\">file:///home/CANARY/a.soc"
                   "</config:config-item>"
                   "<config:config-item config:name=\"AddParaTableSpacing\">true"
                   "</config:config-item>"));
    zip.Add("meta.xml", OdfXml("document-meta", "<dc:creator>CANARY</dc:creator>"));
    zip.Add("manifest.rdf", "<rdf>CANARY</rdf>");
    zip.Add("Pictures/photo.jpg", Photo(), true);
    zip.Add("Configurations2/", "", true);
    zip.Add("Configurations2/accelerator/current.xml", "", true); // as programs write it
    zip.Add("old-content.xml", "<a>CANARY</a>");
    zip.Add("META-INF/manifest.xml", ManifestXml(kind, rows));
    return zip;
}

inline ZipBuilder Odt() {
    return Odf(
        "text",
        "<office:body><office:text><text:tracked-changes><text:changed-region text:id=\"c1\">"
        "<text:deletion><office:change-info><dc:creator>CANARY</dc:creator><dc:date>CANARY</"
        "dc:date>"
        "</office:change-info><text:p>KEPT OLD</text:p></text:deletion></text:changed-region>"
        "</text:tracked-changes><text:p>KEPT<office:annotation office:name=\"1\"><dc:creator>CANARY"
        "</dc:creator><dc:date>CANARY</dc:date><meta:date-string>CANARY</meta:date-string>"
        "<loext:sender-initials>CANARY</loext:sender-initials><text:p>KEPT NOTE</text:p>"
        "</office:annotation><text:a xlink:href=\"file:///C:/CANARY/Other.odt\">KEPT LINK</text:a>"
        "<text:hidden-text text:string-value=\"KEPT\"/></text:p></office:text></office:body>");
}

inline ZipBuilder Ods() {
    return Odf("spreadsheet",
               "<office:automatic-styles><style:style style:name=\"ta1\"><style:table-properties "
               "table:display=\"true\"/></style:style><style:style style:name=\"ta2\">"
               "<style:table-properties table:display=\"false\"/></style:style>"
               "</office:automatic-styles><office:body><office:spreadsheet>"
               "<table:table table:name=\"KEPT\" table:style-name=\"ta1\"/>"
               "<table:table table:name=\"KEPT HIDDEN\" table:style-name=\"ta2\"/>"
               "</office:spreadsheet></office:body>");
}

inline ZipBuilder Odp() {
    return Odf("presentation",
               "<office:automatic-styles><style:style style:name=\"dp1\">"
               "<style:drawing-page-properties presentation:visibility=\"hidden\"/></style:style>"
               "</office:automatic-styles><office:body><office:presentation>"
               "<draw:page draw:name=\"KEPT\" draw:style-name=\"dp1\"/>"
               "<draw:page draw:name=\"KEPT TOO\"/></office:presentation></office:body>");
}

} // namespace samples
