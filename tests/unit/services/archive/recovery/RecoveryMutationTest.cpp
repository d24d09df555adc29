// Damaged certificates in the policy. The system's decoder reads them, so no native fuzzer can:
// here some thousand variants of a valid certificate, the same ones at each run, go through the
// whole path.
#include <windows.h>

#include <wincrypt.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "services/archive/recovery/CmsEnvelope.h"
#include "services/archive/recovery/DerReader.h"
#include "services/archive/recovery/RecoveryKey.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/archive/recovery/RecoveryCertificates.h"

namespace {

using namespace obarchive;
using namespace obtest;

constexpr wchar_t kValue[] = L"EntX509Certificate";
constexpr int kMutations = 4000;

DerBytes Decoded(const std::wstring& pem) {
    DWORD size = 0;
    CryptStringToBinaryW(pem.c_str(), 0, CRYPT_STRING_BASE64HEADER, nullptr, &size, nullptr,
                         nullptr);
    DerBytes bytes(size);
    EXPECT_TRUE(CryptStringToBinaryW(pem.c_str(), 0, CRYPT_STRING_BASE64HEADER, bytes.data(), &size,
                                     nullptr, nullptr));
    return bytes;
}

std::wstring Base64(const DerBytes& bytes) {
    const auto size = static_cast<DWORD>(bytes.size());
    constexpr DWORD kForm = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    DWORD units = 0;
    CryptBinaryToStringW(bytes.data(), size, kForm, nullptr, &units);
    std::wstring text(units, L'\0');
    CryptBinaryToStringW(bytes.data(), size, kForm, text.data(), &units);
    text.resize(units);
    return text;
}

// One change: a bit, a byte, a length that is one off, a piece that is lost, repeated or foreign.
void Mutate(DerBytes& bytes, std::mt19937& random) {
    if (bytes.empty()) return;
    const std::size_t at = random() % bytes.size();
    const std::size_t length = std::min<std::size_t>(1 + random() % 16, bytes.size() - at);
    const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    const DerBytes piece(place, place + static_cast<std::ptrdiff_t>(length));
    switch (random() % 6) {
    case 0:
        *place ^= static_cast<std::uint8_t>(1 << random() % 8);
        break;
    case 1:
        *place = static_cast<std::uint8_t>(random());
        break;
    case 2:
        *place = static_cast<std::uint8_t>(*place + (random() % 2 ? 1 : -1));
        break;
    case 3:
        bytes.erase(place, place + static_cast<std::ptrdiff_t>(length));
        break;
    case 4:
        bytes.insert(place, piece.begin(), piece.end());
        break;
    default:
        bytes.resize(at);
        break;
    }
}

// The bytes of the certificate that identify its key: modulus and exponent.
DerBytes KeyOf(PCCERT_CONTEXT certificate) {
    const CRYPT_BIT_BLOB& key = certificate->pCertInfo->SubjectPublicKeyInfo.PublicKey;
    return {key.pbData, key.pbData + key.cbData};
}

DerBytes AllButLast(DerBytes bytes) {
    if (!bytes.empty()) bytes.pop_back();
    return bytes;
}

bool Contains(const DerBytes& bytes, const DerBytes& part) {
    return std::ranges::search(bytes, part).begin() != bytes.end();
}

class RecoveryMutation : public testing::Test {
protected:
    void SetUp() override { ClearProductRegistry(); }
    void TearDown() override { ClearProductRegistry(); }

    const DerBytes whole_ = Decoded(kRecoveryCertificate);

    // What ReadRecoveryKey returns for the certificate; its buffer is checked.
    static RecoveryKeyResult Read(std::string& text) {
        char buffer[100];
        std::memset(buffer, 0x55, sizeof buffer);
        const RecoveryKeyResult result = ReadRecoveryKey(buffer, sizeof buffer);
        text = buffer;
        return result;
    }

    // The certificate is the policy's own bytes, with the key that those bytes have, and a message
    // for it names its serial number.
    void ExpectUsed(const DerBytes& bytes, const std::string& text, bool sealed) {
        UniqueCertificate certificate;
        ASSERT_EQ(LoadRecoveryCertificate(certificate), RecoveryKeyResult::Usable);
        const DerBytes read(certificate.Get()->pbCertEncoded,
                            certificate.Get()->pbCertEncoded + certificate.Get()->cbCertEncoded);
        EXPECT_TRUE(bytes.size() >= read.size() &&
                    std::equal(read.begin(), read.end(), bytes.begin()));
        EXPECT_EQ(text, KeyText(certificate.Get()));
        EXPECT_EQ(text == kRecoveryKeyText, read == whole_);
        const DerBytes key = KeyOf(certificate.Get());
        // The decoder clears the bits at the end that the bit string has as unused.
        EXPECT_TRUE(Contains(bytes, AllButLast(key)));
        if (Contains(bytes, originalKey_)) {
            EXPECT_EQ(AllButLast(key), AllButLast(originalKey_));
        }
        if (!sealed) return;
        const auto message = SealForCertificate(certificate.Get(), "secret");
        const auto serial = SerialNumberOf(bytes);
        if (!message || !serial) return;
        ++sealed_;
        EXPECT_TRUE(Contains(*message, DerBytes(serial->whole.begin(), serial->whole.end())));
    }

    int sealed_ = 0; // messages whose serial number was compared
    DerBytes originalKey_;
};

TEST_F(RecoveryMutation, OfACertificateIsRefusedWithAReasonOrUsedAsItIs) {
    SetMachinePolicy(kValue, Base64(whole_));
    UniqueCertificate original;
    ASSERT_EQ(LoadRecoveryCertificate(original), RecoveryKeyResult::Usable);
    originalKey_ = KeyOf(original.Get());

    std::mt19937 random(20261122);
    int used = 0;
    int refused = 0;
    for (int number = 0; number < kMutations && !HasFailure(); ++number) {
        DerBytes bytes = whole_;
        const std::uint32_t changes = 1 + random() % 3;
        for (std::uint32_t change = 0; change < changes; ++change) Mutate(bytes, random);
        if (bytes.empty()) continue; // the policy is absent then
        SetMachinePolicy(kValue, Base64(bytes));
        SCOPED_TRACE("mutation " + std::to_string(number));
        std::string text;
        const RecoveryKeyResult result = Read(text);
        if (result == RecoveryKeyResult::Usable) {
            ++used;
            ExpectUsed(bytes, text, used % 16 == 0);
            continue;
        }
        ++refused;
        EXPECT_EQ(text, "");
        EXPECT_TRUE(result == RecoveryKeyResult::Damaged ||
                    result == RecoveryKeyResult::OutOfDate ||
                    result == RecoveryKeyResult::Unsuitable)
            << "result " << static_cast<std::uint32_t>(result);
    }
    EXPECT_GT(used, kMutations / 20);
    EXPECT_GT(refused, kMutations / 20);
    EXPECT_GT(sealed_, 0);
}

} // namespace
