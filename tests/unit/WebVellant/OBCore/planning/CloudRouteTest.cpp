// Whether an archive goes to the cloud, by setting and size.
#include "tests/unit/WebVellant/OBCore/planning/PlanningFixture.h"

namespace {

using obcore::SendSettingKind;
using obtest::FakeModules;
using obtest::Lines;
using obtest::TheFakePipeline;

constexpr wchar_t kLinkReport[] = L"type=link|file-send.expiry=no";

// A picked archive takes the route without a zip run before it.
class CloudRoute : public obtest::PlanningFixture {
protected:
    void SetUp() override {
        PlanningFixture::SetUp();
        FakeModules::Answer(L"Providers", L"7");
        FakeModules::Answer(L"GetDefaultStorageProvider", L"7|label|account");
        job_.SendSetting = SendSettingKind::WhenLarger;
    }

    std::wstring ArchiveOf(std::size_t size) {
        return sources_.File(L"picked.zip", std::string(size, 'z'));
    }
    static std::wstring SentSize(const std::wstring& path, const std::wstring& size) {
        return L"RunCloudSend(" + Quote(path) + L", " + size + L", 7, \"account\")";
    }
    void ExpectAttached(const std::wstring& path) {
        FakeModules::ForgetCalls();
        EXPECT_EQ(Process({path}), 1);
        EXPECT_EQ(FakeModules::Calls(), PlainReport());
        EXPECT_EQ(job_.ResultPath, path);
        EXPECT_EQ(picker_.LinkText, L"");
    }
    void ExpectSent(const std::wstring& path, const std::wstring& size) {
        FakeModules::ForgetCalls();
        EXPECT_EQ(Process({path}), 0);
        EXPECT_EQ(FakeModules::CallsOf({L"RunCloudSend"}), Lines{SentSize(path, size)});
        EXPECT_EQ(UsageReports(), Report(kLinkReport));
        EXPECT_EQ(picker_.LinkText, L"link");
    }
};

TEST_F(CloudRoute, NeverSendsWhenSwitchedOff) {
    job_.SendSetting = SendSettingKind::Never;
    job_.MinimumSizeBytes = 0;
    ExpectAttached(ArchiveOf(100));
}

TEST_F(CloudRoute, NeverSendsByAValueThatMeansNothing) {
    job_.SendSetting = static_cast<SendSettingKind>(3);
    job_.MinimumSizeBytes = 0;
    ExpectAttached(ArchiveOf(100));
}

TEST_F(CloudRoute, SendsEveryFileWhenTheOptionIsOn) {
    job_.SendSetting = SendSettingKind::Always;
    ExpectSent(ArchiveOf(3), L"3");
    ExpectSent(ArchiveOf(0), L"0");
}

TEST_F(CloudRoute, SendsWhatIsLargerThanTheThreshold) {
    job_.MinimumSizeBytes = 10;
    ExpectAttached(ArchiveOf(9));
    ExpectAttached(ArchiveOf(10));
    ExpectSent(ArchiveOf(11), L"11");
}

TEST_F(CloudRoute, SendsEveryFileWhenTheThresholdOverflowsToANegativeNumber) {
    job_.MinimumSizeBytes = 0x7FFFFFFF;
    ExpectAttached(ArchiveOf(1));
    job_.MinimumSizeBytes = 0x80000000;
    ExpectSent(ArchiveOf(1), L"1");
    job_.MinimumSizeBytes = 0xFFF00000;
    ExpectSent(ArchiveOf(1), L"1");
}

TEST_F(CloudRoute, CountsSizesBeyond32Bits) {
    const std::wstring path = sources_ / L"large.zip";
    {
        const ObLib::UniqueKernelHandle file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        LARGE_INTEGER size;
        size.QuadPart = 0x100000001;
        ASSERT_TRUE(SetFilePointerEx(file.Get(), size, nullptr, FILE_BEGIN));
        ASSERT_TRUE(SetEndOfFile(file.Get()));
    }
    job_.MinimumSizeBytes = 0x7FFFFFFF;
    ExpectSent(path, L"4294967297");
}

TEST_F(CloudRoute, SendsAPickedArchiveWithoutCopyingIt) {
    job_.MinimumSizeBytes = 10;
    ExpectSent(ArchiveOf(11), L"11");
    EXPECT_TRUE(Left().empty());
}

TEST_F(CloudRoute, CountsAnArchiveThatVanishedAsEmpty) {
    job_.MinimumSizeBytes = 0;
    ExpectAttached(sources_ / L"vanished.zip");
    job_.SendSetting = SendSettingKind::Always;
    ExpectSent(sources_ / L"vanished.zip", L"0");
}

struct OpenCall {
    std::wstring path;
    DWORD access = 0;
    DWORD share = 0;
    DWORD disposition = 0;
} openCall;
decltype(&CreateFileW) realCreateFile = nullptr;
std::wstring watchedPath;

HANDLE WINAPI NotedOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                        DWORD disposition, DWORD flags, HANDLE model) {
    if (std::wstring_view(path).ends_with(watchedPath))
        openCall = {path, access, share, disposition};
    return realCreateFile(path, access, share, security, disposition, flags, model);
}

TEST_F(CloudRoute, AsksForTheSizeWithoutReadingTheFile) {
    obtest::ImportPatch<decltype(&CreateFileW)> open("kernel32.dll", "CreateFileW", &NotedOpen);
    ASSERT_TRUE(open.Ok());
    realCreateFile = open.Real();
    watchedPath = sources_.File(L"watched.zip", "12345678901");
    job_.MinimumSizeBytes = 10;
    ExpectSent(watchedPath, L"11");
    EXPECT_EQ(openCall.path, watchedPath);
    EXPECT_EQ(openCall.access, 8u);
    EXPECT_EQ(openCall.share, static_cast<DWORD>(FILE_SHARE_READ));
    EXPECT_EQ(openCall.disposition, static_cast<DWORD>(OPEN_EXISTING));
}

TEST_F(CloudRoute, KnowsTheSizeOfAnArchiveWithAPathOfMoreThan260Characters) {
    const std::wstring folder = sources_ / std::wstring(240, L'd');
    ASSERT_TRUE(CreateDirectoryW((L"\\\\?\\" + folder).c_str(), nullptr));
    watchedPath = folder + L"\\deep.zip";
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + watchedPath, "12345678901"));
    obtest::ImportPatch<decltype(&CreateFileW)> open("kernel32.dll", "CreateFileW", &NotedOpen);
    ASSERT_TRUE(open.Ok());
    realCreateFile = open.Real();
    job_.MinimumSizeBytes = 10;
    ExpectSent(watchedPath, L"11");
    EXPECT_EQ(openCall.path, L"\\\\?\\" + watchedPath);
}

TEST_F(CloudRoute, SendsTheZipOfARunWhenItsWorkingCopyIsGone) {
    job_.SendSetting = SendSettingKind::Always;
    FakeModules::Answer(L"ZipSize", L"1234");
    Lines leftAtSending;
    TheFakePipeline().send = [&](auto&, std::wstring& linkText) {
        leftAtSending = Left();
        linkText = L"link";
        return true;
    };
    EXPECT_EQ(Process({sources_.File(L"one.txt")}), 0);
    EXPECT_EQ(FakeModules::CallsOf({L"RunCloudSend"}),
              Lines{SentSize(RunFolder(1) + L"one.zip", L"1234")});
    EXPECT_EQ(UsageReports(), Report(L"type=link|file-send.encryption=no|file-send.compression=zip"
                                     L"|file-send.expiry=no"));
    EXPECT_EQ(leftAtSending, (Lines{L"1001\\", L"1001\\one.zip"}));
    EXPECT_EQ(Left(), leftAtSending);
}

TEST_F(CloudRoute, AttachesWithoutAReportWhenLinksAreForbidden) {
    job_.SendSetting = SendSettingKind::Always;
    TheFakePipeline().send = [](auto&, auto&) { return false; };
    EXPECT_EQ(Process({ArchiveOf(1)}), 1);
    EXPECT_EQ(FakeModules::CallsOf({L"RunCloudSend"}).size(), 1u);
    EXPECT_TRUE(UsageReports().empty());
    EXPECT_FALSE(job_.Usage.UsageLink);
    EXPECT_TRUE(job_.ResultIsArchive);
}

TEST_F(CloudRoute, ReportsALinkAlsoWhenTheUserStoppedTheUpload) {
    job_.SendSetting = SendSettingKind::Always;
    TheFakePipeline().send = [](auto&, auto&) { return true; };
    EXPECT_EQ(Process({ArchiveOf(1)}), 0);
    EXPECT_EQ(UsageReports(), Report(kLinkReport));
    EXPECT_TRUE(job_.Usage.UsageLink);
    EXPECT_EQ(picker_.LinkText, L"");
}

} // namespace
