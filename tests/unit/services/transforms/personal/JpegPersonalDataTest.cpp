// What is removed from a JPEG, and what stays.
#include "tests/unit/services/transforms/personal/ExifSamples.h"
#include "tests/unit/services/transforms/personal/Samples.h"

using namespace samples;

namespace {

constexpr std::string_view kNamespace = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kExtension = "http://ns.adobe.com/xmp/extension/\0"sv;

Sample Marker(unsigned code) { return {'\xFF', static_cast<char>(code)}; }

Sample Segment(unsigned code, const Sample& payload) {
    return Marker(code) + Big16(static_cast<unsigned>(payload.size()) + 2) + payload;
}

Sample Start() { return Marker(0xD8); }
Sample End() { return Marker(0xD9); }
Sample Jfif(const Sample& thumbnail = "\0\0"s) {
    return Segment(0xE0, "JFIF\0\1\2\1\0\x48\0\x48"s + thumbnail);
}
Sample Tables() {
    return Segment(0xDB, "\0"s + Sample(64, '\1')) +
           Segment(0xC4, "\0"s + "\1"s + Sample(15, '\0') + "\0"s);
}
Sample Frame(unsigned code = 0xC0, unsigned components = 1) {
    Sample payload = "\x8"s + Big16(8) + Big16(8) + static_cast<char>(components);
    for (unsigned at = 1; at <= components; ++at) payload += static_cast<char>(at) + "\x11\0"s;
    return Segment(code, payload);
}
Sample Scan(const Sample& coded = "\x12\xFF\0\x34"s) {
    return Segment(0xDA, "\1\1\0\0\x3F\0"s) + coded;
}
Sample Picture() { return Tables() + Frame() + Scan() + End(); }
Sample ExifSegment(const Sample& block) { return Segment(0xE1, "Exif\0\0"s + block); }
Sample Profile(std::size_t size = 128) {
    return Sample(36, '\1') + "acsp" + Sample(size - 40, '\2');
}
Sample ProfilePiece(unsigned number, unsigned count, const Sample& data) {
    return Segment(0xE2,
                   "ICC_PROFILE\0"s + static_cast<char>(number) + static_cast<char>(count) + data);
}

// A segment that is removed whole, between the start and the picture.
void ExpectRemoved(const Sample& segment, FindingKind kind) {
    ExpectCleaned(Start() + Jfif() + segment + Picture(), Start() + Jfif() + Picture(),
                  {{kind, 1}});
}

TEST(JpegPersonalData, NothingIsFoundInAPictureWithoutAny) {
    ExpectUnchanged(Start() + Jfif() + Picture());
    ExpectUnchanged(Start() + Picture());
}

TEST(JpegPersonalData, AllSegmentsForDataAreRemoved) {
    const Sample canary(kCanary);
    ExpectRemoved(Segment(0xE1, Sample(kNamespace) + canary), FindingKind::Xmp);
    ExpectRemoved(Segment(0xE1, Sample(kExtension) + canary), FindingKind::Xmp);
    ExpectRemoved(Segment(0xED, "Photoshop 3.0\0"s + canary), FindingKind::Iptc);
    ExpectRemoved(Segment(0xFE, canary), FindingKind::Comment);
    ExpectRemoved(Segment(0xE0, "JFXX\0\x10"s + canary), FindingKind::Thumbnail);
    ExpectRemoved(Segment(0xE2, "MPF\0"s + canary), FindingKind::OtherPictures);
    ExpectRemoved(Segment(0xEB, "JP\0\1"s + canary), FindingKind::Credentials);
    ExpectRemoved(Segment(0xEE, canary), FindingKind::ApplicationData);
    ExpectRemoved(Segment(0xE1, "Exif"s + canary), FindingKind::ApplicationData);
    ExpectRemoved(Segment(0xE2, ""), FindingKind::ApplicationData);
    for (unsigned code = 0xE0; code <= 0xEF; ++code) {
        ExpectRemoved(Segment(code, canary), FindingKind::ApplicationData);
    }
}

TEST(JpegPersonalData, AUprightCamerasBlockIsRemovedWhole) {
    ExpectCleaned(Start() + ExifSegment(CameraBlock(1)) + Picture(), Start() + Picture(),
                  FoundInCameraBlock());
}

TEST(JpegPersonalData, TheOrientationStaysInABlockOfItsOwn) {
    for (unsigned orientation = 2; orientation <= 8; ++orientation) {
        const Sample clean = Start() + ExifSegment(OrientationBlock(orientation)) + Picture();
        ExpectCleaned(Start() + ExifSegment(CameraBlock(orientation)) + Picture(), clean,
                      FoundInCameraBlock());
        ExpectUnchanged(clean);
    }
}

TEST(JpegPersonalData, TheOrientationStaysFromABlockThatEndsWithoutALink) {
    const Sample block = OrientationBlock(6);
    ExpectCleaned(Start() + ExifSegment(block.substr(0, block.size() - 4)) + Picture(),
                  Start() + ExifSegment(block) + Picture(), {{FindingKind::CameraSettings, 1}});
}

TEST(JpegPersonalData, AnOrientationThatViewersDoNotKnowIsRemoved) {
    for (const unsigned orientation : {0u, 1u, 9u, 0x4341u}) {
        ExpectCleaned(Start() + ExifSegment(OrientationBlock(orientation)) + Picture(),
                      Start() + Picture(), {{FindingKind::CameraSettings, 1}});
    }
}

TEST(JpegPersonalData, OnlyTheFirstCamerasBlockGivesTheOrientation) {
    const Sample turned = ExifSegment(OrientationBlock(6));
    ExpectCleaned(Start() + turned + ExifSegment(OrientationBlock(3)) + Picture(),
                  Start() + turned + Picture(), {{FindingKind::CameraSettings, 1}});
    ExpectCleaned(Start() + ExifSegment(CameraBlock(1)) + turned + Picture(), Start() + Picture(),
                  {{FindingKind::Position, 1},
                   {FindingKind::Camera, 1},
                   {FindingKind::CameraSettings, 1},
                   {FindingKind::MakerNotes, 1},
                   {FindingKind::Time, 1},
                   {FindingKind::Thumbnail, 1}});
}

TEST(JpegPersonalData, ADamagedCamerasBlockIsRemovedFromASoundPicture) {
    const Sample block = CameraBlock(6);
    for (std::size_t size = 0; size < block.size(); ++size) {
        const Sample sample = Start() + ExifSegment(Sample(block, 0, size)) + Picture();
        EXPECT_EQ(Clean(sample).outcome, CleanOutcome::Cleaned);
        EXPECT_FALSE(HasCanary(Clean(sample).file));
        CheckProperties(sample);
    }
}

TEST(JpegPersonalData, TheThumbnailInTheFirstSegmentIsRemovedAndTheDensityStays) {
    ExpectCleaned(Start() + Jfif("\1\2"s + Sample(kCanary)) + Picture(),
                  Start() + Jfif() + Picture(), {{FindingKind::Thumbnail, 1}});
}

TEST(JpegPersonalData, TheColourTransformStaysWithoutWhatFollowsIt) {
    const Sample colours = "Adobe\0\x64\0\0\0\0\1"s;
    ExpectUnchanged(Start() + Segment(0xEE, colours) + Picture());
    ExpectCleaned(Start() + Segment(0xEE, colours + Sample(kCanary)) + Picture(),
                  Start() + Segment(0xEE, colours) + Picture(),
                  {{FindingKind::ApplicationData, 1}});
}

TEST(JpegPersonalData, AWholeProfileStays) {
    const Sample profile = Profile();
    ExpectUnchanged(Start() + ProfilePiece(1, 1, profile) + Picture());
    ExpectUnchanged(Start() + ProfilePiece(2, 2, profile.substr(64)) +
                    ProfilePiece(1, 2, profile.substr(0, 64)) + Picture());
}

TEST(JpegPersonalData, PiecesThatMakeNoProfileAreRemoved) {
    const Sample profile = Profile();
    const Sample canary(kCanary);
    const auto removed = [](std::uint32_t count) {
        return std::vector<Finding>{{FindingKind::ApplicationData, count}};
    };
    const Sample clean = Start() + Picture();
    ExpectCleaned(Start() + ProfilePiece(1, 1, canary) + Picture(), clean, removed(1));
    ExpectCleaned(Start() + ProfilePiece(1, 2, profile) + Picture(), clean, removed(1));
    ExpectCleaned(Start() + ProfilePiece(0, 1, profile) + Picture(), clean, removed(1));
    ExpectCleaned(Start() + ProfilePiece(1, 1, profile) + ProfilePiece(1, 1, canary) + Picture(),
                  clean, removed(2));
    ExpectCleaned(Start() + ProfilePiece(1, 1, profile) + ProfilePiece(2, 2, canary) + Picture(),
                  clean, removed(2));
    ExpectCleaned(Start() + Tables() + Frame() + Scan() + ProfilePiece(1, 1, profile) + End(),
                  clean, removed(1));
}

TEST(JpegPersonalData, WhatFollowsTheEndIsRemoved) {
    const Sample picture = Start() + Picture();
    ExpectCleaned(picture + "x", picture, {{FindingKind::TrailingData, 1}});
    ExpectCleaned(picture + picture + Sample(kCanary), picture, {{FindingKind::TrailingData, 1}});
}

TEST(JpegPersonalData, BytesThatDecodersPassOverAreRemoved) {
    ExpectCleaned(Start() + Marker(0xFF) + Segment(0xFE, "x") + Sample(kCanary) + "\xFF\0"s +
                      Picture(),
                  Start() + Picture(), {{FindingKind::Comment, 1}, {FindingKind::StrayBytes, 1}});
}

TEST(JpegPersonalData, SegmentsBetweenScansAreRemovedToo) {
    const Sample before = Start() + Tables() + Frame(0xC2) + Scan();
    const Sample after = Tables() + Scan() + End();
    ExpectCleaned(before + Segment(0xFE, Sample(kCanary)) + ExifSegment(CameraBlock(6)) + after,
                  before + after, {{FindingKind::Comment, 1}, {FindingKind::ApplicationData, 1}});
}

TEST(JpegPersonalData, EveryKindOfFrameAndCodingIsKeptByteForByte) {
    for (const unsigned code : {0xC0u, 0xC1u, 0xC2u, 0xC3u, 0xC5u, 0xC9u, 0xCAu, 0xCFu}) {
        ExpectUnchanged(Start() + Tables() + Frame(code, 4) + Scan() + End());
    }
    ExpectUnchanged(Start() + Segment(0xC4, "") + Tables() + Segment(0xDB, "") +
                    Segment(0xC1, "\xC"s + Frame().substr(5)) + Scan() + End()); // 12 bits
    const Sample restarts = "\x12\xFF\xD0\x34\xFF\xD7\xFF\0\x56\xFF\xFF"s;
    ExpectUnchanged(Start() + Tables() + Segment(0xDD, Big16(1)) + Frame() + Scan(restarts) +
                    Segment(0xDC, Big16(8)) + Tables() + Scan() + "\xFF\xFF"s + End());
    ExpectUnchanged(Start() + Segment(0xDB, "\x10"s + Sample(128, '\1')) + Segment(0xCC, "\0\1"s) +
                    Segment(0xDE, Frame().substr(4)) + Frame(0xC9) + Segment(0xDF, "\x11"s) +
                    Scan() + End());
}

// Blocks of bytes are searched at once, so a mark is put at each place of a block and after it.
TEST(JpegPersonalData, MarksAreFoundWhereverTheyAreInCodedData) {
    for (std::size_t size = 0; size < 50; ++size) {
        const Sample coded = Sample(size, '\x12') + "\xFF\0\x34"s + Sample(size / 2, '\x56');
        const Sample begin = Tables() + Frame() + Scan(coded);
        ExpectCleaned(Start() + begin + End() + Sample(size + 1, 'c'), Start() + begin + End(),
                      {{FindingKind::TrailingData, 1}});
        ExpectCleaned(Start() + begin + Segment(0xFE, "comment"s) + End(), Start() + begin + End(),
                      {{FindingKind::Comment, 1}});
    }
}

TEST(JpegPersonalData, TablesWithMoreInThemThanTheyNeedAreDamage) {
    const Sample canary(kCanary);
    const auto expectDamaged = [](const Sample& segment) {
        ExpectDamaged(Start() + segment + Picture());
    };
    expectDamaged(Segment(0xDB, "\0"s + Sample(64, '\1') + canary));
    expectDamaged(Segment(0xC4, "\0"s + "\1"s + Sample(15, '\0') + "\0"s + canary));
    expectDamaged(Segment(0xDD, Big16(1) + canary));
    expectDamaged(Segment(0xCC, "\0\1\2"s));
    expectDamaged(Segment(0xC0, Frame().substr(4) + canary));
    expectDamaged(Segment(0xDF, canary));
    expectDamaged(Segment(0xDA, "\1\1\0\0\x3F\0"s + canary));
    for (const unsigned code : {0x01u, 0xC8u, 0xD0u, 0xD8u, 0xF0u, 0xFDu, 0x02u}) {
        expectDamaged(Segment(code, canary));
    }
}

TEST(JpegPersonalData, APictureWithoutAFrameOrAScanIsDamage) {
    ExpectDamaged(Start() + Jfif() + End());
    ExpectDamaged(Start() + Tables() + Frame() + End());
    ExpectDamaged(Start() + Tables() + Scan() + End());
}

TEST(JpegPersonalData, AnotherStandardsCodingIsNotSupported) {
    EXPECT_EQ(Clean(Start() + Frame(0xF7) + Scan() + End()).outcome, CleanOutcome::NotSupported);
    CheckProperties(Start() + Frame(0xF7) + Scan() + End());
}

Sample Everything() {
    return Start() + Jfif("\1\1abc"s) + ExifSegment(CameraBlock(8)) +
           ProfilePiece(1, 1, Profile()) + Segment(0xE1, Sample(kNamespace) + "x") + "stray" +
           Tables() + Frame(0xC2, 3) + Scan() + Segment(0xFE, Sample(kCanary)) + Scan() + End();
}

TEST(JpegPersonalData, EveryCutIsDamage) {
    const Sample sample = Everything();
    ExpectDamagedWhenCut(sample, 3, sample.size());
}

TEST(JpegPersonalData, TheRulesAreTrueOfAnyMutation) {
    CheckMutations(Everything() + "trailing");
    CheckMutations(Start() + ExifSegment(OrientationBlock(6)) + Picture());
}

} // namespace
