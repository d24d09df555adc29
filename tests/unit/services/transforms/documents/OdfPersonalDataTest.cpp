// ODF documents with a canary in every place from which personal data goes, read by other
// libraries; what has to stay; and packages that can't be cleaned.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/unit/services/transforms/documents/OdfSamples.h"
#include "tests/unit/services/transforms/documents/PackageJudge.h"

using namespace samples;

namespace {

// The kind comes first and isn't packed, and the manifest lists what is there.
void ExpectConsistent(const std::string& file, const std::string& kind) {
    const auto parts = PartsOf(file);
    ASSERT_FALSE(parts.empty());
    EXPECT_EQ(parts[0].name, "mimetype");
    EXPECT_TRUE(parts[0].isStored);
    EXPECT_EQ(file.find("mimetypeapplication/vnd.oasis.opendocument." + kind), 30u);
    pugi::xml_document manifest;
    ASSERT_TRUE(manifest.load_string(PartOf(file, "META-INF/manifest.xml").c_str()));
    std::set<std::string> listed;
    for (const auto row : manifest.first_child().children()) {
        listed.insert(row.attribute("manifest:full-path").value());
    }
    for (const ZipPart& part : parts) {
        const bool isOfPackage = part.name == "mimetype" || part.name.starts_with("META-INF/");
        EXPECT_TRUE(isOfPackage || listed.contains(part.name)) << part.name;
        listed.erase(part.name);
    }
    EXPECT_EQ(listed, std::set<std::string>{"/"});
}

TEST(OdfPersonalData, CleansATextAndKeepsWhatIsWritten) {
    const CleanedDocument cleaned = ExpectPackageCleaned(Odt());
    ExpectConsistent(cleaned.file, "text");
    for (const FindingKind kind :
         {FindingKind::Properties, FindingKind::Authors, FindingKind::RevisionIds,
          FindingKind::LocalPath, FindingKind::PrinterSettings, FindingKind::Thumbnail,
          FindingKind::Position, FindingKind::OldVersions, FindingKind::Time}) {
        EXPECT_TRUE(Has(cleaned.removed, kind)) << static_cast<int>(kind);
    }
    EXPECT_EQ(cleaned.stays, (std::vector<Finding>{{FindingKind::DeletedText, 1},
                                                   {FindingKind::HiddenText, 1},
                                                   {FindingKind::Comments, 1}}));
}

TEST(OdfPersonalData, KeepsTextsNotesAndChangesUnderOneNeutralName) {
    const std::string content = PartOf(ExpectPackageCleaned(Odt()).file, "content.xml");
    EXPECT_NE(content.find("<office:change-info><dc:creator>Author</dc:creator>"
                           "<dc:date>2000-01-01T00:00:00</dc:date></office:change-info>"
                           "<text:p>KEPT OLD</text:p>"),
              std::string::npos)
        << content;
    EXPECT_NE(content.find("KEPT<office:annotation office:name=\"1\"><dc:creator>Author"
                           "</dc:creator><text:p>KEPT NOTE</text:p></office:annotation>"
                           "<text:a xlink:href=\"Other.odt\">KEPT LINK</text:a>"),
              std::string::npos)
        << content;
}

TEST(OdfPersonalData, KeepsSettingsThatDescribeTheDocument) {
    const std::string settings = PartOf(ExpectPackageCleaned(Odt()).file, "settings.xml");
    EXPECT_EQ(settings, OdfXml("document-settings",
                               "<config:config-item config:name=\"AddParaTableSpacing\">true"
                               "</config:config-item>"));
}

TEST(OdfPersonalData, CleansPicturesInside) {
    const auto photo = transforms::CleanFile(BytesOf(Photo()));
    EXPECT_EQ(PartOf(ExpectPackageCleaned(Odt()).file, "Pictures/photo.jpg"),
              SampleOf(photo.bytes));
}

TEST(OdfPersonalData, ReportsHiddenSheetsAndSlides) {
    const CleanedDocument sheets = ExpectPackageCleaned(Ods());
    ExpectConsistent(sheets.file, "spreadsheet");
    EXPECT_EQ(sheets.stays, (std::vector<Finding>{{FindingKind::HiddenSheets, 1}}));
    const CleanedDocument slides = ExpectPackageCleaned(Odp());
    ExpectConsistent(slides.file, "presentation");
    EXPECT_EQ(slides.stays, (std::vector<Finding>{{FindingKind::HiddenSlides, 1}}));
}

TEST(OdfPersonalData, ReportsMacrosAndObjects) {
    ZipBuilder zip = Odf("text", "",
                         ManifestRow("Basic/Standard/A.xml", "text/xml") +
                             ManifestRow("Object 1", "application/vnd.sun.star.oleobject"));
    zip.Add("Basic/Standard/A.xml", "<a>KEPT</a>").Add("Object 1", "KEPT");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    EXPECT_TRUE(Has(cleaned.stays, FindingKind::Macros));
    EXPECT_TRUE(Has(cleaned.stays, FindingKind::EmbeddedFiles));
}

TEST(OdfPersonalData, CleansDocumentsInsideTheDocument) {
    ZipBuilder zip = Odf("text", "",
                         ManifestRow("Object 1/meta.xml", "text/xml") +
                             ManifestRow("Object 1/content.xml", "text/xml"));
    zip.Add("Object 1/meta.xml", "<a>CANARY</a>");
    zip.Add("Object 1/content.xml",
            OdfXml("document-content", "<style:text-properties officeooo:rsid=\"CANARY\"/>"));
    ExpectConsistent(ExpectPackageCleaned(zip).file, "text");
}

TEST(OdfPersonalData, KeepsAFileThatTheManifestNamesByReferences) {
    const char* const rows[] = {"Pictures/&#252;.png", "Pictures/&#xFC;.png",
                                "Pictures/\xC3\xBC.png"};
    for (const char* row : rows) {
        ZipBuilder zip = Odf("text", "", ManifestRow(row, "image/png"));
        zip.Add("Pictures/\xC3\xBC.png", "KEPT");
        const std::string file = ExpectPackageCleaned(zip).file;
        EXPECT_EQ(PartOf(file, "Pictures/\xC3\xBC.png"), "KEPT") << row;
        ExpectConsistent(file, "text");
    }
}

TEST(OdfPersonalData, RemovesAScenariosCommentAndKeepsPathsInCells) {
    const std::string cell = "<table:table-cell office:value-type=\"string\" "
                             "office:string-value=\"C:\\KEPT\\x.txt\"/>";
    const ZipBuilder zip =
        Odf("spreadsheet", "<office:body><office:spreadsheet><table:table table:name=\"KEPT\">"
                           "<table:scenario table:is-active=\"true\" table:comment=\"CANARY\"/>" +
                               cell + "</table:table></office:spreadsheet></office:body>");
    const CleanedDocument cleaned = ExpectPackageCleaned(zip);
    ExpectConsistent(cleaned.file, "spreadsheet");
    EXPECT_NE(PartOf(cleaned.file, "content.xml")
                  .find("<table:scenario table:is-active=\"true\"/>" + cell),
              std::string::npos);
}

TEST(OdfPersonalData, PutsTheKindFirst) {
    ZipBuilder zip;
    zip.Add("META-INF/manifest.xml",
            "<manifest:manifest xmlns:manifest=\"" OB_ODF "manifest:1.0\">" +
                ManifestRow("/", "application/vnd.oasis.opendocument.text") +
                ManifestRow("content.xml", "text/xml") + "</manifest:manifest>");
    zip.Add("content.xml", OdfXml("document-content", ""));
    zip.Add("mimetype", "application/vnd.oasis.opendocument.text");
    ExpectConsistent(CheckDocument(zip.File()).file, "text");
}

TEST(OdfRefusals, ASignedDocumentIsLeftAlone) {
    for (const char* name : {"META-INF/documentsignatures.xml", "META-INF/macrosignatures.xml"}) {
        ZipBuilder zip = Odt();
        zip.Add(name, "<a/>");
        EXPECT_EQ(CheckDocument(zip.File()).outcome, CleanOutcome::Signed) << name;
    }
}

TEST(OdfRefusals, AnEncryptedDocumentNeedsItsPassword) {
    ZipBuilder zip = Odt();
    zip.Set(
        "META-INF/manifest.xml",
        ManifestXml("text", ManifestRow("secret.xml", "text/xml", "<manifest:encryption-data/>")));
    EXPECT_EQ(CheckDocument(zip.File()).outcome, CleanOutcome::Encrypted);
}

TEST(OdfRefusals, OtherKindsAreNotSupported) {
    for (const char* kind : {"database", "formula", "chart"}) {
        EXPECT_EQ(CheckDocument(Odf(kind, "").File()).outcome, CleanOutcome::NotSupported);
    }
}

TEST(OdfRefusals, ADocumentWithoutAManifestIsDamaged) {
    ZipBuilder zip;
    zip.Add("mimetype", "application/vnd.oasis.opendocument.text", true);
    EXPECT_EQ(CheckDocument(zip.File()).outcome, CleanOutcome::Damaged);
    EXPECT_EQ(CheckDocument(Odt().Set("META-INF/manifest.xml", "<a>").File()).outcome,
              CleanOutcome::Damaged);
}

TEST(OdfRefusals, EveryPackageThatIsCutOffIsDamaged) {
    const std::string file = Odt().File();
    for (std::size_t size = 40; size < file.size(); size += 7) {
        EXPECT_EQ(CleanDocument(file.substr(0, size)).outcome, CleanOutcome::Damaged) << size;
    }
}

TEST(OdfRefusals, BombsAreTooLarge) {
    ZipBuilder one = Odt();
    one.Add("Pictures/huge.bin", std::string((std::size_t{256} << 20) + 1, '\0'));
    EXPECT_EQ(CleanDocument(one.File()).outcome, CleanOutcome::TooLarge);
    ZipBuilder many = Odt();
    for (int part = 0; part <= 20000; ++part)
        many.Add("Pictures/" + std::to_string(part), "", true);
    EXPECT_EQ(CleanDocument(many.File()).outcome, CleanOutcome::TooLarge);
}

TEST(OdfMutations, FlippedBitsGiveACleanFileOrARefusal) {
    std::mt19937 random(8);
    for (const std::string& file : {Odt().File(), Ods().File()}) {
        for (int round = 0; round < 100; ++round) {
            std::string changed = file;
            changed[random() % changed.size()] ^= static_cast<char>(1u << random() % 8);
            CheckDocument(changed);
        }
    }
}

} // namespace
