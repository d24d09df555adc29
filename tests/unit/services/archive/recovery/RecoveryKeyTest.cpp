#include "services/archive/recovery/RecoveryKey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string>

#include "services/archive/recovery/CmsEnvelope.h"
#include "services/archive/recovery/DerReader.h"
#include "services/archive/recovery/RecoveryComment.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/archive/recovery/RecoveryCertificates.h"

namespace {

using namespace obarchive;
using namespace obtest;

constexpr wchar_t kValue[] = L"EntX509Certificate";

class RecoveryKeyTest : public testing::Test {
protected:
    void SetUp() override { ClearProductRegistry(); }
    void TearDown() override { ClearProductRegistry(); }

    static RecoveryKeyResult Read(const std::wstring& certificate) {
        SetMachinePolicy(kValue, certificate);
        char buffer[1024];
        std::memset(buffer, 0x55, sizeof buffer);
        const RecoveryKeyResult result = ReadRecoveryKey(buffer, sizeof buffer);
        const bool usable = result == RecoveryKeyResult::Usable;
        EXPECT_STREQ(buffer, usable ? kRecoveryKeyText : "");
        return result;
    }

    // Sets the test's certificate; the job asks for recovery by it.
    static ZipJob AskingJob() {
        SetMachinePolicy(kValue, kRecoveryCertificate);
        ZipJob job;
        job.encryptionMethod = 8;
        job.password = Secret("secret");
        job.recoveryAsked = true;
        job.recoveryKey = std::wstring(kRecoveryKeyText, kRecoveryKeyText + 71);
        return job;
    }
};

// The Base64 between the first and the last line, as one line.
std::wstring Bare(const std::wstring& pem) {
    std::wstring text;
    const std::size_t start = pem.find(L'\n');
    const std::size_t end = pem.find(L"-----END");
    for (const wchar_t unit : pem.substr(start, end - start)) {
        if (unit != L'\n') text += unit;
    }
    return text;
}

TEST_F(RecoveryKeyTest, ACertificateIsReadAsPemAndAsBareBase64) {
    const std::wstring pem = kRecoveryCertificate;
    EXPECT_EQ(Read(pem), RecoveryKeyResult::Usable);
    EXPECT_EQ(Read(Bare(pem)), RecoveryKeyResult::Usable);
    std::wstring windowsLines;
    for (const wchar_t unit : pem) windowsLines += unit == L'\n' ? L"\r\n" : std::wstring(1, unit);
    EXPECT_EQ(Read(windowsLines), RecoveryKeyResult::Usable);
}

TEST_F(RecoveryKeyTest, EachReasonWhyOneCannotBeUsedHasItsCode) {
    EXPECT_EQ(Read(L""), RecoveryKeyResult::Absent);
    EXPECT_EQ(Read(L"x"), RecoveryKeyResult::Damaged);
    EXPECT_EQ(Read(L"MIIB"), RecoveryKeyResult::Damaged);
    EXPECT_EQ(Read(Bare(kRecoveryCertificate).substr(8)), RecoveryKeyResult::Damaged);
    EXPECT_EQ(Read(kExpiredCertificate), RecoveryKeyResult::OutOfDate);
    EXPECT_EQ(Read(kFutureCertificate), RecoveryKeyResult::OutOfDate);
    EXPECT_EQ(Read(kCurveCertificate), RecoveryKeyResult::Unsuitable);
    EXPECT_EQ(Read(kWeakCertificate), RecoveryKeyResult::Unsuitable);
    EXPECT_EQ(Read(kSigningCertificate), RecoveryKeyResult::Unsuitable);
}

TEST_F(RecoveryKeyTest, TheMessageHasTheCertificatesSerialNumberAlsoWithItsTopBitSet) {
    SetMachinePolicy(kValue, kTopBitCertificate);
    UniqueCertificate certificate;
    ASSERT_EQ(LoadRecoveryCertificate(certificate), RecoveryKeyResult::Usable);
    const auto message = SealForCertificate(certificate.Get(), "secret");
    ASSERT_TRUE(message);
    // A positive number: without the zero it would be a negative one.
    const DerBytes serial{2, 9, 0, 0x9A, 0xB1, 0xC2, 0xD3, 0xE4, 0xF5, 0x06, 0x17};
    EXPECT_NE(std::search(message->begin(), message->end(), serial.begin(), serial.end()),
              message->end());
}

TEST_F(RecoveryKeyTest, ASerialNumberIsReadOnlyFromWholeCertificates) {
    const DerBytes version = Der(DerTag::Explicit0, {Der(DerTag::Integer, DerBytes{2})});
    const DerBytes serial = Der(DerTag::Integer, DerBytes{0x80});
    const auto certificate = [](std::initializer_list<DerBytes> members) {
        return Der(DerTag::Sequence, {Der(DerTag::Sequence, members)});
    };
    for (const DerBytes& whole : {certificate({version, serial}), certificate({serial})}) {
        const auto read = SerialNumberOf(whole);
        ASSERT_TRUE(read);
        EXPECT_EQ(DerBytes(read->whole.begin(), read->whole.end()), serial);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_FALSE(SerialNumberOf(std::span(whole).first(size))) << size;
        }
    }
    EXPECT_FALSE(SerialNumberOf(certificate({version})));
    EXPECT_FALSE(SerialNumberOf(certificate({version, version})));
    EXPECT_FALSE(SerialNumberOf(serial));
    EXPECT_FALSE(FirstDerValue(DerBytes{0x1F, 1, 0}));          // a tag of two bytes
    EXPECT_FALSE(FirstDerValue(DerBytes{4, 0x80, 0, 0}));       // an indefinite length
    EXPECT_FALSE(FirstDerValue(DerBytes{4, 0x85, 0, 0, 0, 0})); // a length beyond 32 bits
}

TEST_F(RecoveryKeyTest, Only64BitPoliciesCountWhereTheyExist) {
    SetMachinePolicy(kValue, kRecoveryCertificate, 32);
    EXPECT_TRUE(IsRecoverySetUp());
    char buffer[1024];
    EXPECT_EQ(ReadRecoveryKey(buffer, sizeof buffer), RecoveryKeyResult::Usable);
    EXPECT_STREQ(buffer, kRecoveryKeyText);
    EXPECT_EQ(Read(kWeakCertificate), RecoveryKeyResult::Unsuitable);
    EXPECT_EQ(Read(L""), RecoveryKeyResult::Absent);
    EXPECT_FALSE(IsRecoverySetUp());
}

TEST_F(RecoveryKeyTest, NothingIsWrittenPastTheEndOfTheBuffer) {
    SetMachinePolicy(kValue, kRecoveryCertificate);
    char buffer[80];
    for (const std::uint32_t capacity : {1U, 71U, 72U}) {
        std::memset(buffer, 0x55, sizeof buffer);
        const bool fits = capacity == 72;
        EXPECT_EQ(ReadRecoveryKey(buffer, capacity),
                  fits ? RecoveryKeyResult::Usable : RecoveryKeyResult::NoRoom);
        EXPECT_STREQ(buffer, fits ? kRecoveryKeyText : "");
        EXPECT_EQ(buffer[capacity], 0x55);
    }
    EXPECT_EQ(ReadRecoveryKey(buffer, 0), RecoveryKeyResult::NoRoom);
    EXPECT_EQ(ReadRecoveryKey(nullptr, 100), RecoveryKeyResult::NoRoom);
}

TEST_F(RecoveryKeyTest, TheCommentContainsALineForReadersAndTheMessage) {
    ZipJob job = AskingJob();
    ASSERT_TRUE(AddRecovery(job));
    EXPECT_FALSE(job.recoveryAsked);
    EXPECT_EQ(job.comment.rfind("The password of this archive can be recovered", 0), 0U);
    EXPECT_NE(job.comment.find(kRecoveryKeyText), std::string::npos);
    EXPECT_NE(job.comment.find("\r\n-----BEGIN CMS-----\r\nMII"), std::string::npos);
    EXPECT_TRUE(job.comment.ends_with("\r\n-----END CMS-----\r\n"));
    EXPECT_LT(job.comment.size(), 65535U);
    EXPECT_EQ(job.comment.find("secret"), std::string::npos);
    ZipJob second = AskingJob();
    ASSERT_TRUE(AddRecovery(second));
    EXPECT_NE(second.comment, job.comment); // another key each time
}

TEST_F(RecoveryKeyTest, NoCommentIsAddedUnlessRecoveryIsAskedForAndTheZipEncrypted) {
    ZipJob job = AskingJob();
    job.recoveryAsked = false;
    EXPECT_TRUE(AddRecovery(job));
    EXPECT_EQ(job.comment, "");
    ZipJob plain = AskingJob();
    plain.encryptionMethod = 0;
    EXPECT_TRUE(AddRecovery(plain));
    EXPECT_EQ(plain.comment, "");
}

TEST_F(RecoveryKeyTest, ARecoveryThatFailsStaysAskedFor) {
    const auto expectRefused = [](ZipJob job) {
        EXPECT_FALSE(AddRecovery(job));
        EXPECT_TRUE(job.recoveryAsked);
        EXPECT_EQ(job.comment, "");
    };
    ZipJob job = AskingJob();
    job.recoveryKey.clear(); // SetPublicKeyResult alone
    expectRefused(job);
    job = AskingJob();
    job.recoveryKey.back() ^= 1;
    expectRefused(job);
    job = AskingJob();
    job.password = Secret();
    expectRefused(job);
    // The policy has changed since the key was read.
    job = AskingJob();
    SetMachinePolicy(kValue, kWeakCertificate);
    expectRefused(job);
    SetMachinePolicy(kValue, L"");
    expectRefused(job);
}

TEST_F(RecoveryKeyTest, LengthsAreWrittenInTheirShortestForm) {
    const auto header = [](std::size_t size) {
        DerBytes der = Der(DerTag::OctetString, DerBytes(size, 7));
        der.resize(der.size() - size);
        return der;
    };
    EXPECT_EQ(header(0), (DerBytes{4, 0}));
    EXPECT_EQ(header(127), (DerBytes{4, 127}));
    EXPECT_EQ(header(128), (DerBytes{4, 0x81, 128}));
    EXPECT_EQ(header(255), (DerBytes{4, 0x81, 255}));
    EXPECT_EQ(header(256), (DerBytes{4, 0x82, 1, 0}));
    EXPECT_EQ(header(70000), (DerBytes{4, 0x83, 1, 0x11, 0x70}));
}

} // namespace
