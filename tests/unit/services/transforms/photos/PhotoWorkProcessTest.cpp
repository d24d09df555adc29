// Photos converted by the real work process, with as few rights as it has, driven by the manager's
// client.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/WorkProcess.h"
#include "tests/fakes/Recording.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace providers;
using obcontract::WorkPhoto;
using obcontract::WorkPhotoKinds;

class PhotoWorkProcess : public testing::Test {
protected:
    PhotoWorkProcess()
        : process_({BesideProgram(obcontract::kTransformWorkFileName), 60000, {}}),
          ended_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    WorkReport Convert(const PictureBytes& photo, WorkPhotoKinds kinds = WorkPhotoKinds::All,
                       std::uint32_t quality = 92) {
        DeleteFileW(Target().c_str());
        const auto source = Open(
            folder_.File(L"source", {reinterpret_cast<const char*>(photo.data()), photo.size()}),
            GENERIC_READ, OPEN_EXISTING);
        const auto target = Open(Target(), GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
        CallWait wait(ended_.Get(), nullptr);
        return process_.Run({obcontract::WorkKind::ConvertPhoto, WorkPhoto{quality, kinds}},
                            source.Get(), target.Get(), wait);
    }
    ConvertedPhoto Result() const {
        const std::string content = *ReadFileContent(Target());
        return {{}, {content.begin(), content.end()}};
    }
    void ExpectConverted(const PictureBytes& photo) {
        const WorkReport report = Convert(photo);
        ASSERT_EQ(report.result, WorkResult::Changed);
        EXPECT_EQ(report.size, Result().file.size());
        ExpectQuarters(Result().Pixels());
    }

private:
    std::wstring Target() const { return folder_ / L"target"; }
    static ObLib::UniqueKernelHandle Open(const std::wstring& path, DWORD access, DWORD how) {
        return ObLib::UniqueKernelHandle(
            CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, how, 0, nullptr));
    }
    const TestFolder folder_;
    WorkProcess process_;
    ObLib::UniqueKernelHandle ended_;
};

TEST_F(PhotoWorkProcess, ConvertsPhotosOfEachKind) {
    ExpectConverted(PhotoSample(L"grid.heic"));
    ExpectConverted(PhotoSample(L"turn6.heic"));
    ExpectConverted(PhotoSample(L"stored1.jxr"));
    ExpectConverted(MakeTiff(Quarters(8), {.orientation = 8}));
    ExpectConverted(MakeWebp(Quarters()));
}

TEST_F(PhotoWorkProcess, MakesAPngWhereThereAreTransparentPixels) {
    ASSERT_EQ(Convert(PhotoSample(L"alpha.heic")).result, WorkResult::Changed);
    EXPECT_TRUE(Result().IsPng());
}

TEST_F(PhotoWorkProcess, WritesNothingForWhatPasses) {
    EXPECT_EQ(Convert(MakeTiff(Quarters(), {.pages = 2})).result, WorkResult::Unchanged);
    EXPECT_TRUE(Result().file.empty());
    EXPECT_EQ(Convert(MakeJpeg(Quarters())).result, WorkResult::NotSupported);
    EXPECT_EQ(Convert(MakeTiff(Quarters()), WorkPhotoKinds::Heic).result, WorkResult::NotSupported);
    EXPECT_TRUE(Result().file.empty());
}

TEST_F(PhotoWorkProcess, HasAReasonForWhatItCannotConvert) {
    EXPECT_EQ(Convert(PhotoSample(L"huge.heic")).result, WorkResult::TooLarge);
    const PictureBytes whole = PhotoSample(L"plain.heic");
    EXPECT_EQ(Convert({whole.begin(), whole.end() - 100}).result, WorkResult::Damaged);
    EXPECT_EQ(Convert({}).result, WorkResult::NotSupported);
}

TEST_F(PhotoWorkProcess, EndsForSettingsThatAreNotValid) {
    const PictureBytes photo = MakeWebp(Quarters());
    EXPECT_EQ(Convert(photo, WorkPhotoKinds::All, 0).result, WorkResult::ProcessFailed);
    EXPECT_EQ(Convert(photo, WorkPhotoKinds::All, 101).result, WorkResult::ProcessFailed);
    EXPECT_EQ(Convert(photo, static_cast<WorkPhotoKinds>(128)).result, WorkResult::ProcessFailed);
    ExpectConverted(photo);
}

// The system of the tests has no codec for HEIC either.
TEST_F(PhotoWorkProcess, LeavesHeicPhotosWithoutTheLibrary) {
    const std::wstring library = BesideProgram(L"libheif.dll"), away = BesideProgram(L"away.dll");
    ASSERT_TRUE(MoveFileW(library.c_str(), away.c_str()));
    EXPECT_EQ(Convert(PhotoSample(L"plain.heic")).result, WorkResult::NotSupported);
    EXPECT_TRUE(Result().file.empty());
    ASSERT_TRUE(MoveFileW(away.c_str(), library.c_str()));
    ExpectConverted(PhotoSample(L"plain.heic"));
}

} // namespace
