// What callers rely on: the same cases for the real archive service and for its fake.
#include <windows.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "tests/contract/archive/LoadedService.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/TestFolder.h"

using namespace obcontract; // the contract's tables name its types bare

namespace {

class ArchiveContract : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(service_.IsComplete()); }

    obtest::LoadedService service_;
};

// The names in the module's export table.
std::set<std::string> ExportedNames(HMODULE module) {
    const auto* base = reinterpret_cast<const std::uint8_t*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& place =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* table =
        reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + place.VirtualAddress);
    const auto* names = reinterpret_cast<const DWORD*>(base + table->AddressOfNames);
    std::set<std::string> exported;
    for (DWORD index = 0; index < table->NumberOfNames; ++index) {
        exported.insert(reinterpret_cast<const char*>(base + names[index]));
    }
    return exported;
}

TEST_F(ArchiveContract, ExportsTheTwentyEightEntriesAndNothingElse) {
    const std::set<std::string> expected = {
#define OB_NAME_ENTRY(name, result, arguments) #name,
        OB_ARCHIVE_SERVICE_ENTRIES(OB_NAME_ENTRY)
#undef OB_NAME_ENTRY
    };
    EXPECT_EQ(expected.size(), 28U);
    EXPECT_EQ(ExportedNames(service_.Module()), expected);
}

TEST_F(ArchiveContract, ContextsAreDifferentAndNeverZero) {
    std::set<obcontract::ZipContext> contexts;
    for (int count = 0; count < 5; ++count) {
        const obcontract::ZipContext context = service_->CreateZipContext();
        EXPECT_NE(context, 0U);
        EXPECT_TRUE(contexts.insert(context).second);
    }
    for (const obcontract::ZipContext context : contexts) service_->DestroyZipContext(context);
}

// The calls of a run in the order in which a run makes them.
void RunPlain(const obtest::LoadedService& service, const std::wstring& target,
              const std::wstring& folder, const std::wstring& source) {
    const obcontract::ZipContext context = service->CreateZipContext();
    service->AddFileW(context, source.c_str());
    service->SetZipNameW(context, target.c_str());
    service->SetTempFolderW(context, (folder + L"\\").c_str());
    service->SetEncrypt(context, 0);
    service->SetCompression(context, 8);
    service->SetDuplicateReferences(context, 0);
    EXPECT_EQ(service->Zip(nullptr, context), 0U);
    service->DestroyZipContext(context);
}

TEST_F(ArchiveContract, AZipExistsAfterASuccess) {
    obtest::TestFolder folder;
    const std::wstring source = folder.File(L"source.txt");
    const std::wstring target = folder / L"result.zip";
    RunPlain(service_, target, folder.Path(), source);
    EXPECT_TRUE(obtest::FileExists(target));
    EXPECT_EQ(obtest::ReadFileContent(source), "content");
    EXPECT_EQ(obtest::ListTree(folder.Path()),
              (std::vector<std::wstring>{L"result.zip", L"source.txt"}));
}

TEST_F(ArchiveContract, AnEncryptedZipExistsAfterASuccess) {
    obtest::TestFolder folder;
    const std::wstring source = folder.File(L"source.txt");
    const std::wstring target = folder / L"result.zipx";
    const obcontract::ZipContext context = service_->CreateZipContext();
    service_->AddFileW(context, source.c_str());
    service_->SetZipNameW(context, target.c_str());
    service_->SetTempFolderW(context, folder.Path().c_str());
    service_->SetEncrypt(context, obcontract::kEncryptionMethodAes256);
    service_->SetPassword(context, "secret");
    service_->SetCompression(context, obcontract::kCompressionZipx);
    service_->SetDuplicateReferences(context, 1);
    EXPECT_EQ(service_->Zip(nullptr, context), 0U);
    service_->DestroyZipContext(context);
    EXPECT_TRUE(obtest::FileExists(target));
}

TEST_F(ArchiveContract, TheDefaultMethodIsOneOfTheAllowed) {
    const std::uint16_t allowed = service_->AllowedEncryptMethods();
    const std::uint16_t method = service_->DefaultEncryptionMethod();
    EXPECT_EQ(
        allowed & ~(obcontract::kEncryptionMethodAes128 | obcontract::kEncryptionMethodAes256), 0);
    EXPECT_TRUE(method == obcontract::kEncryptionMethodAes128 ||
                method == obcontract::kEncryptionMethodAes256);
    EXPECT_EQ(method & allowed, method);
}

TEST_F(ArchiveContract, EncryptionIsNotSwitchedOffByItself) {
    const std::uint32_t answer = service_->TryToShowWarningOrErrorMessage(nullptr, 0, 1);
    EXPECT_NE(answer & 0xFFFF, obcontract::kSwitchEncryptionOff);
}

TEST_F(ArchiveContract, TheFipsSettingIsOneOfThree) {
    EXPECT_LE(service_->GetOmbrixFIPSSetting() & 0xFFFF, 2U);
}

TEST_F(ArchiveContract, ThePublicKeyStaysWithinItsBuffer) {
    char buffer[obcontract::kPublicKeyCapacity + 16];
    std::memset(buffer, 0x55, sizeof buffer);
    const std::uint32_t result =
        service_->GetPublicKeyResult(buffer, obcontract::kPublicKeyCapacity);
    if (result == 1) {
        EXPECT_LT(strnlen(buffer, sizeof buffer), obcontract::kPublicKeyCapacity);
    }
    for (std::size_t at = obcontract::kPublicKeyCapacity; at < sizeof buffer; ++at) {
        EXPECT_EQ(buffer[at], 0x55);
    }
}

TEST_F(ArchiveContract, TheUsualNamesAreAccepted) {
    EXPECT_EQ(service_->ValidateFilespecW(L"Ombrix Compressed Attachments", 2), 0U);
    EXPECT_EQ(service_->ValidateFilespecW(L"zip", 2), 0U);
    EXPECT_EQ(service_->ValidateFilespecW(L"zip", 4), 0U);
}

TEST_F(ArchiveContract, LeavesTheServiceUsableAfterCallsWithoutAResult) {
    const obtest::MessageBoxWatcher boxes; // the entries may say something
    service_->LogLaunch();
    service_->LogAppletFeature(L"Feature", L"details");
    service_->LogExit();
    service_->CheckForUpdates_VB(nullptr, 1);
    service_->WebHelpW(nullptr, L"Help About Topic", L"Help About Topic");
    EXPECT_NE(service_->CreateZipContext(), 0U); // and the service goes on
}

} // namespace
