#include "services/archive/compress/LastDeflateBlock.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>

#include "services/archive/compress/BlockCompressor.h"

namespace {

using obarchive::BlockCompressor;
using obarchive::Effort;
using obarchive::FindLastDeflateBlock;
using Bytes = std::vector<std::uint8_t>;

// One raw deflate stream by zlib.
Bytes Deflate(const Bytes& data, int level, int strategy, int flushEvery = 0) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, level, Z_DEFLATED, -15, 9, strategy), Z_OK);
    Bytes packed(data.size() * 2 + 4096 + (flushEvery ? data.size() / flushEvery * 64 : 0));
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    std::size_t at = 0;
    while (flushEvery != 0 && data.size() - at > static_cast<std::size_t>(flushEvery)) {
        stream.next_in = const_cast<Bytef*>(data.data() + at);
        stream.avail_in = static_cast<uInt>(flushEvery);
        EXPECT_EQ(deflate(&stream, Z_PARTIAL_FLUSH), Z_OK);
        at += static_cast<std::size_t>(flushEvery);
    }
    stream.next_in = const_cast<Bytef*>(data.data() + at);
    stream.avail_in = static_cast<uInt>(data.size() - at);
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

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

// Clearing the bit that was found must leave a stream that only lacks its end: zlib then wants
// more, and an empty last block at the found end satisfies it.
void ExpectLastBlockIsFound(const Bytes& packed, const Bytes& data) {
    const auto last = FindLastDeflateBlock(packed);
    ASSERT_TRUE(last);
    ASSERT_EQ((last->endBit + 7) / 8, packed.size());
    Bytes open = packed;
    ASSERT_TRUE(open[last->headerBit / 8] >> (last->headerBit % 8) & 1);
    open[last->headerBit / 8] ^= static_cast<std::uint8_t>(1U << (last->headerBit % 8));
    open.resize(static_cast<std::size_t>((last->endBit + 3 + 7) / 8));
    open[last->endBit / 8] |= static_cast<std::uint8_t>(1U << (last->endBit % 8));
    open.insert(open.end(), {0x00, 0x00, 0xFF, 0xFF});
    const auto back = Inflate(open, data.size());
    ASSERT_TRUE(back);
    EXPECT_TRUE(*back == data);
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

constexpr std::size_t kSizes[] = {0,   1,    2,    15,    16,    17,    100,     257,
                                  258, 4095, 8193, 65535, 65536, 65537, 300'000, 1'000'003};

TEST(LastDeflateBlockTest, FindsTheLastBlockOfEveryKind) {
    for (const std::size_t size : kSizes) {
        for (const Bytes& data : {Text(size, 5), Random(size, 256, 6), Bytes(size, 'a')}) {
            ExpectLastBlockIsFound(Deflate(data, 0, Z_DEFAULT_STRATEGY), data); // stored
            ExpectLastBlockIsFound(Deflate(data, 6, Z_FIXED), data);
            ExpectLastBlockIsFound(Deflate(data, 6, Z_DEFAULT_STRATEGY), data);
            ExpectLastBlockIsFound(Deflate(data, 6, Z_HUFFMAN_ONLY), data); // no distances
            ExpectLastBlockIsFound(Deflate(data, 6, Z_RLE), data);          // one distance
        }
    }
}

TEST(LastDeflateBlockTest, PassesManyBlocksOfMixedKinds) {
    const Bytes data = Text(400'000, 7);
    for (const int every : {1000, 4097, 100'000}) {
        ExpectLastBlockIsFound(Deflate(data, 6, Z_DEFAULT_STRATEGY, every), data);
        ExpectLastBlockIsFound(Deflate(data, 6, Z_FIXED, every), data);
        ExpectLastBlockIsFound(Deflate(data, 0, Z_DEFAULT_STRATEGY, every), data);
    }
}

TEST(LastDeflateBlockTest, RandomDataOfEveryAlphabet) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        const Bytes data = Random(seed * 331, 1 + seed % 256, seed);
        ExpectLastBlockIsFound(Deflate(data, 1 + static_cast<int>(seed % 9), Z_DEFAULT_STRATEGY),
                               data);
    }
}

TEST(LastDeflateBlockTest, AStreamThatEndsEarlyIsRefused) {
    const Bytes data = Text(5000, 9);
    for (const int strategy : {Z_DEFAULT_STRATEGY, Z_FIXED}) {
        const Bytes packed = Deflate(data, 6, strategy);
        for (std::size_t size = 0; size < packed.size(); ++size) {
            EXPECT_FALSE(FindLastDeflateBlock(std::span(packed).first(size))) << size;
        }
    }
}

TEST(LastDeflateBlockTest, WhatIsNoStreamIsRefusedOrEndsWithinItsBytes) {
    EXPECT_FALSE(FindLastDeflateBlock(Bytes{0x07}));                      // no such kind of block
    EXPECT_FALSE(FindLastDeflateBlock(Bytes{0x01, 1, 0, 0, 0, 0}));       // sizes disagree
    EXPECT_FALSE(FindLastDeflateBlock(Bytes{0x05, 0xFF, 0xFF, 0xFF, 0})); // codes don't fit
    for (unsigned seed = 0; seed < 20'000; ++seed) {
        const Bytes noise = Random(1 + seed % 600, 256, seed);
        const auto last = FindLastDeflateBlock(noise);
        if (!last) continue;
        EXPECT_LT(last->headerBit, last->endBit);
        EXPECT_LE(last->endBit, noise.size() * 8);
    }
}

// What the walker is for: pieces that are compressed on their own join into one stream.
TEST(BlockCompressorTest, PiecesJoinIntoOneStream) {
    BlockCompressor compressor;
    for (const Effort effort : {Effort::Glance, Effort::Quick, Effort::Thorough}) {
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

} // namespace
