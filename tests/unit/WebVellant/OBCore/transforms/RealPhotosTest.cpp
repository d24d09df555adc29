// Runs with the real provider manager and its work process that convert real photos: what is
// attached, what is on the disk.
#include "OBCore/transforms/Transforms.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "tests/unit/WebVellant/OBCore/transforms/RealManagerFixture.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"

namespace {

using obtest::Lines;

std::string Sample(const wchar_t* name) {
    return *obtest::ReadFileContent(*ObLib::ModuleFolder(nullptr) + L"photos\\" + name);
}

class PhotosByTheRealManager : public obtest::RealManagerFixture {
protected:
    void SetUp() override {
        RealManagerFixture::SetUp();
        job_.AutoConvertPhotos = true;
    }
    static std::string Begin(const std::wstring& path) {
        return obtest::ReadFileContent(path).value_or("").substr(0, 3);
    }
};

TEST_F(PhotosByTheRealManager, AttachAJpegInPlaceOfASinglePhoto) {
    const std::string photo = Sample(L"turn6.heic");
    const std::wstring source = sources_.File(L"Beach.heic", photo);
    EXPECT_TRUE(obcore::CompressUtils::TransformSingleFile(job_, {source}));
    EXPECT_EQ(job_.Files, Lines{RunFolder() + L"Beach.jpg"});
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\Beach.jpg"}));
    EXPECT_EQ(Begin(RunFolder() + L"Beach.jpg"), "\xFF\xD8\xFF");
    EXPECT_EQ(obtest::ReadFileContent(source), photo);
}

TEST_F(PhotosByTheRealManager, LeaveTheListedFilesAloneInTheFolder) {
    const std::wstring folder = temp_.Folder(L"run") + L"\\";
    const auto jpeg = obtest::MakeJpeg(obtest::Photo(60, 40, 3));
    Lines files;
    for (const auto& [name, content] :
         {std::pair(L"Beach.heic", Sample(L"grid.heic")),
          std::pair(L"Logo.heic", Sample(L"alpha.heic")),
          std::pair(L"Beach.jpg", std::string(jpeg.begin(), jpeg.end())),
          std::pair(L"Letter.txt", std::string("text"))}) {
        files.push_back(folder + name);
        ASSERT_TRUE(obtest::WriteFileContent(files.back(), content));
    }
    ASSERT_TRUE(obcore::CompressUtils::RunTransforms(job_, files, folder));
    EXPECT_EQ(files, (Lines{folder + L"Beach (2).jpg", folder + L"Logo.png", folder + L"Beach.jpg",
                            folder + L"Letter.txt"}));
    EXPECT_EQ(obtest::ListTree(folder),
              (Lines{L"Beach (2).jpg", L"Beach.jpg", L"Letter.txt", L"Logo.png"}));
    EXPECT_EQ(obtest::ReadFileContent(folder + L"Beach.jpg"),
              std::string(jpeg.begin(), jpeg.end()));
}

// Each picture is coded from what the conversion made of it.
TEST_F(PhotosByTheRealManager, AreMadeSmallerAfterTheyAreConverted) {
    job_.AutoResizeImages = true;
    const std::wstring source = sources_.File(L"Beach.heic", Sample(L"plain.heic"));
    const std::wstring key = std::wstring(obcontract::kProviderManagerKey) + L"\\Transforms\\2";
    obtest::SetValue(HKEY_CURRENT_USER, key, L"Aim", L"LongestEdge");
    obtest::SetValue(HKEY_CURRENT_USER, key, L"Pixels", L"60");
    EXPECT_TRUE(obcore::CompressUtils::TransformSingleFile(job_, {source}));
    ASSERT_EQ(job_.Files, Lines{RunFolder() + L"Beach.jpg"});
    const std::string content = *obtest::ReadFileContent(job_.Files[0]);
    EXPECT_EQ(obtest::ParseJpeg({content.begin(), content.end()}).raster.width, 60u);
}

TEST_F(PhotosByTheRealManager, AttachNothingWhenAPhotoIsDamaged) {
    const std::wstring source = sources_.File(L"Beach.heic", Sample(L"other.heic"));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(obcore::CompressUtils::TransformSingleFile(job_, {source}));
    EXPECT_TRUE(job_.Files.empty());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"Beach.heic"), std::wstring::npos);
}

// The whole run, with the product's own stages around the manager.
TEST_F(PhotosByTheRealManager, FitAMailConvertedStampedAndCleanedInOnePass) {
    job_.AutoResizeImages = job_.AutoWatermark = job_.AutoRemoveInfo = true;
    const std::wstring key = std::wstring(obcontract::kProviderManagerKey) + L"\\Transforms\\";
    obtest::SetValue(HKEY_CURRENT_USER, key + L"2", L"Aim", L"FitMail");
    obtest::SetValue(HKEY_CURRENT_USER, key + L"2", L"Megabytes", L"1");
    obtest::SetValue(HKEY_CURRENT_USER, key + L"51", L"ShowReceipt", L"0");
    obtest::SetValue(HKEY_CURRENT_USER, key + L"51", L"AskAboutOtherFiles", L"1");
    const std::wstring folder = temp_.Folder(L"run") + L"\\";
    const auto jpeg = obtest::MakeJpeg(obtest::Photo(1100, 900, 3, 8, 1, 40),
                                       {.quality = 97, .markers = {{0xFE, "canary of a comment"}}});
    Lines files;
    for (const auto& [name, content] :
         {std::pair(L"Beach.heic", Sample(L"turn6.heic")),
          std::pair(L"Logo.heic", Sample(L"alpha.heic")),
          std::pair(L"Beach.jpg", std::string(jpeg.begin(), jpeg.end()))}) {
        files.push_back(folder + name);
        ASSERT_TRUE(obtest::WriteFileContent(files.back(), content));
    }
    ASSERT_TRUE(obcore::CompressUtils::RunTransforms(job_, files, folder));
    EXPECT_EQ(files,
              (Lines{folder + L"Beach (2).jpg", folder + L"Logo.png", folder + L"Beach.jpg"}));
    EXPECT_EQ(obtest::ListTree(folder), (Lines{L"Beach (2).jpg", L"Beach.jpg", L"Logo.png"}));
    std::uint64_t sum = 0;
    for (const std::wstring& path : files) {
        const std::string content = *obtest::ReadFileContent(path);
        EXPECT_EQ(content.find("canary"), std::string::npos);
        EXPECT_EQ(content.find("MakerCo"), std::string::npos);
        sum += content.size();
    }
    EXPECT_LE(sum, 729'927u);
    EXPECT_GE(sum, 729'927u * 85 / 100);
}

TEST_F(PhotosByTheRealManager, FitAsASinglePhoto) {
    job_.AutoResizeImages = true;
    const std::wstring key = std::wstring(obcontract::kProviderManagerKey) + L"\\Transforms\\2";
    obtest::SetValue(HKEY_CURRENT_USER, key, L"Aim", L"FitMail");
    obtest::SetValue(HKEY_CURRENT_USER, key, L"Megabytes", L"1");
    const std::wstring source = sources_.File(L"Beach.heic", Sample(L"plain.heic"));
    EXPECT_TRUE(obcore::CompressUtils::TransformSingleFile(job_, {source}));
    EXPECT_EQ(job_.Files, Lines{RunFolder() + L"Beach.jpg"});
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\Beach.jpg"}));
}

} // namespace
