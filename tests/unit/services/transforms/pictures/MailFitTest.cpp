// Fit my mail: never more than the limit, nearly all of it, and one step for all pictures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <vector>

#include "services/transforms/pictures/MailFit.h"
#include "services/transforms/pictures/StampPicture.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace obtest;
using namespace transforms;

class Files {
public:
    void Add(PictureBytes file) { files_.push_back(std::move(file)); }
    std::vector<FitSource> Sources() {
        sources_.clear();
        std::vector<FitSource> list;
        for (const auto& file : files_)
            list.push_back({sources_.emplace_back(std::make_unique<MemorySource>(file)).get()});
        return list;
    }
    std::uint64_t Bytes() const {
        std::uint64_t sum = 0;
        for (const auto& file : files_) sum += file.size();
        return sum;
    }
    const PictureBytes& operator[](std::size_t number) const { return files_[number]; }
    std::size_t size() const { return files_.size(); }

private:
    std::vector<PictureBytes> files_;
    std::vector<std::unique_ptr<MemorySource>> sources_;
};

// The bytes that go out: what is written for shrunk pictures, the sources for the others.
std::uint64_t Written(MailFit& fit, const Files& files) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        MemoryTarget target;
        const auto outcome = fit.Write(i, target);
        EXPECT_EQ(outcome, fit.IsShrunk(i) ? PictureOutcome::Written : PictureOutcome::Unchanged);
        sum += fit.IsShrunk(i) ? target.bytes.size() : files[i].size();
    }
    return sum;
}

class Random {
public:
    explicit Random(unsigned seed) : state_(seed * 2654435761u + 1) {}
    unsigned Below(unsigned end) {
        state_ = state_ * 1664525 + 1013904223;
        return (state_ >> 8) % end;
    }

private:
    unsigned state_;
};

PictureBytes RandomPicture(Random& random, unsigned seed) {
    const auto photo =
        Photo(215 + random.Below(130), 205 + random.Below(90), 3, 8, seed, 4 + random.Below(40));
    switch (random.Below(8)) {
    case 0:
        return MakePng(photo);
    case 1:
        return MakeTiff(photo, {.compression = 5});
    case 2:
        return MakeBmp(photo);
    case 3:
        return MakeWebp(photo);
    default:
        return MakeJpeg(photo, {.quality = static_cast<int>(75 + random.Below(25)),
                                .progressive = random.Below(4) == 0});
    }
}

// What a limit of `room` bytes for files is for the mail.
std::uint64_t MailLimit(std::uint64_t room) { return room * 137 / 100; }

// A light bar across the picture.
class Bar : public Stamp {
public:
    PlacedStamp For(PictureSize shown) const override {
        const PictureSize size{shown.width, shown.height / 8 + 1};
        return {0, 0, size, PictureBytes(std::size_t{size.width} * size.height * 4, 0xC0)};
    }
    bool HasRoomIn(PictureSize size) const noexcept override { return size.width > 100; }
};

// What all files take at the last step that a search can try.
std::uint64_t SmallestBytes(const std::vector<FitSource>& sources, const Files& files,
                            std::uint64_t others) {
    std::uint32_t longestEdge = 1;
    std::vector<PictureForm> forms;
    for (std::size_t i = 0; i < files.size(); ++i) {
        MemorySource source(files[i]);
        forms.push_back(FormOfPicture(source, {}));
        longestEdge = std::max({longestEdge, forms[i].size.width, forms[i].size.height});
    }
    const ShrinkLadder ladder(longestEdge);
    std::uint64_t sum = others;
    for (std::size_t i = 0; i < files.size(); ++i) {
        MemorySource source(files[i]);
        MemoryTarget coded;
        ShrinkStep step = ladder[ladder.size() - 1];
        step.stamp = sources[i].stamp;
        ShrinkPicture(forms[i].kind, source, coded, step, {});
        sum += step.stamp ? coded.bytes.size() : std::min(files[i].size(), coded.bytes.size());
    }
    return sum;
}

// What a set has shown.
enum class Shown { AllFits, NothingFits, BestStepFits, UsesTheRoom };

Shown CheckShrunk(MailFit& fit, const Files& files, std::uint64_t room, std::uint64_t others,
                  unsigned seed) {
    const std::uint64_t sum = others + Written(fit, files);
    EXPECT_EQ(sum, fit.TotalBytes()) << seed;
    EXPECT_LE(sum, room) << seed;
    // At the best step nothing could be better: files that others wrote wastefully.
    const ShrinkStep& step = fit.step();
    if (step.coarseness == 1 && !step.sixteenths && !step.longestEdge) return Shown::BestStepFits;
    EXPECT_GE(sum * 100, room * 85)
        << "set " << seed << ": edge " << step.longestEdge << ", coarseness " << step.coarseness
        << ", " << files.size() << " pictures, the first " << int(files[0][0]) << ", room " << room
        << ", others " << others;
    return Shown::UsesTheRoom;
}

// A third of the pictures gets a stamp.
Shown CheckRandomSet(unsigned seed) {
    const Bar bar;
    Random random(seed);
    Files files;
    const unsigned count = 1 + random.Below(3);
    for (unsigned i = 0; i < count; ++i) files.Add(RandomPicture(random, seed * 7 + i));
    const std::uint64_t others = random.Below(3) ? random.Below(50'000) : 0;
    const std::uint64_t limit = MailLimit(others + files.Bytes() * (25 + random.Below(90)) / 100);
    const std::uint64_t room = RoomForFiles(limit);
    auto sources = files.Sources();
    for (FitSource& source : sources)
        if (random.Below(3) == 0) source.stamp = &bar;
    const bool hasStamp =
        std::ranges::any_of(sources, [](const FitSource& source) { return source.stamp; });
    MailFit fit(sources, limit, others, {});
    const auto outcome = fit.Search();
    if (others + files.Bytes() <= room && !hasStamp) {
        EXPECT_EQ(outcome, PictureOutcome::Unchanged) << seed;
        return Shown::AllFits;
    }
    if (outcome == PictureOutcome::CannotFit) {
        EXPECT_GT(SmallestBytes(sources, files, others), room) << seed;
        return Shown::NothingFits;
    }
    EXPECT_EQ(outcome, PictureOutcome::Written) << seed;
    return CheckShrunk(fit, files, room, others, seed);
}

// Four suites, so that they run side by side. Most of the sets have to show something about the
// room.
void CheckRandomSets(unsigned first) {
    std::map<Shown, int> shown;
    for (unsigned seed = first; seed < first + 50; ++seed) ++shown[CheckRandomSet(seed)];
    std::printf("Of 50 sets %d use the room, %d fit at the best step, %d fit as they are and %d "
                "don't fit at all.\n",
                shown[Shown::UsesTheRoom], shown[Shown::BestStepFits], shown[Shown::AllFits],
                shown[Shown::NothingFits]);
    EXPECT_GE(shown[Shown::UsesTheRoom], 25);
}

TEST(MailFitSetsOne, KeepToTheLimitAndUseIt) { CheckRandomSets(0); }
TEST(MailFitSetsTwo, KeepToTheLimitAndUseIt) { CheckRandomSets(50); }
TEST(MailFitSetsThree, KeepToTheLimitAndUseIt) { CheckRandomSets(100); }
TEST(MailFitSetsFour, KeepToTheLimitAndUseIt) { CheckRandomSets(150); }

TEST(MailFitTest, TakesOffFirstWhatMailAdds) {
    EXPECT_EQ(RoomForFiles(137), 100u);
    EXPECT_EQ(RoomForFiles(25'000'000), 18'248'175u);
    EXPECT_EQ(RoomForFiles(0), 0u);
    EXPECT_EQ(RoomForFiles(~0ull), 13464776696138358843ull);
}

TEST(MailFitTest, ShrinksNothingWhenAllFits) {
    Files files;
    files.Add(MakeJpeg(Photo(300, 200, 3)));
    MailFit fit(files.Sources(), MailLimit(files.Bytes() + 1000) + 2, 1000, {});
    EXPECT_EQ(fit.Search(), PictureOutcome::Unchanged);
    EXPECT_FALSE(fit.IsShrunk(0));
    EXPECT_EQ(fit.TotalBytes(), files.Bytes() + 1000);
}

TEST(MailFitTest, ReportsThatTheOtherFilesAloneAreTooMuch) {
    Files files;
    files.Add(MakeJpeg(Photo(300, 200, 3)));
    files.Add(PictureBytes(5000, 'x'));
    MailFit fit(files.Sources(), MailLimit(27'000), 25'000, {});
    EXPECT_EQ(fit.Search(), PictureOutcome::CannotFit);
    EXPECT_TRUE(fit.OthersAreTooMuch());
    EXPECT_EQ(fit.OtherBytes(), 30'000u);
}

TEST(MailFitTest, ReportsThatThePicturesCantGetSmallEnough) {
    Files files;
    files.Add(MakeJpeg(Photo(500, 400, 3)));
    MailFit fit(files.Sources(), MailLimit(1500), 0, {});
    EXPECT_EQ(fit.Search(), PictureOutcome::CannotFit);
    EXPECT_FALSE(fit.OthersAreTooMuch());
}

TEST(MailFitTest, LeavesAnimationsManyPagesAndOtherFilesAsTheyAre) {
    Files files;
    files.Add(MakeJpeg(Photo(500, 400, 3), {.quality = 97}));
    files.Add(MakeTiff(Photo(100, 80, 3), {.pages = 2}));
    files.Add(MakeWebp(Photo(200, 150, 3), {.frames = 2}));
    files.Add(PictureBytes(2000, 'x'));
    MailFit fit(files.Sources(), MailLimit(files.Bytes() - files[0].size() / 2), 0, {});
    ASSERT_EQ(fit.Search(), PictureOutcome::Written);
    EXPECT_TRUE(fit.IsShrunk(0));
    for (std::size_t i = 1; i < 4; ++i) EXPECT_FALSE(fit.IsShrunk(i)) << i;
}

TEST(MailFitTest, UsesOneSizeForAllPictures) {
    Files files;
    for (unsigned i = 0; i < 3; ++i) files.Add(MakePng(Photo(400 + 50 * i, 300, 3, 8, i)));
    MailFit fit(files.Sources(), MailLimit(files.Bytes() / 3), 0, {});
    ASSERT_EQ(fit.Search(), PictureOutcome::Written);
    for (std::size_t i = 0; i < 3; ++i) {
        MemoryTarget target;
        fit.Write(i, target);
        EXPECT_EQ(ParsePng(target.bytes).width, fit.step().longestEdge);
    }
}

TEST(MailFitTest, NamesTheDamagedPicture) {
    Files files;
    files.Add(MakeJpeg(Photo(300, 200, 3)));
    auto cut = MakeJpeg(Photo(300, 200, 3));
    cut.resize(cut.size() / 2);
    files.Add(cut);
    MailFit fit(files.Sources(), MailLimit(files.Bytes() / 2), 0, {});
    EXPECT_EQ(fit.Search(), PictureOutcome::Damaged);
    EXPECT_EQ(fit.failed(), 1u);
}

TEST(MailFitTest, StopsWhenItIsCancelled) {
    std::atomic<bool> cancelled = true;
    PictureControl control;
    control.cancelled = &cancelled;
    Files files;
    files.Add(MakeJpeg(Photo(300, 200, 3)));
    MailFit fit(files.Sources(), MailLimit(files.Bytes() / 2), 0, control);
    EXPECT_EQ(fit.Search(), PictureOutcome::Cancelled);
}

TEST(MailFitTest, GivesEqualBytesForEqualPictures) {
    Files files;
    files.Add(MakeJpeg(Photo(500, 400, 3)));
    PictureBytes first;
    for (int i = 0; i < 2; ++i) {
        MailFit fit(files.Sources(), MailLimit(files.Bytes() / 2), 0, {});
        ASSERT_EQ(fit.Search(), PictureOutcome::Written);
        MemoryTarget target;
        fit.Write(0, target);
        if (i) {
            EXPECT_EQ(target.bytes, first);
        }
        first = target.bytes;
    }
}

// Has no room in a picture with a side below 25 pixels.
class NarrowBar final : public Bar {
public:
    bool HasRoomIn(PictureSize size) const noexcept override {
        return std::min(size.width, size.height) >= 25;
    }
};

class RefusingMaker final : public FitMaker {
public:
    void Make(PictureSource&, PictureTarget&, const ShrinkStep&,
              const PictureControl&) const override {
        throw PictureFailure{PictureOutcome::Unsupported};
    }
};

// Counts the codings; what it makes is as large as the step sets.
class CountingMaker final : public FitMaker {
public:
    void Make(PictureSource&, PictureTarget& target, const ShrinkStep& step,
              const PictureControl&) const override {
        ++made;
        const double scale = step.longestEdge ? step.longestEdge / 1000.0 : 1;
        const auto size = static_cast<std::size_t>(100'000 * scale * scale / step.coarseness);
        WritePicture(target, 0, PictureBytes(size, 'm'));
    }
    mutable int made = 0;
};

PictureBytes CodedOnce(const PictureBytes& file, const ShrinkStep& step) {
    MemorySource source(file);
    MemoryTarget target;
    ShrinkPicture(FormOfPicture(source, {}).kind, source, target, step, {});
    return target.bytes;
}

TEST(MailFitTest, StampsAndCodesEachPictureOnceFromItsUnshrunkCopy) {
    const Bar bar;
    Files files;
    files.Add(MakeJpeg(Photo(500, 400, 3), {.quality = 97}));
    files.Add(MakeJpeg(Photo(400, 300, 3, 8, 2), {.quality = 97}));
    auto sources = files.Sources();
    for (auto& source : sources) source.stamp = &bar;
    MailFit fit(sources, MailLimit(files.Bytes() / 3), 0, {});
    ASSERT_EQ(fit.Search(), PictureOutcome::Written);
    EXPECT_LE(fit.TotalBytes(), files.Bytes() / 3);
    ShrinkStep step = fit.step();
    step.stamp = &bar;
    for (std::size_t i = 0; i < files.size(); ++i) {
        MemoryTarget target;
        ASSERT_EQ(fit.Write(i, target), PictureOutcome::Written);
        EXPECT_EQ(target.bytes, CodedOnce(files[i], step));
    }
}

// A stamp that is coded by itself first loses twice.
TEST(MailFitTest, LosesLessThanAStampThatIsCodedBeforeTheFit) {
    const Bar bar;
    const Raster photo = Photo(500, 400, 3, 8, 3, 60);
    Files files;
    files.Add(MakeJpeg(photo, {.quality = 97}));
    auto sources = files.Sources();
    sources[0].stamp = &bar;
    MailFit fit(sources, MailLimit(files.Bytes() / 4), 0, {});
    ASSERT_EQ(fit.Search(), PictureOutcome::Written);
    MemoryTarget once;
    fit.Write(0, once);
    ShrinkStep whole{.coarseness = kCoarsenessOfStamped, .stamp = &bar};
    const PictureBytes twice = CodedOnce(CodedOnce(files[0], whole), fit.step());
    // What the pixels would be without any coding after the first.
    ShrinkStep ideal = fit.step();
    ideal.coarseness = 1;
    ideal.sixteenths = 0;
    ideal.stamp = &bar;
    const Raster wanted = ParsePng(CodedOnce(MakePng(ParseJpeg(files[0]).raster), ideal));
    EXPECT_LT(Difference(ParseJpeg(once.bytes).raster, wanted),
              Difference(ParseJpeg(twice).raster, wanted));
}

TEST(MailFitTest, WritesAPictureWithAStampEvenIfItTakesMoreBytes) {
    const Bar bar;
    Files files;
    files.Add(MakeJpeg(Photo(500, 400, 3), {.quality = 97}));
    files.Add(MakeJpeg(Photo(200, 150, 3), {.quality = 20}));
    files.Add(MakeBmp(Photo(90, 80, 3))); // no room for the stamp
    auto sources = files.Sources();
    for (auto& source : sources) source.stamp = &bar;
    MailFit fit(sources, MailLimit(files.Bytes() - 1000), 0, {});
    ASSERT_EQ(fit.Search(), PictureOutcome::Written);
    EXPECT_TRUE(fit.IsShrunk(0));
    EXPECT_TRUE(fit.IsShrunk(1));
    EXPECT_FALSE(fit.IsShrunk(2));
    EXPECT_EQ(fit.TotalBytes(), Written(fit, files));
}

// All may fit with stamps or in other forms, but only by what they take then.
TEST(MailFitTest, CodesPicturesWithAStampEvenIfTheFilesFit) {
    const Bar bar;
    Files files;
    files.Add(MakeJpeg(Photo(300, 200, 3)));
    auto sources = files.Sources();
    sources[0].stamp = &bar;
    MailFit fit(sources, MailLimit(2 * files.Bytes()), 0, {});
    ASSERT_EQ(fit.Search(), PictureOutcome::Written);
    MemoryTarget target;
    EXPECT_EQ(fit.Write(0, target), PictureOutcome::Written);
    // No finer than the stamp alone would be coded.
    MemorySource source(files[0]);
    MemoryTarget alone;
    StampPicture(source, alone, bar, {});
    EXPECT_TRUE(std::ranges::equal(ParseJpeg(target.bytes).table, ParseJpeg(alone.bytes).table));
}

// The step would leave it 13 pixels high.
TEST(MailFitTest, KeepsAPictureLargeEnoughForItsStamp) {
    const NarrowBar bar;
    for (const bool isStamped : {true, false}) {
        Files files;
        files.Add(MakeJpeg(Photo(900, 45, 3, 8, 1, 30), {.quality = 97}));
        files.Add(MakeJpeg(Photo(900, 700, 3, 8, 2, 30), {.quality = 97}));
        auto sources = files.Sources();
        if (isStamped) sources[0].stamp = &bar;
        constexpr std::uint64_t kRoom = 10'000;
        MailFit fit(sources, MailLimit(kRoom), 0, {});
        ASSERT_EQ(fit.Search(), PictureOutcome::Written);
        EXPECT_LE(fit.TotalBytes(), kRoom);
        EXPECT_GE(fit.TotalBytes(), kRoom * 85 / 100);
        EXPECT_LT(fit.step().longestEdge, 480u);
        EXPECT_GE(fit.step().longestEdge, 200u);
        MemoryTarget target;
        ASSERT_EQ(fit.Write(0, target), PictureOutcome::Written);
        const Raster written = ParseJpeg(target.bytes).raster;
        if (isStamped) {
            EXPECT_EQ(written.height, 25u);
            EXPECT_NEAR(written.At(written.width / 2, 1, 0), 0xC0, 30); // the bar
        } else {
            EXPECT_LT(written.height, 25u);
        }
    }
}

TEST(MailFitTest, FindsAllPicturesOnWhichTheWorkIsNotSupportedAtOnce) {
    const CountingMaker maker;
    const RefusingMaker refusing;
    Files files;
    for (int i = 0; i < 4; ++i) files.Add(PictureBytes(50'000, 'x'));
    auto sources = files.Sources();
    for (std::size_t i = 0; i < 4; ++i) {
        sources[i].maker = &maker;
        if (i % 2) sources[i].maker = &refusing;
        sources[i].madeSize = {1000, 800};
    }
    MailFit fit(sources, MailLimit(20'000), 0, {});
    EXPECT_EQ(fit.Search(), PictureOutcome::Unsupported);
    EXPECT_EQ(fit.unsupported(), (std::vector<std::size_t>{1, 3}));
    EXPECT_EQ(maker.made, 2);
}

// The bytes that were counted are those that are written: nothing is coded again for them.
TEST(MailFitTest, WritesWhatItHasCodedInTheSearch) {
    const CountingMaker maker;
    Files files;
    for (int i = 0; i < 3; ++i) files.Add(PictureBytes(50'000, 'x'));
    auto sources = files.Sources();
    for (auto& source : sources) {
        source.maker = &maker;
        source.madeSize = {1000, 800};
    }
    MailFit fit(sources, MailLimit(20'000), 0, {});
    ASSERT_EQ(fit.Search(), PictureOutcome::Written);
    const int tried = maker.made;
    EXPECT_EQ(tried % 3, 0);
    for (std::size_t i = 0; i < 3; ++i) {
        MemoryTarget target;
        EXPECT_EQ(fit.Write(i, target), PictureOutcome::Written);
        EXPECT_EQ(target.bytes[0], 'm');
    }
    EXPECT_EQ(maker.made, tried);
    EXPECT_LE(fit.TotalBytes(), RoomForFiles(MailLimit(20'000)));
}

} // namespace
