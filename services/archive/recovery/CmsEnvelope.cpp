#include "services/archive/recovery/CmsEnvelope.h"

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/crypto/Secret.h"
#include "services/archive/recovery/DerReader.h"

namespace obarchive {
namespace {

constexpr std::size_t kContentKeySize = 32;
constexpr std::size_t kBlockSize = 16;
constexpr std::size_t kLongestSecret = 512;
using Block = std::array<std::uint8_t, kBlockSize>;

// Object identifiers in DER, without tag and length.
constexpr std::uint8_t kEnvelopedData[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, 0x03};
constexpr std::uint8_t kData[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, 0x01};
constexpr std::uint8_t kRsaEncryption[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x01};
constexpr std::uint8_t kAes256Cbc[] = {0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x01, 0x2A};
constexpr std::uint8_t kVersion0[] = {0};

struct AlgorithmPolicy : ObLib::NullPolicy<BCRYPT_ALG_HANDLE> {
    static void Close(Handle algorithm) noexcept { BCryptCloseAlgorithmProvider(algorithm, 0); }
};
using UniqueAlgorithm = ObLib::UniqueResource<AlgorithmPolicy>;

struct KeyPolicy : ObLib::NullPolicy<BCRYPT_KEY_HANDLE> {
    static void Close(Handle key) noexcept { BCryptDestroyKey(key); }
};
using UniqueKey = ObLib::UniqueResource<KeyPolicy>;

using ContentKey = WipedBuffer<std::uint8_t, kContentKeySize>;

bool Draw(std::uint8_t* bytes, std::size_t size) {
    return BCryptGenRandom(nullptr, bytes, static_cast<ULONG>(size),
                           BCRYPT_USE_SYSTEM_PREFERRED_RNG) == 0;
}

UniqueKey CbcKey(const UniqueAlgorithm& aes, ContentKey& contentKey) {
    UniqueKey key;
    const auto mode = reinterpret_cast<PUCHAR>(const_cast<wchar_t*>(BCRYPT_CHAIN_MODE_CBC));
    if (BCryptSetProperty(aes.Get(), BCRYPT_CHAINING_MODE, mode, sizeof BCRYPT_CHAIN_MODE_CBC, 0) !=
            0 ||
        BCryptGenerateSymmetricKey(aes.Get(), key.Put(), nullptr, 0, contentKey.data,
                                   sizeof contentKey.data, 0) != 0) {
        return {};
    }
    return key;
}

// The padding to whole blocks also hides the secret's exact length.
std::optional<DerBytes> EncryptedContent(std::string_view secret, ContentKey& contentKey,
                                         Block initial) {
    UniqueAlgorithm aes;
    if (BCryptOpenAlgorithmProvider(aes.Put(), BCRYPT_AES_ALGORITHM, nullptr, 0) != 0) return {};
    const UniqueKey key = CbcKey(aes, contentKey);
    if (!key || secret.size() > kLongestSecret) return std::nullopt;
    WipedBuffer<std::uint8_t, kLongestSecret> plain;
    std::copy(secret.begin(), secret.end(), plain.data);
    DerBytes sealed(secret.size() + kBlockSize);
    ULONG written = 0;
    if (BCryptEncrypt(key.Get(), plain.data, static_cast<ULONG>(secret.size()), nullptr,
                      initial.data(), kBlockSize, sealed.data(), static_cast<ULONG>(sealed.size()),
                      &written, BCRYPT_BLOCK_PADDING) != 0) {
        return std::nullopt;
    }
    sealed.resize(written);
    return sealed;
}

std::optional<DerBytes> EncryptedKey(PCCERT_CONTEXT certificate, ContentKey& contentKey) {
    UniqueKey rsa;
    if (!CryptImportPublicKeyInfoEx2(X509_ASN_ENCODING,
                                     &certificate->pCertInfo->SubjectPublicKeyInfo, 0, nullptr,
                                     rsa.Put())) {
        return std::nullopt;
    }
    const auto encrypt = [&](PUCHAR out, ULONG capacity, ULONG* written) {
        return BCryptEncrypt(rsa.Get(), contentKey.data, sizeof contentKey.data, nullptr, nullptr,
                             0, out, capacity, written, BCRYPT_PAD_PKCS1) == 0;
    };
    ULONG size = 0;
    if (!encrypt(nullptr, 0, &size)) return std::nullopt;
    DerBytes sealed(size);
    if (!encrypt(sealed.data(), size, &size)) return std::nullopt;
    sealed.resize(size);
    return sealed;
}

DerBytes AlgorithmId(std::span<const std::uint8_t> id, const DerBytes& parameters) {
    return Der(DerTag::Sequence, {Der(DerTag::ObjectId, id), parameters});
}

// Issuer and serial number, by which the holder's tool finds the certificate. The number is copied
// from the certificate: the system's decoded form doesn't show on every system whether a zero byte
// came before a first byte with its top bit set, and without that byte the number is another one.
std::optional<DerBytes> NameOf(PCCERT_CONTEXT certificate) {
    const CERT_NAME_BLOB& issuer = certificate->pCertInfo->Issuer;
    const auto serial = SerialNumberOf({certificate->pbCertEncoded, certificate->cbCertEncoded});
    if (!serial) return std::nullopt;
    return Der(DerTag::Sequence, {DerBytes(issuer.pbData, issuer.pbData + issuer.cbData),
                                  DerBytes(serial->whole.begin(), serial->whole.end())});
}

DerBytes Recipient(const DerBytes& name, const DerBytes& encryptedKey) {
    return Der(DerTag::Sequence, {Der(DerTag::Integer, kVersion0), name,
                                  AlgorithmId(kRsaEncryption, Der(DerTag::Null, {})),
                                  Der(DerTag::OctetString, encryptedKey)});
}

DerBytes Message(const DerBytes& recipient, const Block& initial, const DerBytes& content) {
    const DerBytes encrypted =
        Der(DerTag::Sequence, {Der(DerTag::ObjectId, kData),
                               AlgorithmId(kAes256Cbc, Der(DerTag::OctetString, initial)),
                               Der(DerTag::ImplicitPrimitive0, content)});
    const DerBytes enveloped = Der(DerTag::Sequence, {Der(DerTag::Integer, kVersion0),
                                                      Der(DerTag::Set, {recipient}), encrypted});
    return Der(DerTag::Sequence,
               {Der(DerTag::ObjectId, kEnvelopedData), Der(DerTag::Explicit0, {enveloped})});
}

} // namespace

std::optional<DerBytes> SealForCertificate(PCCERT_CONTEXT certificate, std::string_view secret) {
    ContentKey contentKey;
    Block initial;
    if (!Draw(contentKey.data, sizeof contentKey.data)) return std::nullopt;
    if (!Draw(initial.data(), initial.size())) return std::nullopt;
    const auto content = EncryptedContent(secret, contentKey, initial);
    const auto key = EncryptedKey(certificate, contentKey);
    const auto name = NameOf(certificate);
    if (!content || !key || !name) return std::nullopt;
    return Message(Recipient(*name, *key), initial, *content);
}

} // namespace obarchive
