// Writing a file forward gives the text that the same calls give in memory.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "ObLibX/src/xml/TextConverter.h"
#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "tests/unit/xml/StreamFiles.h"

using ObLibX::XmlOffsetDocument;

namespace {

// One of the calls that both modes know, chosen by the numbers; the answer of the call.
bool Act(XmlOffsetDocument& document, std::mt19937& random) {
    const unsigned what = random() % 8;
    const std::wstring name(1 + random() % 3, static_cast<wchar_t>(L'a' + random() % 4));
    const std::wstring value(random() % 20, static_cast<wchar_t>(L"x&<]中"[random() % 5]));
    const std::uint32_t flags = random() % 32;
    if (what < 4) return document.AddElement(name.c_str(), value.c_str(), flags);
    if (what < 6) return document.IntoElement();
    if (what == 6) return document.OutOfElement();
    return document.SetAttribute(document.CurrentPosition(), name.c_str(), value.c_str());
}

std::wstring TextOf(const StreamFile& file) {
    const auto bytes = file.Read();
    ObLibX::TextConverter converter;
    converter.fromEncoding = L"UTF-8";
    converter.source = bytes.data();
    converter.sourceLength = static_cast<std::int32_t>(bytes.size());
    std::wstring text(static_cast<std::size_t>(converter.Convert(nullptr, L"UTF-16")), L' ');
    converter.destinationCapacity = static_cast<std::int32_t>(text.size());
    converter.Convert(text.data(), L"UTF-16");
    return text;
}

} // namespace

TEST(StreamWriting, GivesTheTextThatMemoryGives) {
    const unsigned seeds = 300;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        const StreamFile file;
        XmlOffsetDocument stream;
        const std::int32_t block = static_cast<std::int32_t>(seed % 50 + 1);
        ASSERT_TRUE(stream.OpenForWriting(file.Path(), {.declaration = false, .blockSize = block}));
        XmlOffsetDocument memory;
        std::mt19937 random(seed);
        for (int call = 0; call < 60; ++call) {
            // Entering what has children already, and changing it, needs a way back.
            std::mt19937 same = random;
            if (!Act(stream, random)) {
                continue;
            }
            ASSERT_TRUE(Act(memory, same)) << "seed " << seed << ", call " << call;
        }
        ASSERT_TRUE(stream.Close());
        ASSERT_EQ(memory.Text(), TextOf(file)) << "seed " << seed;
    }
}
