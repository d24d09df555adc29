// What is removed from a PNG, and what stays.
#include "services/transforms/personal/Crc32.h"
#include "tests/unit/services/transforms/personal/ExifSamples.h"
#include "tests/unit/services/transforms/personal/Samples.h"

using namespace samples;

namespace {

const Sample kSignature = "\x89PNG\r\n\x1A\n";

Sample Chunk(const Sample& type, const Sample& data) {
    const Sample summed = type + data;
    return Big32(static_cast<unsigned>(data.size())) + summed +
           Big32(transforms::personal::Crc32(BytesOf(summed)));
}

Sample WithWrongChecksum(Sample chunk) {
    chunk.back() = static_cast<char>(chunk.back() ^ 1);
    return chunk;
}

Sample Header() { return Chunk("IHDR", Big32(1) + Big32(1) + "\x8\0\0\0\0"s); }
Sample Pixels() { return Chunk("IDAT", "pixels"); }
Sample End() { return Chunk("IEND", ""); }
Sample Before() { return kSignature + Header(); }
Sample After() { return Pixels() + Pixels() + End(); }
Sample Animation() { return Chunk("acTL", Sample(8, '\0')) + Chunk("fcTL", Sample(26, '\0')); }

void ExpectRemoved(const Sample& chunk, FindingKind kind) {
    ExpectCleaned(Before() + chunk + After(), Before() + After(), {{kind, 1}});
    ExpectCleaned(Before() + Pixels() + chunk + End(), Before() + Pixels() + End(), {{kind, 1}});
}

TEST(PngPersonalData, NothingIsFoundInAPictureWithoutAny) { ExpectUnchanged(Before() + After()); }

TEST(PngPersonalData, ChecksumsAreThoseOfTheFormat) {
    EXPECT_EQ(End(), "\0\0\0\0IEND\xAE\x42\x60\x82"s);
    EXPECT_EQ(transforms::personal::Crc32(BytesOf("123456789")), 0xCBF43926u);
    EXPECT_EQ(transforms::personal::Crc32(BytesOf("The quick brown fox jumps over the lazy dog")),
              0x414FA339u);
}

TEST(PngPersonalData, TextsTimesAndPrivateChunksAreRemoved) {
    const Sample canary(kCanary);
    ExpectRemoved(Chunk("tEXt", "Author\0"s + canary), FindingKind::Text);
    ExpectRemoved(Chunk("zTXt", "Comment\0\0"s + canary), FindingKind::Text);
    ExpectRemoved(Chunk("iTXt", "Title\0\0\0\0\0"s + canary), FindingKind::Text);
    ExpectRemoved(Chunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0"s + canary), FindingKind::Xmp);
    ExpectRemoved(Chunk("tIME", "\x7\xE9\1\2\3\4\5"s), FindingKind::Time);
    ExpectRemoved(Chunk("caBX", canary), FindingKind::Credentials);
    for (const auto* type : {"prVt", "sPLT", "pCAL", "sCAL", "dSIG", "gIFx", "zxIf", "iDOT"}) {
        ExpectRemoved(Chunk(type, canary), FindingKind::PrivateData);
    }
}

TEST(PngPersonalData, WhatDecodersDrawFromStays) {
    const Sample before =
        Before() + Chunk("gAMA", Sample(4, '\1')) + Chunk("cHRM", Sample(32, '\1')) +
        Chunk("sRGB", "\0"s) + Chunk("iCCP", "icc\0\0profile"s) + Chunk("sBIT", "\x8"s) +
        Chunk("cICP", Sample(4, '\1')) + Chunk("mDCV", Sample(24, '\1')) +
        Chunk("cLLI", Sample(8, '\1')) + Chunk("PLTE", Sample(6, '\1')) + Chunk("tRNS", "\1\2"s) +
        Chunk("bKGD", "\1"s) + Chunk("hIST", Sample(4, '\1')) + Chunk("pHYs", Sample(9, '\1')) +
        Chunk("oFFs", Sample(9, '\1')) + Chunk("sTER", "\1"s);
    ExpectUnchanged(before + After());
}

TEST(PngPersonalData, AnAnimationStays) {
    ExpectUnchanged(Before() + Animation() + Pixels() + Chunk("fcTL", Sample(26, '\1')) +
                    Chunk("fdAT", "\0\0\0\2frame"s) + End());
}

TEST(PngPersonalData, FramesOutsideAnAnimationAreRemoved) {
    ExpectRemoved(Chunk("fdAT", "\0\0\0\2"s + Sample(kCanary)), FindingKind::PrivateData);
}

TEST(PngPersonalData, ChunksOfAnotherKindThanTheirNameAreRemoved) {
    const Sample canary(kCanary);
    ExpectRemoved(Chunk("gAMA", canary), FindingKind::PrivateData);
    ExpectRemoved(Chunk("pHYs", canary), FindingKind::PrivateData);
    ExpectRemoved(Chunk("hIST", canary + "x"), FindingKind::PrivateData);
    ExpectRemoved(Chunk("iCCP", canary), FindingKind::PrivateData);
    ExpectRemoved(Chunk("iCCP", "\0\0"s + canary), FindingKind::PrivateData);
    ExpectRemoved(Chunk("iCCP", "name\0\1"s + canary), FindingKind::PrivateData);
    ExpectRemoved(Chunk("iCCP", Sample(80, 'x') + "\0\0"s + canary), FindingKind::PrivateData);
    ExpectRemoved(WithWrongChecksum(Chunk("gAMA", "CANA")), FindingKind::PrivateData);
    const Sample gamma = Chunk("gAMA", Sample(4, '\1'));
    ExpectCleaned(Before() + gamma + Chunk("gAMA", "CANA") + After(), Before() + gamma + After(),
                  {{FindingKind::PrivateData, 1}});
}

TEST(PngPersonalData, TheOrientationStaysInABlockOfItsOwn) {
    const Sample clean = Before() + Chunk("eXIf", OrientationBlock(6)) + After();
    ExpectUnchanged(clean);
    ExpectCleaned(Before() + Chunk("eXIf", CameraBlock(6)) + After(), clean, FoundInCameraBlock());
    ExpectCleaned(Before() + Chunk("eXIf", CameraBlock(1)) + After(), Before() + After(),
                  FoundInCameraBlock());
    ExpectCleaned(Before() + Chunk("eXIf", OrientationBlock(6)) +
                      Chunk("eXIf", OrientationBlock(3)) + After(),
                  clean, {{FindingKind::CameraSettings, 1}});
    ExpectRemoved(WithWrongChecksum(Chunk("eXIf", OrientationBlock(6))),
                  FindingKind::CameraSettings);
}

TEST(PngPersonalData, WhatFollowsTheEndIsRemoved) {
    ExpectCleaned(Before() + After() + Sample(kCanary), Before() + After(),
                  {{FindingKind::TrailingData, 1}});
}

TEST(PngPersonalData, APictureThatDecodersRefuseIsDamage) {
    ExpectDamaged(kSignature + Pixels() + Header() + End());
    ExpectDamaged(Before() + Header() + After());
    ExpectDamaged(Before() + End());
    ExpectDamaged(Before() + WithWrongChecksum(Pixels()) + End());
    ExpectDamaged(Before() + Pixels() + WithWrongChecksum(End()));
    ExpectDamaged(kSignature + Chunk("IHDR", Sample(14, '\1')) + After());
    ExpectDamaged(Before() + Pixels() + Chunk("IEND", Sample(kCanary)));
    ExpectDamaged(Before() + Chunk("PLTE", Sample(4, '\1')) + After());
    ExpectDamaged(Before() + Chunk("t3xt", Sample(kCanary)) + After());
    ExpectDamaged(Before() + Animation() + Pixels() +
                  WithWrongChecksum(Chunk("fdAT", "\0\0\0\2frame"s)) + End());
    ExpectDamaged(Before() + "\x80\0\0\0tEXt"s + After());
}

TEST(PngPersonalData, AChunkWithoutWhichNobodyCanDecodeIsNotSupported) {
    EXPECT_EQ(Clean(kSignature + Header() + Chunk("CgBI", "\0\0\0\0"s) + After()).outcome,
              CleanOutcome::NotSupported);
    CheckProperties(kSignature + Header() + Chunk("CgBI", "\0\0\0\0"s) + After());
}

Sample Everything() {
    return Before() + Chunk("eXIf", CameraBlock(6)) + Chunk("tEXt", Sample(kCanary)) +
           Chunk("gAMA", Sample(4, '\1')) + Animation() + Pixels() + Chunk("prVt", "x") + End();
}

TEST(PngPersonalData, EveryCutIsDamage) {
    ExpectDamagedWhenCut(Everything(), kSignature.size(), Everything().size());
}

TEST(PngPersonalData, TheRulesAreTrueOfAnyMutation) {
    CheckMutations(Everything() + "trailing");
    CheckMutations(Before() + Chunk("eXIf", OrientationBlock(6)) + After());
}

} // namespace
