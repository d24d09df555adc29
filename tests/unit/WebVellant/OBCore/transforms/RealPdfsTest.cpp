// Runs with the real provider manager and its work process that make PDFs of real pictures: what is
// attached, what is on the disk.
#include "OBCore/transforms/Transforms.h"
#include "tests/unit/WebVellant/OBCore/transforms/RealManagerFixture.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using obtest::Lines;

std::string Text(const obtest::PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }

class PicturePdfsByTheRealManager : public obtest::RealManagerFixture {
protected:
    void SetUp() override {
        RealManagerFixture::SetUp();
        job_.AutoConvertPDF = true;
    }
    static std::string Content(const std::wstring& path) {
        return obtest::ReadFileContent(path).value_or("");
    }

    const std::string photo_ = Text(obtest::MakeJpeg(obtest::Photo(60, 40, 3)));
};

TEST_F(PicturePdfsByTheRealManager, AttachAPdfInPlaceOfASinglePicture) {
    const std::wstring source = sources_.File(L"Beach.jpg", photo_);
    EXPECT_TRUE(obcore::CompressUtils::TransformSingleFile(job_, {source}));
    EXPECT_EQ(job_.Files, Lines{RunFolder() + L"Beach.pdf"});
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\Beach.pdf"}));
    EXPECT_NE(Content(RunFolder() + L"Beach.pdf").find(photo_), std::string::npos);
    EXPECT_EQ(Content(source), photo_);
}

TEST_F(PicturePdfsByTheRealManager, LeaveTheListedFilesAloneInTheFolder) {
    const std::wstring folder = temp_.Folder(L"run") + L"\\";
    Lines files;
    for (const auto& [name, content] :
         {std::pair(L"Beach.jpg", photo_),
          std::pair(L"Scan.tif", Text(obtest::MakeTiff(obtest::Photo(60, 40, 3), {.pages = 2}))),
          std::pair(L"Beach.pdf", std::string("%PDF-1.4")),
          std::pair(L"Letter.txt", std::string("text"))}) {
        files.push_back(folder + name);
        ASSERT_TRUE(obtest::WriteFileContent(files.back(), content));
    }
    ASSERT_TRUE(obcore::CompressUtils::RunTransforms(job_, files, folder));
    EXPECT_EQ(files, (Lines{folder + L"Beach (2).pdf", folder + L"Scan.pdf", folder + L"Beach.pdf",
                            folder + L"Letter.txt"}));
    EXPECT_EQ(obtest::ListTree(folder),
              (Lines{L"Beach (2).pdf", L"Beach.pdf", L"Letter.txt", L"Scan.pdf"}));
    EXPECT_NE(Content(folder + L"Scan.pdf").find("/Count 2"), std::string::npos);
    EXPECT_EQ(Content(folder + L"Beach.pdf"), "%PDF-1.4");
}

TEST_F(PicturePdfsByTheRealManager, BecomeOnePdfTogether) {
    job_.AutoCombinePDFs = true;
    const std::wstring folder = temp_.Folder(L"run") + L"\\";
    Lines files;
    for (const wchar_t* name : {L"One.jpg", L"Letter.txt", L"Two.jpg"}) {
        files.push_back(folder + name);
        ASSERT_TRUE(obtest::WriteFileContent(
            files.back(), std::wstring(name) == L"Letter.txt" ? "text" : photo_));
    }
    ASSERT_TRUE(obcore::CompressUtils::RunTransforms(job_, files, folder));
    EXPECT_EQ(files, (Lines{folder + L"One.pdf", folder + L"Letter.txt"}));
    EXPECT_NE(Content(folder + L"One.pdf").find("/Count 2"), std::string::npos);
}

TEST_F(PicturePdfsByTheRealManager, AttachNothingWhenAPictureIsDamaged) {
    const std::string damaged = photo_.substr(0, photo_.size() / 2);
    const std::wstring source = sources_.File(L"Beach.jpg", damaged);
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(obcore::CompressUtils::TransformSingleFile(job_, {source}));
    EXPECT_EQ(Content(source), damaged);
    EXPECT_TRUE(job_.Files.empty());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"Beach.jpg"), std::wstring::npos);
}

} // namespace
