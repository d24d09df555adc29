// Random bytes in every encoding: each step ends, makes progress and stays within its memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "tests/unit/ObLibX/xml/encoding/ScratchFile.h"

namespace {

using ObLibX::TextConverter;
using ObLibX::TextFileChannel;
using obtest::ScratchFile;

constexpr const wchar_t* kEncodings[] = {
    L"",       L"UTF-8",        L"UTF-16",     L"UTF-16BE",    L"UTF-32",
    L"utf-32", L"windows-1252", L"gbk",        L"Shift_JIS",   L"korean",
    L"big5",   L"gb18030",      L"hz-gb-2312", L"csiso2022jp", L"koi8-r",
    L"utf-7",  L"johab",        L"x-iscii-de", L"no such name"};

std::string RandomBytes(std::mt19937& random, std::size_t length) {
    // Much of what steers: NULs, escapes, leads and continuations.
    constexpr char steering[] = {'\0',   '\x1B', '$',    'B',    '(',    'a',
                                 '\x81', '\x82', '\xA0', '\xC3', '\xE2', '\xF0',
                                 '\x9F', '\xD8', '\xDC', '\xFF', '0',    '\n'};
    std::string bytes(length, '\0');
    const bool any = random() % 2 == 0;
    std::generate(bytes.begin(), bytes.end(), [&] {
        return any ? static_cast<char>(random()) : steering[random() % sizeof steering];
    });
    return bytes;
}

TEST(RandomBytes, AreConvertedBetweenAnyTwoEncodingsWithinTheCapacity) {
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        std::mt19937 random(seed);
        for (const wchar_t* from : kEncodings) {
            const std::int32_t unit = ObLibX::CodeUnitSize(ObLibX::ConversionPage(from));
            const std::int32_t units = static_cast<std::int32_t>(random() % 30);
            // Exactly as long as the bytes, so that a sanitizer sees a read past the end.
            const std::string bytes = RandomBytes(random, static_cast<std::size_t>(units) *
                                                              static_cast<std::size_t>(unit));
            const auto source = std::make_unique<char[]>(bytes.size() + 1);
            std::copy(bytes.begin(), bytes.end(), source.get() + 1);
            for (const wchar_t* to : kEncodings) {
                const auto size =
                    static_cast<std::size_t>(ObLibX::CodeUnitSize(ObLibX::ConversionPage(to)));
                TextConverter converter;
                converter.fromEncoding = from;
                // At an odd address, as a field of a file may be; wide text of the system isn't.
                converter.source = source.get() + (unit == 2 ? 0 : 1);
                converter.sourceLength = units;
                const std::int32_t count = converter.Convert(nullptr, to);
                ASSERT_GE(count, 0);
                const std::int32_t capacity =
                    1 + static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(count + 2));
                const auto place =
                    std::make_unique<char[]>(static_cast<std::size_t>(capacity) * size);
                converter.destinationCapacity = capacity;
                const std::int32_t written = converter.Convert(place.get(), to);
                ASSERT_GE(written, 0);
                ASSERT_LE(written, capacity) << "seed " << seed;
                if (capacity >= count) {
                    ASSERT_EQ(written, count) << "seed " << seed;
                }
            }
        }
    }
}

TEST(RandomBytes, HaveABoundaryInTheBlockOrNone) {
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        std::mt19937 random(seed);
        for (const wchar_t* encoding : kEncodings) {
            const std::int32_t unit = ObLibX::CodeUnitSize(ObLibX::ConversionPage(encoding));
            const std::string bytes =
                RandomBytes(random, (random() % 60) * static_cast<std::size_t>(unit));
            TextConverter converter;
            converter.fromEncoding = encoding;
            converter.source = bytes.data();
            converter.sourceLength = static_cast<std::int32_t>(bytes.size()) / unit;
            std::int32_t back = -1;
            const bool found = ObLibX::FindCharBoundary(converter, back);
            ASSERT_GE(back, 0) << "seed " << seed;
            ASSERT_LE(back, static_cast<std::int32_t>(bytes.size())) << "seed " << seed;
            ASSERT_TRUE(found || back == 0) << "seed " << seed;
        }
    }
}

TEST(RandomBytes, AreReadToTheirEndInAnyBlocks) {
    constexpr std::uint32_t flags[] = {0, 0, ObLibX::kFileUtf16, ObLibX::kFileBigEndian};
    const ScratchFile file;
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        std::mt19937 random(seed);
        const std::string bytes = RandomBytes(random, random() % 400);
        file.Write(bytes);
        TextFileChannel channel = obtest::Reader(file, bytes.size());
        channel.encoding = kEncodings[random() % std::size(kEncodings)];
        channel.fileFlags = flags[random() % std::size(flags)];
        std::wstring text;
        while (channel.fileOffset < channel.fileLength) {
            const std::uint32_t before = channel.fileOffset;
            channel.opByteLength = 1 + static_cast<std::int32_t>(random() % 100);
            ASSERT_TRUE(channel.ReadText(text)) << "seed " << seed;
            ASSERT_GT(channel.fileOffset, before) << "seed " << seed;
            ASSERT_EQ(static_cast<long>(channel.fileOffset), std::ftell(channel.file.get()));
            ASSERT_EQ(static_cast<std::size_t>(channel.opTextLength), text.size());
        }
    }
}

TEST(RandomBytes, DeclareSomethingOrNothing) {
    const std::wstring pieces[] = {
        L"<?xml ",  L"encoding", L"=",       L"\"",         L"'",
        L"?>",      L"<html>",   L"<meta ",  L"http-equiv", L"Content-Type",
        L"content", L"charset",  L"</head>", L">",          L"<!--",
        L"-->",     L" ",        L"utf-8",   L"<"};
    for (std::uint32_t seed = 1; seed <= 3'000; ++seed) {
        std::mt19937 random(seed);
        std::wstring text = seed % 2 == 0 ? L"<?xml " : L"<html><meta http-equiv=Content-Type ";
        for (std::uint32_t i = random() % 20; i > 0; --i) {
            text += pieces[random() % std::size(pieces)];
        }
        const std::wstring found = ObLibX::GetDeclaredEncoding(text);
        ASSERT_NE(text.find(found), std::wstring::npos) << "seed " << seed;
    }
}

} // namespace
