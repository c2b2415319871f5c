// Texts to doubles: bit for bit what strtod gives in the C locale.
#include "Core/TextToDouble.h"
#include "Core/ShortDecimal.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace {

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// The rule in plain words: trim, then strtod over the whole rest (the tests run in the C locale).
double expectedValue(const std::string& field) {
    const std::string text(field.c_str());
    const auto first = text.find_first_of("0123456789+-.");
    const auto last = text.find_last_of("0123456789");
    if (first == std::string::npos || last == std::string::npos || last < first)
        return std::nan("");
    const std::string number = text.substr(first, last - first + 1);
    char* end = nullptr;
    const double value = std::strtod(number.c_str(), &end);
    return *end == '\0' ? value : std::nan("");
}

/// The value by the quick reader where it takes the text, else by the full one.
double quickValue(const std::string& field) {
    const std::string padded = std::string(shortDecimal::window, '7') + field;
    double value = 0;
    return shortDecimal::read(std::string_view(padded).substr(shortDecimal::window), value)
               ? value
               : textToDouble(field);
}

void expectSameAsStrtod(const std::string& field) {
    const double expected = expectedValue(field);
    for (const double value : {textToDouble(field), quickValue(field)}) {
        if (std::isnan(expected))
            ASSERT_TRUE(std::isnan(value)) << '"' << field << "\" gave " << value;
        else
            ASSERT_EQ(bits(value), bits(expected)) << '"' << field << '"';
    }
}

TEST(TextToDouble, TrimsAndConvertsLikeStrtod) {
    const std::pair<const char*, double> rows[] = {
        {"12.5 kg", 12.5},
        {"\"3\"", 3},
        {"5.", 5},
        {" -3.5e-2 ", -0.035},
        {"1e", 1},
        {"-0", -0.0},
        {".5", 0.5},
        {"+2", 2},
        {"0x1F5", 501},
        {"1e999", HUGE_VAL},
        {"4e-324", 4e-324},
        {"a1b2c3", NAN},
        {"12 34", NAN},
        {"1,5", NAN},
        {"", NAN},
        {"abc", NAN},
        {"-", NAN},
        {".", NAN},
        {"+-5", NAN},
        {"--5", NAN},
        {"1..2", NAN},
        {"1.2.3", NAN},
        {"-inf5", NAN},
        {"2020-01-01", NAN},
        {"9007199254740993", 9007199254740992.0},
        {"0.1", 0.1},
        {"-.5", -0.5},
        {"x-.", NAN},
        {"1-2", NAN},
        {"00000000000000000000001.5", 1.5},
    };
    for (const auto& [text, value] : rows) {
        expectSameAsStrtod(text);
        EXPECT_TRUE(bits(textToDouble(text)) == bits(value) ||
                    (std::isnan(value) && std::isnan(textToDouble(text))))
            << text << " gave " << textToDouble(text);
    }
    EXPECT_EQ(textToDouble(std::string_view("42\0 99", 6)), 42) << "the text ends at a NUL";
}

TEST(TextToDouble, AgreesWithStrtodOnRandomTexts) {
    std::mt19937_64 random(7);
    const std::string alphabet = "0123456789012345678901234567890123456789..--+eExX ,a";
    for (int i = 0; i < 300'000; ++i) {
        std::string text;
        if (i % 3 == 0) { // junk
            for (auto length = random() % 24; length > 0; --length)
                text += alphabet[random() % alphabet.size()];
        } else { // decimals, short and long
            text = random() % 2 != 0 ? "-" : "";
            for (auto length = random() % 12; length > 0; --length)
                text += static_cast<char>('0' + random() % 10);
            text += random() % 4 != 0 ? "." : "";
            for (auto length = random() % 13; length > 0; --length)
                text += static_cast<char>('0' + random() % 10);
            if (random() % 8 == 0)
                text += "e" + std::to_string(static_cast<int>(random() % 700) - 350);
        }
        expectSameAsStrtod(text);
        if (HasFatalFailure())
            return;
    }
}

TEST(TextToDouble, IgnoresTheUsersLocale) {
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    ASSERT_EQ(std::strtod("1,5", nullptr), 1.5);
    EXPECT_EQ(textToDouble("1.5e400"), HUGE_VAL);
    EXPECT_EQ(textToDouble("0x1.8p1"), 3.0);
    EXPECT_TRUE(std::isnan(textToDouble("1,5")));
    std::setlocale(LC_NUMERIC, "C");
}

} // namespace
