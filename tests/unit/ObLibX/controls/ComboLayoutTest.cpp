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
    const PixelRect combo{10, 20, 130, 200};
    EXPECT_EQ((PixelRect{11, 43, 112, 143}), PlaceComboList(ComboKind::Simple, combo, kEdit, 100));
}

TEST(ComboListPlace, EndsWithASimpleCombo) {
    const PixelRect combo{10, 20, 130, 120};
    EXPECT_EQ((PixelRect{11, 43, 112, 120}), PlaceComboList(ComboKind::Simple, combo, kEdit, 100));
    EXPECT_EQ((PixelRect{11, 43, 112, 43}), PlaceComboList(ComboKind::Simple, kEdit, kEdit, 100));
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

TEST(ComboText, EndsWithAWholeCharacter) {
    const wchar_t pair[] = {L'a', static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00), L'b',
                            0};
    const std::size_t whole[] = {0, 1, 1, 3, 4};
    for (std::size_t count = 0; count <= 4; ++count) {
        EXPECT_EQ(whole[count], WholeCharacters(pair, count)) << count;
    }
    const wchar_t half[] = {static_cast<wchar_t>(0xD83D), L'b', 0};
    EXPECT_EQ(1u, WholeCharacters(half, 1)) << "nothing belongs to it";
    const wchar_t last[] = {static_cast<wchar_t>(0xD83D), 0};
    EXPECT_EQ(1u, WholeCharacters(last, 1));
}

TEST(ComboListPlace, IsOneBelowOrWhereItWasDroppedUp) {
    EXPECT_EQ(45, DroppedListTop(kCombo, 44));
    EXPECT_EQ(45, DroppedListTop(kCombo, 60));
    EXPECT_EQ(-80, DroppedListTop(kCombo, -80));
}

} // namespace
