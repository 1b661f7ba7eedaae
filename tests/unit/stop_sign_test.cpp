// The sign of a stop at a breakpoint with a condition: both halves can be told in every size.
#include "editor/stop_sign.h"

#include <gtest/gtest.h>

#include <map>

TEST(StopSign, ArrowAndPlusStandBesideEachOtherOnADiscThatHidesWhatIsBelow) {
    constexpr StopSignColours kColours = {.disc = 0xAA0000, .plus = 0xFFFFFF, .edge = 0x222222, .arrow = 0xFFE000};
    for (const int size : {16, 20, 24, 32}) {
        const std::vector<std::uint8_t> pixels = StopAtConditionSign(size, kColours);
        ASSERT_EQ(pixels.size(), static_cast<std::size_t>(size * size * 4));
        std::map<Rgb, int> left, right;
        for (int i = 0; i < size * size; ++i) {
            const std::uint8_t* at = pixels.data() + static_cast<std::ptrdiff_t>(i) * 4;
            const Rgb colour = static_cast<Rgb>(at[0]) << 16 | static_cast<Rgb>(at[1]) << 8 | at[2];
            ++(i % size < size / 2 ? left : right)[at[3] == 255 ? colour : 0];
        }
        EXPECT_GE(left[kColours.arrow], size * size / 24) << size;
        EXPECT_GE(right[kColours.plus], size * size / 40) << size;
        EXPECT_EQ(left[kColours.plus] + right[kColours.arrow], 0) << size;
        EXPECT_EQ(pixels[3], 0) << "the corner is empty";
        EXPECT_GT(pixels[static_cast<std::size_t>(size / 2 * 4 + 3)], 128) << "the top edge is reached";
    }
}
