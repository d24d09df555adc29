// What is removed from a GIF, and what stays.
#include "tests/unit/services/transforms/personal/Samples.h"

using namespace samples;

namespace {

Sample Block(const Sample& data) { return static_cast<char>(data.size()) + data; }
Sample Extension(char label, const Sample& blocks) { return "\x21"s + label + blocks + "\0"s; }
Sample Application(const Sample& name, const Sample& blocks) {
    return Extension('\xFF', Block(name) + blocks);
}

Sample Screen() { return "GIF89a\1\0\1\0\x80\0\0"s + Sample(6, '\1'); }
Sample Control() { return Extension('\xF9', Block("\1\2\0\0"s)); }
Sample Image() { return "\x2C"s + Sample(8, '\0') + "\0"s + "\2"s + Block("\x44\1"s) + "\0"s; }
Sample Loop() { return Application("NETSCAPE2.0", Block("\1\0\0"s)); }
Sample End() { return ";"; }

void ExpectRemoved(const Sample& block, FindingKind kind) {
    const Sample clean = Screen() + Loop() + Control() + Image() + End();
    ExpectCleaned(Screen() + block + Loop() + Control() + Image() + End(), clean, {{kind, 1}});
    ExpectCleaned(Screen() + Loop() + Control() + block + Image() + End(), clean, {{kind, 1}});
    ExpectCleaned(Screen() + Loop() + Control() + Image() + block + End(), clean, {{kind, 1}});
}

TEST(GifPersonalData, ImagesTimingLoopAndVisibleTextsStay) {
    ExpectUnchanged(Screen() + Image() + End());
    ExpectUnchanged("GIF87a\1\0\1\0\0\0\0"s + Image() + End());
    ExpectUnchanged(Screen() + Loop() + Control() + Image() + Control() + Image() + End());
    ExpectUnchanged(Screen() + Application("ANIMEXTS1.0", Block("\1\5\0"s)) + Image() + End());
    ExpectUnchanged(Screen() + Image() + Control() +
                    Extension('\1', Block(Sample(12, '\1')) + Block("What is seen")) + End());
    const Sample coloured = "\x2C"s + Sample(8, '\0') + "\x81"s + Sample(12, '\1') + "\2"s +
                            Block("\x44\1"s) + Block("\x44"s) + "\0"s;
    ExpectUnchanged(Screen() + coloured + End());
}

TEST(GifPersonalData, AProfileStays) {
    const Sample profile = Sample(36, '\1') + "acsp" + Sample(88, '\1');
    ExpectUnchanged(Screen() + Application("ICCRGBG1012", Block(profile) + Block("more")) +
                    Image() + End());
    ExpectRemoved(Application("ICCRGBG1012", Block(Sample(40, '\1') + Sample(kCanary))),
                  FindingKind::ApplicationData);
    ExpectRemoved(Application("ICCRGBG1012", ""), FindingKind::ApplicationData);
}

TEST(GifPersonalData, CommentsAndOtherProgramsBlocksAreRemoved) {
    const Sample canary(kCanary);
    ExpectRemoved(Extension('\xFE', Block(canary)), FindingKind::Comment);
    ExpectRemoved(Extension('\xFE', ""), FindingKind::Comment);
    ExpectRemoved(Application("XMP DataXMP", Block(canary)), FindingKind::Xmp);
    ExpectRemoved(Application("C2PA_GIF\1\0\0"s, Block(canary)), FindingKind::Credentials);
    ExpectRemoved(Application("SOMETHING10", Block(canary)), FindingKind::ApplicationData);
    ExpectRemoved(Application("NETSCAPE2.0", Block("\2" + canary)), FindingKind::ApplicationData);
    ExpectRemoved(Application("NETSCAPE2.0", ""), FindingKind::ApplicationData);
    ExpectRemoved(Application(canary, Block(canary)), FindingKind::PrivateData);
    ExpectRemoved(Extension('\x7', Block(canary)), FindingKind::PrivateData);
    ExpectRemoved(Extension('\1', Block(canary)), FindingKind::PrivateData);
    ExpectRemoved(Extension('\xF9', Block(canary)), FindingKind::PrivateData);
}

TEST(GifPersonalData, BlocksThatDecodersIgnoreInWhatStaysAreRemoved) {
    const Sample canary = Block(Sample(kCanary));
    ExpectCleaned(Screen() + Application("NETSCAPE2.0", Block("\1\0\0"s) + canary) + Image() +
                      End(),
                  Screen() + Loop() + Image() + End(), {{FindingKind::PrivateData, 1}});
    ExpectCleaned(Screen() + Extension('\xF9', Block("\1\2\0\0"s) + canary) + Image() + End(),
                  Screen() + Control() + Image() + End(), {{FindingKind::PrivateData, 1}});
}

TEST(GifPersonalData, WhatFollowsTheEndIsRemoved) {
    ExpectCleaned(Screen() + Image() + End() + Sample(kCanary), Screen() + Image() + End(),
                  {{FindingKind::TrailingData, 1}});
}

TEST(GifPersonalData, AnUnknownBlockOrNoImageIsDamage) {
    ExpectDamaged(Screen() + End());
    ExpectDamaged(Screen() + Image() + "\0"s + End());
    ExpectDamaged(Screen() + Image() + Sample(kCanary) + End());
}

Sample Everything() {
    return Screen() + Extension('\xFE', Block("comment")) + Loop() + Control() + Image() +
           Application("XMP DataXMP", Block(Sample(kCanary))) + Control() + Image() + End();
}

TEST(GifPersonalData, EveryCutIsDamage) {
    ExpectDamagedWhenCut(Everything(), 6, Everything().size());
}

TEST(GifPersonalData, TheRulesAreTrueOfAnyMutation) { CheckMutations(Everything() + "trailing"); }

} // namespace
