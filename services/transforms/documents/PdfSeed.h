// Random bytes of a PDF's encryption that follow from its content, so that equal files give equal
// results.
#pragma once

#include <string>

#include <qpdf/RandomDataProvider.hh>

#include "services/transforms/personal/Bytes.h"

namespace transforms::documents {

// A keyed hash (MAC) of the content. Without the key nobody can compute it, so the encrypted
// content can't be guessed by comparing results; two contents under one key share no start of a
// cipher.
std::string KeyedDigest(const std::string& key, personal::Bytes content);

// The library's random bytes while this object lives. One at a time, on the thread that writes.
class SeededBytes final : public RandomDataProvider {
public:
    explicit SeededBytes(std::string seed);
    ~SeededBytes() override;
    void provideRandomData(unsigned char* data, std::size_t size) override;

private:
    RandomDataProvider* const before_;
    const std::string seed_;
    std::uint64_t block_ = 0;
    std::string rest_; // of a block that was made
};

} // namespace transforms::documents
