// Where the random choices of a test begin.
#pragma once

#include <QtGlobal>

#include <gtest/gtest.h>

#include <string>

namespace support {

/// Always the same, unless VELQUIN_SEED gives another number. Said with the test's result.
inline unsigned seed() {
    const auto asked = static_cast<unsigned>(qEnvironmentVariableIntValue("VELQUIN_SEED"));
    testing::Test::RecordProperty("seed", std::to_string(asked));
    return asked;
}

} // namespace support
