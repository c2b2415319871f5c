// Full pixels against a picture that is looked at pixel by pixel.
#include "Core/FullPixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace {

/// The same pixels, one by one.
struct Bitmap {
    int width;
    int height;
    std::vector<bool> full;

    Bitmap(int pixelWidth, int pixelHeight)
        : width(pixelWidth), height(pixelHeight),
          full(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), true) {}
    std::size_t at(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
    bool areFull(PixelRange columns, PixelRange rows) const {
        for (int x = columns.first; x < columns.end; ++x) {
            for (int y = rows.first; y < rows.end; ++y) {
                if (!full[at(x, y)])
                    return false;
            }
        }
        return true;
    }
    void show(FullPixels& pixels) const {
        for (int stack = 0; stack < pixels.stacks(); ++stack) {
            const PixelRange columns = pixels.columns(stack);
            const auto bits = pixels.rowBits(stack);
            for (int y = 0; y < height; ++y) {
                unsigned row = 0xff;
                for (int x = columns.first; x < columns.end; ++x) {
                    if (!full[at(x, y)])
                        row &= ~(1U << static_cast<unsigned>(x - columns.first));
                }
                bits[static_cast<std::size_t>(y)] = static_cast<FullPixels::RowBits>(row);
            }
            pixels.update(stack);
        }
    }
};

struct Size {
    int width;
    int height;
};

TEST(FullPixels, CoverWhatEveryPixelCovers) {
    std::mt19937 random(3);
    for (const Size size : {Size{40, 30}, Size{37, 64}, Size{17, 131}, Size{8, 1}, Size{3, 200}}) {
        const auto upTo = [&](int last) { return std::uniform_int_distribution<int>(0, last)(random); };
        for (const int holes : {0, 1, 4, 40}) {
            Bitmap bitmap(size.width, size.height);
            for (int i = 0; i < holes; ++i)
                bitmap.full[bitmap.at(upTo(size.width - 1), upTo(size.height - 1))] = false;
            FullPixels pixels(size.width, size.height);
            bitmap.show(pixels);
            for (int i = 0; i < 1000; ++i) {
                const auto [left, right] = std::minmax({upTo(size.width - 1), upTo(size.width - 1)});
                const auto [low, high] = std::minmax({upTo(size.height + 9) - 5, upTo(size.height + 9) - 5});
                const auto row = [&](int y) { return std::clamp(y, 0, size.height - 1); };
                EXPECT_EQ(pixels.covers({left, right + 1}, low + 0.25, high + 0.75),
                          bitmap.areFull({left, right + 1}, {row(low), row(high) + 1}))
                    << size.width << " x " << size.height << ": " << left << " to " << right << ", " << low
                    << " to " << high;
            }
        }
    }
}

TEST(FullPixels, TheGreatBoxIsFullAndCannotGrow) {
    std::mt19937 random(5);
    for (const Size size : {Size{60, 30}, Size{61, 200}, Size{75, 131}}) {
        for (int i = 0; i < 60; ++i) {
            // A full rectangle, somewhere, and a few holes in it.
            const auto within = [&](int from, int to) {
                return std::uniform_int_distribution<int>(from, to)(random);
            };
            const PixelRange columns{within(0, size.width / 3), within(2 * size.width / 3, size.width)};
            const PixelRange rows{within(0, size.height / 3), within(2 * size.height / 3, size.height)};
            Bitmap bitmap(size.width, size.height);
            for (int x = 0; x < size.width; ++x) {
                for (int y = 0; y < size.height; ++y) {
                    bitmap.full[bitmap.at(x, y)] =
                        x >= columns.first && x < columns.end && y >= rows.first && y < rows.end;
                }
            }
            const int holes = i % 3;
            for (int hole = 0; hole < holes; ++hole)
                bitmap.full[bitmap.at(within(0, size.width - 1), within(0, size.height - 1))] = false;
            FullPixels pixels(size.width, size.height);
            bitmap.show(pixels);
            const ClipBox box = pixels.greatBox(0);
            ASSERT_LT(box.left, box.right);
            const auto pixel = [](double value, int limit) {
                return static_cast<int>(std::clamp<double>(value, 0, limit));
            };
            const PixelRange x{pixel(box.left, size.width), pixel(box.right, size.width)};
            const PixelRange y{pixel(box.low, size.height), pixel(box.high, size.height)};
            EXPECT_TRUE(bitmap.areFull(x, y));
            EXPECT_FALSE(y.first > 0 && bitmap.areFull(x, {y.first - 1, y.end}));
            EXPECT_FALSE(y.end < size.height && bitmap.areFull(x, {y.first, y.end + 1}));
            EXPECT_FALSE(x.first > 0 && bitmap.areFull({x.first - 1, x.end}, y));
            EXPECT_FALSE(x.end < size.width && bitmap.areFull({x.first, x.end + 1}, y));
            if (holes == 0) {
                EXPECT_EQ(x.count() * y.count(), columns.count() * rows.count());
            }
        }
    }
}

TEST(FullPixels, ABoxKeepsItsMarginFromWhatIsNotFullAndHasNoEndAtTheBorder) {
    constexpr double beyond = std::numeric_limits<double>::infinity();
    FullPixels pixels(32, 10);
    const auto box = [&] {
        const ClipBox great = pixels.greatBox(1.5);
        return std::vector{great.left, great.low, great.right, great.high};
    };
    const auto fill = [&](int stack, std::size_t first, std::size_t end) {
        const auto bits = pixels.rowBits(stack);
        std::fill(bits.begin() + static_cast<std::ptrdiff_t>(first),
                  bits.begin() + static_cast<std::ptrdiff_t>(end), FullPixels::RowBits{0xff});
        pixels.update(stack);
    };
    fill(1, 2, 6);
    EXPECT_EQ(box(), (std::vector{9.5, 3.5, 14.5, 4.5}));
    fill(2, 0, 10);
    fill(3, 0, 10);
    EXPECT_EQ(box(), (std::vector{17.5, -beyond, beyond, beyond}));
    EXPECT_TRUE(pixels.isAnyFull());
    pixels.clear();
    EXPECT_FALSE(pixels.isAnyFull() || pixels.covers({16, 17}, 3, 4));
    EXPECT_FALSE(pixels.greatBox(0).contains(20, 5));
}

} // namespace
