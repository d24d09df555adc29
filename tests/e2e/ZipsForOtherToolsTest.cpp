// Zips that whole requests make, kept in the folder "out" beside the program under their names:
// other tools open them afterwards. check_request_zips.py runs this program, with "certificate.pem"
// beside it, and knows what each zip must contain.
#include "tests/e2e/RealRequest.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

constexpr wchar_t kSources[] = L"C:\\app\\in";
constexpr wchar_t kKept[] = L"C:\\app\\out";
constexpr wchar_t kCertificate[] = L"C:\\app\\certificate.pem";
constexpr wchar_t kPassword[] = L"Gr\u00fcn 5! \u6f22";

class ZipsForOtherTools : public RealRequest {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        AttachEverySize();
        CreateDirectoryW(kKept, nullptr);
    }
    void TearDown() override {
        ClearProductRegistry();
        RealRequest::TearDown();
    }

    static Texts AllSources() {
        Texts paths;
        for (const std::wstring& name : ListTree(kSources))
            paths.push_back(std::wstring(kSources) + L"\\" + name);
        return paths;
    }

    // The zip that the page gets for all sources is copied to `name`.
    void AskAndKeep(const Use& use, const wchar_t* name) {
        PickerUiDriver driver(use);
        const OpenAnswer answer = AskOpen();
        EXPECT_TRUE(driver.Done());
        ASSERT_EQ(answer.result, TRUE);
        ASSERT_EQ(answer.given.size(), 1u);
        const std::wstring kept = std::wstring(kKept) + L"\\" + name;
        EXPECT_TRUE(CopyFileW(answer.given.front().c_str(), kept.c_str(), TRUE))
            << "error " << GetLastError();
    }
};

TEST_F(ZipsForOtherTools, KeepsAZip) { AskAndKeep(Pick(Choice::Zip, AllSources()), L"plain.zip"); }

TEST_F(ZipsForOtherTools, KeepsAZipx) {
    SetUserValue(L"CompressionMethod", L"-1");
    AskAndKeep(Pick(Choice::Zip, AllSources()), L"plain.zipx");
}

TEST_F(ZipsForOtherTools, KeepsAnEncryptedZip) {
    AskAndKeep(PickAndEncrypt(AllSources(), kPassword), L"encrypted.zip");
}

TEST_F(ZipsForOtherTools, KeepsAnEncryptedZipx) {
    SetUserValue(L"CompressionMethod", L"-1");
    AskAndKeep(PickAndEncrypt(AllSources(), kPassword), L"encrypted.zipx");
}

TEST_F(ZipsForOtherTools, KeepsAZipWithDuplicateReferences) {
    SetUserValue(L"DuplicateReferences", L"1");
    AskAndKeep(Pick(Choice::Zip, AllSources()), L"duplicates.zip");
}

TEST_F(ZipsForOtherTools, KeepsAnEncryptedZipWithDuplicateReferences) {
    SetUserValue(L"DuplicateReferences", L"1");
    AskAndKeep(PickAndEncrypt(AllSources(), kPassword), L"encrypted duplicates.zip");
}

TEST_F(ZipsForOtherTools, KeepsAZipWhosePasswordTheAdministratorRecovers) {
    const auto pem = ReadFileContent(kCertificate);
    ASSERT_TRUE(pem);
    SetMachinePolicy(L"EntX509Certificate", std::wstring(pem->begin(), pem->end()));
    AskAndKeep(PickAndEncrypt(AllSources(), kPassword), L"recovery.zip");
}

TEST_F(ZipsForOtherTools, KeepsAZipOfTheDialogPath) {
    PickerUiDriver driver(Pick(Choice::Zip, AllSources()));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    std::wstring zip;
    ASSERT_EQ(GetResult(zip), S_OK);
    EXPECT_TRUE(CopyFileW(zip.c_str(), (std::wstring(kKept) + L"\\dialog.zip").c_str(), TRUE));
}

} // namespace
} // namespace obtest
