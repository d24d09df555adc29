// Where the parts of combo boxes are.
#include "ObLibX/src/controls/ComboLayout.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;

constexpr PixelRect kCombo{10, 20, 130, 44};
constexpr PixelRect kEdit{13, 23, 110, 41};

TEST(ComboListPlace, IsOneBelowAComboThatDropsItDown) {
    for (const ComboKind kind : {ComboKind::Dropdown, ComboKind::DropdownList}) {
        EXPECT_EQ((PixelRect{13, 45, 110, 145}), PlaceComboList(kind, kCombo, kEdit, 100));
    }
}

TEST(ComboListPlace, IsTwoBelowTheEditAndTwoWiderOnEachSideWhenSimple) {
    EXPECT_EQ((PixelRect{11, 43, 112, 143}), PlaceComboList(ComboKind::Simple, kCombo, kEdit, 100));
}

TEST(ComboButtonPlace, IsAtTheRightEnd) {
    EXPECT_EQ((PixelRect{76, 0, 100, 24}), ComboButton({0, 0, 100, 24}, 24));
    EXPECT_EQ((PixelRect{0, 0, 10, 24}), ComboButton({0, 0, 10, 24}, 24));
    EXPECT_TRUE(ComboButton({0, 0, 10, 24}, -3).IsEmpty());
}

TEST(ComboButtonPlace, IsAsWideAsTheRoomBesideTheEdit) {
    EXPECT_EQ(19, ButtonBesideEdit(kCombo, kEdit));
    EXPECT_EQ(25, ButtonBesideEdit({0, 0, 100, 50}, {2, 2, 90, 24}));
}

TEST(ComboText, LosesOneCharacterAtATime) {
    EXPECT_EQ(7u, FittingCharacters(20, [](std::size_t count) { return count <= 7; }));
    EXPECT_EQ(20u, FittingCharacters(20, [](std::size_t) { return true; }));
    EXPECT_EQ(0u, FittingCharacters(20, [](std::size_t) { return false; }));
    EXPECT_EQ(0u, FittingCharacters(0, [](std::size_t) { return false; }));
}

} // namespace
