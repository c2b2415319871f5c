// The tokenisers: fields and lines of given texts, and the same calls for every split into chunks.
#include "libparsers/csv.h"
#include "libparsers/csvTokenizing.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

namespace {

/// Fields in brackets, a slash for each line: `[1][2]/`.
std::string calls(IParser& parser, const std::string& text, const std::vector<std::size_t>& cuts = {}) {
    std::string made;
    parser.mFieldCallback = [&](const char* field) { made += '[' + std::string(field) + ']'; };
    parser.mLineCallback = [&] { made += '/'; };
    std::size_t begin = 0;
    for (const std::size_t cut : cuts) {
        parser.parse(text.data() + begin, cut - begin);
        begin = cut;
    }
    parser.parse(text.data() + begin, text.size() - begin);
    parser.finishParsing();
    return made;
}

/// A parser for delimiters; none at all means numbers.
std::unique_ptr<IParser> makeParser(const char* delimiters) {
    if (delimiters == nullptr)
        return std::make_unique<NumbersExtractor>();
    return std::make_unique<CSVParser>(delimiters);
}

/// The rules of the field parser, one byte at a time.
std::string plainFieldCalls(const std::string& delimiters, const std::string& text) {
    std::string made;
    std::string buffer;
    int state = 0;
    unsigned column = 0;
    const auto feed = [&](char c) {
        ++column;
        const bool ends = c == '\n' || c == '\r' || delimiters.find(c) != std::string::npos;
        if (state == 1) {
            c == '"' ? void(state = 2) : buffer.push_back(c);
        } else if (c == '"') {
            if (state == 2)
                buffer.push_back(c);
            state = 1;
        } else if (ends) {
            made += '[' + std::string(buffer.c_str()) + ']';
            buffer.clear();
            state = 0;
            if (c == '\n' || c == '\r') {
                made += '/';
                column = 0;
            }
        } else {
            buffer.push_back(c);
        }
    };
    for (const char c : text)
        feed(c);
    if (column != 0) {
        if (state == 1)
            feed('"');
        feed('\n');
    }
    return made;
}

/// The rules of the numbers extractor, one byte at a time.
std::string plainNumberCalls(const std::string& text) {
    std::string made;
    std::string buffer;
    const auto feed = [&](char c) {
        const bool exponent = (c == 'e' || c == 'E') && !buffer.empty();
        if ((c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || exponent) {
            buffer.push_back(c);
        } else if (!buffer.empty()) {
            made += '[' + buffer + ']';
            buffer.clear();
        } else if (c == '\t' || c == ',') {
            made += "[]";
        }
        if (c == '\n' || c == '\r')
            made += '/';
    };
    for (const char c : text)
        feed(c);
    if (!buffer.empty())
        feed('\n');
    return made;
}

TEST(Tokenisers, HandOutFieldsAndLines) {
    const struct {
        const char* name;
        const char* delimiters;
        std::string text;
        const char* expected;
    } rows[] = {
        {"fields and lines", ";", "a;b\n1;2\n", "[a][b]/[1][2]/"},
        {"no final line end", ",", "1,2", "[1][2]/"},
        {"empty input", ",", "", ""},
        {"a delimiter in quotes", ",", "\"x,y\",2\n", "[x,y][2]/"},
        {"a doubled quote", ",", "\"a\"\"b\"\n", "[a\"b]/"},
        {"kept: a quote opens anywhere in a field", ",", "ab\"c,d\"\n", "[abc,d]/"},
        {"text after a closing quote", ",", "\"ab\"cd\n", "[abcd]/"},
        {"a line end in quotes", ",", "\"a\nb\",c\n", "[a\nb][c]/"},
        {"an unclosed quote at the end", ",", "1,\"2,3", "[1][2,3]/"},
        {"input that ends after a quote", ",", "\"2\"", "[2]/"},
        {"kept: CR LF is two line ends", ",", "1,2\r\n3,4\r\n", "[1][2]/[]/[3][4]/[]/"},
        {"kept: an empty line is one empty field", ",", "\n\n", "[]/[]/"},
        {"two delimiters", " \t", "1 2\t3", "[1][2][3]/"},
        {"no delimiters", "", "1,2;3\n4", "[1,2;3]/[4]/"},
        {"many delimiters", ",;:|!? ", "1,2;3:4|5!6?7 8", "[1][2][3][4][5][6][7][8]/"},
        {"NUL ends a field's text", ",", std::string("1\0z,2\n", 6), "[1][2]/"},
        {"a comma after a unit is an empty cell", nullptr, "-1.5e3 kg, 7\n", "[-1.5e3][][7]/"},
        {"an empty cell", nullptr, "1,,2\n", "[1][][2]/"},
        {"a separator without numbers", nullptr, "a,b\n", "[]/"},
        {"kept: a minus goes on with a number", nullptr, "1-2\n", "[1-2]/"},
        {"an exponent needs a number", nullptr, "e5 E 1E+2\n", "[5][1E+2]/"},
        {"tabs", nullptr, "\t1\t\t2\t\n", "[][1][][2]/"},
        {"numbers end at the end of input", nullptr, "1 2", "[1][2]/"},
        {"kept: no line end after a last line that ends in text", nullptr, "1 2 m", "[1][2]"},
        {"numbers with CR LF", nullptr, "1\r\n2\r\n", "[1]//[2]//"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(calls(*makeParser(row.delimiters), row.text), row.expected) << row.name;
}

TEST(Tokenisers, AgreeWithThePlainRulesForEverySplit) {
    std::mt19937 random(11);
    const char* const kinds[] = {nullptr, ",", " \t", "", ",;:|!?"};
    const std::string alphabet = "0123456789012345.-+/eE,,,,;\t  \"\"\r\n\n\nab\x80";
    for (int i = 0; i < 4000; ++i) {
        const char* const kind = kinds[static_cast<std::size_t>(i) % std::size(kinds)];
        std::string text;
        for (auto length = random() % 300; length > 0; --length)
            text += alphabet[random() % alphabet.size()];
        const std::string expected = kind == nullptr ? plainNumberCalls(text) : plainFieldCalls(kind, text);
        std::vector<std::size_t> cuts;
        for (std::size_t cut = random() % 90; cut < text.size(); cut += random() % 90)
            cuts.push_back(cut);
        ASSERT_EQ(calls(*makeParser(kind), text), expected) << text;
        ASSERT_EQ(calls(*makeParser(kind), text, cuts), expected) << text;
    }
}

TEST(Tokenisers, NeedTheirCallbacksAsStated) {
    CSVParser withoutAny(",");
    withoutAny.parse("1,2", 3);
    EXPECT_THROW(withoutAny.parse("\n", 1), std::bad_function_call);
    NumbersExtractor numbers;
    std::string fields;
    numbers.mFieldCallback = [&](const char* text) { fields += text; };
    EXPECT_NO_THROW(numbers.parse("1\n2\n", 4));
    EXPECT_EQ(fields, "12");
}

TEST(Tokenisers, RefuseAFieldThatGrowsWithoutEnd) {
    const std::string megabyte(std::size_t{1} << 20U, '1');
    for (const char* kind : {static_cast<const char*>(nullptr), ","}) {
        const auto parser = makeParser(kind);
        for (int i = 0; i < 64; ++i)
            parser->parse(megabyte.data(), megabyte.size());
        EXPECT_THROW(parser->parse("1", 1), FieldTooLong);
    }
}

} // namespace
