// What is removed from a TIFF, and what stays, in both byte orders and sizes.
#include "tests/unit/services/transforms/personal/TiffSamples.h"

using namespace samples;

namespace {

class TiffPersonalData : public testing::TestWithParam<TiffKind> {
protected:
    static const TiffKind& Kind() { return GetParam(); }
    static TiffValue Short(unsigned tag, unsigned value) { return ShortValue(Kind(), tag, value); }
    static TiffValue Canary(unsigned tag) { return TextValue(tag, Sample(kCanary) + " of a tag"); }
    static TiffSamplePage Page(std::vector<TiffValue> more = {}) {
        return TiffPageWith(Kind(), std::move(more));
    }
    static Sample Build(const std::vector<TiffSamplePage>& pages) {
        return BuildTiff(Kind(), pages);
    }
    static void ExpectRemoved(const TiffValue& value, const std::vector<Finding>& found) {
        ExpectCleaned(Build({Page({value})}), Build({Page()}), found);
    }
    static TiffValue Fractions(unsigned tag, unsigned count) {
        return {tag, 5, count, Sample(8 * count, '\1')};
    }
    static Sample Profile() { return Sample(36, '\1') + "acsp" + Sample(88, '\1'); }
};

TEST_P(TiffPersonalData, WhatDecodersDrawAndPrintFromStays) {
    ExpectUnchanged(Build({Page()}));
    ExpectUnchanged(Build({Page({Short(254, 0),
                                 Short(266, 1),
                                 Short(274, 6),
                                 Fractions(282, 1),
                                 Fractions(283, 1),
                                 Short(284, 1),
                                 Short(296, 2),
                                 Short(317, 2),
                                 {320, 3, 12, Sample(24, '\1')},
                                 {338, 3, 1, Kind().Number(2, 2)},
                                 Fractions(529, 3),
                                 {34675, 7, 128, Profile()}})}));
}

TEST_P(TiffPersonalData, EveryPageStays) {
    ExpectUnchanged(Build({Page(), Page({Short(297, 1)}), Page({Short(254, 2)})}));
    ExpectCleaned(Build({Page({Canary(315)}), Page({Canary(315)}), Page({Canary(270)})}),
                  Build({Page(), Page(), Page()}),
                  {{FindingKind::Person, 2}, {FindingKind::Description, 1}});
}

TEST_P(TiffPersonalData, TextsAndPacketsAreRemoved) {
    ExpectRemoved(Canary(271), {{FindingKind::Camera, 1}});
    ExpectRemoved(Canary(272), {{FindingKind::Camera, 1}});
    ExpectRemoved(Canary(305), {{FindingKind::Software, 1}});
    ExpectRemoved(Canary(316), {{FindingKind::Software, 1}});
    ExpectRemoved(Canary(306), {{FindingKind::Time, 1}});
    ExpectRemoved(Canary(315), {{FindingKind::Person, 1}});
    ExpectRemoved(Canary(33432), {{FindingKind::Person, 1}});
    ExpectRemoved(Canary(269), {{FindingKind::Description, 1}});
    ExpectRemoved(Canary(270), {{FindingKind::Description, 1}});
    ExpectRemoved(Canary(285), {{FindingKind::Description, 1}});
    ExpectRemoved(Canary(337), {{FindingKind::Description, 1}});
    ExpectRemoved(Canary(700), {{FindingKind::Xmp, 1}});
    ExpectRemoved(Canary(33723), {{FindingKind::Iptc, 1}});
    ExpectRemoved(Canary(34377), {{FindingKind::Iptc, 1}});
    ExpectRemoved(Canary(33922), {{FindingKind::Position, 1}});
    ExpectRemoved(Canary(34853), {{FindingKind::Position, 1}});
    for (const unsigned tag : {1u, 333u, 37724u, 42112u, 50255u, 65001u, 65535u}) {
        ExpectRemoved(Canary(tag), {{FindingKind::PrivateData, 1}});
    }
    ExpectRemoved(TextValue(315, "Me"), {{FindingKind::Person, 1}}); // in the entry itself
}

TEST_P(TiffPersonalData, DirectoriesOfCamerasAndPositionsAreRemoved) {
    const TiffValue camera = DirectoryValue(
        34665,
        {{Canary(36867), Canary(37500), DirectoryValue(40965, {{Canary(1)}}), Canary(42033)}});
    const TiffValue position = DirectoryValue(34853, {{Canary(1), Canary(2), Canary(29)}});
    ExpectCleaned(Build({Page({camera, position})}), Build({Page()}),
                  {{FindingKind::Position, 1},
                   {FindingKind::Camera, 1},
                   {FindingKind::CameraSettings, 1},
                   {FindingKind::MakerNotes, 1},
                   {FindingKind::Time, 1}});
    ExpectRemoved(DirectoryValue(34665, {{}}), {{FindingKind::CameraSettings, 1}});
    TiffValue nowhere = DirectoryValue(34665, {});
    nowhere.count = 1;
    nowhere.bytes = Kind().Number(0x7FFFFFFF, 4);
    ExpectRemoved(nowhere, {{FindingKind::CameraSettings, 1}});
}

TEST_P(TiffPersonalData, SmallerCopiesAreRemoved) {
    const TiffSamplePage copy =
        TiffPageWith(Kind(), {Short(254, 1)}, {Sample(kCanary) + " as pixels"});
    ExpectCleaned(Build({Page({DirectoryValue(330, {copy})})}), Build({Page()}),
                  {{FindingKind::Thumbnail, 1}});
    ExpectCleaned(Build({Page({DirectoryValue(330, {copy, copy})})}), Build({Page()}),
                  {{FindingKind::Thumbnail, 2}});
    ExpectCleaned(Build({Page(), copy, Page()}), Build({Page(), Page()}),
                  {{FindingKind::Thumbnail, 1}});
    ExpectUnchanged(Build({copy}));
}

TEST_P(TiffPersonalData, ATagWithValuesThatItCannotHaveIsRemoved) {
    ExpectRemoved(Canary(282), {{FindingKind::PrivateData, 1}});
    ExpectRemoved({274, 3, 8, Sample(kCanary) + Sample(10, '\1')}, {{FindingKind::PrivateData, 1}});
    ExpectRemoved({34675, 7, 16, Sample(kCanary) + Sample(10, '\1')},
                  {{FindingKind::PrivateData, 1}});
    ExpectRemoved(Fractions(318, 3), {{FindingKind::PrivateData, 1}});
    ExpectCleaned(Build({Page({Short(274, 6), Short(274, 8)})}), Build({Page({Short(274, 6)})}),
                  {{FindingKind::PrivateData, 1}});
}

TEST_P(TiffPersonalData, BytesThatNothingRefersToAreRemoved) {
    const Sample clean = Build({Page()});
    ExpectCleaned(clean + Sample(kCanary), clean, {{FindingKind::TrailingData, 1}});
    ExpectUnchanged(clean + Sample(9, '\0'));
    // A value whose entry was made another's, as programs do that only change the directory.
    Sample sample = Build({Page({{258, 3, 8, Sample(kCanary) + Sample(10, '\1')}})});
    const std::size_t repeated =
        sample.find(Kind().Number(258, 2) + Kind().Number(3, 2) + Kind().Number(8, Kind().Width()));
    sample.replace(repeated, 4 + 2 * Kind().Width(),
                   Kind().Number(258, 2) + Kind().Number(3, 2) + Kind().Number(1, Kind().Width()) +
                       Sample(Kind().Width(), '\0'));
    ExpectCleaned(sample, clean, {{FindingKind::PrivateData, 1}, {FindingKind::StrayBytes, 1}});
}

TEST_P(TiffPersonalData, TheUnusedRestOfAnEntryIsMadeZero) {
    const Sample clean = Build({Page()});
    Sample sample = clean;
    const std::size_t width = sample.find(Kind().Number(256, 2) + Kind().Number(3, 2));
    sample[width + 4 + 2 * Kind().Width() - 1] = 'C';
    ExpectCleaned(sample, clean, {{FindingKind::StrayBytes, 1}});
}

TEST_P(TiffPersonalData, TilesAndPartsWithoutPixelsStay) {
    const std::vector<Sample> tiles = {"tile", "", "tile of odd size", "x"};
    TiffSamplePage page = {Short(256, 8),
                           Short(257, 2),
                           Short(258, 8),
                           Short(262, 1),
                           PixelOffsets(Kind(), tiles, 324),
                           PixelSizes(Kind(), tiles, 325)};
    ExpectUnchanged(Build({page}));
    TiffSamplePage named = page;
    named.insert(named.begin() + 4, Canary(270));
    ExpectCleaned(Build({named}), Build({page}), {{FindingKind::Description, 1}});
}

// The second page's pixels are those of the first, whose own become bytes that nothing refers to.
TEST_P(TiffPersonalData, PixelsThatSeveralPagesShareStayShared) {
    const TiffSamplePage page = TiffPageWith(Kind(), {}, {"strips"});
    Sample sample = Build({page, page});
    const std::size_t first = sample.find("strips");
    const std::size_t second = sample.rfind("strips");
    const std::size_t link = sample.rfind(Kind().Number(second, Kind().Width()));
    sample.replace(link, Kind().Width(), Kind().Number(first, Kind().Width()));
    ExpectCleaned(sample, sample.substr(0, second), {{FindingKind::TrailingData, 1}});
}

TEST_P(TiffPersonalData, StreamsInsideWithNothingButAPictureStay) {
    const Sample tables = "\xFF\xD8\xFF\xDB\0\x43\0"s + Sample(64, '\1') + "\xFF\xD9"s;
    const Sample scan = "\xFF\xD8\xFF\xDA\0\x8\1\1\0\0\x3F\0pixels\xFF\xD9"s;
    const auto page = [&](const Sample& strip, const Sample& shared) {
        TiffSamplePage made =
            TiffPageWith(Kind(), {{347, 7, shared.size(), shared}}, {strip, scan});
        std::ranges::find(made, 259u, &TiffValue::tag)->bytes = Kind().Number(7, 2);
        return Build({made});
    };
    ExpectUnchanged(page(scan, tables));
    const Sample comment = "\xFF\xD8\xFF\xFE\0\x8"s + Sample(kCanary);
    EXPECT_EQ(Clean(page(comment + scan.substr(2), tables)).outcome, CleanOutcome::NotSupported);
    EXPECT_EQ(Clean(page(scan, comment + tables.substr(2))).outcome, CleanOutcome::NotSupported);
    EXPECT_EQ(Clean(page(scan + Sample(kCanary), tables)).outcome, CleanOutcome::NotSupported);
    EXPECT_EQ(Clean(page(Sample(kCanary), tables)).outcome, CleanOutcome::NotSupported);
}

TEST_P(TiffPersonalData, RawDataOfCamerasIsNotSupported) {
    const auto outcome = [](const TiffSamplePage& page) { return Clean(Build({page})).outcome; };
    const auto with = [](unsigned tag, unsigned value) {
        TiffSamplePage page = Page();
        std::ranges::find(page, tag, &TiffValue::tag)->bytes = Kind().Number(value, 2);
        return page;
    };
    EXPECT_EQ(outcome(with(262, 32803)), CleanOutcome::NotSupported);
    EXPECT_EQ(outcome(with(262, 34892)), CleanOutcome::NotSupported);
    EXPECT_EQ(outcome(with(259, 6)), CleanOutcome::NotSupported);
    EXPECT_EQ(outcome(with(259, 34713)), CleanOutcome::NotSupported);
    EXPECT_EQ(outcome(Page({{50706, 1, 4, "\1\4\0\0"s}})), CleanOutcome::NotSupported);
    EXPECT_EQ(outcome(Page({DirectoryValue(330, {Page()})})), CleanOutcome::NotSupported);
    EXPECT_EQ(outcome(Page({Short(254, 1), DirectoryValue(330, {Page()})})),
              CleanOutcome::NotSupported);
}

TEST_P(TiffPersonalData, AFileThatDecodersRefuseIsDamage) {
    const auto without = [](unsigned tag) {
        TiffSamplePage page = Page();
        std::erase_if(page, [tag](const TiffValue& value) { return value.tag == tag; });
        return Build({page});
    };
    ExpectDamaged(without(256));
    ExpectDamaged(without(257));
    ExpectDamaged(without(273));
    ExpectDamaged(without(279));
    ExpectDamaged(Build({}));
    TiffSamplePage page = Page();
    page[0] = {256, 2, 8, Sample(kCanary) + "xx"};
    ExpectDamaged(Build({page}));
}

TEST_P(TiffPersonalData, ALoopOfPagesIsDamage) {
    Sample sample = Build({Page(), Page()});
    const std::size_t header = Kind().isBig ? 16 : 8;
    const Sample toSecond = Kind().Number(header + (Kind().isBig ? 8 : 2) +
                                              9 * (4 + 2 * Kind().Width()) + 3 * Kind().Width(),
                                          Kind().Width());
    ASSERT_NE(sample.find(toSecond), Sample::npos);
    sample.replace(sample.find(toSecond), Kind().Width(), Kind().Number(header, Kind().Width()));
    ExpectDamaged(sample);
}

// The last strip's size is one that reaches into the artist's name, which therefore couldn't go.
TEST_P(TiffPersonalData, PixelsThatReachIntoWhatHasToGoAreDamage) {
    Sample sample = Build({TiffPageWith(Kind(), {}, {"strip"}), Page({Canary(315)})});
    const Sample size =
        Kind().Number(279, 2) + Kind().Number(4, 2) + Kind().Number(1, Kind().Width());
    const std::size_t at = sample.find(size);
    ASSERT_NE(at, Sample::npos);
    ExpectCleaned(sample, Build({TiffPageWith(Kind(), {}, {"strip"}), Page()}),
                  {{FindingKind::Person, 1}});
    const std::size_t name = sample.find(kCanary);
    sample.replace(at + size.size(), 4, Kind().Number(name + 1 - sample.find("strip"), 4));
    ExpectDamaged(sample);
}

std::vector<TiffSamplePage> Everything(const TiffKind& kind) {
    const TiffSamplePage copy = TiffPageWith(kind, {ShortValue(kind, 254, 1)}, {"copy"});
    return {TiffPageWith(kind, {TextValue(270, "A description"),
                                ShortValue(kind, 274, 6),
                                {282, 5, 1, Sample(8, '\1')},
                                TextValue(315, Sample(kCanary)),
                                DirectoryValue(330, {copy}),
                                DirectoryValue(34665, {{TextValue(36867, "2026:01:01")}})}),
            TiffPageWith(kind, {TextValue(65000, "private data")}), copy};
}

TEST_P(TiffPersonalData, EveryCutIsDamage) {
    const Sample sample = Build({Page({Canary(270)})});
    ExpectDamagedWhenCut(sample, Kind().isBig ? 16 : 8, sample.size());
}

TEST_P(TiffPersonalData, AnyCutOfManyPartsIsCleanOrRefused) {
    const Sample sample = Build(Everything(Kind()));
    for (std::size_t size = 0; size < sample.size(); ++size)
        CheckProperties(sample.substr(0, size));
}

TEST_P(TiffPersonalData, TheRulesAreTrueOfAnyMutation) {
    CheckMutations(Build(Everything(Kind())), 1000);
    CheckMutations(Build({Page()}), 500);
}

INSTANTIATE_TEST_SUITE_P(Kinds, TiffPersonalData, testing::ValuesIn(kTiffKinds),
                         [](const auto& info) {
                             return std::string(info.param.isBig ? "Big" : "Classic") +
                                    (info.param.isLittleEndian ? "LittleEndian" : "BigEndian");
                         });

} // namespace
