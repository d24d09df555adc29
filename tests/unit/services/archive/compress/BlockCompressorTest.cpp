#include "services/archive/compress/BlockCompressor.h"

#include <gtest/gtest.h>
#include <zlib.h>

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

// Words of a language, the frequent ones more often, in no order.
Bytes Words(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<Bytes> words;
    for (unsigned word = 0; word < 4000; ++word) {
        words.push_back(Random(2 + random() % 9, 26, random()));
    }
    Bytes data;
    while (data.size() < size) {
        const std::size_t range = std::size_t{1} << (random() % 12 + 1);
        for (const std::uint8_t letter : words[random() % std::min(range, words.size())]) {
            data.push_back(static_cast<std::uint8_t>('a' + letter));
        }
        data.push_back(' ');
    }
    data.resize(size);
    return data;
}

// Pieces that are compressed on their own, as by several threads, join into one stream.
TEST(BlockCompressorTest, PiecesJoinIntoOneStream) {
    BlockCompressor compressor;
    for (const Effort effort : {Effort::Glance, Effort::Quick, Effort::Careful, Effort::Thorough}) {
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

// The count is what the effort is judged by: long blocks in even data, short ones where it changes.
TEST(BlockCompressorTest, BlocksAreCounted) {
    BlockCompressor compressor;
    static_cast<void>(compressor.Compress(Words(1'000'000, 1), Effort::Quick, true));
    const std::size_t even = compressor.Blocks();
    EXPECT_GE(even, 3U);
    EXPECT_LE(even, 30U);
    Bytes changing;
    while (changing.size() < 1'000'000) {
        const unsigned seed = static_cast<unsigned>(changing.size());
        const Bytes part = seed / 20'000 % 2 ? Words(20'000, seed) : Random(20'000, 20, seed);
        changing.insert(changing.end(), part.begin(), part.end());
    }
    static_cast<void>(compressor.Compress(changing, Effort::Quick, true));
    EXPECT_GT(compressor.Blocks(), 2 * even);
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

// An even text gains much by thorough compression, so its pieces get it, and noise none.
TEST(BlockCompressorTest, AnEvenTextIsCompressedThoroughlyInParts) {
    BlockCompressor compressor;
    const Bytes text = Words(1'100'000, 5);
    const std::size_t quick = compressor.Compress(text, Effort::Quick, true).Size();
    const std::size_t thorough = compressor.Compress(text, Effort::Thorough, true).Size();
    ASSERT_LT(thorough, quick - quick / 30);
    std::size_t thoroughOnes = 0;
    for (std::size_t number = 0; number < 10; ++number) {
        const std::size_t size = DeflatePiece(compressor, text, number, true).Size();
        EXPECT_TRUE(size == quick || size == thorough) << size;
        thoroughOnes += size == thorough;
    }
    const std::size_t again = DeflatePiece(compressor, text, 0, true).Size();
    EXPECT_EQ(again, DeflatePiece(compressor, text, 0, true).Size()) << "the same work each time";
    EXPECT_GE(thoroughOnes, 3U);
    EXPECT_LE(thoroughOnes, 9U);
}

} // namespace
