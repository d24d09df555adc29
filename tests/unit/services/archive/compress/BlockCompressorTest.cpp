#include "services/archive/compress/BlockCompressor.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <random>

#include "services/archive/compress/AdaptiveDeflate.h"

namespace {

using obarchive::BlockCompressor;
using obarchive::Effort;
using Bytes = std::vector<std::uint8_t>;

// Nothing when it isn't a stream that ends exactly with its bytes.
std::optional<Bytes> Inflate(const Bytes& packed, std::size_t expected) {
    z_stream stream{};
    if (inflateInit2(&stream, -15) != Z_OK) return std::nullopt;
    Bytes data(expected + 1);
    stream.next_in = const_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = data.data();
    stream.avail_out = static_cast<uInt>(data.size());
    const int result = inflate(&stream, Z_FINISH);
    data.resize(stream.total_out);
    const bool whole = result == Z_STREAM_END && stream.avail_in == 0;
    inflateEnd(&stream);
    if (!whole) return std::nullopt;
    return data;
}

Bytes Random(std::size_t size, unsigned symbols, unsigned seed) {
    std::mt19937 random(seed);
    Bytes data(size);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random() % symbols);
    return data;
}

// Words that come again at all distances, so that every length and distance code appears.
Bytes Text(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    const Bytes pool = Random(60'000, 40, seed + 1);
    Bytes data;
    while (data.size() < size) {
        const std::size_t length = 3 + random() % 300;
        const std::size_t start = random() % (pool.size() - length);
        data.insert(data.end(), pool.begin() + static_cast<std::ptrdiff_t>(start),
                    pool.begin() + static_cast<std::ptrdiff_t>(start + length));
    }
    data.resize(size);
    return data;
}

// A table of characters: a counter, and fields that take few values.
Bytes Table(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes data;
    for (unsigned row = 0; data.size() < size; ++row) {
        char line[64];
        const int count =
            std::snprintf(line, sizeof line, "%05X;%u;%s;%u\n", row, unsigned(random() % 50),
                          random() % 3 ? "Lu" : "Ll", unsigned(random() % 1000));
        data.insert(data.end(), line, line + count);
    }
    data.resize(size);
    return data;
}

// Pieces that are compressed on their own, as by several threads, join into one stream.
TEST(BlockCompressorTest, PiecesJoinIntoOneStream) {
    BlockCompressor compressor;
    for (const Effort effort : {Effort::Glance, Effort::Normal, Effort::Thorough}) {
        for (const std::size_t piece : {1U, 7U, 1000U, 65'536U, 300'001U}) {
            const std::size_t size = std::min<std::size_t>(piece * 40, 900'000);
            for (const Bytes& data : {Text(size, 11), Random(size, 256, 12), Bytes(size, 'z')}) {
                Bytes joined;
                for (std::size_t at = 0; at < data.size(); at += piece) {
                    const std::size_t count = std::min(piece, data.size() - at);
                    const auto packed = compressor.Compress(std::span(data).subspan(at, count),
                                                            effort, at + count == data.size());
                    ASSERT_NE(packed.Size(), 0U);
                    joined.insert(joined.end(), packed.Bytes().begin(), packed.Bytes().end());
                }
                const auto back = Inflate(joined, data.size());
                ASSERT_TRUE(back) << piece;
                EXPECT_TRUE(*back == data) << piece;
            }
        }
    }
}

TEST(BlockCompressorTest, DataThatDoesNotShrinkIsKnownByItsSamples) {
    BlockCompressor compressor;
    EXPECT_TRUE(DoesShrink(Text(500'000, 1), compressor));
    EXPECT_FALSE(DoesShrink(Random(500'000, 256, 1), compressor));
    Bytes head = Random(300'000, 256, 2); // a head that doesn't shrink in front of a body that does
    const Bytes body = Text(700'000, 3);
    head.insert(head.end(), body.begin(), body.end());
    EXPECT_TRUE(DoesShrink(head, compressor));
}

// Noise of which a part of each kilobyte is zeros: that part is the gain.
Bytes NoiseWithGain(std::size_t size, unsigned promille) {
    constexpr std::size_t kStretch = 8192;
    Bytes data = Random(size, 256, 4);
    for (std::size_t at = 0; at + kStretch <= size; at += kStretch) {
        std::fill_n(data.begin() + static_cast<std::ptrdiff_t>(at), kStretch * promille / 1000,
                    std::uint8_t{0});
    }
    return data;
}

TEST(BlockCompressorTest, AGainOfOnePartInSixtyFourIsTheLeastThatCounts) {
    BlockCompressor compressor;
    EXPECT_FALSE(DoesShrink(NoiseWithGain(2'000'000, 10), compressor));
    EXPECT_TRUE(DoesShrink(NoiseWithGain(2'000'000, 30), compressor));
}

std::size_t SizeBy(BlockCompressor& compressor, const Bytes& data, Effort effort) {
    return compressor.Compress(data, effort, true).Size();
}

// A table gains much by thorough work, so it gets it.
TEST(BlockCompressorTest, ALongTableIsCompressedThoroughly) {
    BlockCompressor compressor;
    const Bytes table = Table(1'000'000, 5);
    const std::size_t normal = SizeBy(compressor, table, Effort::Normal);
    const std::size_t thorough = SizeBy(compressor, table, Effort::Thorough);
    ASSERT_LT(thorough, normal - normal / 40);
    EXPECT_TRUE(IsWorthThoroughWork(compressor, table));
    const auto packed = DeflatePiece(compressor, table, true);
    EXPECT_EQ(packed.Size(), thorough);
    const auto again = DeflatePiece(compressor, table, true);
    EXPECT_TRUE(std::ranges::equal(packed.Bytes(), again.Bytes())) << "the same bytes each time";
}

// The gain is there, but measuring it would cost as much as the piece itself.
TEST(BlockCompressorTest, AShortTableIsCompressedNormally) {
    BlockCompressor compressor;
    const Bytes table = Table(400'000, 5);
    EXPECT_FALSE(IsWorthThoroughWork(compressor, table));
    EXPECT_EQ(DeflatePiece(compressor, table, true).Size(),
              SizeBy(compressor, table, Effort::Normal));
}

TEST(BlockCompressorTest, WhatGainsLittleByThoroughWorkIsCompressedNormally) {
    BlockCompressor compressor;
    const Bytes digits = Random(1'000'000, 10, 6); // shrinks by its letters, has no long matches
    EXPECT_FALSE(IsWorthThoroughWork(compressor, digits));
    EXPECT_EQ(DeflatePiece(compressor, digits, true).Size(),
              SizeBy(compressor, digits, Effort::Normal));
    EXPECT_FALSE(IsWorthThoroughWork(compressor, Random(1'000'000, 256, 7))) << "noise";
}

} // namespace
