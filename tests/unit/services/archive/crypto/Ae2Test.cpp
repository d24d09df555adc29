#include "services/archive/crypto/Ae2.h"
#include "services/archive/crypto/Ae2Algorithms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <thread>

#include "services/archive/crypto/Pbkdf2Simd.h"

namespace {

using obarchive::Ae2Algorithms;
using obarchive::Ae2KeyMaker;
using obarchive::Ae2Keys;
using obarchive::Ae2Stream;
using obarchive::Cryptography;
using Bytes = std::vector<std::uint8_t>;

class Ae2Test : public testing::TestWithParam<Cryptography> {
protected:
    void SetUp() override { ASSERT_TRUE(made_); }

    Ae2Keys Keys(std::size_t size) {
        Bytes salt(size / 2);
        for (std::size_t at = 0; at < salt.size(); ++at) salt[at] = static_cast<std::uint8_t>(at);
        return DeriveAe2Keys(algorithms_, obarchive::Secret("password"), salt, size);
    }

    static Bytes Plain(std::size_t size) {
        Bytes plain(size);
        for (std::size_t at = 0; at < size; ++at) plain[at] = static_cast<std::uint8_t>(at * 31);
        return plain;
    }

    const std::unique_ptr<Ae2Algorithms> made_ = MakeAe2Algorithms(GetParam());
    const Ae2Algorithms& algorithms_ = *made_;
};

INSTANTIATE_TEST_SUITE_P(EitherMaker, Ae2Test,
                         testing::Values(Cryptography::System, Cryptography::Library),
                         [](const testing::TestParamInfo<Cryptography>& maker) {
                             return maker.param == Cryptography::System ? "System" : "Library";
                         });

std::string Hex(std::span<const std::uint8_t> bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (const std::uint8_t byte : bytes) {
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 15];
    }
    return hex;
}

// Numbers that an independent implementation made.
TEST_P(Ae2Test, KeysAndStreamAreThoseOfTheFormat) {
    Ae2Keys keys = Keys(32);
    EXPECT_EQ(Hex(keys.Head()), "000102030405060708090a0b0c0d0e0f256b");
    Bytes data = Plain(40);
    Ae2Stream stream(algorithms_, keys);
    stream.Encrypt(data);
    EXPECT_EQ(Hex(data),
              "8bcbf406a4aa2d7ab550a2d5cf368a97dd68df84a0525928fc9d85a848306a5396939ac69fcde3f9");
    EXPECT_EQ(Hex(stream.Code()), "4c923b2136d16312dd26");

    keys = Keys(16);
    const auto head = keys.Head();
    EXPECT_EQ(Hex(std::span(head).first(keys.HeadSize())), "0001020304050607b51c");
    data = Plain(40);
    Ae2Stream shorter(algorithms_, keys);
    shorter.Encrypt(data);
    EXPECT_EQ(Hex(data),
              "e731b6fed0cea2f071f20bab8901dded51c1ae4604d466952451ccdd7af66dfbbd2167e07648daa0");
    EXPECT_EQ(Hex(shorter.Code()), "91c274f579493c1c3c88");
}

TEST_P(Ae2Test, TheStreamDoesNotDependOnHowItIsCut) {
    const Ae2Keys keys = Keys(32);
    Bytes whole = Plain(200'003);
    Ae2Stream one(algorithms_, keys);
    one.Encrypt(whole);
    const auto code = one.Code();
    for (const std::size_t cut : {1U, 15U, 16U, 17U, 65'535U, 65'536U, 65'537U, 131'072U}) {
        Bytes pieces = Plain(whole.size());
        Ae2Stream other(algorithms_, keys);
        for (std::size_t at = 0; at < std::min<std::size_t>(pieces.size(), cut * 40); at += cut) {
            other.Encrypt(std::span(pieces).subspan(at, std::min(cut, pieces.size() - at)));
        }
        const std::size_t done = std::min(pieces.size(), (cut * 40 + cut - 1) / cut * cut);
        if (done < pieces.size()) other.Encrypt(std::span(pieces).subspan(done));
        EXPECT_TRUE(pieces == whole) << cut;
        EXPECT_EQ(other.Code(), code) << cut;
    }
}

TEST_P(Ae2Test, APieceCanBeEncryptedByItself) {
    const Ae2Keys keys = Keys(16);
    Bytes whole = Plain(100'000);
    Ae2Stream(algorithms_, keys).Encrypt(whole);
    for (const std::size_t offset : {std::size_t{0}, std::size_t{16}, std::size_t{65'536}}) {
        Bytes piece = Plain(100'000);
        Ae2Stream(algorithms_, keys).CipherFrom(offset, std::span(piece).subspan(offset));
        EXPECT_TRUE(std::equal(piece.begin() + static_cast<std::ptrdiff_t>(offset), piece.end(),
                               whole.begin() + static_cast<std::ptrdiff_t>(offset)));
    }
    Ae2Stream(algorithms_, keys).Decrypt(whole);
    EXPECT_TRUE(whole == Plain(100'000));
}

// More than the makers derive at once, so that some come from those left over.
TEST_P(Ae2Test, EverySaltIsNewAndEveryKeyBelongsToItsSalt) {
    const obarchive::Secret password("password");
    for (const std::size_t size : {std::size_t{16}, std::size_t{32}}) {
        Ae2KeyMaker maker(algorithms_, password, size);
        std::set<Bytes> salts;
        for (int turn = 0; turn < 9; ++turn) {
            const Ae2Keys keys = maker.Make();
            const auto salt = std::span(keys.salt).first(keys.SaltSize());
            EXPECT_TRUE(salts.emplace(salt.begin(), salt.end()).second);
            const Ae2Keys again = DeriveAe2Keys(algorithms_, password, salt, size);
            EXPECT_EQ(again.derived, keys.derived);
        }
    }
}

TEST_P(Ae2Test, KeysCanBeMadeOnSeveralThreads) {
    const obarchive::Secret password("password");
    Ae2KeyMaker maker(algorithms_, password, 32);
    std::vector<Ae2Keys> keys(4 * 25);
    {
        std::vector<std::jthread> threads;
        for (std::size_t thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&, thread] {
                for (std::size_t at = 0; at < 25; ++at) keys[thread * 25 + at] = maker.Make();
            });
        }
    }
    std::set<std::array<std::uint8_t, 16>> salts;
    for (const Ae2Keys& one : keys) {
        EXPECT_TRUE(salts.insert(one.salt).second);
        EXPECT_EQ(DeriveAe2Keys(algorithms_, password, one.salt, 32).derived, one.derived);
    }
}

// Both makers, for passwords on both sides of the hash's block of 64 bytes.
TEST(Ae2Makers, GiveTheSameBytes) {
    const auto system = MakeAe2Algorithms(Cryptography::System);
    const auto library = MakeAe2Algorithms(Cryptography::Library);
    ASSERT_TRUE(system && library);
    for (const std::size_t length : {1U, 8U, 55U, 63U, 64U, 65U, 128U, 200U}) {
        std::string text(length, 'x');
        for (std::size_t at = 0; at < length; ++at) text[at] = static_cast<char>(0xFF - at);
        const obarchive::Secret password(text.c_str());
        for (const std::size_t size : {std::size_t{16}, std::size_t{32}}) {
            Bytes salt(size / 2, static_cast<std::uint8_t>(length));
            const Ae2Keys one = DeriveAe2Keys(*system, password, salt, size);
            const Ae2Keys other = DeriveAe2Keys(*library, password, salt, size);
            EXPECT_EQ(one.derived, other.derived) << length << " " << size;
            Bytes first(70'001, 0x5A), second = first;
            Ae2Stream firstStream(*system, one), secondStream(*library, other);
            firstStream.Encrypt(first);
            secondStream.Encrypt(second);
            EXPECT_TRUE(first == second) << length << " " << size;
            EXPECT_EQ(firstStream.Code(), secondStream.Code());
        }
    }
}

// Whichever this processor would take, each form makes the keys that four SIMD lanes make.
class Pbkdf2Simd : public testing::Test {
protected:
    static obarchive::Pbkdf2Simd Begin() {
        obarchive::Pbkdf2Simd lanes{};
        lanes.iterations = 3;
        for (std::uint32_t word = 0; word < obarchive::kBlockWords; ++word) {
            lanes.password[word] = word * 0x9E3779B9U;
            for (std::uint32_t lane = 0; lane < 8; ++lane) lanes.begin[lane][word] = word << lane;
        }
        return lanes;
    }

    static void ExpectTheSameOf(void (*derive)(obarchive::Pbkdf2Simd&) noexcept) {
        obarchive::Pbkdf2Simd eight = Begin();
        derive(eight);
        for (const std::size_t half : {std::size_t{0}, std::size_t{4}}) {
            obarchive::Pbkdf2Simd four = Begin();
            std::memcpy(four.begin, four.begin[half], 4 * sizeof four.begin[0]);
            DeriveFourLanes(four);
            const bool same =
                std::memcmp(four.result, eight.result[half], 4 * sizeof four.result[0]) == 0;
            EXPECT_TRUE(same) << half;
        }
        EXPECT_NE(std::memcmp(eight.result[0], eight.result[1], sizeof eight.result[0]), 0);
    }
};

TEST_F(Pbkdf2Simd, EightLanesGiveTheKeysOfFour) {
    if (!obarchive::HasEightLanes()) GTEST_SKIP() << "this processor has four lanes only";
    ExpectTheSameOf(&obarchive::DeriveEightLanes);
}

TEST_F(Pbkdf2Simd, EightRotatingLanesGiveTheKeysOfFour) {
    if (!obarchive::HasEightLanesRotating()) GTEST_SKIP() << "this processor has none that rotate";
    ExpectTheSameOf(&obarchive::DeriveEightLanesRotating);
}

} // namespace
