// Column names become variables; what a text refers to is found without parsing it.
#include "Classes/ExpressionEvaluator/ExpressionText.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using Names = std::vector<std::string>;

TEST(ExpressionText, ColumnNamesInQuotesBecomeVariables) {
    const struct {
        const char* name;
        Names names;
        QString text;
        QString expected;
    } rows[] = {
        {"any case", {"t", "speed"}, u"\"Speed\" * 2"_qs, u"c2 * 2"_qs},
        {"every occurrence", {"a"}, u"\"a\"+\"A\"*a"_qs, u"c1+c1*a"_qs},
        {"the first of two equal names", {"x", "a", "a"}, u"\"a\""_qs, u"c2"_qs},
        {"a name like a variable", {"x", "c1", "row"}, u"\"c1\"+\"row\""_qs, u"c2+c3"_qs},
        {"characters of regular expressions",
         {"a.*(", "\\1$"},
         u"\"\\1$\"/\"a.*(\"/\"a..(\""_qs,
         u"c2/c1/\"a..(\""_qs},
        {"a name with quotes", {"\"q\""}, u"\"\"q\"\""_qs, u"c1"_qs},
        {"the empty name", {"x", ""}, u"\"\"+1"_qs, u"c2+1"_qs},
        {"beyond ASCII", {"Größe"}, u"2*\"GRÖßE\""_qs, u"2*c1"_qs},
        {"part of a name, unclosed", {"speed"}, u"\"spee\" \"speed"_qs, u"\"spee\" \"speed"_qs},
        {"a name that appears by replacing", {"a", "xc1y"}, u"\"x\"a\"y\""_qs, u"c2"_qs},
        {"kept: in the order of the columns, not of the text", {"b", "a"}, u"\"a\"b\""_qs, u"\"ac1"_qs},
    };
    for (const auto& row : rows)
        EXPECT_EQ(expressionText::withColumnVariables(row.text, row.names).toStdString(),
                  row.expected.toStdString())
            << row.name;
}

TEST(ExpressionText, ScansForWhatIsUsed) {
    const struct {
        QString text;
        std::vector<std::uint64_t> columns;
        bool usesRow;
        bool ordered;
        std::optional<std::uint64_t> bare;
    } rows[] = {
        {u"sin(c1)+c20*c2"_qs, {0, 1, 19}, false, false, {}},
        {u" c3 "_qs, {2}, false, false, 2},
        {u"c21+c0+c01+c"_qs, {}, false, false, {}}, // no such column
        {u"c21"_qs, {}, false, false, {}},
        {u"+c3"_qs, {2}, false, false, {}},
        {u"row/c1"_qs, {0}, true, false, {}},
        {u"year(c1)*mean (c2,3)"_qs, {0, 1}, false, true, {}},
        {u"time()"_qs, {}, false, true, {}},
        {u"c2-timemean1-mktimestamp(c1,1,1,1,1,1)"_qs, {0, 1}, false, false, {}},
        {u"1<2andmean(c1,2)>0"_qs, {0}, false, true, {}},
        {u"-fir(c1,1)"_qs, {0}, false, true, {}},
        {u"cosc12"_qs, {11}, false, false, {}}, // one too many is allowed, one too few is not
    };
    for (const auto& row : rows) {
        const auto prepared = expressionText::prepare(row.text, 20);
        ASSERT_TRUE(prepared) << row.text.toStdString();
        EXPECT_EQ(prepared->columns, row.columns) << row.text.toStdString();
        EXPECT_EQ(prepared->usesRow, row.usesRow) << row.text.toStdString();
        EXPECT_EQ(prepared->dependsOnRowOrder, row.ordered) << row.text.toStdString();
        EXPECT_EQ(prepared->bareColumn, row.bare) << row.text.toStdString();
    }
    EXPECT_FALSE(expressionText::prepare(u"é"_qs, 20));
    EXPECT_EQ(expressionText::prepare(u"c9999+c10000"_qs, 20'000)->columns, std::vector<std::uint64_t>{9998});
}

TEST(ExpressionText, LogicalOperatorsNeedALeftSide) {
    for (const char* text : {"&&", "c1>0 && (||true)", "true && || true", "false||sum(and0)", "(orange)",
                             "1,or 2", "\"\\\"\"==(&&1)", "true # x\n||true", "!||true"})
        EXPECT_TRUE(expressionText::misplacedLogicalOperator(text)) << text;
    for (const char* text :
         {"c1>0 && c2<3 || true", "(1<2)and(2<3)", "c1 and true", "c1' ||true", "5!||true", "{1}[0]||1",
          "\"\\\"||\" == \"(&&\"", "floor(c1)", "true # ||", "c1 & 3 | 4", "", "1e5or 2."})
        EXPECT_FALSE(expressionText::misplacedLogicalOperator(text)) << text;
}

TEST(ExpressionText, ReplacingEndsWhenItIsStopped) {
    const Names names(9999, "never there");
    const QString text = u"\"never there\"+"_qs.repeated(1000);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(expressionText::withColumnVariables(text, names, stop.get_token()), text);
}

} // namespace
