// PDFs that become one: order, layers, attached files; parts that are refused, and huge ones.
#include "services/transforms/combine/PdfCombine.h"

#include <set>

#include <qpdf/QPDFNameTreeObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "tests/unit/services/transforms/combine/CombinedFile.h"
#include "tests/unit/services/transforms/documents/EncryptedSamples.h"

using namespace samples;

namespace {

const std::string kSigned = OnePage("", "/Perms <</DocMDP <</Type /Sig /Contents <00> "
                                        "/ByteRange [0 1 2 3]>>>>")
                                .File();

std::string SignedField() {
    PdfBuilder pdf = OnePage("/Annots [5 0 R]", "/AcroForm <</Fields [5 0 R] /SigFlags 3>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Sig /T (sig) /V 6 0 R>>");
    pdf.Add("<</Type /Sig /Contents <00> /ByteRange [0 1 2 3]>>");
    return pdf.File();
}

std::string Packed(QPDF& pdf) {
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setObjectStreamMode(qpdf_o_generate);
    writer.write();
    const auto written = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char*>(written->getBuffer()), written->getSize()};
}

std::string Packed(const std::string& file) {
    QPDF pdf;
    pdf.processMemoryFile("plain", file.data(), file.size());
    return Packed(pdf);
}

// A chain of as many objects, each of which names the next one after the text.
std::vector<std::string> Chain(int first, int count, const std::string& before,
                               const std::string& after) {
    std::vector<std::string> chain;
    for (int item = 0; item < count; ++item) {
        chain.push_back(before + std::to_string(first + item + 1) + " 0 R" + after);
    }
    return chain;
}

TEST(PdfCombine, PutsThePagesInTheOrderOfTheParts) {
    CombinedFile file({{"a", Pages(2, 0)}, {"b", Pages(1, 20)}, {"c", Pages(3, 40)}});
    EXPECT_EQ(file.Sizes(), (std::vector<int>{100, 101, 120, 140, 141, 142}));
}

TEST(PdfCombine, GivesPagesWhatTheyInheritAndTheirContents) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R] /Count 2 /MediaBox [0 0 321 50] /Rotate 90>>");
    pdf.Add("<</Type /Pages /Parent 2 0 R /Kids [4 0 R 4 0 R] /Count 2 /Resources 5 0 R>>");
    pdf.Add("<</Type /Page /Parent 3 0 R /Contents 6 0 R /StructParents 3 /B [6 0 R]>>");
    pdf.Add("<</Font <<>>>>");
    pdf.AddStream("", "BT (KEPT) Tj ET");
    CombinedFile file({{"a", Pages(1, 0)}, {"b", pdf.File()}});
    EXPECT_EQ(file.Sizes(), (std::vector<int>{100, 321, 321})); // the page is twice in the tree
    for (const std::size_t at : {1u, 2u}) {
        auto page = file.Page(at);
        EXPECT_EQ(page.getKey("/Rotate").getIntValue(), 90);
        EXPECT_TRUE(page.getKey("/Resources").hasKey("/Font"));
        const auto data = page.getKey("/Contents").getStreamData(qpdf_dl_generalized);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(data->getBuffer()), data->getSize()),
                  "BT (KEPT) Tj ET");
        EXPECT_FALSE(page.hasKey("/StructParents"));
        EXPECT_FALSE(page.hasKey("/B"));
    }
}

TEST(PdfCombine, KeepsLayersHidden) {
    const auto layers = [](const std::string& shown) {
        PdfBuilder pdf = OnePage("/Resources <</Properties <</L1 5 0 R /L2 6 0 R>>>>",
                                 "/OCProperties <</OCGs [5 0 R 6 0 R] /D <<" + shown + ">>>>");
        pdf.Add("<</Type /OCG /Name (shown)>>");
        pdf.Add("<</Type /OCG /Name (hidden)>>");
        return pdf.File();
    };
    CombinedFile file({{"a", layers("/OFF [6 0 R] /RBGroups [[5 0 R 6 0 R]]")},
                       {"b", layers("/BaseState /OFF /ON [5 0 R]")}});
    auto merged = file.Catalog().getKey("/OCProperties");
    EXPECT_EQ(merged.getKey("/OCGs").getArrayNItems(), 4);
    EXPECT_EQ(merged.getKey("/D").getKey("/RBGroups").getArrayNItems(), 1);
    auto hidden = merged.getKey("/D").getKey("/OFF");
    ASSERT_EQ(hidden.getArrayNItems(), 2);
    for (int part = 0; part < 2; ++part) {
        auto used = file.Page(static_cast<std::size_t>(part))
                        .getKey("/Resources")
                        .getKey("/Properties")
                        .getKey("/L2");
        EXPECT_TRUE(hidden.getArrayItem(part).isSameObjectAs(used));
    }
}

TEST(PdfCombine, KeepsAttachedFilesUnderNamesOfTheirOwn) {
    const auto attached = [](const std::string& content) {
        PdfBuilder pdf = OnePage("", "/Names <</EmbeddedFiles <</Names [(data.xml) 5 0 R]>>>>");
        pdf.Add("<</Type /Filespec /F (data.xml) /EF <</F 6 0 R>>>>");
        pdf.AddStream("/Type /EmbeddedFile", content);
        return pdf.File();
    };
    CombinedFile file({{"a", attached("one")}, {"b", Pages(1, 0)}, {"c", attached("two")}});
    QPDFNameTreeObjectHelper tree(file.Catalog().getKey("/Names").getKey("/EmbeddedFiles"),
                                  file.Pdf());
    std::map<std::string, std::string> contents;
    for (auto& [name, row] : tree) {
        const auto data = row.getKey("/EF").getKey("/F").getStreamData(qpdf_dl_generalized);
        contents[name] = {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()};
    }
    EXPECT_EQ(contents,
              (std::map<std::string, std::string>{{"data.xml", "one"}, {"data.xml (2)", "two"}}));
}

// One part with a row for each of the names, in a chain of nodes below each other.
std::string Attached(const std::vector<std::string>& names) {
    std::vector<std::string> nodes;
    for (std::size_t at = 0; at < names.size(); ++at) {
        const bool isLast = at + 1 == names.size();
        nodes.push_back("<</Names [(" + names[at] + ") <</Type /Filespec /F (" + names[at] +
                        ")>>]" + (isLast ? "" : " /Kids [" + std::to_string(at + 5) + " 0 R]") +
                        ">>");
    }
    return Pages(1, 0, "", "/Names <</EmbeddedFiles 4 0 R>>", nodes);
}

std::set<std::string> AttachedTo(CombinedFile& file) {
    std::set<std::string> names;
    auto rows = file.Catalog().getKey("/Names").getKey("/EmbeddedFiles").getKey("/Names");
    for (int at = 0; at < rows.getArrayNItems(); at += 2) {
        EXPECT_TRUE(names.insert(rows.getArrayItem(at).getUTF8Value()).second);
        EXPECT_TRUE(rows.getArrayItem(at + 1).isDictionary());
    }
    return names;
}

TEST(PdfCombine, KeepsAttachedFilesThatHaveOneNameInOnePart) {
    CombinedFile file({{"a", Attached({"x", "x", "y", "x (2)", "x"})}, {"b", Attached({"x"})}});
    EXPECT_EQ(AttachedTo(file),
              (std::set<std::string>{"x", "x (2)", "x (3)", "x (2) (2)", "x (4)", "y"}));
}

TEST(PdfCombine, KeepsTensOfThousandsOfAttachedFilesOfOneName) {
    std::string rows;
    for (int row = 0; row < 30'000; ++row) rows += "(x) <<>> ";
    const std::string part = Pages(1, 0, "", "/Names <</EmbeddedFiles <</Names [" + rows + "]>>>>");
    CombinedFile file({{"a", part}});
    EXPECT_EQ(AttachedTo(file).size(), 30'000u);
}

TEST(PdfCombine, NamesThePartThatIsDamaged) {
    const std::string good = Pages(1, 0);
    for (const std::string& bad :
         {good.substr(0, good.size() / 2), std::string("%PDF-1.7\n"), Pages(0, 0), // no page
          Pages(1, 0, "", "/Pages 1 0 R"),                                         // no tree
          Pages(1, 0, "/Kids [2 0 R]"), // a tree that loops
          Pages(1, 0, "/Annots [7777777 0 R")}) {
        const Combination made = Combined({{"a", good}, {"b", bad}});
        EXPECT_EQ(made.outcome, CleanOutcome::Damaged) << bad;
        EXPECT_EQ(made.refused, 1u);
        EXPECT_TRUE(made.file.empty());
    }
}

// The library finds this when the stream is read.
TEST(PdfCombine, NamesThePartWithADamagedStream) {
    std::string bad = OnePage().File();
    const auto at = bad.find("endstream");
    bad.replace(at, 9, "endstrxxx");
    const Combination made = Combined({{"a", Pages(1, 0)}, {"b", bad}, {"c", Pages(1, 0)}});
    EXPECT_EQ(made.outcome, CleanOutcome::Damaged);
    EXPECT_EQ(made.refused, 1u);
}

TEST(PdfCombine, RefusesWhatIsNoPdfOrHasItsContentElsewhere) {
    for (const std::string& other :
         {std::string("a text"), std::string(), Pages(1, 0, "", "/Collection <<>>"),
          Pages(1, 0, "", "/NeedsRendering true")}) {
        EXPECT_EQ(Combined({{"a", other}}).outcome, CleanOutcome::NotSupported);
    }
}

bool Opens(const std::string& file, const char* password) {
    try {
        QPDF pdf;
        pdf.processMemoryFile("combined", file.data(), file.size(), password);
        return true;
    } catch (const QPDFExc& error) {
        EXPECT_EQ(error.getErrorCode(), qpdf_e_password);
        return false;
    }
}

Part Locked(const Protection& protection, const std::string& password) {
    return {"locked", Encrypted(Pages(1, 9), protection), false, password};
}

TEST(PdfCombine, EncryptsTheFileAsItsOnlyEncryptedPart) {
    for (const Cipher cipher : kCiphers) {
        const std::string words = OnePage("/Annots [<</Contents (KEPT)>>]").File();
        const std::vector<Part> parts{{"a", Pages(1, 0)},
                                      {"b", Encrypted(words, {.cipher = cipher}), false, "secret"},
                                      {"c", Pages(1, 9)}};
        CombinedFile file(parts, "secret");
        EXPECT_TRUE(file.Pdf().isEncrypted());
        EXPECT_TRUE(file.Pdf().userPasswordMatched());
        EXPECT_EQ(file.Sizes(), (std::vector<int>{100, 200, 109}));
        EXPECT_EQ(file.Annotation(1).getKey("/Contents").getStringValue(), "KEPT");
        const auto data = file.Page(1).getKey("/Contents").getStreamData(qpdf_dl_generalized);
        const std::string contents(reinterpret_cast<const char*>(data->getBuffer()),
                                   data->getSize());
        EXPECT_NE(contents.find("KEPT"), std::string::npos);
        EXPECT_EQ(file.Bytes().find("KEPT"), std::string::npos);
        EXPECT_EQ(Combined(parts).file, file.Bytes());
        EXPECT_FALSE(Opens(file.Bytes(), ""));
    }
}

// The half that is made anew for each file; the other one is part of some keys.
std::string IdOf(const std::string& file) {
    QPDF pdf;
    pdf.setAttemptRecovery(false);
    pdf.processMemoryFile("combined", file.data(), file.size(), "secret");
    pdf.getAllPages();
    EXPECT_FALSE(pdf.anyWarnings());
    return pdf.getTrailer().getKey("/ID").getArrayItem(1).getStringValue();
}

TEST(PdfCombine, GivesAnEncryptedFileAnIdentifierOfItsOwn) {
    for (const Cipher cipher : kCiphers) {
        const Part locked = Locked({.cipher = cipher}, "secret");
        for (const bool isPacked : {false, true}) {
            const std::string other = isPacked ? Packed(Pages(1, 0)) : Pages(1, 0);
            const std::string one = Combined({locked, {"a", other}}).file;
            const std::string two = Combined({locked, {"b", other}}).file;
            EXPECT_EQ(IdOf(one).size(), 16u);
            EXPECT_NE(IdOf(one), IdOf(two));
            EXPECT_EQ(one, Combined({locked, {"a", other}}).file);
            for (const std::string& file : {one, two}) EXPECT_NE(IdOf(file), IdOf(locked.file));
        }
    }
}

TEST(PdfCombine, EncryptsTheFileAsThePartWithTheStrongestCipher) {
    for (const Cipher weaker : kCiphers) {
        if (weaker == Cipher::Aes256) continue;
        const Part weak = Locked({.cipher = weaker, .user = "weak", .owner = "o1"}, "weak");
        const Part strong = Locked({.user = "strong", .owner = "o2"}, "strong");
        for (const auto& parts : {std::vector{weak, strong}, std::vector{strong, weak}}) {
            const std::string file = Combined(parts).file;
            EXPECT_TRUE(Opens(file, "strong"));
            EXPECT_TRUE(Opens(file, "o2"));
            EXPECT_FALSE(Opens(file, "weak"));
            EXPECT_FALSE(Opens(file, "o1"));
            EXPECT_FALSE(Opens(file, ""));
        }
    }
}

TEST(PdfCombine, EncryptsTheFileAsTheFirstOfPartsThatAreEquallyStrong) {
    const std::string file = Combined({Locked({.user = "first", .owner = "o1"}, "first"),
                                       Locked({.user = "second", .owner = "o2"}, "second")})
                                 .file;
    EXPECT_TRUE(Opens(file, "first"));
    EXPECT_FALSE(Opens(file, "second"));
}

// Whichever password the user typed for the part that opens for everybody, and whatever its cipher.
TEST(PdfCombine, NeedsAPasswordWhenOnePartDoes) {
    for (const Cipher cipher : kCiphers) {
        for (const char* typed : {"", "owner"}) {
            const Part open = Locked({.user = ""}, typed);
            const Part secret = Locked({.cipher = cipher, .user = "secret", .owner = "o2"}, "o2");
            for (const auto& parts : {std::vector{open, secret}, std::vector{secret, open}}) {
                const std::string file = Combined(parts).file;
                EXPECT_TRUE(Opens(file, "secret"));
                EXPECT_FALSE(Opens(file, ""));
                EXPECT_FALSE(Opens(file, "owner"));
            }
        }
    }
}

TEST(PdfCombine, KeepsThePermissionsOfAPartThatOpensForEverybody) {
    CombinedFile file({{"a", Pages(1, 0)}, Locked({.user = "", .canChange = false}, "owner")});
    EXPECT_TRUE(file.Pdf().isEncrypted());
    EXPECT_FALSE(file.Pdf().allowModifyOther());
}

TEST(PdfCombine, RefusesAPartThatItCannotOpenOrChange) {
    const std::string plain = Pages(1, 0);
    const auto outcome = [&](const Protection& protection, const char* password) {
        return Combined({{"a", plain}, {"b", Encrypted(plain, protection), false, password}})
            .outcome;
    };
    EXPECT_EQ(outcome({}, ""), CleanOutcome::Encrypted);
    EXPECT_EQ(outcome({}, "wrong"), CleanOutcome::Encrypted);
    EXPECT_EQ(outcome({.canChange = false}, "secret"), CleanOutcome::Locked);
    EXPECT_EQ(outcome({.canChange = false}, "owner"), CleanOutcome::Cleaned);
    EXPECT_EQ(outcome({.user = ""}, ""), CleanOutcome::Cleaned);
}

TEST(PdfCombine, RefusesASignedPartAndGoesOnWithTheOthers) {
    for (const std::string& file : {kSigned, SignedField()}) {
        transforms::combine::PdfCombiner combiner;
        const std::string first = Pages(1, 0), last = Pages(1, 9);
        const auto add = [&](const std::string& part) {
            return combiner.Add({"part", std::as_bytes(std::span(part))});
        };
        EXPECT_EQ(add(first), CleanOutcome::Cleaned);
        EXPECT_EQ(add(file), CleanOutcome::Signed);
        EXPECT_EQ(add(last), CleanOutcome::Cleaned);
        TextSink sink;
        ASSERT_TRUE(combiner.Write(sink));
        QPDF pdf;
        pdf.processMemoryFile("combined", sink.text.data(), sink.text.size());
        EXPECT_EQ(pdf.getAllPages().size(), 2u);
        EXPECT_FALSE(pdf.getRoot().hasKey("/AcroForm"));
        EXPECT_EQ(Unpacked(sink.text).find("/ByteRange"), std::string::npos);
    }
}

TEST(PdfCombine, TakesASignedPartWithoutItsSignatureWhenThatMayBreak) {
    CombinedFile file({{"a", kSigned, true}, {"b", SignedField(), true}});
    EXPECT_EQ(Unpacked(file.Bytes()).find("/ByteRange"), std::string::npos);
    EXPECT_EQ(file.Annotation(1).getKey("/T").getStringValue(), "sig");
    EXPECT_FALSE(file.Annotation(1).hasKey("/V"));
}

TEST(PdfCombine, GivesEqualBytesForEqualParts) {
    const std::vector<Part> parts{{"a", Pages(2, 0)}, {"b", Pages(1, 20)}, {"a", Pages(2, 0)}};
    EXPECT_EQ(Combined(parts).file, Combined(parts).file);
}

TEST(PdfCombine, PacksObjectsWhenAPartDoes) {
    const std::string plain = Pages(3, 0);
    QPDF pdf;
    pdf.processMemoryFile("plain", plain.data(), plain.size());
    const std::string packed = Packed(pdf);
    EXPECT_EQ(Combined({{"a", plain}}).file.find("/ObjStm"), std::string::npos);
    CombinedFile file({{"a", plain}, {"b", packed}});
    EXPECT_NE(file.Bytes().find("/ObjStm"), std::string::npos);
    EXPECT_EQ(file.Sizes(), (std::vector<int>{100, 101, 102, 100, 101, 102}));
}

TEST(PdfCombine, HasTheNewestVersionOfItsParts) {
    EXPECT_EQ(Combined({{"a", Pages(1, 0)}}).file.substr(0, 8), "%PDF-1.7");
}

TEST(PdfCombine, EndsWhenTheResultIsNotWanted) {
    transforms::combine::PdfCombiner combiner;
    PdfBuilder pdf = OnePage("/Other [5 0 R 6 0 R 7 0 R]");
    for (int stream = 0; stream < 3; ++stream) {
        pdf.AddStream("/Filter /DCTDecode", std::string(1'500'000, 'x'));
    }
    const std::string part = pdf.File();
    ASSERT_EQ(combiner.Add({"a", std::as_bytes(std::span(part))}), CleanOutcome::Cleaned);
    TextSink sink;
    sink.most = 0;
    EXPECT_FALSE(combiner.Write(sink));
    EXPECT_FALSE(combiner.Failed());
    EXPECT_LT(sink.text.size(), 3'000'000u);
}

TEST(PdfCombine, ReportsOnWhichPartItWorks) {
    struct Steps : transforms::combine::PdfCombineSteps {
        void Step() noexcept override { ++count; }
        void Enter(std::size_t part) noexcept override { entered.push_back(part); }
        int count = 0;
        std::vector<std::size_t> entered;
    } steps;
    transforms::combine::PdfCombiner combiner(&steps);
    const std::string part = OnePage().File();
    for (int number = 0; number < 3; ++number) {
        ASSERT_EQ(combiner.Add({"a", std::as_bytes(std::span(part))}), CleanOutcome::Cleaned);
    }
    const int added = steps.count;
    EXPECT_GT(added, 0);
    TextSink sink;
    ASSERT_TRUE(combiner.Write(sink));
    EXPECT_GT(steps.count, added);
    EXPECT_EQ(steps.entered, (std::vector<std::size_t>{0, 1, 2}));
}

TEST(PdfCombine, CombinesAHundredFilesAndFiveThousandPages) {
    std::vector<Part> parts{{"long", Pages(5000, 0)}};
    for (int part = 0; part < 100; ++part) parts.push_back({"part", Pages(1, part)});
    CombinedFile file(parts);
    EXPECT_EQ(file.Sizes().size(), 5100u);
}

// With 100 bytes a level, recursion over so many objects would need more than the 2 MB of a stack.
constexpr int kLong = 30'000;

TEST(PdfCombineChains, CombinesLongChainsOfBookmarksAndOfOtherObjects) {
    auto bookmarks = Chain(5, kLong, "<</Title (x) /Parent 4 0 R /Next ", ">>");
    bookmarks.insert(bookmarks.begin(), "<</Type /Outlines /First 5 0 R>>");
    bookmarks.push_back("<</Title (last) /Parent 4 0 R>>");
    auto others = Chain(4, kLong, "<</S /Named /N /Print /Next ", ">>");
    others.push_back("<</S /Named /N /Print>>");
    CombinedFile file({{"a", Pages(1, 0, "", "/Outlines 4 0 R", bookmarks)},
                       {"b", Pages(1, 0, "/AA <</O 4 0 R>>", "", others)}});
    EXPECT_EQ(file.Sizes().size(), 2u);
    EXPECT_EQ(file.Catalog().getKey("/Outlines").getKey("/First").getKey("/Count").getIntValue(),
              -(kLong + 1));
}

// Trees of so many levels: of pages, bookmarks, fields from above, and fields from below.
std::vector<std::string> FilesOfLevels(int levels) {
    std::vector<std::string> files;
    auto pages = Chain(4, levels - 2, "<</Type /Pages /Kids [", "]>>"); // two are above them
    pages.push_back("<</Type /Page /MediaBox [0 0 9 9]>>");
    files.push_back(Pages(1, 0, "/Kids [4 0 R]", "", pages));
    auto bookmarks = Chain(4, levels - 1, "<</Title (x) /First ", ">>");
    bookmarks.push_back("<</Title (last)>>");
    files.push_back(Pages(1, 0, "", "/Outlines <</First 4 0 R>>", bookmarks));
    auto fields = Chain(4, levels - 1, "<</T (x) /Kids [", "]>>");
    fields.push_back("<</T (last) /FT /Tx>>");
    files.push_back(Pages(1, 0, "", "/AcroForm <</Fields [4 0 R]>>", fields));
    auto parents = Chain(4, levels - 1, "<</Subtype /Widget /T (x) /Parent ", ">>");
    parents.push_back("<</T (last) /FT /Tx>>");
    files.push_back(Pages(1, 0, "/Annots [4 0 R]", "/AcroForm <</Fields []>>", parents));
    return files;
}

TEST(PdfCombineChains, RefusesTreesOfMoreThan500Levels) {
    for (const auto& [levels, outcome] : {std::pair(500, CleanOutcome::Cleaned),
                                          {501, CleanOutcome::Damaged},
                                          {kLong, CleanOutcome::Damaged}}) {
        for (const std::string& file : FilesOfLevels(levels)) {
            EXPECT_EQ(Combined({{"a", file}}).outcome, outcome)
                << levels << ' ' << file.substr(file.find("4 0 obj"), 60);
        }
    }
}

TEST(PdfCombineChains, RefusesDeepTreesOfNames) {
    for (const std::string& file :
         {Attached(std::vector<std::string>(1000, "x")),
          Pages(1, 0, "/Annots [<</Subtype /Link /Dest (x)>>]", "/Names <</Dests 4 0 R>>",
                Chain(4, kLong, "<</Kids [", "]>>"))}) {
        EXPECT_EQ(Combined({{"a", file}}).outcome, CleanOutcome::Damaged)
            << file.substr(file.find("4 0 obj"), 60);
    }
}

TEST(PdfCombineChains, EndsWithTreesThatLoop) {
    const std::vector<std::string> loops{"<</Title (x) /First 4 0 R /Next 4 0 R>>"};
    EXPECT_EQ(
        CombinedFile({{"a", Pages(1, 0, "", "/Outlines <</First 4 0 R>>", loops)}}).Sizes().size(),
        1u);
    const std::vector<std::string> fields{"<</T (x) /FT /Tx /Kids [4 0 R] /Subtype /Widget>>"};
    EXPECT_EQ(CombinedFile(
                  {{"a", Pages(1, 0, "/Annots [4 0 R]", "/AcroForm <</Fields [4 0 R]>>", fields)}})
                  .Sizes()
                  .size(),
              1u);
    const std::vector<std::string> parents{"<</T (x) /Subtype /Widget /Parent 4 0 R>>"};
    EXPECT_EQ(Combined({{"a", Pages(1, 0, "/Annots [4 0 R]", "/AcroForm <</Fields []>>", parents)}})
                  .outcome,
              CleanOutcome::Damaged);
    const std::vector<std::string> names{"<</Kids [5 0 R]>>", "<</Kids [4 0 R]>>"};
    EXPECT_EQ(Combined({{"a", Pages(1, 0, "", "/Names <</EmbeddedFiles 4 0 R>>", names)}}).outcome,
              CleanOutcome::Damaged);
}

} // namespace
