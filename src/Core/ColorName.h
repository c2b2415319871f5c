// A human name for a colour.
#pragma once

#include "Core/RgbaColor.h"

#include <string_view>

/// The name of the nearest of seventeen named colours, "White" for pale and bright ones, "Black" for dark
/// ones.
std::string_view colorName(const RgbaColor& color);
