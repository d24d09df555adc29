#include "services/transforms/documents/PdfSeed.h"

#include <algorithm>
#include <cstdint>

#include <qpdf/QPDFCryptoImpl.hh>
#include <qpdf/QPDFCryptoProvider.hh>
#include <qpdf/QUtil.hh>

namespace transforms::documents {
namespace {

constexpr int kBits = 256;

const unsigned char* Raw(const void* bytes) { return static_cast<const unsigned char*>(bytes); }

// SHA-256 of the key and, after it, the content.
std::string Digest(const std::string& key, const void* content, std::size_t size) {
    const auto hash = QPDFCryptoProvider::getImpl();
    hash->SHA2_init(kBits);
    hash->SHA2_update(Raw(key.data()), key.size());
    hash->SHA2_update(Raw(content), size);
    hash->SHA2_finalize();
    return hash->SHA2_digest();
}

} // namespace

// A MAC of two nested hashes: the outer one prevents length extension of the inner one. The key is
// hashed first, so that its length is fixed and no key can end with the beginning of a content.
std::string KeyedDigest(const std::string& key, personal::Bytes content) {
    const std::string inner = Digest(Digest(key, nullptr, 0), content.data(), content.size());
    return Digest(Digest(key, "outer", 5), inner.data(), inner.size());
}

SeededBytes::SeededBytes(std::string seed)
    : before_(QUtil::getRandomDataProvider()), seed_(std::move(seed)) {
    QUtil::setRandomDataProvider(this);
}

SeededBytes::~SeededBytes() { QUtil::setRandomDataProvider(before_); }

void SeededBytes::provideRandomData(unsigned char* data, std::size_t size) {
    while (size > 0) {
        if (rest_.empty()) {
            rest_ = Digest(seed_, &block_, sizeof block_);
            ++block_;
        }
        const std::size_t taken = std::min(size, rest_.size());
        data = std::copy_n(rest_.data(), taken, data);
        rest_.erase(0, taken);
        size -= taken;
    }
}

} // namespace transforms::documents
