// What a stream has let go of can't be read any more, and nothing else is read in its place.
#include <gtest/gtest.h>

#include <string>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using ObLibX::XmlOffsetDocument;

namespace {

constexpr std::int32_t kBlockSizes[] = {4, 5, 7, 16, 64, 4096};

} // namespace

TEST(StreamWindow, HasNoAttributesOfAnElementThatHasPassed) {
    const StreamFile file(L"<a x='1'>b=2 c=3<d/>e=4 f=5</a>", L"UTF-8");
    for (const std::int32_t blockSize : kBlockSizes) {
        XmlOffsetDocument document;
        ASSERT_TRUE(document.OpenForReading(file.Path(), {.blockSize = blockSize}));
        ASSERT_TRUE(document.FindElement());
        EXPECT_EQ(document.GetAttribute(document.CurrentPosition(), L"x"), L"1");
        ASSERT_TRUE(document.IntoElement());
        while (document.FindElement()) {
        }
        ASSERT_TRUE(document.OutOfElement());
        EXPECT_EQ(document.GetAttributeNameAt(0), L"") << "block of " << blockSize;
        EXPECT_EQ(document.GetAttribute(document.CurrentPosition(), L"x"), L"");
        EXPECT_EQ(document.GetData(document.CurrentPosition()), L"");
    }
}
