#include <windows.h>

#include <bcrypt.h>
#include <gtest/gtest.h>

#include "services/archive/crypto/Ae2Algorithms.h"
#include "services/archive/zip/ZipRun.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/archive/zip/ZipReader.h"

namespace {

using obarchive::RunZip;
using obarchive::ZipJob;
using obarchive::ZipResult;

constexpr char kPassword[] = "p\xC3\xA4ss w\xC3\xB6rd";
using FakeDerive = obtest::ImportPatch<decltype(&BCryptDeriveKeyPBKDF2)>;

const FakeDerive* derive = nullptr;
LONG derived = 0;

NTSTATUS WINAPI CountingDerive(BCRYPT_ALG_HANDLE algorithm, UCHAR* password, ULONG passwordSize,
                               UCHAR* salt, ULONG saltSize, ULONGLONG iterations, UCHAR* key,
                               ULONG keySize, ULONG flags) {
    InterlockedIncrement(&derived);
    return derive->Real()(algorithm, password, passwordSize, salt, saltSize, iterations, key,
                          keySize, flags);
}

class ZipCryptographyTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }
    void TearDown() override { obtest::ClearProductRegistry(); }

    // How often the system derived a key while three files were zipped, which the reader of another
    // maker then opens.
    LONG SystemsKeys(const std::wstring& name, std::uint32_t method) {
        ZipJob job;
        job.target = out_ / name;
        job.encryptionMethod = method;
        job.password = obarchive::Secret(kPassword);
        const std::string contents[] = {"", "short", std::string(5'000'000, 'x') + "end"};
        for (const std::string& content : contents) {
            job.files.push_back(in_.File(std::to_wstring(content.size()), content));
        }
        derived = 0;
        EXPECT_EQ(RunZip(job, {}), ZipResult::Ok);
        const LONG during = derived;
        const auto entries = obtest::ReadZip(job.target, kPassword);
        EXPECT_TRUE(entries && entries->size() == 3);
        for (std::size_t at = 0; entries && at < entries->size(); ++at) {
            EXPECT_TRUE((*entries)[at].content == contents[at]) << at;
        }
        EXPECT_FALSE(obtest::ReadZip(job.target, "wrong"));
        return during;
    }

    obtest::TestFolder in_;
    obtest::TestFolder out_;
};

TEST_F(ZipCryptographyTest, IsTheSystemsWhereApprovedAlgorithmsAreAskedFor) {
    const FakeDerive counting("bcrypt.dll", "BCryptDeriveKeyPBKDF2", &CountingDerive);
    ASSERT_TRUE(counting.Ok());
    derive = &counting;
    obtest::SetMachinePolicy(L"FipsMode", L"1");
    EXPECT_EQ(SystemsKeys(L"system256.zip", 8), 3);
    EXPECT_EQ(SystemsKeys(L"system128.zip", 4), 3);
    obtest::ClearProductRegistry();
    const bool own = obarchive::CryptographyToUse() == obarchive::Cryptography::Library;
    EXPECT_EQ(SystemsKeys(L"own256.zip", 8), own ? 0 : 3);
    EXPECT_EQ(SystemsKeys(L"own128.zip", 4), own ? 0 : 3);
}

} // namespace
