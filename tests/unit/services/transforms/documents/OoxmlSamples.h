// Texts, workbooks and presentations in OOXML with canaries in the places that are cleaned.
#pragma once

#include <string>

#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/documents/ZipBuilder.h"

namespace samples {

inline constexpr char kXmlStart[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";

// The start of an address by which relationships and content types are named.
#define OB_OFFICE "http://schemas.openxmlformats.org/officeDocument/2006"
#define OB_PACKAGE "http://schemas.openxmlformats.org/package/2006"
#define OB_W "http://schemas.openxmlformats.org/wordprocessingml/2006/main"
#define OB_S "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
#define OB_P "http://schemas.openxmlformats.org/presentationml/2006/main"

struct Link {
    std::string id;
    std::string type; // the end of the type
    std::string target;
    bool isExternal = false;
};

inline std::string Links(std::initializer_list<Link> links) {
    std::string text =
        std::string(kXmlStart) + "<Relationships xmlns=\"" OB_PACKAGE "/relationships\">";
    for (const Link& link : links) {
        const bool isOfPackage = link.type.starts_with("metadata/");
        text += "<Relationship Id=\"" + link.id + "\" Type=\"" +
                (isOfPackage ? OB_PACKAGE : OB_OFFICE) + "/relationships/" + link.type +
                "\" Target=\"" + link.target + "\"" +
                (link.isExternal ? " TargetMode=\"External\"" : "") + "/>";
    }
    return text + "</Relationships>";
}

struct Type {
    std::string part;
    std::string type; // the end of the type
};

inline std::string Types(std::initializer_list<Type> types) {
    std::string text = std::string(kXmlStart) +
                       "<Types xmlns=\"" OB_PACKAGE "/content-types\">"
                       "<Default Extension=\"rels\" ContentType=\"application/"
                       "vnd.openxmlformats-package.relationships+xml\"/>"
                       "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
                       "<Default Extension=\"jpeg\" ContentType=\"image/jpeg\"/>"
                       "<Default Extension=\"bin\" ContentType=\"application/"
                       "vnd.openxmlformats-officedocument.spreadsheetml.printerSettings\"/>";
    for (const Type& type : types) {
        text += "<Override PartName=\"" + type.part + "\" ContentType=\"application/vnd." +
                type.type + "\"/>";
    }
    return text + "</Types>";
}

inline void AddProperties(ZipBuilder& zip) {
    zip.Add("docProps/core.xml",
            "<cp:coreProperties xmlns:cp=\"" OB_PACKAGE "/metadata/core-properties\" "
            "xmlns:dc=\"http://purl.org/dc/elements/1.1/\">"
            "<dc:creator>CANARY</dc:creator></cp:coreProperties>");
    zip.Add("docProps/app.xml", "<Properties xmlns=\"" OB_OFFICE "/extended-properties\">"
                                "<Company>CANARY</Company></Properties>");
    zip.Add("docProps/custom.xml", "<Properties xmlns=\"" OB_OFFICE "/custom-properties\">"
                                   "<property name=\"CANARY\"/></Properties>");
    zip.Add("docProps/thumbnail.jpeg", Photo());
}

inline std::string RootLinks(const std::string& main) {
    return Links({{"rId1", "officeDocument", main},
                  {"rId2", "metadata/core-properties", "docProps/core.xml"},
                  {"rId3", "extended-properties", "docProps/app.xml"},
                  {"rId4", "custom-properties", "/docProps/custom.xml"},
                  {"rId5", "metadata/thumbnail", "docProps/thumbnail.jpeg"}});
}

// Adds a relationship to the end of a list.
inline void AddLink(ZipBuilder& zip, const std::string& list, const std::string& type,
                    const std::string& target, bool isExternal = false) {
    std::string& links = zip.Content(list);
    links.insert(links.find("</Rel"), "<Relationship Id=\"added" + std::to_string(links.size()) +
                                          "\" Type=\"" + type + "\" Target=\"" + target + "\"" +
                                          (isExternal ? " TargetMode=\"External\"/>" : "/>"));
}

// Gives a part a content type, by the type's whole name without "application/vnd.".
inline void AddType(ZipBuilder& zip, const std::string& part, const std::string& type) {
    std::string& types = zip.Content("[Content_Types].xml");
    types.insert(types.find("</Types"), "<Override PartName=\"/" + part +
                                            "\" ContentType=\"application/vnd." + type + "\"/>");
}

// The same sample as a document of another kind: its main part gets another content type.
inline ZipBuilder AsKind(ZipBuilder zip, const std::string& old, const std::string& type) {
    std::string& types = zip.Content("[Content_Types].xml");
    types.replace(types.find(old), old.size(), type);
    return zip;
}

// A text with a comment, tracked changes, a picture, a template and a link.
inline ZipBuilder Docx() {
    ZipBuilder zip;
    zip.Add(
        "[Content_Types].xml",
        Types(
            {{"/word/document.xml",
              "openxmlformats-officedocument.wordprocessingml.document.main+xml"},
             {"/word/settings.xml", "openxmlformats-officedocument.wordprocessingml.settings+xml"},
             {"/word/comments.xml", "openxmlformats-officedocument.wordprocessingml.comments+xml"},
             {"/word/people.xml", "openxmlformats-officedocument.wordprocessingml.people+xml"},
             {"/docProps/core.xml", "openxmlformats-package.core-properties+xml"}}));
    zip.Add("_rels/.rels", RootLinks("word/document.xml"));
    AddProperties(zip);
    zip.Add("word/document.xml",
            std::string(kXmlStart) +
                "<w:document xmlns:w=\"" OB_W "\" xmlns:r=\"" OB_OFFICE "/relationships\" "
                "xmlns:wp=\"urn:drawing\"><w:body>"
                "<w:p w:rsidR=\"00CANARY\" w:rsidRDefault=\"00CANARY\"><w:r w:rsidRPr=\"CANARY\">"
                "<w:t xml:space=\"preserve\"> KEPT &#13; &amp; 'text' </w:t></w:r>"
                "<w:ins w:id=\"1\" w:author=\"CANARY\" w:date=\"CANARY\"><w:r><w:t>KEPT NEW</w:t>"
                "</w:r></w:ins><w:del w:id=\"2\" w:author='CANARY \"x\"' w:date=\"CANARY\"><w:r>"
                "<w:delText>KEPT OLD</w:delText></w:r></w:del>"
                "<w:r><w:rPr><w:vanish/></w:rPr><w:t>KEPT HIDDEN</w:t></w:r>"
                "<w:hyperlink r:id=\"rId6\"><w:r><w:t>KEPT LINK</w:t></w:r></w:hyperlink>"
                "<wp:docPr id=\"1\" descr=\"C:\\Users\\CANARY\\beach.jpg\"/></w:p>"
                "<w:sectPr w:rsidR=\"CANARY\"><w:printerSettings r:id=\"rId7\"/></w:sectPr>"
                "</w:body></w:document>");
    zip.Add("word/_rels/document.xml.rels",
            Links({{"rId1", "settings", "settings.xml"},
                   {"rId2", "comments", "comments.xml"},
                   {"rId3", "people", "people.xml"},
                   {"rId4", "image", "media/image1.jpeg"},
                   {"rId5", "hyperlink", "https://example.com/KEPT", true},
                   {"rId6", "hyperlink", "file:///C:\\Users\\CANARY\\Other.docx", true},
                   {"rId7", "printerSettings", "printerSettings1.bin"}}));
    zip.Add("word/settings.xml",
            "<w:settings xmlns:w=\"" OB_W "\" xmlns:r=\"" OB_OFFICE "/relationships\" "
            "xmlns:w15=\"http://schemas.microsoft.com/office/word/2012/wordml\">"
            "<w:attachedTemplate r:id=\"rId1\"/><w:mailMerge><w:query w:val=\"CANARY\"/>"
            "</w:mailMerge><w:zoom w:percent=\"100\"/><w:rsids><w:rsidRoot w:val=\"CANARY\"/>"
            "<w:rsid w:val=\"CANARY\"/></w:rsids><w15:docId w15:val=\"{CANARY}\"/></w:settings>");
    zip.Add("word/_rels/settings.xml.rels",
            Links({{"rId1", "attachedTemplate", "file:///C:\\CANARY\\Normal.dotm", true}}));
    zip.Add("word/comments.xml",
            "<w:comments xmlns:w=\"" OB_W "\"><w:comment w:id=\"0\" w:author=\"CANARY\" "
            "w:initials=\"CANARY\" w:date=\"CANARY\"><w:p><w:r><w:t>KEPT COMMENT</w:t></w:r></w:p>"
            "</w:comment></w:comments>");
    zip.Add("word/people.xml",
            "<w15:people xmlns:w15=\"http://schemas.microsoft.com/office/word/2012/wordml\">"
            "<w15:person w15:author=\"CANARY\"/></w15:people>");
    zip.Add("word/media/image1.jpeg", Photo());
    zip.Add("word/printerSettings1.bin", "CANARY");
    zip.Add("word/old.xml", "<w:old xmlns:w=\"" OB_W "\">CANARY</w:old>");
    return zip;
}

// A workbook with comments, persons, a pivot table's cache, a shared history and a hidden sheet.
inline ZipBuilder Xlsx() {
    ZipBuilder zip;
    zip.Add(
        "[Content_Types].xml",
        Types({{"/xl/workbook.xml", "openxmlformats-officedocument.spreadsheetml.sheet.main+xml"},
               {"/xl/revisions/revisionHeaders.xml",
                "openxmlformats-officedocument.spreadsheetml.revisionHeaders+xml"},
               {"/xl/drawings/vmlDrawing1.vml", "openxmlformats-officedocument.vmlDrawing"}}));
    zip.Add("_rels/.rels", RootLinks("/xl/workbook.xml"));
    AddProperties(zip);
    zip.Add("xl/workbook.xml",
            "<workbook xmlns=\"" OB_S "\" xmlns:r=\"" OB_OFFICE "/relationships\" "
            "xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\" "
            "xmlns:xr=\"http://schemas.microsoft.com/office/spreadsheetml/2014/revision\">"
            "<fileSharing userName=\"CANARY\" reservationPassword=\"CC1A\"/><mc:AlternateContent>"
            "<mc:Choice Requires=\"x15\"><x15ac:absPath url=\"C:\\CANARY\\\" xmlns:x15ac=\""
            "http://schemas.microsoft.com/office/spreadsheetml/2010/11/ac\"/></mc:Choice>"
            "</mc:AlternateContent><xr:revisionPtr documentId=\"8_{CANARY}\"/><sheets>"
            "<sheet name=\"KEPT\" sheetId=\"1\" r:id=\"rId1\"/>"
            "<sheet name=\"KEPT HIDDEN\" sheetId=\"2\" state=\"hidden\" r:id=\"rId2\"/></sheets>"
            "</workbook>");
    zip.Add("xl/_rels/workbook.xml.rels",
            Links({{"rId1", "worksheet", "worksheets/sheet1.xml"},
                   {"rId2", "worksheet", "worksheets/sheet2.xml"},
                   {"rId3", "revisionHeaders", "revisions/revisionHeaders.xml"},
                   {"rId4", "pivotCacheDefinition", "pivotCache/pivotCacheDefinition1.xml"},
                   {"rId5", "externalLink", "externalLinks/externalLink1.xml"},
                   {"rId6", "person", "persons/person.xml"}}));
    zip.Add(
        "xl/worksheets/sheet1.xml",
        "<worksheet xmlns=\"" OB_S "\" xmlns:r=\"" OB_OFFICE "/relationships\" "
        "xmlns:xr=\"http://schemas.microsoft.com/office/spreadsheetml/2014/revision\" "
        "xr:uid=\"{CANARY}\"><sheetData><row r=\"1\"><c r=\"A1\" t=\"inlineStr\"><is><t>KEPT</t>"
        "</is></c></row></sheetData><scenarios><scenario name=\"KEPT\" user=\"CANARY\"/>"
        "</scenarios><pageSetup orientation=\"portrait\" r:id=\"rId1\"/></worksheet>");
    zip.Add("xl/worksheets/_rels/sheet1.xml.rels",
            Links({{"rId1", "printerSettings", "../printerSettings/printerSettings1.bin"},
                   {"rId2", "comments", "../comments1.xml"},
                   {"rId3", "threadedComment", "../threadedComments/threadedComment1.xml"},
                   {"rId4", "vmlDrawing", "../drawings/vmlDrawing1.vml"}}));
    zip.Add("xl/worksheets/sheet2.xml", "<worksheet xmlns=\"" OB_S "\"><sheetData/></worksheet>");
    zip.Add("xl/printerSettings/printerSettings1.bin", "CANARY");
    zip.Add("xl/comments1.xml",
            "<comments xmlns=\"" OB_S "\" xmlns:xr=\""
            "http://schemas.microsoft.com/office/spreadsheetml/2014/revision\"><authors>"
            "<author>CANARY</author><author>tc={KEPT-1}</author></authors><commentList>"
            "<comment ref=\"A1\" authorId=\"0\" xr:uid=\"{KEPT-1}\"><text><t>KEPT NOTE</t></text>"
            "</comment></commentList></comments>");
    zip.Add("xl/threadedComments/threadedComment1.xml",
            "<ThreadedComments xmlns=\""
            "http://schemas.microsoft.com/office/spreadsheetml/2018/threadedcomments\">"
            "<threadedComment ref=\"A1\" dT=\"CANARY\" personId=\"{1}\"><text>KEPT</text>"
            "</threadedComment></ThreadedComments>");
    zip.Add("xl/persons/person.xml",
            "<personList xmlns=\""
            "http://schemas.microsoft.com/office/spreadsheetml/2018/threadedcomments\">"
            "<person displayName=\"CANARY\" id=\"{1}\" userId=\"CANARY\" providerId=\"CANARY\"/>"
            "</personList>");
    zip.Add("xl/drawings/vmlDrawing1.vml", "<xml><br>not well-formed, KEPT</xml>");
    zip.Add("xl/pivotCache/pivotCacheDefinition1.xml",
            "<pivotCacheDefinition xmlns=\"" OB_S "\" refreshedBy=\"CANARY\" "
            "refreshedDate=\"4CANARY\" refreshedDateIso=\"CANARY\" recordCount=\"0\"/>");
    zip.Add("xl/externalLinks/externalLink1.xml",
            "<externalLink xmlns=\"" OB_S "\" xmlns:r=\"" OB_OFFICE "/relationships\">"
            "<externalBook r:id=\"rId1\"/></externalLink>");
    zip.Add("xl/externalLinks/_rels/externalLink1.xml.rels",
            Links({{"rId1", "externalLinkPath", "file:///C:\\CANARY\\KEPT.xlsx", true}}));
    zip.Add("xl/revisions/revisionHeaders.xml",
            "<headers xmlns=\"" OB_S "\"><header userName=\"CANARY\"/></headers>");
    zip.Add("xl/revisions/_rels/revisionHeaders.xml.rels",
            Links({{"rId1", "revisionLog", "revisionLog1.xml"}}));
    zip.Add("xl/revisions/revisionLog1.xml", "<revisions xmlns=\"" OB_S "\">CANARY</revisions>");
    return zip;
}

// A presentation with comments of both kinds, a history of changes and a hidden slide.
inline ZipBuilder Pptx() {
    ZipBuilder zip;
    zip.Add("[Content_Types].xml",
            Types({{"/ppt/presentation.xml",
                    "openxmlformats-officedocument.presentationml.presentation.main+xml"},
                   {"/ppt/changesInfos/changesInfo1.xml", "ms-powerpoint.changesinfo+xml"}}));
    zip.Add("_rels/.rels", RootLinks("ppt/presentation.xml"));
    AddProperties(zip);
    zip.Add("ppt/presentation.xml", "<p:presentation xmlns:p=\"" OB_P "\"/>");
    zip.Add("ppt/_rels/presentation.xml.rels",
            Links({{"rId1", "slide", "slides/slide1.xml"},
                   {"rId2", "commentAuthors", "commentAuthors.xml"},
                   {"rId3", "authors", "authors.xml"},
                   {"rId4", "changesInfo", "changesInfos/changesInfo1.xml"},
                   {"rId5", "revisionInfo", "revisionInfo.xml"}}));
    zip.Add("ppt/slides/slide1.xml", "<p:sld xmlns:p=\"" OB_P "\" show=\"0\"><p:cSld name=\"KEPT\">"
                                     "</p:cSld></p:sld>");
    zip.Add("ppt/slides/_rels/slide1.xml.rels",
            Links({{"rId1", "comments", "../comments/comment1.xml"},
                   {"rId2", "comments", "../comments/modern1.xml"},
                   {"rId3", "image", "../media/image1.jpeg"}}));
    zip.Add(
        "ppt/commentAuthors.xml",
        "<p:cmAuthorLst xmlns:p=\"" OB_P "\"><p:cmAuthor id=\"1\" name=\"CANARY\" "
        "initials=\"CANARY\" lastIdx=\"1\" clrIdx=\"0\"><p:extLst><p:ext uri=\"{1}\">"
        "<p15:presenceInfo xmlns:p15=\"http://schemas.microsoft.com/office/powerpoint/2012/main\" "
        "userId=\"CANARY\" providerId=\"CANARY\"/></p:ext></p:extLst></p:cmAuthor>"
        "</p:cmAuthorLst>");
    zip.Add(
        "ppt/authors.xml",
        "<p188:authorLst xmlns:p188=\"http://schemas.microsoft.com/office/powerpoint/2018/8/main\">"
        "<p188:author id=\"{1}\" name=\"CANARY\" initials=\"CANARY\" userId=\"CANARY\" "
        "providerId=\"CANARY\"/></p188:authorLst>");
    zip.Add("ppt/comments/comment1.xml",
            "<p:cmLst xmlns:p=\"" OB_P
            "\"><p:cm authorId=\"1\" dt=\"CANARY\" idx=\"1\"><p:text>KEPT"
            "</p:text></p:cm></p:cmLst>");
    zip.Add(
        "ppt/comments/modern1.xml",
        "<p188:cmLst xmlns:p188=\"http://schemas.microsoft.com/office/powerpoint/2018/8/main\">"
        "<p188:cm id=\"{2}\" authorId=\"{1}\" created=\"CANARY\"><p188:txBody>KEPT</p188:txBody>"
        "</p188:cm></p188:cmLst>");
    zip.Add("ppt/changesInfos/changesInfo1.xml",
            "<pc:chgInfo xmlns:pc=\"urn:x\">CANARY</pc:chgInfo>");
    zip.Add("ppt/revisionInfo.xml", "<p1510:revInfo xmlns:p1510=\"urn:y\" v=\"CANARY\"/>");
    zip.Add("ppt/media/image1.jpeg", Photo());
    return zip;
}

} // namespace samples
