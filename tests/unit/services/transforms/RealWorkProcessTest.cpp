// The manager's client with the real work process: files in, files and findings out.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/WorkProcess.h"
#include "tests/fakes/Recording.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/documents/BombSamples.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

using namespace providers;

namespace {

class RealWorkProcess : public testing::Test {
protected:
    RealWorkProcess()
        : process_({obtest::BesideProgram(obcontract::kTransformWorkFileName), 60000, {}}),
          ended_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    WorkReport Clean(const std::string& content) { return Change(content, CleanOrder()); }
    WorkReport Change(const std::string& content, const WorkOrder& order) {
        DeleteFileW(Target().c_str());
        const auto source = Open(folder_.File(L"source", content), GENERIC_READ, OPEN_EXISTING);
        const auto target = Open(Target(), GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
        CallWait wait(ended_.Get(), nullptr);
        return process_.Run(order, source.Get(), target.Get(), wait);
    }
    WorkReport Check(const std::wstring& path) {
        const auto source = Open(path, GENERIC_READ, OPEN_EXISTING);
        CallWait wait(ended_.Get(), nullptr);
        return process_.Run(CheckCleanOrder(), source.Get(), nullptr, wait);
    }
    std::wstring Target() const { return folder_ / L"target"; }
    std::string TargetContent() const { return *obtest::ReadFileContent(Target()); }

    static ObLib::UniqueKernelHandle Open(const std::wstring& path, DWORD access, DWORD how) {
        return ObLib::UniqueKernelHandle(
            CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, how, 0, nullptr));
    }
    const obtest::TestFolder folder_;
    WorkProcess process_;
    ObLib::UniqueKernelHandle ended_;
};

TEST_F(RealWorkProcess, WritesThePhotoWithoutItsPersonalData) {
    const WorkReport report = Clean(samples::Photo());
    EXPECT_EQ(report.result, WorkResult::Changed);
    const std::string clean = TargetContent();
    EXPECT_EQ(report.size, clean.size());
    EXPECT_NE(samples::Photo().find(samples::kCanary), std::string::npos);
    EXPECT_EQ(clean.find(samples::kCanary), std::string::npos);
    ASSERT_FALSE(report.found.empty());
    EXPECT_EQ(report.found[0], (WorkFound{"position", 1}));
}

TEST_F(RealWorkProcess, FindsNothingInWhatItCleaned) {
    ASSERT_EQ(Clean(samples::Photo()).result, WorkResult::Changed);
    EXPECT_EQ(Check(Target()).result, WorkResult::Unchanged);
}

TEST_F(RealWorkProcess, ReportsInACheckWhatACleanWouldRemove) {
    const WorkReport report = Check(folder_.File(L"photo.jpg", samples::Photo()));
    EXPECT_EQ(report.result, WorkResult::Changed);
    EXPECT_EQ(report.size, 0u);
    EXPECT_FALSE(report.found.empty());
}

TEST_F(RealWorkProcess, GivesEqualBytesForEqualPhotos) {
    ASSERT_EQ(Clean(samples::Photo()).result, WorkResult::Changed);
    const std::string first = TargetContent();
    ASSERT_EQ(Clean(samples::Photo()).result, WorkResult::Changed);
    EXPECT_EQ(TargetContent(), first);
}

TEST_F(RealWorkProcess, WritesNothingForAFileThatItCannotClean) {
    EXPECT_EQ(Clean("plain text").result, WorkResult::NotSupported);
    EXPECT_EQ(TargetContent(), "");
    EXPECT_EQ(Clean("").result, WorkResult::NotSupported);
    EXPECT_EQ(Clean(samples::Photo().substr(0, 40)).result, WorkResult::Damaged);
    EXPECT_EQ(TargetContent(), "");
    EXPECT_EQ(Clean(samples::Photo()).result, WorkResult::Changed);
}

TEST_F(RealWorkProcess, MakesPicturesSmaller) {
    const auto photo = obtest::Photo(640, 480, 3);
    const WorkOrder order(obcontract::WorkKind::Resize,
                          obcontract::WorkResize{obcontract::WorkAim::LongestEdge, 90, 320});
    const auto resize = [&](const obtest::PictureBytes& picture) {
        return Change({picture.begin(), picture.end()}, order);
    };
    for (const auto& picture :
         {obtest::MakeJpeg(photo), obtest::MakePng(photo), obtest::MakeTiff(photo),
          obtest::MakeWebp(photo), obtest::MakeBmp(photo)}) {
        const WorkReport report = resize(picture);
        EXPECT_EQ(report.result, WorkResult::Changed);
        EXPECT_EQ(report.size, TargetContent().size());
        EXPECT_LT(report.size, picture.size());
        EXPECT_EQ(resize(picture).size, report.size);
        const std::string smaller = TargetContent();
        EXPECT_EQ(Change(smaller, order).result, WorkResult::Unchanged);
        EXPECT_EQ(TargetContent(), "");
    }
}

TEST_F(RealWorkProcess, CleansADocumentAndReportsWhatStays) {
    const std::string file =
        samples::OnePage("/PieceInfo <</A (CANARY)>> /Annots [<</Type /Annot /Subtype /Text "
                         "/Rect [0 0 9 9] /T (CANARY) /Contents (a note)>>]")
            .File();
    const WorkReport report = Clean(file);
    EXPECT_EQ(report.result, WorkResult::Changed);
    EXPECT_EQ(report.found,
              (std::vector<WorkFound>{{"private-data", 1}, {"authors", 1}, {"stays.comments", 1}}));
    EXPECT_EQ(TargetContent().find("CANARY"), std::string::npos);
    const WorkReport checked = Check(Target());
    EXPECT_EQ(checked.result, WorkResult::Unchanged);
    EXPECT_EQ(checked.found, (std::vector<WorkFound>{{"stays.comments", 1}}));
}

TEST_F(RealWorkProcess, HasAReasonOfItsOwnForASignedDocument) {
    const std::string file = samples::OnePage("", "/Perms <</DocMDP <</Type /Sig /Contents <00> "
                                                  "/ByteRange [0 1 2 3]>>>>")
                                 .File();
    EXPECT_EQ(Clean(file).result, WorkResult::Signed);
    EXPECT_EQ(TargetContent(), "");
}

TEST_F(RealWorkProcess, RefusesAFileThatIsTooLarge) {
    const std::wstring path = folder_.File(L"huge.jpg", "");
    {
        const auto huge = Open(path, GENERIC_WRITE, OPEN_EXISTING);
        LARGE_INTEGER size{};
        size.QuadPart = (std::int64_t{512} << 20) + 1;
        ASSERT_TRUE(SetFilePointerEx(huge.Get(), size, nullptr, FILE_BEGIN));
        ASSERT_TRUE(SetEndOfFile(huge.Get())); // takes no room on the disk
    }
    EXPECT_EQ(Check(path).result, WorkResult::TooLarge);
}

// Each bomb has about a megabyte, decodes to more than a gigabyte, and is given to each transform.
class RealWorkProcessBombs : public RealWorkProcess {
protected:
    static constexpr std::uint64_t kMegabytes = 1100; // more than the process may have

    struct Results {
        WorkResult clean, watermark, combine;
    };
    WorkResult Watermark(const std::string& file) {
        using namespace obcontract;
        return Change(file, {WorkKind::Watermark, WorkWatermark{WorkPlace::Centre, 50}, L"Copy"})
            .result;
    }
    WorkResult Combine(const std::string& file) {
        using namespace obcontract;
        const auto source = Open(folder_.File(L"part", file), GENERIC_READ, OPEN_EXISTING);
        CallWait wait(ended_.Get(), nullptr);
        WorkSeries series(process_);
        return series
            .Run({WorkKind::CombineAdd, WorkCombineAdd{}, L"part"}, source.Get(), nullptr, wait)
            .result;
    }
    // Each transform has one result and leaves the file, and the process takes the next one.
    Results Try(const std::string& file) {
        EXPECT_LT(file.size(), 6 * samples::kMegabyte); // as deflate packs at its quickest
        const Results results{Clean(file).result, Watermark(file), Combine(file)};
        EXPECT_EQ(obtest::ReadFileContent(folder_ / L"source"), file);
        EXPECT_EQ(Clean(samples::Photo()).result, WorkResult::Changed);
        return results;
    }
};

// What isn't decoded is copied as it is.
TEST_F(RealWorkProcessBombs, HaveOneResultEachAndTheNextFileIsServed) {
    const std::string bomb = samples::Bomb(samples::kPackedPage, kMegabytes);
    const Results objects = Try(samples::BombOfPackedObjects(bomb));
    EXPECT_EQ(objects.clean, WorkResult::TooLarge);
    EXPECT_EQ(objects.watermark, WorkResult::TooLarge);
    EXPECT_EQ(objects.combine, WorkResult::TooLarge);
    const Results contents = Try(samples::BombOfContents(bomb));
    EXPECT_EQ(contents.clean, WorkResult::Changed);
    EXPECT_EQ(contents.watermark, WorkResult::TooLarge);
    EXPECT_EQ(contents.combine, WorkResult::Changed);
    const Results picture = Try(samples::BombOfPicture(bomb));
    EXPECT_EQ(picture.clean, WorkResult::TooLarge);
    EXPECT_EQ(picture.watermark, WorkResult::Changed);
    EXPECT_EQ(picture.combine, WorkResult::Changed);
}

} // namespace
