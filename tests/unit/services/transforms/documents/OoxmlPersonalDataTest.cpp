// OOXML documents with a canary in every place from which personal data goes, read by other
// libraries; what has to stay; and packages that can't be cleaned.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/unit/services/transforms/documents/OoxmlSamples.h"
#include "tests/unit/services/transforms/documents/PackageJudge.h"

using namespace samples;

namespace {

// Every relationship to a part leads to one, and every part that is named by the list of content
// types exists: otherwise a program offers to repair the file.
void ExpectConsistent(const std::string& file) {
    std::set<std::string> names;
    for (const ZipPart& part : PartsOf(file)) names.insert("/" + part.name);
    pugi::xml_document types;
    ASSERT_TRUE(types.load_string(PartOf(file, "[Content_Types].xml").c_str()));
    for (const auto row : types.child("Types").children("Override")) {
        EXPECT_TRUE(names.contains(row.attribute("PartName").value()))
            << row.attribute("PartName").value();
    }
    EXPECT_EQ(PartsOf(file).front().name, "[Content_Types].xml");
}

TEST(OoxmlPersonalData, CleansATextAndKeepsWhatIsWritten) {
    const std::string file = Docx().File();
    const CleanedDocument cleaned = ExpectPackageCleaned(Docx());
    ExpectConsistent(cleaned.file);
    for (const char* part : {"word/document.xml", "word/comments.xml", "word/settings.xml"}) {
        EXPECT_EQ(TextOfXml(PartOf(cleaned.file, part)), TextOfXml(PartOf(file, part)));
    }
    for (const FindingKind kind :
         {FindingKind::Properties, FindingKind::Authors, FindingKind::RevisionIds,
          FindingKind::DocumentId, FindingKind::LocalPath, FindingKind::PrinterSettings,
          FindingKind::Thumbnail, FindingKind::Position, FindingKind::OldVersions}) {
        EXPECT_TRUE(Has(cleaned.removed, kind)) << static_cast<int>(kind);
    }
    EXPECT_EQ(cleaned.stays, (std::vector<Finding>{{FindingKind::DeletedText, 1},
                                                   {FindingKind::HiddenText, 1},
                                                   {FindingKind::Comments, 1}}));
}

TEST(OoxmlPersonalData, ChangesNothingElseInAPart) {
    const std::string document = PartOf(ExpectPackageCleaned(Docx()).file, "word/document.xml");
    EXPECT_EQ(document,
              std::string(kXmlStart) +
                  "<w:document xmlns:w=\"" OB_W "\" xmlns:r=\"" OB_OFFICE "/relationships\" "
                  "xmlns:wp=\"urn:drawing\"><w:body><w:p><w:r>"
                  "<w:t xml:space=\"preserve\"> KEPT &#13; &amp; 'text' </w:t></w:r>"
                  "<w:ins w:id=\"1\" w:author=\"Author\"><w:r><w:t>KEPT NEW</w:t>"
                  "</w:r></w:ins><w:del w:id=\"2\" w:author='Author'><w:r>"
                  "<w:delText>KEPT OLD</w:delText></w:r></w:del>"
                  "<w:r><w:rPr><w:vanish/></w:rPr><w:t>KEPT HIDDEN</w:t></w:r>"
                  "<w:hyperlink r:id=\"rId6\"><w:r><w:t>KEPT LINK</w:t></w:r></w:hyperlink>"
                  "<wp:docPr id=\"1\" descr=\"beach.jpg\"/></w:p><w:sectPr></w:sectPr>"
                  "</w:body></w:document>");
}

TEST(OoxmlPersonalData, CutsLinksToTheAuthorsComputerAndKeepsTheOthers) {
    const std::string links =
        PartOf(ExpectPackageCleaned(Docx()).file, "word/_rels/document.xml.rels");
    EXPECT_NE(links.find("Target=\"Other.docx\" TargetMode=\"External\""), std::string::npos);
    EXPECT_NE(links.find("https://example.com/KEPT"), std::string::npos);
    EXPECT_EQ(links.find("printerSettings"), std::string::npos);
    EXPECT_EQ(links.find("people"), std::string::npos);
}

TEST(OoxmlPersonalData, CleansPicturesInside) {
    const auto photo = transforms::CleanFile(BytesOf(Photo()));
    EXPECT_EQ(PartOf(ExpectPackageCleaned(Docx()).file, "word/media/image1.jpeg"),
              SampleOf(photo.bytes));
}

TEST(OoxmlPersonalData, ReportsAPictureThatCantBeCleaned) {
    ZipBuilder zip = Docx();
    zip.Set("word/media/image1.jpeg", "a drawing of an old kind");
    EXPECT_TRUE(Has(CheckDocument(zip.File()).stays, FindingKind::EmbeddedFiles));
}

TEST(OoxmlPersonalData, CleansAWorkbookAndKeepsItsCells) {
    const CleanedDocument cleaned = ExpectPackageCleaned(Xlsx());
    ExpectConsistent(cleaned.file);
    const std::string sheet = PartOf(cleaned.file, "xl/worksheets/sheet1.xml");
    EXPECT_NE(sheet.find("<pageSetup orientation=\"portrait\"/>"), std::string::npos);
    EXPECT_NE(sheet.find("<t>KEPT</t>"), std::string::npos);
    const std::string workbook = PartOf(cleaned.file, "xl/workbook.xml");
    EXPECT_EQ(workbook.find("AlternateContent"), std::string::npos);
    EXPECT_NE(workbook.find("reservationPassword"), std::string::npos);
    const std::string notes = PartOf(cleaned.file, "xl/comments1.xml");
    EXPECT_NE(notes.find("<author>Author</author><author>tc={KEPT-1}</author>"), std::string::npos);
    EXPECT_NE(notes.find("xr:uid=\"{KEPT-1}\""), std::string::npos);
    EXPECT_NE(PartOf(cleaned.file, "xl/externalLinks/_rels/externalLink1.xml.rels")
                  .find("Target=\"KEPT.xlsx\""),
              std::string::npos);
    EXPECT_NE(PartOf(cleaned.file, "xl/drawings/vmlDrawing1.vml").find("KEPT"), std::string::npos);
    for (const FindingKind kind : {FindingKind::ChangeHistory, FindingKind::Person,
                                   FindingKind::Authors, FindingKind::PrinterSettings}) {
        EXPECT_TRUE(Has(cleaned.removed, kind)) << static_cast<int>(kind);
    }
    EXPECT_EQ(cleaned.stays,
              (std::vector<Finding>{{FindingKind::HiddenSheets, 1}, {FindingKind::Comments, 1}}));
}

TEST(OoxmlPersonalData, RemovesTheRevisionIdOfAStyle) {
    ZipBuilder zip = Docx();
    AddLink(zip, "word/_rels/document.xml.rels", OB_OFFICE "/relationships/styles", "styles.xml");
    zip.Add("word/styles.xml", "<w:styles xmlns:w=\"" OB_W "\"><w:style w:styleId=\"a\">"
                               "<w:name w:val=\"KEPT\"/><w:rsid w:val=\"00CANARY\"/><w:pPr/>"
                               "</w:style></w:styles>");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    ExpectConsistent(cleaned.file);
    EXPECT_EQ(PartOf(cleaned.file, "word/styles.xml"),
              "<w:styles xmlns:w=\"" OB_W "\"><w:style w:styleId=\"a\"><w:name w:val=\"KEPT\"/>"
              "<w:pPr/></w:style></w:styles>");
}

TEST(OoxmlPersonalData, RemovesTheListOfTasks) {
    ZipBuilder zip = Docx();
    AddLink(zip, "word/_rels/document.xml.rels",
            "http://schemas.microsoft.com/office/2019/05/relationships/documenttasks",
            "documenttasks/documenttasks1.xml");
    std::string& types = zip.Content("[Content_Types].xml");
    types.insert(types.find("</Types"),
                 "<Override PartName=\"/word/documenttasks/documenttasks1.xml\" "
                 "ContentType=\"application/vnd.ms-office.documenttasks+xml\"/>");
    zip.Add("word/documenttasks/documenttasks1.xml", "<t:Tasks xmlns:t=\"urn:t\">CANARY</t:Tasks>");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    ExpectConsistent(cleaned.file);
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::ChangeHistory));
    EXPECT_EQ(PartOf(cleaned.file, "word/_rels/document.xml.rels").find("documenttasks"),
              std::string::npos);
}

TEST(OoxmlPersonalData, CutsExternalTargetsFromTheRootAndKeepsPartsOfTheDocument) {
    ZipBuilder zip = Docx();
    const std::string list = "word/_rels/document.xml.rels";
    const std::string type = OB_OFFICE "/relationships/hyperlink";
    AddLink(zip, list, type, "/home/CANARY/first.docx", true);
    AddLink(zip, list, type, "/CANARY/", true);
    AddLink(zip, list, type, "/C:/CANARY/second.docx", true);
    AddLink(zip, list, OB_OFFICE "/relationships/image", "/word/media/image1.jpeg");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    ExpectConsistent(cleaned.file);
    const std::string links = PartOf(cleaned.file, list);
    for (const char* kept :
         {"Target=\"first.docx\" TargetMode=\"External\"", "Target=\".\" TargetMode=\"External\"",
          "Target=\"second.docx\" TargetMode=\"External\"", "Target=\"/word/media/image1.jpeg\""}) {
        EXPECT_NE(links.find(kept), std::string::npos) << kept;
    }
}

TEST(OoxmlPersonalData, RemovesAScenariosCommentAndTheViewsOfPersons) {
    ZipBuilder zip = Xlsx();
    std::string& workbook = zip.Content("xl/workbook.xml");
    workbook.insert(workbook.find("</workbook>"),
                    "<customWorkbookViews><customWorkbookView name=\"CANARY - Personal View\" "
                    "guid=\"{CANARY}\"/></customWorkbookViews>");
    std::string& sheet = zip.Content("xl/worksheets/sheet1.xml");
    sheet.insert(sheet.find("user="), "comment=\"Created by CANARY\" ");
    sheet.insert(sheet.find("<pageSetup"),
                 "<customSheetViews><customSheetView guid=\"{CANARY}\"><pageSetup r:id=\"rId1\"/>"
                 "</customSheetView></customSheetViews>");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    ExpectConsistent(cleaned.file);
    EXPECT_NE(PartOf(cleaned.file, "xl/workbook.xml").find("</sheets></workbook>"),
              std::string::npos);
    EXPECT_NE(PartOf(cleaned.file, "xl/worksheets/sheet1.xml")
                  .find("<scenario name=\"KEPT\"/></scenarios>"
                        "<pageSetup orientation=\"portrait\"/></worksheet>"),
              std::string::npos);
}

TEST(OoxmlPersonalData, KeepsPathsThatAreContent) {
    ZipBuilder zip = Xlsx();
    std::string& cache = zip.Content("xl/pivotCache/pivotCacheDefinition1.xml");
    const std::string content = "><cacheFields><cacheField name=\"C:\\KEPT\\2024\"><sharedItems>"
                                "<s v=\"C:\\KEPT\\x.txt\"/></sharedItems></cacheField>"
                                "</cacheFields></pivotCacheDefinition>";
    cache.replace(cache.rfind("/>"), 2, content);
    const std::string file = ExpectPackageCleaned(zip).file;
    EXPECT_TRUE(PartOf(file, "xl/pivotCache/pivotCacheDefinition1.xml").ends_with(content));
}

TEST(OoxmlPersonalData, RemovesTheTimeZoneOfAComment) {
    ZipBuilder zip = Pptx();
    zip.Set("ppt/comments/comment1.xml",
            "<p:cmLst xmlns:p=\"" OB_P "\"><p:cm authorId=\"1\" idx=\"1\"><p:text>KEPT</p:text>"
            "<p:extLst><p:ext uri=\"{C676402C-5697-4E1C-873F-D02D1690AC5C}\"><p15:threadingInfo "
            "xmlns:p15=\"http://schemas.microsoft.com/office/powerpoint/2012/main\" "
            "timeZoneBias=\"-CANARY\"/></p:ext></p:extLst></p:cm></p:cmLst>");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    ExpectConsistent(cleaned.file);
    EXPECT_NE(PartOf(cleaned.file, "ppt/comments/comment1.xml").find("<p15:threadingInfo xmlns"),
              std::string::npos);
}

TEST(OoxmlPersonalData, CleansAPresentation) {
    const CleanedDocument cleaned = ExpectPackageCleaned(Pptx());
    ExpectConsistent(cleaned.file);
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::ChangeHistory));
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::Position));
    EXPECT_EQ(cleaned.stays,
              (std::vector<Finding>{{FindingKind::HiddenSlides, 1}, {FindingKind::Comments, 2}}));
}

TEST(OoxmlPersonalData, ReadsNamespacesUnderAnyPrefix) {
    ZipBuilder zip = Docx();
    zip.Set("word/comments.xml", "<comments xmlns=\"" OB_W "\" xmlns:x=\"" OB_W
                                 "\"><comment x:author=\"CANARY\" author=\"KEPT\"/></comments>");
    const std::string file = ExpectPackageCleaned(zip).file;
    EXPECT_NE(
        PartOf(file, "word/comments.xml").find("<comment x:author=\"Author\" author=\"KEPT\"/>"),
        std::string::npos);
}

TEST(OoxmlPersonalData, CleansTheStrictForm) {
    ZipBuilder zip = Docx();
    zip.Set("word/comments.xml",
            "<w:comments xmlns:w=\"http://purl.oclc.org/ooxml/wordprocessingml/main\">"
            "<w:comment w:author=\"CANARY\"/></w:comments>");
    std::string& links = zip.Content("_rels/.rels");
    for (const char* name : {"extended-properties", "custom-properties"}) {
        const std::string old = std::string(OB_OFFICE "/relationships/") + name;
        const std::string strict = "http://purl.oclc.org/ooxml/officeDocument/relationships/" +
                                   std::string(name, 6) +
                                   (name[0] == 'e' ? "edProperties" : "Properties");
        links.replace(links.find(old), old.size(), strict);
    }
    ExpectPackageCleaned(zip);
}

TEST(OoxmlPersonalData, RemovesWhatTheZipStoresOfItself) {
    ZipBuilder zip = Docx();
    zip.Comment("CANARY");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::Time));
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::Comment));
    const CleanedDocument after = CheckDocument(Docx().File() + "CANARY");
    EXPECT_TRUE(Has(after.removed, FindingKind::TrailingData));
    ExpectNoCanary(after.file);
}

TEST(OoxmlPersonalData, FindsPartsWhoseNamesDifferInLetterCaseOrEscapes) {
    ZipBuilder zip = Docx();
    std::string& links = zip.Content("word/_rels/document.xml.rels");
    links.replace(links.find("media/image1.jpeg"), 17, "Media/Image%31.jpeg");
    EXPECT_FALSE(PartOf(ExpectPackageCleaned(zip).file, "word/media/image1.jpeg").empty());
}

TEST(OoxmlPersonalData, ReportsMacrosAndDataOfOtherPrograms) {
    ZipBuilder zip = Docx();
    std::string& links = zip.Content("word/_rels/document.xml.rels");
    links.insert(links.find("</Rel"),
                 "<Relationship Id=\"a\" Type=\"http://schemas.microsoft.com/office/2006/"
                 "relationships/vbaProject\" Target=\"vbaProject.bin\"/><Relationship Id=\"b\" "
                 "Type=\"" OB_OFFICE
                 "/relationships/customXml\" Target=\"../customXml/item1.xml\"/>");
    zip.Add("word/vbaProject.bin", "KEPT MACRO").Add("customXml/item1.xml", "<a>KEPT DATA</a>");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    EXPECT_TRUE(Has(cleaned.stays, FindingKind::Macros));
    EXPECT_TRUE(Has(cleaned.stays, FindingKind::CustomData));
    EXPECT_FALSE(Has(cleaned.stays, FindingKind::EmbeddedFiles));
    EXPECT_EQ(PartOf(cleaned.file, "word/vbaProject.bin"), "KEPT MACRO");
    EXPECT_EQ(PartOf(cleaned.file, "customXml/item1.xml"), "<a>KEPT DATA</a>");
}

TEST(OoxmlRefusals, ASignedPackageIsLeftAlone) {
    ZipBuilder zip = Docx();
    std::string& links = zip.Content("_rels/.rels");
    links.insert(links.find("</Rel"), "<Relationship Id=\"s\" Type=\"" OB_PACKAGE
                                      "/relationships/digital-signature/origin\" "
                                      "Target=\"_xmlsignatures/origin.sigs\"/>");
    EXPECT_EQ(CheckDocument(zip.File()).outcome, CleanOutcome::Signed);
}

TEST(OoxmlRefusals, AnEncryptedDocumentNeedsItsPassword) {
    const std::string container("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    const std::string name("E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0", 32);
    EXPECT_EQ(CheckDocument(container + name).outcome, CleanOutcome::Encrypted);
    EXPECT_EQ(CheckDocument(container).outcome, CleanOutcome::NotSupported);
}

TEST(OoxmlRefusals, OtherPackagesAndZipsAreNotSupported) {
    EXPECT_EQ(CheckDocument(ZipBuilder().Add("a.txt", "text").File()).outcome,
              CleanOutcome::NotSupported);
    ZipBuilder drawing = Docx();
    std::string& types = drawing.Content("[Content_Types].xml");
    const std::string text = "openxmlformats-officedocument.wordprocessingml.document.main+xml";
    types.replace(types.find(text), text.size(), "ms-visio.drawing.main+xml");
    EXPECT_EQ(CheckDocument(drawing.File()).outcome, CleanOutcome::NotSupported);
}

TEST(OoxmlRefusals, AnEmptyFileIsNoDocument) {
    EXPECT_EQ(CheckDocument("").outcome, CleanOutcome::NotSupported);
}

TEST(OoxmlRefusals, DamageInAPartIsDamage) {
    for (const char* content : {"", "<a>", "<w:document", "<a></b>", "<a/><b/>", "text",
                                "<!DOCTYPE a [<!ENTITY b \"c\">]><a>&b;</a>", "<a b=c/>",
                                "<a b=\"<\"/>", "<a/>text", "<a b=\"1\"c=\"2\"/>"}) {
        ZipBuilder zip = Docx();
        zip.Set("word/settings.xml", content);
        EXPECT_EQ(CheckDocument(zip.File()).outcome, CleanOutcome::Damaged) << content;
    }
    ZipBuilder deep = Docx();
    std::string nested;
    for (int level = 0; level < 300; ++level) nested += "<a>";
    deep.Set("word/settings.xml", nested);
    EXPECT_EQ(CheckDocument(deep.File()).outcome, CleanOutcome::Damaged);
}

TEST(OoxmlRefusals, OtherEncodingsAreNotRead) {
    for (const char* content : {"<?xml version=\"1.0\" encoding=\"UTF-16\"?><a/>",
                                "<?xml version='1.0' encoding='latin1'?><a/>"}) {
        ZipBuilder zip = Docx();
        zip.Set("word/settings.xml", content);
        EXPECT_EQ(CheckDocument(zip.File()).outcome, CleanOutcome::NotSupported) << content;
    }
}

TEST(OoxmlRefusals, EveryPackageThatIsCutOffIsDamaged) {
    const std::string file = Docx().File();
    for (std::size_t size = 60; size < file.size(); size += 7) {
        EXPECT_EQ(CleanDocument(file.substr(0, size)).outcome, CleanOutcome::Damaged) << size;
    }
}

TEST(OoxmlRefusals, BombsAreTooLarge) {
    ZipBuilder one = Docx();
    one.Add("word/media/huge.bin", std::string((std::size_t{256} << 20) + 1, '\0'));
    EXPECT_EQ(CleanDocument(one.File()).outcome, CleanOutcome::TooLarge);
    ZipBuilder many = Docx();
    for (int part = 0; part <= 20000; ++part) many.Add("word/" + std::to_string(part), "", true);
    EXPECT_EQ(CleanDocument(many.File()).outcome, CleanOutcome::TooLarge);
}

TEST(OoxmlRefusals, EntriesThatShareBytesAreDamaged) {
    ZipBuilder zip = Docx();
    std::string file = zip.Add("word/media/twin1.bin", "same", true)
                           .Add("word/media/twin2.bin", "same", true)
                           .File();
    // The directory's row of the second points to the first.
    const auto name = [&](const char* text) { return file.rfind(text); };
    const auto first = file.substr(name("word/media/twin1.bin") - 4, 4);
    file.replace(name("word/media/twin2.bin") - 4, 4, first);
    EXPECT_EQ(CleanDocument(file).outcome, CleanOutcome::Damaged);
}

TEST(OoxmlRefusals, NamesThatLeadOutOfAFolderAreDamaged) {
    for (const char* name : {"../evil.xml", "word/../../evil.xml", "/evil.xml", "C:\\evil.xml",
                             "word\\..\\evil.xml"}) {
        EXPECT_EQ(CleanDocument(Docx().Add(name, "x").File()).outcome, CleanOutcome::Damaged)
            << name;
    }
}

TEST(OoxmlRefusals, TwoPartsOfOneNameAreDamaged) {
    EXPECT_EQ(CleanDocument(Docx().Add("Word/Settings.xml", "<a/>").File()).outcome,
              CleanOutcome::Damaged);
}

TEST(OoxmlMutations, FlippedBitsGiveACleanFileOrARefusal) {
    std::mt19937 random(6);
    for (const std::string& file : {Docx().File(), Xlsx().File(), Pptx().File()}) {
        for (int round = 0; round < 100; ++round) {
            std::string changed = file;
            changed[random() % changed.size()] ^= static_cast<char>(1u << random() % 8);
            CheckDocument(changed);
        }
    }
}

TEST(OoxmlMutations, ChangedPartsGiveACleanFileOrARefusal) {
    std::mt19937 random(7);
    for (int round = 0; round < 150; ++round) {
        ZipBuilder zip = Docx();
        std::string& part = zip.Content(round % 2 ? "word/document.xml" : "word/comments.xml");
        part[random() % part.size()] = " <>/\"'=&:a"[random() % 10];
        CheckDocument(zip.File());
    }
}

} // namespace
