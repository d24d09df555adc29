// The colour library as it was built for this system: known colours come out as known values, a
// profile that is written is read, and a damaged profile is an error.
#include <gtest/gtest.h>

#include <vector>

#include <lcms2.h>

namespace {
using Bytes = std::vector<unsigned char>;

Bytes Saved(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    Bytes bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

TEST(LcmsLibrary, TurnsKnownColoursIntoKnownValues) {
    cmsHPROFILE srgb = cmsCreate_sRGBProfile(), lab = cmsCreateLab4Profile(nullptr);
    cmsHTRANSFORM transform =
        cmsCreateTransform(srgb, TYPE_RGB_8, lab, TYPE_Lab_DBL, INTENT_RELATIVE_COLORIMETRIC, 0);
    ASSERT_NE(transform, nullptr);
    const unsigned char colours[] = {255, 0, 0, 255, 255, 255, 0, 0, 0};
    cmsCIELab values[3];
    cmsDoTransform(transform, colours, values, 3);
    EXPECT_NEAR(values[0].L, 54.29, 0.1);
    EXPECT_NEAR(values[0].a, 80.81, 0.3);
    EXPECT_NEAR(values[0].b, 69.89, 0.3);
    EXPECT_NEAR(values[1].L, 100, 0.05);
    EXPECT_NEAR(values[2].L, 0, 0.05);
    cmsDeleteTransform(transform);
    cmsCloseProfile(srgb);
    cmsCloseProfile(lab);
}

TEST(LcmsLibrary, ReadsTheProfileThatItWrote) {
    const auto bytes = Saved(cmsCreate_sRGBProfile());
    cmsHPROFILE again =
        cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(cmsGetColorSpace(again), cmsSigRgbData);
    cmsCloseProfile(again);
}

TEST(LcmsLibrary, ReportsADamagedProfileByAnError) {
    const auto bytes = Saved(cmsCreate_sRGBProfile());
    EXPECT_EQ(cmsOpenProfileFromMem(bytes.data(), 60), nullptr);
    for (size_t i = 0; i < bytes.size(); ++i) {
        auto damaged = bytes;
        damaged[i] ^= 0xFF;
        cmsHPROFILE profile =
            cmsOpenProfileFromMem(damaged.data(), static_cast<cmsUInt32Number>(damaged.size()));
        cmsHPROFILE lab = cmsCreateLab4Profile(nullptr);
        cmsHTRANSFORM transform =
            profile ? cmsCreateTransform(profile, TYPE_RGB_8, lab, TYPE_Lab_DBL, 0, 0) : nullptr;
        if (transform) cmsDeleteTransform(transform);
        cmsCloseProfile(lab);
        if (profile) cmsCloseProfile(profile);
    }
}
} // namespace
