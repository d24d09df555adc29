// Where a flat edit, its frame and its eye are.
#include "ObLibX/src/controls/EditLayout.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;

constexpr PixelRect kWindow{100, 50, 300, 72}; // 22 pixels tall

EditPlaces Placed(std::int32_t textHeight, bool isMultiLine, bool hasEye) {
    return PlaceEdit(kWindow, {textHeight, 2, isMultiLine, hasEye});
}

TEST(EditLayoutTest, PutsTheEditInTheMiddleOfItsFrame) {
    const EditPlaces places = Placed(15, false, false);
    EXPECT_EQ((PixelRect{98, 48, 302, 74}), places.frameRectangle) << "2 pixels around the window";
    EXPECT_EQ((PixelRect{100, 53, 300, 69}), places.editRectangle) << "as tall as the text and 1";
    EXPECT_EQ(27, places.minimumHeight) << "22 + 2 * 2 + 1";
    EXPECT_EQ(0, places.eyeWidth);
}

TEST(EditLayoutTest, LeavesTheHeightOfAnEditOfSeveralLines) {
    const EditPlaces places = Placed(15, true, false);
    EXPECT_EQ(kWindow, places.editRectangle);
    EXPECT_EQ((PixelRect{98, 48, 302, 74}), places.frameRectangle);
}

TEST(EditLayoutTest, MakesTheFrameAsTallAsALargeFontNeeds) {
    const EditPlaces places = Placed(30, false, false);
    EXPECT_EQ(35, places.minimumHeight);
    EXPECT_EQ((PixelRect{98, 44, 302, 79}), places.frameRectangle);
    EXPECT_EQ((PixelRect{100, 46, 300, 77}), places.editRectangle);
}

TEST(EditLayoutTest, GivesTheEyeASquareAtTheRightEnd) {
    const EditPlaces places = Placed(15, false, true);
    EXPECT_EQ(26, places.eyeWidth) << "the frame's height";
    EXPECT_EQ((PixelRect{98, 48, 302, 74}), places.frameRectangle);
    EXPECT_EQ((PixelRect{100, 53, 274, 69}), places.editRectangle);
    EXPECT_EQ((PixelRect{274, 50, 300, 72}), EyeIn(places.frameRectangle, 2, places.eyeWidth));
}

TEST(EditLayoutTest, LeavesNoWidthInAWindowThatTheEyeFills) {
    const EditPlaces places = PlaceEdit({0, 0, 20, 22}, {15, 2, false, true});
    EXPECT_EQ((PixelRect{0, 3, 0, 19}), places.editRectangle);
}

TEST(EditLayoutTest, MovesTheFrameWithTheEdit) {
    EditPlaces places = Placed(15, false, false);
    EXPECT_EQ((PixelRect{8, 5, 112, 32}),
              FrameAround({10, 10, 110, 26}, 2, places.minimumHeight, places.eyeWidth))
        << "centred on the edit, of the least height";
    EXPECT_EQ((PixelRect{8, 8, 112, 112}),
              FrameAround({10, 10, 110, 110}, 2, places.minimumHeight, places.eyeWidth));
    places = Placed(15, false, true);
    EXPECT_EQ((PixelRect{8, 5, 138, 32}),
              FrameAround({10, 10, 110, 26}, 2, places.minimumHeight, places.eyeWidth))
        << "with the eye in it";
}

} // namespace
