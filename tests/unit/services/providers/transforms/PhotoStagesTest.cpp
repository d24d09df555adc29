// Photos that are converted in the stages of the manager's module, by the real work process: names,
// paths, what stays.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/ModulePath.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace stagetest;
using Counted = std::vector<std::int32_t>;

constexpr std::uint32_t kConvert = 50;
const std::wstring kPhotoKey = std::wstring(kProviderManagerKey) + L"\\Transforms\\50";

std::string Text(const obtest::PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }
std::string Tiff(int pages = 1) {
    return Text(obtest::MakeTiff(obtest::Photo(60, 40, 3), {.pages = pages}));
}

class PhotoStages : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(kConvert);
    }
    static std::string Sample(const wchar_t* name) {
        return *obtest::ReadFileContent(*ObLib::ModuleFolder(nullptr) + L"photos\\" + name);
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
    std::string Begin(const std::wstring& name) const {
        return obtest::ReadFileContent(folder_ / name).value_or("").substr(0, 3);
    }
};

TEST_F(PhotoStages, WorkOnEachFile) {
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, kConvert, kTransform));
    EXPECT_EQ(Counts(), (Counted{0, 0, 1, 0}));
}

TEST_F(PhotoStages, PutTheResultBesideAndDeleteTheCopy) {
    EXPECT_EQ(Converted(L"Beach.HEIC", Sample(L"grid.heic")), L"Beach.jpg");
    EXPECT_EQ(Converted(L"Logo.heic", Sample(L"alpha.heic")), L"Logo.png");
    EXPECT_EQ(Converted(L"a scan.of.mine.tif", Tiff()), L"a scan.of.mine.jpg");
    EXPECT_EQ(Files(), (Names{L"Beach.jpg", L"Logo.png", L"a scan.of.mine.jpg"}));
    EXPECT_EQ(Begin(L"Beach.jpg"), "\xFF\xD8\xFF");
    EXPECT_EQ(Begin(L"Logo.png"), "\x89PN");
}

TEST_F(PhotoStages, NumberANameThatAnotherFileHas) {
    const std::string jpeg = Text(obtest::MakeJpeg(obtest::Photo(60, 40, 3)));
    folder_.File(L"Beach.jpg", jpeg);
    EXPECT_EQ(Converted(L"Beach.tif", Tiff()), L"Beach (2).jpg");
    EXPECT_EQ(Converted(L"Beach.heic", Sample(L"plain.heic")), L"Beach (3).jpg");
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"Beach.jpg"), jpeg);
}

TEST_F(PhotoStages, KeepTheNameOfAPhotoThatIsCalledAJpegAlready) {
    EXPECT_EQ(Converted(L"Beach.jpg", Sample(L"plain.heic")), L"Beach.jpg");
    EXPECT_EQ(Converted(L"Lake.JPEG", Tiff()), L"Lake.JPEG");
    EXPECT_EQ(Files(), (Names{L"Beach.jpg", L"Lake.JPEG"}));
    EXPECT_EQ(Begin(L"Beach.jpg"), "\xFF\xD8\xFF");
}

TEST_F(PhotoStages, AnswerASecondVisitWithTheFirstOnesResult) {
    const std::wstring path = folder_.File(L"Beach.tif", Tiff());
    ASSERT_TRUE(Execute(path));
    ASSERT_TRUE(Execute(path));
    EXPECT_EQ(Target(), folder_ / L"Beach.jpg");
    EXPECT_EQ(Files(), Names{L"Beach.jpg"});
}

TEST_F(PhotoStages, ConvertInTheListStageWhatTheFileStageHasNotSeen) {
    const std::wstring seen = folder_.File(L"Beach.tif", Tiff());
    ASSERT_TRUE(Execute(seen));
    const std::wstring path = folder_.File(L"Lake.tif", Tiff());
    const std::wstring letter = folder_.File(L"Letter.txt", "text");
    ASSERT_TRUE(List({folder_ / L"Beach.jpg", path, letter, path}, 3));
    EXPECT_EQ(Results(5), (Names{folder_ / L"Beach.jpg", folder_ / L"Lake.jpg", letter,
                                 folder_ / L"Lake.jpg"}));
    EXPECT_EQ(Files(), (Names{L"Beach.jpg", L"Lake.jpg", L"Letter.txt"}));
}

TEST_F(PhotoStages, LeaveWhatIsNoPhotoOrPasses) {
    const std::pair<const wchar_t*, std::string> rows[] = {
        {L"Letter.txt", "text"},
        {L"Empty.heic", ""},
        {L"Picture.png", Text(obtest::MakePng(obtest::Photo(60, 40, 3)))},
        {L"Pages.tif", Tiff(2)},
        {L"Moving.heic", Sample(L"moving.heic")},
    };
    const obtest::MessageBoxWatcher boxes;
    for (const auto& [name, content] : rows) {
        EXPECT_EQ(Converted(name, content), name);
        EXPECT_EQ(obtest::ReadFileContent(folder_ / name), content);
    }
    EXPECT_EQ(Files().size(), std::size(rows));
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(PhotoStages, ConvertTheKindsThatTheUserWants) {
    obtest::SetValue(HKEY_CURRENT_USER, kPhotoKey, L"Tiff", L"0");
    obtest::SetValue(HKEY_CURRENT_USER, kPhotoKey, L"Quality", L"Low");
    EXPECT_EQ(Converted(L"Scan.tif", Tiff()), L"Scan.tif");
    EXPECT_EQ(Converted(L"Beach.heic", Sample(L"plain.heic")), L"Beach.jpg");
}

// The system of the tests has no codec for AVIF.
TEST_F(PhotoStages, ReportOnceThatAPhotoHasNoDecoder) {
    const obtest::MessageBoxWatcher boxes;
    EXPECT_EQ(Converted(L"One.avif", Sample(L"plain.avif")), L"One.avif");
    EXPECT_EQ(Converted(L"Two.avif", Sample(L"plain.avif")), L"Two.avif");
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"“One.avif” goes out as it is"), std::wstring::npos);
    EXPECT_EQ(Files(), (Names{L"One.avif", L"Two.avif"}));
}

TEST_F(PhotoStages, StopForADamagedPhotoWithOneSentence) {
    const std::string whole = Sample(L"plain.heic");
    const std::wstring path = folder_.File(L"Beach.heic", whole.substr(0, whole.size() - 100));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(
        boxes.Seen()[0].text.find(L"“Beach.heic” can't be converted, because the photo is damaged"),
        std::wstring::npos);
    EXPECT_EQ(Files(), Names{L"Beach.heic"});
}

TEST_F(PhotoStages, StopForAPhotoOfTooManyPixels) {
    const std::wstring path = folder_.File(L"Beach.heic", Sample(L"huge.heic"));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"too large"), std::wstring::npos);
    EXPECT_EQ(Files(), Names{L"Beach.heic"});
}

TEST_F(PhotoStages, RefuseALongerPathThanTheResultMayHaveBeforeTheWork) {
    const std::wstring path = DeepFile(L".tf", 512, Tiff());
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Execute(path)) << "513 units";
    const std::wstring longer = path.substr(0, 510) + L"n.t";
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + longer, Tiff()));
    EXPECT_FALSE(Execute(longer));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"too long"), std::wstring::npos);
}

TEST_F(PhotoStages, WorkBeforeThoseThatCleanTheResult) {
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kRemoveInfo, kTransform));
    EXPECT_EQ(Converted(L"Beach.heic", Sample(L"turn6.heic")), L"Beach.jpg");
    const std::string clean = obtest::ReadFileContent(folder_ / L"Beach.jpg").value_or("");
    EXPECT_EQ(clean.find("MakerCo"), std::string::npos);
    EXPECT_TRUE(Final({folder_ / L"Beach.jpg"}));
}

} // namespace
