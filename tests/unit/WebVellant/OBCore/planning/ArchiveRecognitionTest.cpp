#include "tests/unit/WebVellant/OBCore/planning/PlanningFixture.h"

namespace {

using obcore::CompressUtils::IsAlreadyArchive;

class ArchiveRecognition : public obtest::RunFixture {
protected:
    void SetUp() override {
        RunFixture::SetUp();
        job_.SendItem = false;
    }
    void ExpectNotRecognised(const std::wstring& path) {
        EXPECT_FALSE(IsAlreadyArchive(job_, path)) << testing::PrintToString(path);
        EXPECT_FALSE(job_.ResultIsArchive);
        EXPECT_FALSE(job_.SendItem);
        EXPECT_EQ(job_.ResultPath, L"");
    }
};

TEST_F(ArchiveRecognition, KnowsFourExtensions) {
    for (const wchar_t* extension : {L".zip", L".zipx", L".rar", L".7z"}) {
        job_.ResultIsArchive = false;
        EXPECT_TRUE(IsAlreadyArchive(job_, std::wstring(L"C:\\folder\\a") + extension));
        EXPECT_TRUE(job_.ResultIsArchive);
    }
}

TEST_F(ArchiveRecognition, MakesThePickedFileTheResult) {
    EXPECT_TRUE(IsAlreadyArchive(job_, L"C:\\some folder\\x.y.zip"));
    EXPECT_TRUE(job_.ResultIsArchive);
    EXPECT_EQ(job_.ResultPath, L"C:\\some folder\\x.y.zip");
    EXPECT_EQ(job_.ResultName, L"x.y.zip");
    EXPECT_EQ(job_.ResultFolder, L"C:\\some folder\\");
    EXPECT_TRUE(job_.SendItem);
    EXPECT_EQ(job_.CleanupFile, L"");
    EXPECT_EQ(job_.CleanupFolder, L"");
}

TEST_F(ArchiveRecognition, ComparesWithCase) {
    for (const wchar_t* name : {L"a.ZIP", L"a.Zip", L"a.ZIPX", L"a.RAR", L"a.7Z"})
        ExpectNotRecognised(std::wstring(L"C:\\") + name);
}

TEST_F(ArchiveRecognition, LooksAtTheWholeExtensionOnly) {
    for (const wchar_t* name : {L"a.zi", L"a.zipxx", L"a.zip.txt", L"a.zip ", L"a.", L"a.7zip",
                                L"zip", L"a zip", L"a.tar", L"a.gz"})
        ExpectNotRecognised(std::wstring(L"C:\\") + name);
}

TEST_F(ArchiveRecognition, StartsAtTheLastPointOfTheWholePath) {
    ExpectNotRecognised(L"C:\\folder.zip\\file");
    ExpectNotRecognised(L"C:\\folder.zip\\file.txt");
    EXPECT_TRUE(IsAlreadyArchive(job_, L"C:\\folder.txt\\.zip"));
    EXPECT_EQ(job_.ResultName, L".zip");
}

TEST_F(ArchiveRecognition, KnowsNoArchiveWithoutAPoint) {
    ExpectNotRecognised(L"C:\\folder\\file");
    ExpectNotRecognised(L"");
}

} // namespace
