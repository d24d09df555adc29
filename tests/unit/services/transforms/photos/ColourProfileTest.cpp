// Colours of other kinds become sRGB, by a profile where there is one.
#include <gtest/gtest.h>

#include <lcms2.h>

#include "services/transforms/photos/ColourProfile.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;

// A press whose black ink alone prints, and only half: 0 is white, full ink a lightness of 50.
int PressColour(const cmsUInt16Number in[], cmsUInt16Number out[], void*) {
    out[0] = static_cast<cmsUInt16Number>(65280 - in[3] / 2);
    out[1] = out[2] = 0x8000;
    return 1;
}

PictureBytes PressProfile() {
    cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.1);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 4, 3);
    cmsStage* table = cmsStageAllocCLut16bit(nullptr, 5, 4, 3, nullptr);
    cmsStageSampleCLut16bit(table, PressColour, nullptr, 0);
    cmsPipelineInsertStage(pipeline, cmsAT_BEGIN, table);
    cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
    cmsWriteTag(profile, cmsSigAToB1Tag, pipeline);
    cmsPipelineFree(pipeline);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    PictureBytes bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

PictureBytes CmykTiff(const std::string& pixel, const PictureBytes& profile, unsigned bits = 8) {
    std::string pixels;
    for (int i = 0; i < 64; ++i) pixels += pixel;
    std::vector<TiffTag> tags{ShortTag(262, {5})};
    if (!profile.empty()) tags.push_back({34675, 7, std::string(profile.begin(), profile.end())});
    return PlainTiff(8, 8, bits, 4, pixels, tags);
}

// Red of the middle.
int RedOf(const PictureBytes& tiff) {
    const auto photo = Convert(tiff);
    EXPECT_EQ(photo.outcome, PictureOutcome::Written);
    return photo.outcome == PictureOutcome::Written ? static_cast<int>(photo.Pixels().At(4, 4, 0))
                                                    : -1;
}

TEST(ColourProfileTest, OfInksIsAppliedAndNotKept) {
    const auto photo = Convert(CmykTiff({'\0', '\0', '\0', '\xFF'}, PressProfile()));
    ASSERT_EQ(photo.outcome, PictureOutcome::Written);
    EXPECT_EQ(photo.Pixels().channels, 3u);
    EXPECT_EQ(photo.Profile(), "");
    // A lightness of 50.
    EXPECT_NEAR(static_cast<int>(photo.Pixels().At(4, 4, 0)), 118, 4);
    EXPECT_GT(RedOf(CmykTiff({'\0', '\0', '\0', '\0'}, PressProfile())), 250);
    // This press has no cyan.
    EXPECT_GT(RedOf(CmykTiff({'\xFF', '\0', '\0', '\0'}, PressProfile())), 250);
    EXPECT_GT(RedOf(CmykTiff(std::string("\xFF\xFF\0\0\0\0\0\0", 8), PressProfile(), 16)), 250);
}

TEST(ColourProfileTest, OfInksMayBeMissing) {
    EXPECT_LT(RedOf(CmykTiff({'\xFF', '\0', '\0', '\0'}, {})), 5);
    EXPECT_GT(RedOf(CmykTiff({'\0', '\xFF', '\0', '\0'}, {})), 250);
    EXPECT_LT(RedOf(CmykTiff({'\0', '\0', '\0', '\xFF'}, {})), 5);
    EXPECT_LT(RedOf(CmykTiff(std::string("\xFF\xFF\0\0\0\0\0\0", 8), {}, 16)), 5);
}

TEST(ColourProfileTest, OfInksThatIsDamagedIsDamage) {
    PictureBytes profile = PressProfile();
    for (std::size_t i = 128; i < 200; ++i) profile[i] = 0xFF;
    EXPECT_EQ(Convert(CmykTiff({'\0', '\0', '\0', '\0'}, profile)).outcome,
              PictureOutcome::Damaged);
}

// Lightness 53.2 and the two colours of the reddest red, with the three codings that TIFF has.
TEST(ColourProfileTest, OfLabIsTheOneOfItsCoding) {
    struct LabRow {
        unsigned photometric, bits;
        std::string pixel;
    };
    const LabRow rows[] = {{8, 8, {'\x88', '\x50', '\x43'}},
                           {9, 8, {'\x88', '\xD0', '\xC3'}},
                           {8, 16, std::string("\x35\x88\0\x50\0\x43", 6)},
                           {9, 16, std::string("\x35\x88\0\xD0\0\xC3", 6)}};
    for (const LabRow& row : rows) {
        std::string pixels;
        for (int i = 0; i < 64; ++i) pixels += row.pixel;
        const auto photo =
            Convert(PlainTiff(8, 8, row.bits, 3, pixels, {ShortTag(262, {row.photometric})}));
        ASSERT_EQ(photo.outcome, PictureOutcome::Written) << row.photometric;
        EXPECT_GT(photo.Pixels().At(4, 4, 0), 245u) << row.photometric << " " << row.bits;
        EXPECT_LT(photo.Pixels().At(4, 4, 1), 30u) << row.photometric << " " << row.bits;
        EXPECT_LT(photo.Pixels().At(4, 4, 2), 30u) << row.photometric << " " << row.bits;
    }
}

TEST(ColourProfileTest, SpaceIsThatOfAWholeProfile) {
    PictureBytes profile = PressProfile();
    EXPECT_EQ(SpaceOfProfile(profile), ProfileSpace::Cmyk);
    EXPECT_EQ(SpaceOfProfile(ProfileOfNumbers(9, 16)), ProfileSpace::Rgb);
    profile.pop_back();
    EXPECT_EQ(SpaceOfProfile(profile), ProfileSpace::None);
    EXPECT_EQ(SpaceOfProfile({}), ProfileSpace::None);
}

TEST(ColourProfileTest, OfNumbersIsEmptyForSrgbAndForUnknownNumbers) {
    EXPECT_TRUE(ProfileOfNumbers(1, 13).empty());
    EXPECT_TRUE(ProfileOfNumbers(2, 2).empty());
    EXPECT_TRUE(ProfileOfNumbers(77, 13).empty());
    EXPECT_EQ(ProfileOfNumbers(12, 13), ProfileOfNumbers(12, 13));
}

} // namespace
