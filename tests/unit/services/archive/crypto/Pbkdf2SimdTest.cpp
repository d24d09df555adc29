// The published test vectors of the key derivation, RFC 6070, on each width of vector that this
// processor has. The one of 16,777,216 iterations is left out: it takes minutes.
#include "services/archive/crypto/Pbkdf2Simd.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using namespace obarchive;
using namespace std::string_literals;

struct Vector {
    std::string password;
    std::string salt;
    std::uint32_t iterations;
    std::size_t size;
    std::string expected; // in hexadecimal digits
};
const Vector kVectors[] = {
    {"password", "salt", 1, 20, "0c60c80f961f0e71f3a9b524af6012062fe037a6"},
    {"password", "salt", 2, 20, "ea6c014dc72d6f8ccd1ed92ace1d41f0d8de8957"},
    {"password", "salt", 4096, 20, "4b007901b765489abead49d926f721d065a429c1"},
    {"passwordPASSWORDpassword", "saltSALTsaltSALTsaltSALTsaltSALTsalt", 4096, 25,
     "3d2eec4fe41c849b80c8d83662c0e44a8b291a964cf2f07038"},
    {"pass\0word"s, "sa\0lt"s, 4096, 16, "56fa6aa75548099dcc37d7f03425e0c3"},
};

// One block of the hash as its words: the bytes, and zeros.
void PutWords(const std::string& bytes, std::uint32_t* words) {
    for (std::size_t at = 0; at < kBlockWords * 4; ++at) {
        const auto byte = at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
        words[at / 4] = words[at / 4] << 8 | byte;
    }
}

// The first message for one block of the result: salt, the block's number and the hash's padding.
void PutBegin(const std::string& salt, unsigned char block, std::uint32_t* words) {
    const std::string message = salt + '\0' + '\0' + '\0' + static_cast<char>(block) + '\x80';
    PutWords(message, words);
    words[kBlockWords - 1] = static_cast<std::uint32_t>((64 + salt.size() + 4) * 8);
}

std::string HexOf(const std::uint32_t* words) {
    char digits[kHashWords * 8 + 1];
    for (std::size_t word = 0; word < kHashWords; ++word) {
        std::snprintf(digits + word * 8, 9, "%08x", static_cast<unsigned>(words[word]));
    }
    return digits;
}

// Every second lane derives the first block of the result, the others the second one.
void ExpectVectors(void (*derive)(Pbkdf2Simd&) noexcept, std::size_t lanes) {
    for (const Vector& vector : kVectors) {
        Pbkdf2Simd work{};
        work.iterations = vector.iterations;
        PutWords(vector.password, work.password);
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            PutBegin(vector.salt, static_cast<unsigned char>(1 + lane % 2), work.begin[lane]);
        }
        derive(work);
        for (std::size_t lane = 0; lane < lanes; lane += 2) {
            const std::string result = HexOf(work.result[lane]) + HexOf(work.result[lane + 1]);
            EXPECT_EQ(result.substr(0, vector.size * 2), vector.expected)
                << vector.iterations << " iterations, lane " << lane;
        }
    }
}

TEST(Pbkdf2SimdTest, FourLanesGiveThePublishedResults) { ExpectVectors(&DeriveFourLanes, 4); }

TEST(Pbkdf2SimdTest, EightLanesGiveThePublishedResults) {
    if (!HasEightLanes()) GTEST_SKIP() << "this processor has no AVX2";
    ExpectVectors(&DeriveEightLanes, 8);
}

TEST(Pbkdf2SimdTest, EightRotatingLanesGiveThePublishedResults) {
    if (!HasEightLanesRotating()) GTEST_SKIP() << "this processor has no AVX-512VL";
    ExpectVectors(&DeriveEightLanesRotating, 8);
}

} // namespace
