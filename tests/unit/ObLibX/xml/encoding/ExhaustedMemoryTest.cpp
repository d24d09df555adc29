// Memory that runs out at each allocation in turn: std::bad_alloc comes out, and what is left can
// be used again or released.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "tests/support/Allocations.h"
#include "tests/unit/ObLibX/xml/encoding/CodePages.h"
#include "tests/unit/ObLibX/xml/encoding/ScratchFile.h"

namespace {

using ObLibX::TextConverter;
using ObLibX::TextFileChannel;
using obtest::FailEachAllocation;
using obtest::ScratchFile;

TEST(ExhaustedMemory, LeavesAConverterThatConverts) {
    const std::string text(2'000, 'a');
    std::string place(2'000, '#');
    const std::wstring to = L"a name that is too long for the small form of a string";
    const std::size_t failures = FailEachAllocation(
        [&] {
            auto converter = std::make_unique<TextConverter>();
            converter->source = text.data();
            converter->sourceLength = 2'000;
            converter->destinationCapacity = 2'000;
            return converter;
        },
        [&](TextConverter& converter) { converter.Convert(place.data(), to); },
        [&](TextConverter& converter, bool) {
            converter.destinationCapacity = 2'000;
            EXPECT_EQ(converter.Convert(place.data(), to), 2'000);
        });
    EXPECT_GE(failures, 2u);
    EXPECT_EQ(place, text);
}

TEST(ExhaustedMemory, ComesOutOfTheSearchForABoundary) {
    if (!obtest::HasPage(932)) {
        GTEST_SKIP() << "no code page 932 here, and no other search needs memory";
    }
    const std::string text(2'000, 'a');
    const std::size_t failures = FailEachAllocation(
        [&] {
            auto converter = std::make_unique<TextConverter>();
            converter->fromEncoding = L"shift_jis";
            converter->source = text.data();
            converter->sourceLength = 2'000;
            return converter;
        },
        [](TextConverter& converter) {
            std::int32_t bytes = 0;
            ObLibX::FindCharBoundary(converter, bytes);
        },
        [](TextConverter& converter, bool) {
            std::int32_t bytes = 0;
            EXPECT_TRUE(ObLibX::FindCharBoundary(converter, bytes));
        });
    EXPECT_GE(failures, 1u);
}

struct Channel {
    Channel(const ScratchFile& file, std::size_t length) : channel(obtest::Reader(file, length)) {
        channel.documentText = &text;
        channel.blockSize = 64;
    }
    TextFileChannel channel;
    std::wstring text;
};

TEST(ExhaustedMemory, LeavesAChannelThatReadsOn) {
    const std::string content(std::string(100, 'a') + std::string(3, '\0') + std::string(100, 'b'));
    const ScratchFile file(content);
    const std::size_t failures = FailEachAllocation(
        [&] { return std::make_unique<Channel>(file, content.size()); },
        [](Channel& it) {
            it.channel.opByteLength = 1'000;
            it.channel.ReadText(it.text);
        },
        [](Channel& it, bool) {
            std::rewind(it.channel.file.get());
            it.channel.fileOffset = 0;
            it.channel.opByteLength = 1'000;
            EXPECT_TRUE(it.channel.ReadText(it.text));
            EXPECT_EQ(it.text, std::wstring(100, L'a') + std::wstring(100, L'b'));
        });
    EXPECT_GE(failures, 3u);
}

TEST(ExhaustedMemory, LeavesTheTextOfADocumentThatWantedMore) {
    const std::string content(500, 'x');
    const ScratchFile file(content);
    const std::wstring before(80, L'y');
    const std::size_t failures = FailEachAllocation(
        [&] {
            auto it = std::make_unique<Channel>(file, content.size());
            it->text = before;
            it->channel.bufferKeepFrom = 50;
            it->channel.savedFrom = 10;
            return it;
        },
        [](Channel& it) { it.channel.ReadMore(); },
        [&](Channel& it, bool failed) {
            if (failed) {
                EXPECT_EQ(it.text, before);
                EXPECT_EQ(it.channel.savedFrom, 10);
                EXPECT_EQ(it.channel.savedText, L"");
                EXPECT_EQ(it.channel.bufferRemoved, 0);
            }
            EXPECT_TRUE(it.channel.ReadMore());
            EXPECT_EQ(it.channel.savedText, std::wstring(40, L'y'));
        });
    EXPECT_GE(failures, 4u);
}

TEST(ExhaustedMemory, LeavesTheTextThatWasNotWritten) {
    const ScratchFile file;
    const std::wstring before(200, L'\xE9');
    const std::size_t failures = FailEachAllocation(
        [&] {
            auto it = std::make_unique<Channel>(file, 0);
            it->channel.file.reset(file.Open("wb"));
            it->text = before;
            return it;
        },
        [](Channel& it) { it.channel.WriteOut(it.text.data(), 200, true); },
        [&](Channel& it, bool failed) {
            if (failed) {
                EXPECT_EQ(it.text, before);
                EXPECT_TRUE(it.channel.WriteOut(it.text.data(), 200, true));
            }
            EXPECT_EQ(it.text, L"");
        });
    EXPECT_GE(failures, 2u);
}

} // namespace
