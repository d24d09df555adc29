// The requests by which all pictures of a mail are made smaller together, carried out on files:
// what is taken, written and reported, and in which order.
#include "services/transforms/FitWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/SteppedClock.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

using namespace obcontract;
using obtest::PictureBytes;
using transforms::WorkEnd;
using transforms::WorkRequest;

namespace {

class FitWorkTest : public obtest::FileRequestFixture {
protected:
    void SetUp() override {
        FileRequestFixture::SetUp();
        fit_.emplace(*channel_);
    }
    template <class Record>
    static std::vector<std::byte> BytesOf(const Record& record) {
        const auto bytes = std::as_bytes(std::span(&record, 1));
        return {bytes.begin(), bytes.end()};
    }
    static std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }

    WorkRequest OnFile(const PictureBytes& file, std::vector<std::byte> settings) {
        WriteSource(Text(file));
        WorkRequest request;
        request.settings = std::move(settings);
        request.source = Open(L"source", GENERIC_READ, OPEN_EXISTING);
        return request;
    }
    std::optional<WorkEnd> Check(const PictureBytes& file, WorkPhotoKinds kinds,
                                 std::uint32_t reserved = 0) {
        const auto request = OnFile(file, BytesOf(WorkFitCheck{kinds, reserved}));
        return transforms::CheckForFit(request, *channel_);
    }
    // The file must differ from those that were added before: they stay open.
    std::optional<WorkEnd> Add(const PictureBytes& file, const WorkFitAdd& settings) {
        const std::wstring name = L"added" + std::to_wstring(++count_);
        EXPECT_TRUE(obtest::WriteFileContent(folder_ / name, Text(file)));
        WorkRequest request;
        request.settings = BytesOf(settings);
        request.source = Open(name.c_str(), GENERIC_READ, OPEN_EXISTING);
        return fit_->Add(request);
    }
    std::optional<WorkEnd> Stamp(WorkPlace place = WorkPlace::Centre) {
        WorkRequest request;
        request.settings = BytesOf(WorkWatermark{place, 100});
        for (const wchar_t letter : std::wstring(L"Ann"))
            for (const std::byte byte : BytesOf(letter)) request.settings.push_back(byte);
        return fit_->TakeText(request);
    }
    std::optional<WorkEnd> Search(std::uint64_t room) {
        WorkRequest request;
        request.settings = BytesOf(WorkFitSearch{room * 137 / 100, 0});
        return fit_->Search(request);
    }
    std::optional<WorkEnd> Write(std::uint32_t number) {
        WorkRequest request;
        request.settings = BytesOf(WorkFitWrite{number, 0});
        request.target = Open(L"target", GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS);
        return fit_->Write(request);
    }
    static std::optional<WorkOutcome> OutcomeOf(const std::optional<WorkEnd>& end) {
        return end && !end->failure ? std::optional(end->outcome) : std::nullopt;
    }
    PictureBytes TargetBytes() const {
        const std::string content = Target();
        return {content.begin(), content.end()};
    }

    static constexpr WorkFitAdd kAsItIs{0, 0, 0, WorkPhotoKinds::None};
    static constexpr WorkFitAdd kConverted{92, 0, 0, WorkPhotoKinds::All};
    static constexpr WorkFitAdd kStamped{0, 1, 0, WorkPhotoKinds::None};
    std::optional<transforms::FitWork> fit_;
    int count_ = 0;
};

TEST_F(FitWorkTest, ChecksWhatItWouldTake) {
    const auto photo = obtest::Photo(60, 40, 3);
    using enum WorkOutcome;
    EXPECT_EQ(OutcomeOf(Check(obtest::MakeJpeg(photo), WorkPhotoKinds::None)), Changed);
    EXPECT_EQ(OutcomeOf(Check(obtest::MakeJpeg(photo), WorkPhotoKinds::All)), NotSupported);
    EXPECT_EQ(OutcomeOf(Check(obtest::MakeTiff(photo), WorkPhotoKinds::All)), Changed);
    EXPECT_EQ(OutcomeOf(Check(obtest::MakeTiff(photo), WorkPhotoKinds::Bmp)), NotSupported);
    EXPECT_EQ(OutcomeOf(Check(obtest::MakeTiff(photo, {.pages = 2}), WorkPhotoKinds::All)),
              Unchanged);
    EXPECT_EQ(OutcomeOf(Check(obtest::MakeTiff(photo, {.pages = 2}), WorkPhotoKinds::None)),
              Unchanged);
    EXPECT_EQ(OutcomeOf(Check(obtest::MakeWebp(photo, {.frames = 2}), WorkPhotoKinds::None)),
              Unchanged);
    EXPECT_EQ(OutcomeOf(Check({'t', 'e', 'x', 't'}, WorkPhotoKinds::None)), NotSupported);
    EXPECT_EQ(OutcomeOf(Check({}, WorkPhotoKinds::All)), NotSupported);
    auto cut = obtest::MakeJpeg(photo);
    cut.resize(20);
    EXPECT_EQ(FailureOf(Check(cut, WorkPhotoKinds::None)), WorkFailure::Damaged);
}

TEST_F(FitWorkTest, TakesNoValuesThatTheContractLacks) {
    const auto picture = obtest::MakeJpeg(obtest::Photo(60, 40, 3));
    EXPECT_FALSE(Check(picture, static_cast<WorkPhotoKinds>(128)));
    EXPECT_FALSE(Check(picture, WorkPhotoKinds::None, 1));
    EXPECT_FALSE(Add(picture, {0, 0, 1, WorkPhotoKinds::None}));
    EXPECT_FALSE(Add(picture, {0, 2, 0, WorkPhotoKinds::None}));
    EXPECT_FALSE(Add(picture, {90, 0, 0, WorkPhotoKinds::None}));
    EXPECT_FALSE(Add(picture, {0, 0, 0, WorkPhotoKinds::All}));
    EXPECT_FALSE(Add(picture, {101, 0, 0, WorkPhotoKinds::All}));
    EXPECT_FALSE(Add(picture, {90, 0, 0, static_cast<WorkPhotoKinds>(128)}));
    EXPECT_FALSE(Stamp(static_cast<WorkPlace>(9)));
}

TEST_F(FitWorkTest, TakesOneWatermarkBeforeThePictures) {
    const auto picture = obtest::MakeJpeg(obtest::Photo(60, 40, 3));
    EXPECT_FALSE(Add(picture, kStamped)); // with none
    EXPECT_EQ(OutcomeOf(Stamp()), WorkOutcome::Changed);
    EXPECT_FALSE(Stamp());
    fit_.emplace(*channel_);
    EXPECT_EQ(OutcomeOf(Add(picture, kAsItIs)), WorkOutcome::Changed);
    EXPECT_FALSE(Stamp());
}

TEST_F(FitWorkTest, ConvertsTurnsStampsAndShrinksInOnePass) {
    const obtest::Raster dark{400, 300, 3, 8, PictureBytes(400 * 300 * 3, 30)};
    const auto photo = obtest::Photo(500, 400, 3, 8, 1, 40);
    ASSERT_EQ(OutcomeOf(Stamp()), WorkOutcome::Changed);
    WorkFitAdd both = kConverted;
    both.isStamped = 1;
    EXPECT_EQ(OutcomeOf(Add(obtest::MakeTiff(dark, {.orientation = 6}), both)),
              WorkOutcome::Changed);
    EXPECT_EQ(OutcomeOf(Add(obtest::MakeJpeg(photo, {.quality = 97}), both)), WorkOutcome::Changed);
    EXPECT_EQ(OutcomeOf(Add(obtest::MakeTiff(photo, {.pages = 2}), both)), WorkOutcome::Unchanged);
    EXPECT_EQ(OutcomeOf(Add({'t', 'e', 'x', 't'}, both)), WorkOutcome::NotSupported);
    ASSERT_EQ(OutcomeOf(Search(30'000)), WorkOutcome::Changed);
    ExpectChanged(Write(0));
    const auto turned = obtest::ParseJpeg(TargetBytes()).raster;
    EXPECT_GT(turned.height, turned.width);
    unsigned lightest = 0;
    for (unsigned x = 0; x < turned.width; ++x)
        lightest = std::max(lightest, turned.At(x, turned.height / 2, 0));
    EXPECT_GT(lightest, 200u); // the letters
    ExpectChanged(Write(1));
    EXPECT_LE(Target().size(), 30'000u);
    EXPECT_FALSE(Write(2));
}

TEST_F(FitWorkTest, WritesPicturesWithoutStepsOnlyIfTheyBecomeSmaller) {
    EXPECT_EQ(
        OutcomeOf(Add(obtest::MakeJpeg(obtest::Photo(500, 400, 3), {.quality = 97}), kAsItIs)),
        WorkOutcome::Changed);
    EXPECT_EQ(OutcomeOf(Add(obtest::MakeBmp(obtest::Photo(60, 40, 3)), kAsItIs)),
              WorkOutcome::Changed);
    ASSERT_EQ(OutcomeOf(Search(40'000)), WorkOutcome::Changed);
    ExpectChanged(Write(0));
    EXPECT_EQ(OutcomeOf(Write(1)), WorkOutcome::Unchanged);
}

// With colours of 3 and 2 samples side by side no watermark can be laid over a JPEG.
TEST_F(FitWorkTest, NamesAllPicturesOnWhichNoStampCanBePut) {
    ASSERT_EQ(OutcomeOf(Stamp()), WorkOutcome::Changed);
    std::string odd = Text(obtest::MakeJpeg(obtest::Photo(480, 480, 3), {.across = 1, .down = 1}));
    const std::size_t frame = odd.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    odd[frame + 11] = 0x31; // three samples of brightness across
    odd[frame + 14] = 0x21; // to two of a colour
    const PictureBytes good = obtest::MakeJpeg(obtest::Photo(480, 480, 3));
    for (const PictureBytes& file :
         {good, PictureBytes(odd.begin(), odd.end()), good, PictureBytes(odd.begin(), odd.end())})
        EXPECT_EQ(OutcomeOf(Add(file, kStamped)), WorkOutcome::Changed);
    EXPECT_EQ(OutcomeOf(Search(10'000)), WorkOutcome::NotSupported);
    fit_.reset();
    Records();
    EXPECT_EQ(reported_.found,
              (std::vector<providers::WorkFound>{{"picture.1", 1}, {"picture.3", 1}}));
}

TEST_F(FitWorkTest, ReportsAPhotoWithoutAHeader) {
    auto cut = obtest::MakeTiff(obtest::Photo(500, 400, 3), {.compression = 5});
    cut.resize(8);
    EXPECT_EQ(FailureOf(Add(cut, kConverted)), WorkFailure::Damaged);
}

// The requests of a series go on from what the one before has reported.
TEST_F(FitWorkTest, ReportsThatPicturesAreWorkedOn) {
    const obtest::SteppedClock clock(500); // so that every second step is a second
    ASSERT_TRUE(clock.Ok());
    fit_.emplace(*channel_);
    const auto picture = obtest::MakeJpeg(obtest::Photo(800, 600, 3), {.quality = 98});
    EXPECT_EQ(OutcomeOf(Add(picture, kAsItIs)), WorkOutcome::Changed);
    EXPECT_EQ(OutcomeOf(Search(picture.size() / 2)), WorkOutcome::Changed);
    EXPECT_EQ(OutcomeOf(Write(0)), WorkOutcome::Changed);
    fit_.reset();
    EXPECT_GT(Records(), 600 / 2);
}

// Its headers are whole, so that the search alone shows it.
TEST_F(FitWorkTest, ReportsLastThePictureThatIsDamaged) {
    const auto photo = obtest::MakeJpeg(obtest::Photo(500, 400, 3, 8, 1, 40), {.quality = 97});
    auto cut = photo;
    cut.resize(cut.size() / 2);
    for (const PictureBytes& file : {photo, cut, photo})
        EXPECT_EQ(OutcomeOf(Add(file, kAsItIs)), WorkOutcome::Changed);
    EXPECT_EQ(FailureOf(Search(30'000)), WorkFailure::Damaged);
    fit_.reset();
    EXPECT_GT(Records(), 0);
    EXPECT_EQ(reported_.number, 1u);
}

} // namespace
