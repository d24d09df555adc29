// Kinds of office documents beside the usual ones, with a canary in every place from which personal
// data goes: templates, documents with macros, sensitivity labels, drawings.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/services/transforms/documents/OdfSamples.h"
#include "tests/unit/services/transforms/documents/OoxmlSamples.h"
#include "tests/unit/services/transforms/documents/PackageJudge.h"

using namespace samples;

namespace {

constexpr char kTextType[] = "openxmlformats-officedocument.wordprocessingml.document.main+xml";
constexpr char kTableType[] = "openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
constexpr char kSlidesType[] = "openxmlformats-officedocument.presentationml.presentation.main+xml";

// Cleaned as the document that it was made of, with its kind kept.
void ExpectCleanedAs(const ZipBuilder& usual, const std::string& old, const std::string& type) {
    const CleanedDocument cleaned = ExpectPackageCleaned(AsKind(usual, old, type));
    const CleanedDocument other = ExpectPackageCleaned(usual);
    EXPECT_EQ(cleaned.removed, other.removed) << type;
    EXPECT_EQ(cleaned.stays, other.stays) << type;
    EXPECT_NE(PartOf(cleaned.file, "[Content_Types].xml").find(type), std::string::npos);
    for (const ZipPart& part : PartsOf(other.file)) {
        if (part.name == "[Content_Types].xml") continue;
        EXPECT_EQ(PartOf(cleaned.file, part.name), part.content) << type << ": " << part.name;
    }
}

TEST(OfficeTemplates, AreCleanedAsTheDocumentsThatAreMadeOfThem) {
    const std::string office = "openxmlformats-officedocument.";
    ExpectCleanedAs(Docx(), kTextType, office + "wordprocessingml.template.main+xml");
    ExpectCleanedAs(Docx(), kTextType, "ms-word.template.macroEnabledTemplate.main+xml");
    ExpectCleanedAs(Xlsx(), kTableType, office + "spreadsheetml.template.main+xml");
    ExpectCleanedAs(Xlsx(), kTableType, "ms-excel.template.macroEnabled.main+xml");
    ExpectCleanedAs(Pptx(), kSlidesType, office + "presentationml.template.main+xml");
    ExpectCleanedAs(Pptx(), kSlidesType, office + "presentationml.slideshow.main+xml");
    ExpectCleanedAs(Pptx(), kSlidesType, "ms-powerpoint.template.macroEnabled.main+xml");
}

// A template of texts contains its building blocks in a document of their own.
TEST(OfficeTemplates, LoseWhoChangedTheirBuildingBlocks) {
    ZipBuilder zip = AsKind(Docx(), kTextType,
                            "openxmlformats-officedocument.wordprocessingml.template.main+xml");
    AddLink(zip, "word/_rels/document.xml.rels", OB_OFFICE "/relationships/glossaryDocument",
            "glossary/document.xml");
    AddType(zip, "word/glossary/document.xml",
            "openxmlformats-officedocument.wordprocessingml.document.glossary+xml");
    AddType(zip, "word/glossary/settings.xml",
            "openxmlformats-officedocument.wordprocessingml.settings+xml");
    zip.Add("word/glossary/document.xml",
            "<w:glossaryDocument xmlns:w=\"" OB_W "\"><w:docParts><w:docPart><w:docPartPr>"
            "<w:name w:val=\"KEPT\"/></w:docPartPr><w:docPartBody><w:p w:rsidR=\"00CANARY\">"
            "<w:ins w:id=\"1\" w:author=\"CANARY\" w:date=\"CANARY\"><w:r><w:t>KEPT</w:t></w:r>"
            "</w:ins></w:p></w:docPartBody></w:docPart></w:docParts></w:glossaryDocument>");
    zip.Add("word/glossary/_rels/document.xml.rels",
            Links({{"rId1", "settings", "settings.xml"}, {"rId2", "people", "people.xml"}}));
    zip.Add("word/glossary/settings.xml",
            "<w:settings xmlns:w=\"" OB_W "\"><w:rsids><w:rsidRoot w:val=\"CANARY\"/></w:rsids>"
            "</w:settings>");
    zip.Add("word/glossary/people.xml", "<people>CANARY</people>");
    const std::string file = ExpectPackageCleaned(zip).file;
    EXPECT_EQ(PartOf(file, "word/glossary/document.xml"),
              "<w:glossaryDocument xmlns:w=\"" OB_W "\"><w:docParts><w:docPart><w:docPartPr>"
              "<w:name w:val=\"KEPT\"/></w:docPartPr><w:docPartBody><w:p>"
              "<w:ins w:id=\"1\" w:author=\"Author\"><w:r><w:t>KEPT</w:t></w:r>"
              "</w:ins></w:p></w:docPartBody></w:docPart></w:docParts></w:glossaryDocument>");
}

// A text with macros as programs write it: the project, the names of its macros, its signature.
ZipBuilder WithMacros(ZipBuilder zip, const std::string& folder, const std::string& list) {
    constexpr char kProgram[] = "http://schemas.microsoft.com/office/2006/relationships/";
    AddLink(zip, list, std::string(kProgram) + "vbaProject", "vbaProject.bin");
    AddType(zip, folder + "vbaProject.bin", "ms-office.vbaProject");
    AddType(zip, folder + "vbaProjectSignature.bin", "ms-office.vbaProjectSignature");
    AddType(zip, folder + "vbaProjectSignatureAgile.bin", "ms-office.vbaProjectSignatureAgile");
    AddType(zip, folder + "vbaData.xml", "ms-word.vbaData+xml");
    zip.Add(folder + "vbaProject.bin", "KEPT MACRO");
    zip.Add(folder + "vbaProjectSignature.bin", "KEPT SIGNATURE");
    zip.Add(folder + "vbaProjectSignatureAgile.bin", "KEPT SECOND SIGNATURE");
    zip.Add(folder + "vbaData.xml", "<wne:vbaSuppData xmlns:wne=\"urn:w\"><wne:mcds><wne:mcd "
                                    "wne:macroName=\"KEPT.MACRO\"/></wne:mcds></wne:vbaSuppData>");
    zip.Add(folder + "_rels/vbaProject.bin.rels", Links({}));
    const std::string links = folder + "_rels/vbaProject.bin.rels";
    AddLink(zip, links, std::string(kProgram) + "wordVbaData", "vbaData.xml");
    AddLink(zip, links, std::string(kProgram) + "vbaProjectSignature", "vbaProjectSignature.bin");
    AddLink(zip, links,
            "http://schemas.microsoft.com/office/2014/relationships/vbaProjectSignatureAgile",
            "vbaProjectSignatureAgile.bin");
    return zip;
}

void ExpectMacrosKept(const ZipBuilder& zip, const std::string& folder) {
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    EXPECT_TRUE(Has(cleaned.stays, FindingKind::Macros));
    EXPECT_FALSE(Has(cleaned.stays, FindingKind::EmbeddedFiles));
    for (const char* part :
         {"vbaProject.bin", "vbaProjectSignature.bin", "vbaProjectSignatureAgile.bin",
          "vbaData.xml", "_rels/vbaProject.bin.rels"}) {
        EXPECT_EQ(PartOf(cleaned.file, folder + part), PartOf(zip.File(), folder + part)) << part;
    }
}

TEST(OfficeMacros, StayWithTheirSignatureWhileTheDocumentIsCleaned) {
    ExpectMacrosKept(WithMacros(AsKind(Docx(), kTextType, "ms-word.document.macroEnabled.main+xml"),
                                "word/", "word/_rels/document.xml.rels"),
                     "word/");
    ExpectMacrosKept(WithMacros(AsKind(Xlsx(), kTableType, "ms-excel.sheet.macroEnabled.main+xml"),
                                "xl/", "xl/_rels/workbook.xml.rels"),
                     "xl/");
    ExpectMacrosKept(
        WithMacros(AsKind(Pptx(), kSlidesType, "ms-powerpoint.presentation.macroEnabled.main+xml"),
                   "ppt/", "ppt/_rels/presentation.xml.rels"),
        "ppt/");
}

TEST(OfficeMacros, AreNamedWhenTheyAreASheetOfAWorkbook) {
    ZipBuilder zip = AsKind(Xlsx(), kTableType, "ms-excel.sheet.macroEnabled.main+xml");
    AddLink(zip, "xl/_rels/workbook.xml.rels",
            "http://schemas.microsoft.com/office/2006/relationships/xlMacrosheet",
            "macrosheets/sheet1.xml");
    AddType(zip, "xl/macrosheets/sheet1.xml", "ms-excel.macrosheet+xml");
    const std::string sheet = "<xm:macrosheet xmlns=\"" OB_S "\" xmlns:xm=\"urn:m\"><sheetData>"
                              "<row r=\"1\"><c r=\"A1\"><f>ALERT(\"KEPT\")</f></c></row>"
                              "</sheetData></xm:macrosheet>";
    zip.Add("xl/macrosheets/sheet1.xml", sheet);
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    EXPECT_TRUE(Has(cleaned.stays, FindingKind::Macros));
    EXPECT_EQ(PartOf(cleaned.file, "xl/macrosheets/sheet1.xml"), sheet);
}

// A label in the form of today, and in that of earlier programs, which is properties.
ZipBuilder WithLabels(ZipBuilder zip) {
    AddLink(zip, "_rels/.rels",
            "http://schemas.microsoft.com/office/2020/02/relationships/classificationlabels",
            "docMetadata/LabelInfo.xml");
    AddType(zip, "docMetadata/LabelInfo.xml", "ms-office.classificationlabels+xml");
    zip.Add("docMetadata/LabelInfo.xml",
            "<clbl:labelList xmlns:clbl=\"http://schemas.microsoft.com/office/2020/"
            "mipLabelMetadata\"><clbl:label id=\"{CANARY}\" enabled=\"1\" method=\"Privileged\" "
            "siteId=\"{CANARY}\" contentBits=\"2\" removed=\"0\"/></clbl:labelList>");
    const std::string name = "<property fmtid=\"{D5CDD505-2E9C-101B-9397-08002B2CF9AE}\" pid=\"2\" "
                             "name=\"MSIP_Label_CANARY_";
    const std::string value = "\"><vt:lpwstr>CANARY@example.com</vt:lpwstr></property>";
    zip.Set("docProps/custom.xml",
            "<Properties xmlns=\"" OB_OFFICE "/custom-properties\" xmlns:vt=\"" OB_OFFICE
            "/docPropsVTypes\">" +
                name + "Owner" + value + name + "SetDate" + value + "</Properties>");
    return zip;
}

TEST(SensitivityLabels, GoWithTheirIdsAndOwners) {
    for (const ZipBuilder& document : {Docx(), Xlsx(), Pptx()}) {
        const CleanedDocument cleaned = ExpectPackageCleaned(WithLabels(document));
        EXPECT_TRUE(Has(cleaned.removed, FindingKind::Properties));
        for (const ZipPart& part : PartsOf(cleaned.file)) {
            EXPECT_FALSE(part.name.starts_with("docMetadata/")) << part.name;
            EXPECT_FALSE(part.name.starts_with("docProps/")) << part.name;
            EXPECT_EQ(part.content.find("MSIP_Label"), std::string::npos) << part.name;
            EXPECT_EQ(part.content.find("LabelInfo"), std::string::npos) << part.name;
        }
    }
}

// Programs of ODF store a label as a property too.
TEST(SensitivityLabels, GoFromOdfDocuments) {
    ZipBuilder zip = Odt();
    zip.Set("meta.xml", OdfXml("document-meta", "<meta:user-defined meta:name=\"MSIP_Label_CANARY_"
                                                "Owner\">CANARY@example.com</meta:user-defined>"));
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::Properties));
    EXPECT_EQ(cleaned.file.find("meta.xml"), std::string::npos);
}

ZipBuilder Odg(const std::string& kind = "graphics") {
    return Odf(kind,
               "<office:body><office:drawing><draw:page draw:name=\"KEPT\"><draw:frame>"
               "<draw:text-box><text:p officeooo:rsid=\"CANARY\">KEPT</text:p></draw:text-box>"
               "</draw:frame><draw:frame><draw:image xlink:href=\"Pictures/photo.jpg\"/>"
               "</draw:frame><text:a xlink:href=\"file:///home/CANARY/plan.odg\">KEPT LINK</text:a>"
               "<office:annotation><dc:creator>CANARY</dc:creator><dc:date>CANARY</dc:date>"
               "<text:p>KEPT NOTE</text:p></office:annotation></draw:page></office:drawing>"
               "</office:body>");
}

TEST(OdfDrawings, AreCleanedAndKeepWhatIsDrawn) {
    const CleanedDocument cleaned = ExpectPackageCleaned(Odg());
    EXPECT_EQ(cleaned.stays, (std::vector<Finding>{{FindingKind::Comments, 1}}));
    for (const FindingKind kind :
         {FindingKind::Properties, FindingKind::Authors, FindingKind::RevisionIds,
          FindingKind::LocalPath, FindingKind::Thumbnail, FindingKind::Position}) {
        EXPECT_TRUE(Has(cleaned.removed, kind)) << static_cast<int>(kind);
    }
    EXPECT_EQ(PartOf(cleaned.file, "content.xml"),
              OdfXml("document-content",
                     "<office:body><office:drawing><draw:page draw:name=\"KEPT\"><draw:frame>"
                     "<draw:text-box><text:p>KEPT</text:p></draw:text-box>"
                     "</draw:frame><draw:frame><draw:image xlink:href=\"Pictures/photo.jpg\"/>"
                     "</draw:frame><text:a xlink:href=\"plan.odg\">KEPT LINK</text:a>"
                     "<office:annotation><dc:creator>Author</dc:creator>"
                     "<text:p>KEPT NOTE</text:p></office:annotation></draw:page></office:drawing>"
                     "</office:body>"));
}

TEST(OfficeTemplates, OfOdfAreCleanedToo) {
    for (const char* kind :
         {"text-template", "spreadsheet-template", "presentation-template", "graphics-template"}) {
        const std::string file = ExpectPackageCleaned(Odg(kind)).file;
        EXPECT_EQ(file.find(std::string("mimetypeapplication/vnd.oasis.opendocument.") + kind), 30u)
            << kind;
    }
}

} // namespace
