// What is removed from a WebP, and what stays.
#include "tests/unit/services/transforms/personal/ExifSamples.h"
#include "tests/unit/services/transforms/personal/Samples.h"

using namespace samples;

namespace {

Sample Chunk(const Sample& name, const Sample& data, char padding = '\0') {
    return name + Little32(static_cast<unsigned>(data.size())) + data +
           (data.size() % 2 ? Sample(1, padding) : "");
}

Sample File(const Sample& chunks) {
    return "RIFF" + Little32(static_cast<unsigned>(chunks.size()) + 4) + "WEBP" + chunks;
}

constexpr unsigned kProfile = 0x20, kAlpha = 0x10, kExif = 0x08, kXmp = 0x04, kAnimation = 0x02;

Sample Features(unsigned flags) {
    return Chunk("VP8X", static_cast<char>(flags) + Sample(9, '\0'));
}
Sample Image() { return Chunk("VP8 ", "pixel"); }
Sample Profile() { return Chunk("ICCP", Sample(36, '\1') + "acsp" + Sample(88, '\1')); }
Sample Frame(const Sample& chunks) { return Chunk("ANMF", Sample(16, '\0') + chunks); }
Sample Animation() { return Features(kAnimation) + Chunk("ANIM", Sample(6, '\0')); }

TEST(WebPPersonalData, ImagesAlphaProfileAndFramesStay) {
    ExpectUnchanged(File(Image()));
    ExpectUnchanged(File(Chunk("VP8L", "pixels")));
    ExpectUnchanged(
        File(Features(kAlpha | kProfile) + Profile() + Chunk("ALPH", "alpha") + Image()));
    ExpectUnchanged(File(Animation() + Frame(Image()) +
                         Frame(Chunk("ALPH", "alpha") + Chunk("VP8L", "pixel"))));
}

TEST(WebPPersonalData, MetadataIsRemovedAndNoLongerAnnounced) {
    const Sample canary(kCanary);
    ExpectCleaned(File(Features(kXmp | kAlpha) + Image() + Chunk("XMP ", canary)),
                  File(Features(kAlpha) + Image()), {{FindingKind::Xmp, 1}});
    ExpectCleaned(File(Features(kExif | kXmp) + Image() + Chunk("EXIF", CameraBlock(1))),
                  File(Features(0) + Image()), FoundInCameraBlock());
    ExpectCleaned(File(Features(0) + Image() + Chunk("C2PA", canary)), File(Features(0) + Image()),
                  {{FindingKind::Credentials, 1}});
}

TEST(WebPPersonalData, TheOrientationStaysInABlockOfItsOwn) {
    const Sample clean = File(Features(kExif) + Image() + Chunk("EXIF", OrientationBlock(6)));
    ExpectUnchanged(clean);
    ExpectCleaned(File(Features(kExif) + Image() + Chunk("EXIF", CameraBlock(6))), clean,
                  FoundInCameraBlock());
    ExpectCleaned(File(Features(kExif) + Image() + Chunk("EXIF", "Exif\0\0"s + CameraBlock(6))),
                  clean, FoundInCameraBlock());
    ExpectCleaned(File(Features(kExif) + Image() + Chunk("EXIF", OrientationBlock(6)) +
                       Chunk("EXIF", OrientationBlock(3))),
                  clean, {{FindingKind::CameraSettings, 1}});
}

TEST(WebPPersonalData, WhatIsNotAnnouncedIsRemoved) {
    ExpectCleaned(File(Features(0) + Profile() + Image() + Chunk("EXIF", OrientationBlock(6))),
                  File(Features(0) + Image()),
                  {{FindingKind::CameraSettings, 1}, {FindingKind::PrivateData, 1}});
    ExpectCleaned(File(Image() + Chunk("EXIF", CameraBlock(6)) + Chunk("ALPH", "alpha")),
                  File(Image()), {{FindingKind::CameraSettings, 1}, {FindingKind::PrivateData, 1}});
    ExpectCleaned(File(Features(0) + Chunk("ANIM", Sample(6, '\1')) + Image() +
                       Frame(Chunk("VP8 ", Sample(kCanary)))),
                  File(Features(0) + Image()), {{FindingKind::PrivateData, 2}});
}

TEST(WebPPersonalData, UnknownChunksAreRemovedFromFramesToo) {
    const Sample canary = Chunk("what", Sample(kCanary));
    ExpectCleaned(File(canary + Image() + canary), File(Image()), {{FindingKind::PrivateData, 2}});
    ExpectCleaned(File(Animation() + Frame(canary + Image() + canary) + canary),
                  File(Animation() + Frame(Image())), {{FindingKind::PrivateData, 3}});
    ExpectCleaned(File(Image() + Chunk("VP8 ", Sample(kCanary))), File(Image()),
                  {{FindingKind::PrivateData, 1}});
}

TEST(WebPPersonalData, AProfileThatIsNoneIsRemoved) {
    ExpectCleaned(File(Features(kProfile) + Chunk("ICCP", Sample(kCanary)) + Image()),
                  File(Features(0) + Image()), {{FindingKind::PrivateData, 1}});
}

TEST(WebPPersonalData, BytesThatShouldBeZeroAreMadeZero) {
    Sample features = Features(0);
    features[9] = 'C';
    ExpectCleaned(File(features + Image()), File(Features(0) + Image()),
                  {{FindingKind::PrivateData, 1}});
    ExpectCleaned(File(Features(0xC1) + Image()), File(Features(0) + Image()),
                  {{FindingKind::PrivateData, 1}});
    ExpectCleaned(File(Chunk("VP8 ", "pixel", 'C')), File(Image()), {{FindingKind::StrayBytes, 1}});
    ExpectCleaned(File(Animation() + Frame(Chunk("VP8 ", "pixel", 'C'))),
                  File(Animation() + Frame(Image())), {{FindingKind::StrayBytes, 1}});
}

TEST(WebPPersonalData, TheLastChunkMayLackItsPadding) {
    const Sample chunks(Image(), 0, Image().size() - 1);
    ExpectUnchanged(File(chunks));
    ExpectUnchanged(File(chunks) + "\0"s);
    ExpectCleaned(File(chunks) + Sample(kCanary), File(Image()), {{FindingKind::TrailingData, 1}});
}

TEST(WebPPersonalData, WhatFollowsTheEndIsRemoved) {
    ExpectCleaned(File(Image()) + Sample(kCanary), File(Image()), {{FindingKind::TrailingData, 1}});
}

TEST(WebPPersonalData, NoImageOrAWrongSizeIsDamage) {
    ExpectDamaged(File(""));
    ExpectDamaged(File(Chunk("EXIF", CameraBlock(6))));
    ExpectDamaged(File(Features(kAnimation) + Image()));
    ExpectDamaged(File(Animation() + Frame(Chunk("what", ""))));
    ExpectDamaged(File(Animation() + Chunk("ANMF", Sample(15, '\1')) + Frame(Image())));
    ExpectDamaged(
        File(Features(kAnimation) + Chunk("ANIM", Sample(kCanary) + "x") + Frame(Image())));
    ExpectDamaged(File(Chunk("VP8X", Sample(11, '\0')) + Image()));
    ExpectDamaged(File(Image() + "x"));
}

Sample Everything() {
    return File(Features(kProfile | kExif | kXmp | kAlpha) + Profile() + Chunk("ALPH", "alpha") +
                Image() + Chunk("EXIF", CameraBlock(6)) + Chunk("XMP ", Sample(kCanary)) +
                Chunk("what", "ever"));
}

TEST(WebPPersonalData, EveryCutIsDamage) {
    ExpectDamagedWhenCut(Everything(), 12, Everything().size());
    const Sample animation = File(Animation() + Frame(Chunk("what", "") + Image()));
    ExpectDamagedWhenCut(animation, 12, animation.size());
}

TEST(WebPPersonalData, TheRulesAreTrueOfAnyMutation) {
    CheckMutations(Everything() + "trailing");
    CheckMutations(File(Animation() + Frame(Chunk("what", "x") + Image()) + Frame(Image())));
}

} // namespace
