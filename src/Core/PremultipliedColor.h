// Pixels with premultiplied alpha: a colour for each coverage, and what one leaves of another.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// A picture of premultiplied 0xAARRGGBB pixels, owned by someone else.
struct PixelGrid {
    std::uint32_t* pixels; ///< first pixel of the top row
    std::ptrdiff_t stride; ///< pixels from one row to the row below
};

/// The colour of one stroke, for each coverage from 0 (nothing) to 255 (full), premultiplied.
using CoverageRamp = std::array<std::uint32_t, 256>;

/// Coverage ramp of a colour whose components and alpha lie within 0 to 1 (others are clamped, NaN is 0).
CoverageRamp coverageRamp(double red, double green, double blue, double alpha);

/// The pixel `color` over the pixel `below`, both premultiplied; each component rounded.
inline std::uint32_t composed(std::uint32_t color, std::uint32_t below) {
    const std::uint32_t rest = 255 - (color >> 24U);
    const auto attenuated = [rest](std::uint32_t twoComponents) {
        const std::uint32_t scaled = (twoComponents & 0x00ff00ffU) * rest + 0x00800080U;
        return ((scaled + ((scaled >> 8U) & 0x00ff00ffU)) >> 8U) & 0x00ff00ffU; // divided by 255
    };
    return color + (attenuated(below) | (attenuated(below >> 8U) << 8U));
}
