#include "services/archive/Ae2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using obarchive::Ae2Algorithms;
using obarchive::Ae2Keys;
using obarchive::Ae2Stream;
using Bytes = std::vector<std::uint8_t>;

class Ae2Test : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(algorithms_.IsThere()); }

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

    Ae2Algorithms algorithms_;
};

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
TEST_F(Ae2Test, KeysAndStreamAreThoseOfTheFormat) {
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

TEST_F(Ae2Test, TheStreamDoesNotDependOnHowItIsCut) {
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

TEST_F(Ae2Test, APieceCanBeEncryptedByItself) {
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

TEST_F(Ae2Test, EverySaltIsNew) {
    const obarchive::Secret password("password");
    const Ae2Keys one = NewAe2Keys(algorithms_, password, 32);
    const Ae2Keys other = NewAe2Keys(algorithms_, password, 32);
    EXPECT_NE(one.salt, other.salt);
    EXPECT_NE(one.derived, other.derived);
}

} // namespace
