// Pictures that become PDFs in the stages of the manager's module, by the real work process: names,
// paths, order, what stays. No office program is installed in the tests' system.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace stagetest;

constexpr std::uint32_t kPdf = 3;
const std::wstring kPdfKey = std::wstring(kProviderManagerKey) + L"\\Transforms\\3";

std::string Text(const obtest::PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
std::string Jpeg() {
    return Text(obtest::MakeJpeg(obtest::Photo(300, 200, 3),
                                 {.markers = {{0xE1, obtest::ExifOf(300, 200)}}}));
}
std::string Png() { return Text(obtest::MakePng(obtest::Photo(60, 40, 3))); }
// By its name and first bytes; nothing opens it here.
std::string Document() { return "{\\rtf1 A letter}"; }

class PdfStages : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo, kTransform));
        Use(kPdf);
    }
    void Use(std::uint32_t provider) {
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, provider, kTransform));
    }
    std::wstring Target() const { return Entries().GetProviderTarget(manager_); }
    // The name of the result of a file that is made and converted.
    std::wstring Converted(const std::wstring& name, const std::string& content) {
        EXPECT_TRUE(Execute(folder_.File(name, content)));
        const std::wstring path = Target();
        EXPECT_EQ(path.find(folder_.Path()), 0u);
        EXPECT_TRUE(obtest::FileExists(path));
        return path.substr(folder_.Path().size() + 1);
    }
    std::string Content(const std::wstring& name) const {
        return obtest::ReadFileContent(folder_ / name).value_or("");
    }
    bool Has(const std::wstring& name, const std::string& part) const {
        return Content(name).find(part) != std::string::npos;
    }
};

TEST_F(PdfStages, WorkOnEachFile) {
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, kPdf, kTransform));
    EXPECT_EQ(Counts(), (std::vector<std::int32_t>{0, 0, 1, 0}));
}

TEST_F(PdfStages, PutThePdfBesideAndDeleteTheCopy) {
    const std::string picture = Jpeg();
    EXPECT_EQ(Converted(L"Beach.of.mine.JPG", picture), L"Beach.of.mine.pdf");
    EXPECT_EQ(Converted(L"Chart.png", Png()), L"Chart.pdf");
    EXPECT_EQ(Files(), (Names{L"Beach.of.mine.pdf", L"Chart.pdf"}));
    EXPECT_TRUE(Content(L"Beach.of.mine.pdf").starts_with("%PDF-"));
    EXPECT_TRUE(Has(L"Beach.of.mine.pdf", picture));
}

TEST_F(PdfStages, NumberANameThatAnotherFileHas) {
    folder_.File(L"Beach.pdf", "%PDF-1.4 of the user");
    EXPECT_EQ(Converted(L"Beach.jpg", Jpeg()), L"Beach (2).pdf");
    EXPECT_EQ(Converted(L"Beach.png", Png()), L"Beach (3).pdf");
    EXPECT_EQ(Content(L"Beach.pdf"), "%PDF-1.4 of the user");
}

TEST_F(PdfStages, KeepTheNameOfAPictureThatIsCalledAPdfAlready) {
    EXPECT_EQ(Converted(L"Beach.PDF", Jpeg()), L"Beach.PDF");
    EXPECT_TRUE(Content(L"Beach.PDF").starts_with("%PDF-"));
    EXPECT_EQ(Files(), Names{L"Beach.PDF"});
}

TEST_F(PdfStages, AnswerASecondVisitWithTheFirstOnesResult) {
    const std::wstring path = folder_.File(L"Beach.jpg", Jpeg());
    ASSERT_TRUE(Execute(path));
    ASSERT_TRUE(Execute(path));
    EXPECT_EQ(Target(), folder_ / L"Beach.pdf");
    EXPECT_EQ(Files(), Names{L"Beach.pdf"});
}

TEST_F(PdfStages, LeaveWhatIsNoPictureOrPasses) {
    const obtest::Raster photo = obtest::Photo(60, 40, 3);
    const std::pair<const wchar_t*, std::string> rows[] = {
        {L"Letter.txt", "text"},
        {L"Empty.jpg", ""},
        {L"Report.pdf", "%PDF-1.4"},
        {L"Moving.webp", Text(obtest::MakeWebp(photo, {.frames = 2}))},
    };
    const obtest::MessageBoxWatcher boxes;
    for (const auto& [name, content] : rows) {
        EXPECT_EQ(Converted(name, content), name);
        EXPECT_EQ(Content(name), content);
    }
    EXPECT_EQ(Files().size(), std::size(rows));
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(PdfStages, FollowTheSettings) {
    obtest::SetValue(HKEY_CURRENT_USER, kPdfKey, L"Page", L"Letter");
    EXPECT_EQ(Converted(L"Chart.png", Png()), L"Chart.pdf");
    EXPECT_TRUE(Has(L"Chart.pdf", "/MediaBox [0 0 792 612]"));
    obtest::SetValue(HKEY_CURRENT_USER, kPdfKey, L"Pictures", L"0");
    obtest::SetValue(HKEY_CURRENT_USER, kPdfKey, L"Documents", L"0");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Converted(L"Beach.jpg", Jpeg()), L"Beach.jpg");
    EXPECT_EQ(Converted(L"Letter.rtf", Document()), L"Letter.rtf");
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(PdfStages, ReportOnceThatDocumentsStayAsTheyAre) {
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Converted(L"One.rtf", Document()), L"One.rtf");
    EXPECT_EQ(Converted(L"Two.rtf", Document()), L"Two.rtf");
    EXPECT_EQ(Converted(L"Beach.jpg", Jpeg()), L"Beach.pdf");
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"“One.rtf” goes out as it is"), std::wstring::npos);
    EXPECT_EQ(Files(), (Names{L"Beach.pdf", L"One.rtf", L"Two.rtf"}));
}

// The sentence of the tick and that of the stage are one a run.
TEST_F(PdfStages, AreReadyWithoutAnOfficeProgramAfterOneSentence) {
    const obtest::MessageBoxWatcher boxes;
    for (int tick = 0; tick < 2; ++tick)
        EXPECT_TRUE(Entries().GetReadyForConvert(nullptr, manager_, kPdf, kTransform));
    EXPECT_EQ(Converted(L"One.rtf", Document()), L"One.rtf");
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"documents will go out as they are"), std::wstring::npos);
}

TEST_F(PdfStages, AreReadyWithoutASentenceWhereDocumentsAreNotWanted) {
    obtest::SetValue(HKEY_CURRENT_USER, kPdfKey, L"Documents", L"0");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Entries().GetReadyForConvert(nullptr, manager_, kPdf, kTransform));
    EXPECT_TRUE(boxes.Seen().empty());
}

// The order on one file: PDF, photos, size, watermark, personal data.
TEST_F(PdfStages, WorkBeforeTheOtherTransformsOfAFile) {
    for (const std::uint32_t provider : {50u, 2u, 5u, kRemoveInfo}) Use(provider);
    const std::string tiff = Text(obtest::MakeTiff(obtest::Photo(3000, 600, 3)));
    EXPECT_EQ(Converted(L"Scan.tif", tiff), L"Scan.pdf");
    EXPECT_TRUE(Has(L"Scan.pdf", "/Width 3000")); // not made smaller
    EXPECT_TRUE(Has(L"Scan.pdf", "/ObStamp1"));   // and with a watermark
    const std::string picture = Jpeg();
    EXPECT_EQ(Converted(L"Beach.jpg", picture), L"Beach.pdf");
    EXPECT_FALSE(Has(L"Beach.pdf", picture)); // without its Exif data
    EXPECT_TRUE(Has(L"Beach.pdf", picture.substr(picture.size() / 2)));
    EXPECT_EQ(Files(), (Names{L"Beach.pdf", L"Scan.pdf"}));
    EXPECT_TRUE(Final({folder_ / L"Scan.pdf", folder_ / L"Beach.pdf"}));
}

TEST_F(PdfStages, CountAsOtherFilesWhenPicturesFitAMail) {
    Use(2);
    const std::wstring key = std::wstring(kProviderManagerKey) + L"\\Transforms\\2";
    obtest::SetValue(HKEY_CURRENT_USER, key, L"Aim", L"FitMail");
    obtest::SetValue(HKEY_CURRENT_USER, key, L"Megabytes", L"1");
    const std::string picture =
        Text(obtest::MakePng(obtest::Photo(900, 600, 3, 8, 3, 255))); // grain hardly deflates
    EXPECT_EQ(Converted(L"Chart.png", picture), L"Chart.pdf");
    ASSERT_GT(Content(L"Chart.pdf").size(), 730'000u);
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(List({folder_ / L"Chart.pdf"}, 3));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"No file is a picture"), std::wstring::npos);
}

TEST_F(PdfStages, StopForADamagedPictureWithOneSentence) {
    const std::string whole = Jpeg();
    const std::wstring path = folder_.File(L"Beach.jpg", whole.substr(0, whole.size() / 2));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(
                  L"“Beach.jpg” can't be converted to PDF, because the picture is damaged"),
              std::wstring::npos);
    EXPECT_EQ(Files(), Names{L"Beach.jpg"});
}

TEST_F(PdfStages, WorkOnAReadOnlyCopy) {
    const std::wstring path = folder_.File(L"Beach.jpg", Jpeg());
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(Files(), Names{L"Beach.pdf"});
    SetFileAttributesW((folder_ / L"Beach.pdf").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(PdfStages, RefuseACopyThatAnotherProgramHasLocked) {
    const std::wstring path = folder_.File(L"Beach.jpg", Jpeg());
    const ObLib::UniqueKernelHandle locked(
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(locked);
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"“Beach.jpg” can't be read"), std::wstring::npos);
    EXPECT_EQ(Files(), Names{L"Beach.jpg"});
}

// The name without a number is taken, and only the work shows that one is needed at all.
TEST_F(PdfStages, ReportThatANumberedNameIsTooLong) {
    const std::wstring deep = DeepFolder();
    const std::wstring stem = deep + L"\\" + std::wstring(512 - deep.size() - 4, L'n');
    const std::wstring path = stem + L".tf", taken = stem + L".pdf"; // 513 units
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + path, Png()));
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + taken, "taken"));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"is too long"), std::wstring::npos);
    EXPECT_EQ(obtest::ReadFileContent(L"\\\\?\\" + path), Png());
    EXPECT_EQ(obtest::ReadFileContent(L"\\\\?\\" + taken), "taken");
}

// Their results would have longer paths, but there are none: no picture, and no office program.
TEST_F(PdfStages, PassALongPathOfWhatIsNotConverted) {
    for (const auto& [extension, content] :
         {std::pair{L"", std::string("text")}, std::pair{L".md", Document()}}) {
        const std::wstring path = DeepFile(extension, 513, content);
        const obtest::MessageBoxWatcher boxes;
        EXPECT_TRUE(Execute(path));
        EXPECT_EQ(Target(), path);
        for (const obtest::SeenBox& box : boxes.Seen())
            EXPECT_EQ(box.text.find(L"too long"), std::wstring::npos);
    }
}

TEST_F(PdfStages, RefuseALongerPathThanTheResultMayHaveBeforeTheWork) {
    const std::wstring path = DeepFile(L".tf", 512, Png());
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Execute(path)) << "513 units";
    const std::wstring longer = path.substr(0, 510) + L"n.t";
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + longer, Png()));
    EXPECT_FALSE(Execute(longer));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"too long"), std::wstring::npos);
}

// Two pixels of two colours, whose codes are damaged: that comes out in the work only.
TEST_F(PdfStages, RefuseAGifWithTooLongAPathBeforeTheWork) {
    using namespace std::string_literals;
    const std::string gif =
        "GIF89a\2\0\1\0\x80\0\0\0\0\0\xFF\xFF\xFF"s + ",\0\0\0\0\2\0\1\0\0\2\1\xFF\0;"s;
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(DeepFile(L".g", 512, gif)));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"too long"), std::wstring::npos) << boxes.Seen()[0].text;
}

} // namespace
