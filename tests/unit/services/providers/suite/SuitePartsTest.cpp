// What the conversion of documents is made of: kinds, settings, limits and results.
#include <windows.h>

#include <gtest/gtest.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/suite/DocumentKind.h"
#include "services/providers/suite/SuiteFolder.h"
#include "services/providers/suite/SuiteProfile.h"
#include "services/providers/suite/SuiteWatch.h"
#include "services/providers/suite/WholePdf.h"
#include "tests/support/Allocations.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"

using namespace providers;

namespace {

constexpr std::string_view kZip = "PK\x03\x04 and more";
constexpr std::string_view kContainer = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1 and more";

class OfficeDocumentKind : public testing::Test {
protected:
    std::optional<OfficeDocument> Of(const std::wstring& name, std::string_view content) const {
        const ObLib::UniqueKernelHandle file(CreateFileW(folder_.File(L"file", content).c_str(),
                                                         GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                         OPEN_EXISTING, 0, nullptr));
        return DocumentOf(file.Get(), name);
    }
    bool Is(const std::wstring& name, std::string_view content) const {
        return Of(name, content).has_value();
    }
    const obtest::TestFolder folder_;
};

TEST_F(OfficeDocumentKind, IsTakenFromTheNameWhenTheFirstBytesFit) {
    for (const wchar_t* name : {L"a.docx", L"a.docm", L"a.doc", L"a.odt", L"a.DOCX"}) {
        ASSERT_TRUE(Is(name, kZip)) << name;
        EXPECT_EQ(Of(name, kZip)->kind, DocumentKind::Text) << name;
    }
    for (const wchar_t* name : {L"a.xlsx", L"a.xlsm", L"a.xls", L"a.ods"}) {
        ASSERT_TRUE(Is(name, kZip)) << name;
        EXPECT_EQ(Of(name, kZip)->kind, DocumentKind::Table) << name;
    }
    for (const wchar_t* name : {L"a.pptx", L"a.pptm", L"a.ppt", L"a.odp"}) {
        ASSERT_TRUE(Is(name, kZip)) << name;
        EXPECT_EQ(Of(name, kZip)->kind, DocumentKind::Slides) << name;
    }
    EXPECT_TRUE(Is(L"a.doc", kContainer));
    EXPECT_TRUE(Is(L"a.doc", "{\\rtf1 text}"));
    EXPECT_TRUE(Is(L"a.rtf", "{\\rtf1 text}"));
    EXPECT_TRUE(Is(L"a.docx", kContainer)); // one with a password
}

TEST_F(OfficeDocumentKind, IsNoneForOtherNamesAndOtherBytes) {
    for (const wchar_t* name : {L"a.zip", L"a.txt", L"a.csv", L"a.pdf", L"docx", L"a.docx.zip"}) {
        EXPECT_FALSE(Is(name, kZip)) << name;
    }
    EXPECT_FALSE(Is(L"a.docx", "plain text"));
    EXPECT_FALSE(Is(L"a.docx", ""));
    EXPECT_FALSE(Is(L"a.docx", "PK"));
    EXPECT_FALSE(Is(L"a.docx", "{\\rtf1 text}"));
    EXPECT_FALSE(Is(L"a.odt", kContainer));
    EXPECT_FALSE(Is(L"a.rtf", kZip));
}

bool ProfileHas(const char* path, const char* name, const char* value) {
    const std::string item = std::string("<item oor:path=\"/org.openoffice.") + path +
                             "\"><prop oor:name=\"" + name + "\" oor:op=\"fuse\"><value>" + value +
                             "</value></prop></item>";
    return SuiteProfile().find(item) != std::string::npos;
}

TEST(SuiteProfileText, ForbidsMacrosAndLinks) {
    EXPECT_TRUE(ProfileHas("Office.Common/Security/Scripting", "DisableMacrosExecution", "true"));
    EXPECT_TRUE(ProfileHas("Office.Common/Security/Scripting", "MacroSecurityLevel", "3"));
    EXPECT_TRUE(
        ProfileHas("Office.Common/Security/Scripting", "BlockUntrustedRefererLinks", "true"));
    EXPECT_TRUE(ProfileHas("Office.Writer/Content/Update", "Link", "0"));
    EXPECT_TRUE(ProfileHas("Office.Calc/Content/Update", "Link", "1"));
}

TEST(SuiteProfileText, IsOfNoEarlierVersion) {
    EXPECT_TRUE(ProfileHas("Setup/Product", "ooSetupLastVersion", "9999.0"));
}

TEST(SuiteProfileUrl, EncodesWhateverIsNoPlainSign) {
    EXPECT_EQ(FileUrl(L"C:\\Users\\Ann\\~suite1"), "file:///C:/Users/Ann/~suite1");
    EXPECT_EQ(FileUrl(L"C:\\J\u00FCrgen & 100%\\#1"), "file:///C:/J%C3%BCrgen%20%26%20100%25/%231");
    EXPECT_EQ(FileUrl(L"\\\\server\\share\\a b"), "file://server/share/a%20b");
}

constexpr std::uint64_t kSecond = 10'000'000; // of a processor

TEST(SuiteWatchTest, EndsASuiteThatUsesNoProcessor) {
    SuiteWatch watch({1000, 100000}, 5000);
    EXPECT_FALSE(watch.IsHung(0, 5999));
    EXPECT_TRUE(watch.IsHung(0, 6000));
}

TEST(SuiteWatchTest, CountsTimersOfAWaitingSuiteAsNoWork) {
    SuiteWatch watch({1000, 100000}, 0);
    EXPECT_FALSE(watch.IsHung(kSecond / 2, 900));
    EXPECT_TRUE(watch.IsHung(kSecond - 1, 1000));
}

TEST(SuiteWatchTest, LetsASuiteWorkUpToTheLimitOfADocument) {
    SuiteWatch watch({1000, 10000}, 0);
    for (std::uint64_t now = 900; now < 10000; now += 900) {
        EXPECT_FALSE(watch.IsHung(now * kSecond, now)) << now;
    }
    EXPECT_TRUE(watch.IsHung(10000 * kSecond, 10000));
}

TEST(SuiteWatchTest, WaitsThreeMinutesForWorkAndFifteenForADocument) {
    constexpr std::uint64_t kMinute = 60000;
    SuiteWatch silent({}, 0);
    EXPECT_FALSE(silent.IsHung(0, 3 * kMinute - 1));
    EXPECT_TRUE(silent.IsHung(0, 3 * kMinute));
    SuiteWatch working({}, 0);
    for (std::uint64_t now = kMinute; now < 15 * kMinute; now += kMinute) {
        EXPECT_FALSE(working.IsHung(now * kSecond, now)) << now;
    }
    EXPECT_FALSE(working.IsHung(15 * kMinute * kSecond, 15 * kMinute - 1));
    EXPECT_TRUE(working.IsHung(16 * kMinute * kSecond, 15 * kMinute));
}

class WholePdfTest : public testing::Test {
protected:
    TakenPdf Take(std::string_view content) {
        target_.Reset(CreateFileW((folder_ / L"target").c_str(), GENERIC_READ | GENERIC_WRITE,
                                  FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
        const auto made = OpenWholePdf(folder_.File(L"made.pdf", content));
        return made ? TakePdf(made.Get(), target_.Get(), wait_) : TakenPdf::NotWhole;
    }
    const obtest::TestFolder folder_;
    const ObLib::UniqueKernelHandle ended_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    CallWait wait_{ended_.Get(), nullptr};
    ObLib::UniqueKernelHandle target_;
};

TEST_F(WholePdfTest, IsCopiedIntoTheTarget) {
    const std::string content = "%PDF-1.6\n" + std::string(1'000'000, 'x') + "\n%%EOF\r\n";
    EXPECT_EQ(Take(content), TakenPdf::Taken);
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"target"), content);
}

TEST_F(WholePdfTest, HasABeginningAndAnEnd) {
    EXPECT_EQ(Take(""), TakenPdf::NotWhole);
    EXPECT_EQ(Take("%PDF-"), TakenPdf::NotWhole);
    EXPECT_EQ(Take("%PDF-1.6\ncut"), TakenPdf::NotWhole);
    EXPECT_EQ(Take("text %PDF-1.6\n%%EOF"), TakenPdf::NotWhole);
    EXPECT_EQ(Take("%PDF-1.6\n%%EOF" + std::string(2000, ' ')), TakenPdf::NotWhole);
    EXPECT_FALSE(OpenWholePdf(folder_ / L"missing.pdf"));
}

TEST_F(WholePdfTest, IsNotCopiedOnceTheCallIsToEnd) {
    SetEvent(ended_.Get());
    EXPECT_EQ(Take("%PDF-1.6\n" + std::string(1'000'000, 'x') + "\n%%EOF\r\n"), TakenPdf::Ended);
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"target"), "");
}

TEST_F(WholePdfTest, ReportsATargetThatCannotBeWritten) {
    ASSERT_EQ(Take("%PDF-1.6\n%%EOF"), TakenPdf::Taken);
    const ObLib::UniqueKernelHandle reading(CreateFileW(
        folder_.File(L"other").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    const auto made = OpenWholePdf(folder_ / L"made.pdf");
    ASSERT_TRUE(made);
    EXPECT_EQ(TakePdf(made.Get(), reading.Get(), wait_), TakenPdf::Unwritable);
}

// Refuses a read-only folder, as Windows does and Wine doesn't.
decltype(&RemoveDirectoryW) g_removeDirectory = nullptr;
BOOL WINAPI RemoveWritableDirectory(const wchar_t* path) {
    const DWORD attributes = GetFileAttributesW(path);
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY))
        return g_removeDirectory(path);
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

TEST(SuiteFolderTest, IsDeletedWithReadOnlyFilesAndFolders) {
    const obtest::ImportPatch patch("kernel32.dll", "RemoveDirectoryW", &RemoveWritableDirectory);
    ASSERT_TRUE(patch.Ok());
    g_removeDirectory = patch.Real();
    const obtest::TestFolder place;
    {
        const auto folder = SuiteFolder::MakeFor(place.Path());
        ASSERT_TRUE(folder && folder->MakeFolder(L"deep") && folder->MakeFile(L"deep\\file"));
        for (const wchar_t* name : {L"deep\\file", L"deep"})
            ASSERT_TRUE(SetFileAttributesW((*folder / name).c_str(), FILE_ATTRIBUTE_READONLY));
    }
    EXPECT_EQ(obtest::ListTree(place.Path()), std::vector<std::wstring>());
}

TEST(SuiteFolderTest, DoesNotStayWhenTheMemoryRunsOut) {
    const obtest::TestFolder place;
    const std::wstring path = place.Path();
    const std::size_t failed = obtest::FailEachAllocation(
        [&] { EXPECT_TRUE(SuiteFolder::MakeFor(path)); },
        [&] { EXPECT_EQ(obtest::ListTree(path), std::vector<std::wstring>()); });
    EXPECT_GT(failed, 3u);
}

// Each allocation of the deletion fails once.
TEST(SuiteFolderTest, IsDeletedOnceThereIsMemoryAgain) {
    bool hasFailed = true;
    for (std::size_t at = 0; hasFailed; ++at) {
        const obtest::TestFolder place;
        const std::wstring path = place.Path();
        auto folder = SuiteFolder::MakeFor(path);
        ASSERT_TRUE(folder && folder->MakeFolder(L"profile"));
        ASSERT_TRUE(folder->MakeFile(L"profile\\document"));
        {
            const obtest::FailingAllocations failing({.succeeding = at, .once = true});
            folder.reset();
            hasFailed = failing.Failed();
        }
        EXPECT_EQ(obtest::ListTree(path), std::vector<std::wstring>()) << at;
        ASSERT_LT(at, 50u);
        if (at == 0) {
            EXPECT_TRUE(hasFailed);
        }
    }
}

} // namespace
