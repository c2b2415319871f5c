// Blocks against a picture of single pixels.
#include "Core/FullBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace {

unsigned bandAt(const FullBlocks& blocks, int row) {
    int band = 0;
    while (band + 1 < blocks.bands() && blocks.rows(band).end <= row)
        ++band;
    return static_cast<unsigned>(band);
}

/// The same blocks, pixel by pixel.
struct Pixels {
    explicit Pixels(const FullBlocks& blocks, int pixelWidth, int pixelHeight)
        : width(pixelWidth), height(pixelHeight) {
        for (int x = 0; x < width; ++x) {
            for (int y = 0; y < height; ++y)
                full.push_back((blocks.full(blocks.stackAt(x)) >> bandAt(blocks, y) & 1U) != 0);
        }
    }
    bool areFull(int left, int right, int low, int high) const {
        for (int x = left; x < right; ++x) {
            for (int y = std::max(low, 0); y < std::min(high, height); ++y) {
                if (!full[static_cast<std::size_t>(x) * static_cast<std::size_t>(height) +
                          static_cast<std::size_t>(y)])
                    return false;
            }
        }
        return true;
    }
    int width;
    int height;
    std::vector<bool> full;
};

FullBlocks someFull(int width, int height, double share, std::mt19937& random) {
    FullBlocks blocks(width, height);
    std::bernoulli_distribution isFull(share);
    for (int stack = 0; stack < blocks.stacks(); ++stack) {
        FullBlocks::Bands bands = 0;
        for (int band = 0; band < blocks.bands(); ++band)
            bands = bands << 1U | FullBlocks::Bands{isFull(random)};
        blocks.setFull(stack, bands);
    }
    return blocks;
}

TEST(FullBlocks, RowsAndTheGreatestBoxAreThoseOfThePixels) {
    std::mt19937 random(3);
    struct Size {
        int width;
        int height;
    };
    for (const Size size : {Size{40, 30}, Size{37, 64}, Size{17, 131}, Size{8, 1}, Size{3, 200}}) {
        for (const double share : {0.0, 0.5, 0.9, 1.0}) {
            const FullBlocks blocks = someFull(size.width, size.height, share, random);
            const Pixels pixels(blocks, size.width, size.height);
            std::uniform_int_distribution<int> row(-5, size.height + 5);
            for (int i = 0; i < 200; ++i) {
                const auto [low, high] = std::minmax({row(random), row(random)});
                const int stack = i % blocks.stacks();
                const PixelRange columns = blocks.columns(stack);
                // Of a band that they touch, all rows count.
                const auto rows = [&](int y) {
                    const unsigned band = bandAt(blocks, std::clamp(y, 0, size.height - 1));
                    return blocks.rows(static_cast<int>(band));
                };
                EXPECT_EQ(blocks.covers(stack, low + 0.25, high + 0.75),
                          pixels.areFull(columns.first, columns.end, rows(low).first, rows(high).end))
                    << size.height << ": " << low << " to " << high;
            }

            double greatest = 0;
            for (int first = 0; first < blocks.stacks(); ++first) {
                for (int last = first; last < blocks.stacks(); ++last) {
                    const int begin = blocks.columns(first).first;
                    const int end = blocks.columns(last).end;
                    for (int low = 0; low < size.height; ++low) {
                        int top = low;
                        while (top < size.height && pixels.areFull(begin, end, top, top + 1))
                            ++top;
                        greatest = std::max(greatest, double{1} * (end - begin) * (top - low));
                    }
                }
            }
            const ClipBox box = blocks.greatestBox(0);
            const auto within = [](double value, double limit) { return std::clamp(value, 0.0, limit); };
            const int left = static_cast<int>(within(box.left, size.width));
            const int right = static_cast<int>(within(box.right, size.width));
            const int low = static_cast<int>(within(box.low, size.height));
            const int high = static_cast<int>(within(box.high, size.height));
            if (greatest == 0) {
                EXPECT_GT(box.left, box.right);
                continue;
            }
            EXPECT_EQ((right - left) * (high - low), greatest) << size.width << " x " << size.height;
            EXPECT_TRUE(pixels.areFull(left, right, low, high));
        }
    }
}

TEST(FullBlocks, ABoxKeepsItsMarginFromWhatIsNotFullAndHasNoEndAtTheBorder) {
    constexpr double beyond = std::numeric_limits<double>::infinity();
    FullBlocks blocks(32, 10);
    const auto box = [&] {
        const ClipBox greatest = blocks.greatestBox(1.5);
        return std::vector{greatest.left, greatest.low, greatest.right, greatest.high};
    };
    ASSERT_EQ(blocks.rows(2).end, 6); // five bands of two rows, and columns 8 to 24 in two stacks
    ASSERT_EQ(blocks.columns(4).first, 8);
    blocks.setFull(4, 0b00110);
    EXPECT_EQ(box(), (std::vector{9.5, 3.5, 14.5, 4.5}));
    for (int stack = 5; stack < blocks.stacks(); ++stack)
        blocks.setFull(stack, blocks.allBands());
    EXPECT_EQ(box(), (std::vector{17.5, -beyond, beyond, beyond}));
    EXPECT_TRUE(blocks.isAnyFull());
    blocks.clear();
    EXPECT_FALSE(blocks.isAnyFull() || blocks.covers(5, 3, 4));
    EXPECT_FALSE(blocks.greatestBox(0).contains(20, 5));
}

} // namespace
