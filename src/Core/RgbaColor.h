// A colour as four doubles, with its hue, saturation and brightness.
#pragma once

/// Red, green, blue and alpha, 0 to 1, kept as they were given: no rounding to a device.
struct RgbaColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const RgbaColor&) const = default;

    /// The HSB colour model; `hue`, `saturation` and `brightness` 0 to 1, hue 1 is hue 0.
    static RgbaColor fromHsb(double hue, double saturation, double brightness, double alpha = 1);

    struct Hsb {
        double hue;        ///< 0 to 1; 0 for greys
        double saturation; ///< 0 to 1
        double brightness; ///< 0 to 1
    };
    Hsb hsb() const;
};
