// The arithmetic of scroll bars and sliders: layout, hit test, and values of a thumb that is
// dragged.
#include "ObLibX/src/controls/ScrollLayout.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

namespace {

using namespace ObLibX;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr auto kVertical = ScrollOrientation::Vertical;
constexpr auto kHorizontal = ScrollOrientation::Horizontal;

TEST(MultiplyDivide, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(3, MultiplyDivide(5, 1, 2));
    EXPECT_EQ(-3, MultiplyDivide(-5, 1, 2));
    EXPECT_EQ(-3, MultiplyDivide(5, 1, -2));
    EXPECT_EQ(3, MultiplyDivide(-5, 1, -2));
    EXPECT_EQ(2, MultiplyDivide(7, 1, 3));
    EXPECT_EQ(3, MultiplyDivide(8, 1, 3));
    EXPECT_EQ(-2, MultiplyDivide(-7, 1, 3));
    EXPECT_EQ(0, MultiplyDivide(0, 9, 3));
}

TEST(MultiplyDivide, IsMinusOneWithoutADivisor) { EXPECT_EQ(-1, MultiplyDivide(5, 5, 0)); }

// As the system's bars switch their arrows off: a page of 1 shows one value, as no page does.
TEST(CanScroll, IsTrueOnceThereAreTwoPositions) {
    EXPECT_FALSE(CanScroll({0, 0, 0}));
    EXPECT_FALSE(CanScroll({0, 0, 1}));
    EXPECT_TRUE(CanScroll({0, 1, 0}));
    EXPECT_TRUE(CanScroll({0, 1, 1}));
    EXPECT_FALSE(CanScroll({0, 1, 2}));
    EXPECT_TRUE(CanScroll({0, 99, 99}));
    EXPECT_FALSE(CanScroll({0, 99, 100}));
    EXPECT_FALSE(CanScroll({5, 4, -3})) << "upside down";
    EXPECT_TRUE(CanScroll({kLowest, kHighest, kHighest}));
    EXPECT_FALSE(CanScroll({0, kLowest, kHighest}));
}

ScrollLayout Bar(ScrollOrientation orientation, PixelPoint size, const ScrollRange& range,
                 std::int32_t position) {
    return LayOutScrollBar({orientation, size, 17, 20}, range, position);
}

TEST(ScrollBarLayout, HasArrowsAtItsEndsAndTheTrackBetween) {
    const ScrollLayout bar = Bar(kVertical, {17, 234}, {0, 99, 20}, 0);
    EXPECT_EQ(200, bar.trackLength);
    EXPECT_EQ(40, bar.thumbLength);
    EXPECT_EQ((PixelRect{0, 0, 17, 17}), bar.upArrow);
    EXPECT_EQ((PixelRect{0, 217, 17, 234}), bar.downArrow);
    EXPECT_EQ((PixelRect{0, 17, 17, 217}), bar.track);
    EXPECT_EQ((PixelRect{0, 17, 17, 57}), bar.thumb);
    EXPECT_TRUE(bar.pageBefore.IsEmpty());
    EXPECT_EQ((PixelRect{0, 57, 17, 217}), bar.pageAfter);
}

TEST(ScrollBarLayout, HasItsPartsSideBySideWhenItIsHorizontal) {
    const ScrollLayout bar = Bar(kHorizontal, {234, 17}, {0, 99, 20}, 80);
    EXPECT_EQ((PixelRect{0, 0, 17, 17}), bar.upArrow);
    EXPECT_EQ((PixelRect{217, 0, 234, 17}), bar.downArrow);
    EXPECT_EQ((PixelRect{177, 0, 217, 17}), bar.thumb);
    EXPECT_EQ((PixelRect{17, 0, 177, 17}), bar.pageBefore);
    EXPECT_TRUE(bar.pageAfter.IsEmpty());
}

TEST(ScrollBarLayout, PutsTheThumbByTheValuesThatItPasses) {
    EXPECT_EQ(17 + 80, Bar(kVertical, {17, 234}, {0, 99, 20}, 40).thumbOffset);
    EXPECT_EQ(17 + 80, Bar(kVertical, {17, 234}, {-40, 59, 20}, 0).thumbOffset);
    EXPECT_EQ(17, Bar(kVertical, {17, 234}, {0, 99, 20}, -7).thumbOffset);
    EXPECT_EQ(17 + 160, Bar(kVertical, {17, 234}, {0, 99, 20}, 5000).thumbOffset);
}

TEST(ScrollBarLayout, HasTheSystemsThumbWithoutAPage) {
    EXPECT_EQ(20, Bar(kVertical, {17, 234}, {0, 100, 0}, 0).thumbLength);
    EXPECT_EQ(20, Bar(kVertical, {17, 234}, {0, 100, -5}, 0).thumbLength);
}

TEST(ScrollBarLayout, HasAThumbOfAtLeast15Pixels) {
    EXPECT_EQ(15, Bar(kVertical, {17, 234}, {0, 99999, 1}, 0).thumbLength);
    EXPECT_EQ(200, Bar(kVertical, {17, 234}, {0, 10, 5000}, 0).thumbLength) << "fills the track";
    EXPECT_EQ(15, Bar(kVertical, {17, 49}, {0, 10, 5000}, 0).thumbLength);
    EXPECT_EQ(15, Bar(kVertical, {17, 234}, {10, 0, 5}, 0).thumbLength) << "upside down";
}

TEST(ScrollBarLayout, HasNoTravelWhereTheThumbDoesNotFit) {
    const ScrollLayout bar = Bar(kVertical, {17, 44}, {0, 99, 20}, 40);
    EXPECT_EQ(10, bar.trackLength);
    EXPECT_EQ(10, bar.thumbLength);
    EXPECT_EQ(0, bar.Travel());
    EXPECT_EQ(17, bar.thumbOffset);
    EXPECT_EQ(40, ValueFromPixel(bar, 25, 80, 0, 40)) << "every pixel means the position";
}

TEST(ScrollBarLayout, SharesAShortWindowBetweenItsArrows) {
    const ScrollLayout bar = Bar(kVertical, {17, 21}, {0, 99, 20}, 40);
    EXPECT_EQ(10, bar.arrowLength);
    EXPECT_EQ(1, bar.trackLength);
    EXPECT_EQ((PixelRect{0, 11, 17, 21}), bar.downArrow);
    for (const std::int32_t length : {0, -3}) {
        const ScrollLayout none = Bar(kVertical, {17, length}, {0, 99, 20}, 40);
        EXPECT_EQ(0, none.trackLength);
        EXPECT_TRUE(none.upArrow.IsEmpty() && none.downArrow.IsEmpty() && none.thumb.IsEmpty());
    }
}

TEST(ScrollHit, NamesThePartUnderAPoint) {
    const ScrollLayout bar = Bar(kVertical, {17, 234}, {0, 99, 20}, 40);
    const struct {
        PixelPoint point;
        ScrollPart part;
    } rows[] = {{{8, 0}, ScrollPart::UpArrow},     {{8, 16}, ScrollPart::UpArrow},
                {{8, 17}, ScrollPart::PageBefore}, {{8, 96}, ScrollPart::PageBefore},
                {{8, 97}, ScrollPart::Thumb},      {{8, 136}, ScrollPart::Thumb},
                {{8, 137}, ScrollPart::PageAfter}, {{8, 216}, ScrollPart::PageAfter},
                {{8, 217}, ScrollPart::DownArrow}, {{8, 233}, ScrollPart::DownArrow},
                {{17, 100}, ScrollPart::None},     {{-1, 100}, ScrollPart::None},
                {{8, 234}, ScrollPart::None},      {{8, -1}, ScrollPart::None}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.part, HitTest(bar, row.point)) << row.point.x << "," << row.point.y;
    }
    EXPECT_EQ(1, static_cast<int>(ScrollPart::UpArrow));
    EXPECT_EQ(5, static_cast<int>(ScrollPart::DownArrow));
}

ScrollLayout Slider(ScrollOrientation orientation, PixelPoint size, const ScrollRange& range,
                    std::int32_t position) {
    return LayOutSlider({orientation, size, 10, 4}, range, position);
}

TEST(SliderLayout, HasAThinTrackInItsMiddleAndNoArrows) {
    const ScrollLayout slider = Slider(kHorizontal, {210, 28}, {0, 100, 20}, 50);
    EXPECT_TRUE(slider.upArrow.IsEmpty() && slider.downArrow.IsEmpty());
    EXPECT_EQ((PixelRect{0, 12, 210, 16}), slider.track);
    EXPECT_EQ((PixelRect{100, 0, 110, 28}), slider.thumb);
    EXPECT_EQ((PixelRect{0, 0, 100, 28}), slider.pageBefore);
    EXPECT_EQ((PixelRect{110, 0, 210, 28}), slider.pageAfter);
    EXPECT_EQ((PixelRect{12, 0, 16, 210}), Slider(kVertical, {28, 210}, {0, 100, 20}, 50).track);
}

TEST(SliderLayout, PutsTheThumbByTheWholeRange) {
    EXPECT_EQ(0, Slider(kHorizontal, {210, 28}, {0, 100, 20}, 0).thumbOffset);
    EXPECT_EQ(200, Slider(kHorizontal, {210, 28}, {0, 100, 20}, 100).thumbOffset);
    EXPECT_EQ(0, Slider(kHorizontal, {210, 28}, {7, 7, 0}, 7).thumbOffset)
        << "a range of one value";
}

TEST(SliderLayout, ShrinksInAWindowThatIsTooSmall) {
    const ScrollLayout slider = Slider(kHorizontal, {6, 2}, {0, 100, 20}, 50);
    EXPECT_EQ(6, slider.thumbLength);
    EXPECT_EQ((PixelRect{0, 0, 6, 2}), slider.track);
}

TEST(SliderSteps, ComeFromTheRange) {
    EXPECT_EQ(20, SliderPage({0, 100, 0}));
    EXPECT_EQ(0, SliderPage({0, 4, 0}));
    EXPECT_EQ(10, SliderStep({0, 100, 0}));
    EXPECT_EQ(1, SliderStep({0, 4, 0}));
    EXPECT_EQ(1, SliderStep({4, 0, 0})) << "upside down";
    EXPECT_EQ(429496729, SliderStep({kLowest, kHighest, 0}));
}

TEST(SliderSteps, EndAtTheRange) {
    EXPECT_EQ(60, MovedWithin({0, 100, 0}, 50, 10));
    EXPECT_EQ(100, MovedWithin({0, 100, 0}, 95, 10));
    EXPECT_EQ(0, MovedWithin({0, 100, 0}, 5, -10));
    EXPECT_EQ(100, MovedWithin({100, 0, 0}, 50, 10)) << "upside down";
    EXPECT_EQ(kHighest, MovedWithin({kLowest, kHighest, 0}, kHighest, 429496729));
}

TEST(DragValue, EndsAfterTheMaximumWithoutAPageAndAtTheLastPositionWithOne) {
    const ScrollRange plain{0, 100, 0};
    const ScrollLayout bar = Bar(kVertical, {17, 234}, plain, 0);
    EXPECT_EQ(101, ValueFromPixel(bar, 17 + bar.Travel(), ValueCount(plain), 0, 0));
    const ScrollRange paged{0, 99, 20};
    const ScrollLayout withPage = Bar(kVertical, {17, 234}, paged, 0);
    EXPECT_EQ(80, ValueFromPixel(withPage, 17 + withPage.Travel(), ValueCount(paged), 0, 0));
}

TEST(DragValue, OfASliderEndsBelowItsMaximumUnlessItCountsTheWholeRange) {
    const ScrollRange range{0, 100, 20};
    const ScrollLayout slider = Slider(kHorizontal, {210, 28}, range, 0);
    EXPECT_EQ(81, ValueFromPixel(slider, 200, ValueCount(range), 0, 0));
    EXPECT_EQ(100, ValueFromPixel(slider, 200, WholeValueCount(range), 0, 0));
}

TEST(DragValue, FitsItsType) {
    const ScrollRange range{0, kHighest, 0};
    const ScrollLayout bar = Bar(kVertical, {17, 234}, range, 0);
    EXPECT_EQ(kHighest, ValueFromPixel(bar, 17 + bar.Travel(), ValueCount(range), 0, 0));
}

std::int32_t LastValue(const ScrollRange& range, std::int64_t count) {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(range.minimum + std::max<std::int64_t>(count, 0), kHighest));
}

bool IsInside(const PixelRect& inner, const PixelRect& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

// What has to be true of every bar, and of every value that a drag on it gives.
void CheckBar(const ScrollLayout& bar, const ScrollRange& range, std::int64_t count,
              std::int32_t position) {
    const PixelRect whole{bar.upArrow.left, bar.upArrow.top, bar.downArrow.right,
                          bar.downArrow.bottom};
    ASSERT_GE(bar.Travel(), 0);
    ASSERT_GE(bar.thumbOffset, bar.arrowLength);
    ASSERT_LE(bar.thumbOffset + bar.thumbLength, bar.arrowLength + bar.trackLength);
    if (whole.right > 0) {
        ASSERT_TRUE(IsInside(bar.thumb, whole) && IsInside(bar.track, whole));
    }
    if (bar.Travel() == 0) {
        ASSERT_EQ(position, ValueFromPixel(bar, bar.arrowLength, count, range.minimum, position));
        return;
    }
    const std::int32_t last = LastValue(range, count);
    const std::int32_t end = bar.arrowLength + bar.Travel();
    ASSERT_EQ(range.minimum, ValueFromPixel(bar, bar.arrowLength, count, range.minimum, position));
    ASSERT_EQ(last, ValueFromPixel(bar, end, count, range.minimum, position));
    for (const std::int32_t pixel : {bar.thumbOffset, (bar.arrowLength + end) / 2, kHighest / 2}) {
        const std::int32_t value = ValueFromPixel(bar, pixel, count, range.minimum, position);
        ASSERT_GE(value, range.minimum);
        ASSERT_LE(value, last);
    }
}

void CheckBoth(std::int32_t length, const ScrollRange& range, std::int32_t position) {
    for (const auto along : {kVertical, kHorizontal}) {
        const PixelPoint size =
            along == kVertical ? PixelPoint{17, length} : PixelPoint{length, 17};
        const ScrollLayout bar = Bar(along, size, range, position);
        ASSERT_NO_FATAL_FAILURE(CheckBar(bar, range, ValueCount(range), position));
        const ScrollLayout slider = Slider(along, size, range, position);
        ASSERT_NO_FATAL_FAILURE(CheckBar(slider, range, ValueCount(range), position));
        ASSERT_NO_FATAL_FAILURE(CheckBar(slider, range, WholeValueCount(range), position));
    }
}

TEST(ScrollArithmetic, IsInsideItsBoundsOnASmallGrid) {
    for (std::int32_t length = -1; length < 70; length += 3) {
        for (std::int32_t minimum = -4; minimum <= 4; minimum += 2) {
            for (std::int32_t maximum = -4; maximum <= 12; ++maximum) {
                for (std::int32_t page = -1; page <= 14; ++page) {
                    for (std::int32_t position = -5; position <= 13; position += 3) {
                        ASSERT_NO_FATAL_FAILURE(
                            CheckBoth(length, {minimum, maximum, page}, position))
                            << length << " [" << minimum << ", " << maximum << "] " << page << " "
                            << position;
                    }
                }
            }
        }
    }
}

// Numbers of every size, and often one of the outermost.
class AnyNumber {
public:
    explicit AnyNumber(std::uint32_t seed) : bits_(seed) {}
    std::int32_t operator()() {
        const std::uint32_t bits = bits_();
        if (bits % 16 == 0) return kLowest;
        if (bits % 16 == 1) return kHighest;
        return static_cast<std::int32_t>(bits_()) >> (bits / 16 % 32);
    }
    std::int32_t Length() { return static_cast<std::int32_t>(bits_() % 3000) - 10; }

private:
    std::mt19937 bits_;
};

TEST(ScrollArithmetic, IsInsideItsBoundsForAMillionRandomBars) {
    const std::uint32_t seed = std::random_device()();
    AnyNumber next(seed);
    for (int round = 0; round < 1000000; ++round) {
        const ScrollRange range{next(), next(), next()};
        const std::int32_t position = next();
        const std::int32_t length = next.Length();
        ASSERT_NO_FATAL_FAILURE(CheckBoth(length, range, position))
            << "seed " << seed << ": " << length << " [" << range.minimum << ", " << range.maximum
            << "] " << range.page << " " << position;
    }
}

// A page that was reached by dragging there is shown where it was dragged to.
TEST(ScrollArithmetic, ShowsADraggedValueWhereTheThumbWasLeft) {
    const ScrollRange range{0, 99, 20};
    const ScrollLayout bar = Bar(kVertical, {17, 234}, range, 0);
    for (std::int32_t pixel = 17; pixel <= 17 + bar.Travel(); pixel += 2) {
        const std::int32_t value = ValueFromPixel(bar, pixel, ValueCount(range), 0, 0);
        const std::int32_t shown = Bar(kVertical, {17, 234}, range, value).thumbOffset;
        EXPECT_LE(std::abs(shown - pixel), 1) << pixel;
    }
}

} // namespace
