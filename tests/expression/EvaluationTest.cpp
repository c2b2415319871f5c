// An evaluation as a whole: values, progress, the classes of errors, sharing between threads.
#include "expression/Evaluation.h"

#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Classes/ExpressionEvaluator/RowEvaluator.h"
#include "support/Numbers.h"
#include "support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

using support::nan;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(Evaluation, Values) {
    const auto table = tableOf({{1, 2.5, nan}, {10, 20, 30}}, {"t", "speed"});
    const struct {
        const char* expression;
        Values expected;
    } rows[] = {
        {"\"Speed\" * 2", {20, 40, 60}},
        {"c1", {1, 2.5, nan}},
        {" c2 ", {10, 20, 30}},
        {"row", {0, 1, 2}},
        {"row/2", {0, 0.5, 1}},
        {"c1+c2*row", {1, 22.5, nan}},
        {"nan", {nan, nan, nan}},
        {"1/0", {INFINITY, INFINITY, INFINITY}},
        {"sqrt(-c2)", {nan, nan, nan}},
        {"c2>15", {0, 1, 1}},
        {"c2>15 ? c1 : -1", {-1, 2.5, nan}},
        {"c1==2.5 ? 5 : 6", {6, 5, 6}},
        {"eye(100)[1,1]+ones(100,100)[1,2]", {2, 2, 2}},
        {"170! < 171! && 1e18! == 171!", {1, 1, 1}},
        {"c1 # a comment", {1, 2.5, nan}},
    };
    for (const auto& row : rows)
        EXPECT_THAT(valuesOf(evaluated(QString::fromLatin1(row.expression), table)),
                    testing::Pointwise(testing::NanSensitiveDoubleEq(), row.expected))
            << row.expression;
    EXPECT_EQ(table->column(0)[0], 1) << "an assignment must not reach the table";

    const auto evaluation = evaluated(u"c2*2"_qs, table);
    ASSERT_EQ(evaluation.results.size(), 1U);
    EXPECT_EQ(evaluation.results.front()->columnsNumber(), 1U);
    const XValueRange all;
    EXPECT_EQ(evaluation.results.front()->getRangeOfColumnIndexWithValidValuesInRange(1, all),
              (XValueRange{20, 60}));
}

TEST(Evaluation, ProgressOfEachRowAndOfEachHundredth) {
    EXPECT_THAT(evaluated(u"row"_qs, tableOf({Values(5)})).progress, ElementsAre(0, 20, 40, 60, 80, 100));
    for (const char* expression : {"row", "c1", "delta(c1)"}) { // shared, copied, in order
        const auto progress = evaluated(QString::fromLatin1(expression), tableOf({Values(50'050)})).progress;
        ASSERT_EQ(progress.size(), 102U) << expression;
        for (std::size_t i = 0; i < 101; ++i)
            EXPECT_EQ(progress[i], static_cast<float>(i * 500) * 100.0F / 50'050.0F) << expression;
        EXPECT_EQ(progress.back(), 100) << expression;
    }
}

TEST(Evaluation, ErrorsThatEndItAreReportedAndDeliverNothing) {
    const auto table = tableOf({{1, 2.5, 3}});
    const std::string deep = std::string(4900, '(') + "1" + std::string(4900, ')');
    const struct {
        QString expression;
        const char* reason;
    } rows[] = {
        {u"c1 +"_qs, "Unexpected end of expression found at position 4."},
        {u"c1=5"_qs, "Nothing can be assigned: \"=\" at position 2 (\"==\" compares)."},
        {u"c1<=2 ? row+=1 : 0"_qs, "Nothing can be assigned: \"=\" at position 12 (\"==\" compares)."},
        {u""_qs, "Expression is empty!"},
        {u"\"unclosed"_qs, "Unterminated string"},
        {u"speed*2"_qs, "Undefined token \"speed\""},
        {u"c2"_qs, "Undefined token \"c2\""},
        {u"\"speed\"*2"_qs, "\"*\""},
        {u"c1>0 && (|| true)"_qs, "Unexpected operator \"||\" found at position 9."},
        {u"sin(1,2)"_qs, "Too many parameters"},
        {u"mean(c1,0)"_qs, "incorrect moving average size"},
        {u"mean(c1,100001)"_qs, "incorrect moving average size"},
        {u"mean(c1,2.5)"_qs, "mean"},
        {u"\"a text\""_qs, "The result is a text, not a number."},
        {u"{1,2}"_qs, "The result is an array, not a number."},
        {u"zeros(100000,100000)"_qs, "an array of more than 10000 elements"},
        {u"ones(101)"_qs, "an array of more than 10000 elements"},
        {u"1+"_qs.repeated(5100) + u'1', "longer than 10000 characters"},
        {u"\"a\"+"_qs.repeated(250'000) + u'1', "longer than 20000 characters"},
        {QString::fromStdString(deep).chopped(1), "parenthesis"},
        {u"mktimestamp(c1,1.5,1,0,0,0)"_qs, "mktimestamp"},
    };
    for (const auto& row : rows) {
        const auto outcome = evaluated(row.expression, table);
        const std::string text = row.expression.left(40).toStdString();
        EXPECT_TRUE(outcome.results.empty()) << text;
        ASSERT_EQ(outcome.failures.size(), 1U) << text;
        EXPECT_THAT(outcome.failures.front(), HasSubstr(row.reason)) << text;
        EXPECT_EQ(outcome.failures.front().find('\x1b'), std::string::npos) << "a tag is left: " << text;
        ASSERT_FALSE(outcome.progress.empty()) << text;
        EXPECT_EQ(outcome.progress.back(), 100) << text;
    }
    EXPECT_EQ(valuesOf(evaluated(QString::fromStdString(deep), table)), Values(3, 1)) << "deep, but right";
    EXPECT_TRUE(expressionErrors::describe(std::bad_alloc()).endsEvaluation);
}

TEST(Evaluation, OnlyTheFirstErrorDecides) {
    const auto table = tableOf({{0, 1, 2.5, 3}});
    // 1<<70 overflows, a fault of that row alone; 2.5 & 1 is an error of types, which ends the evaluation.
    EXPECT_THAT(valuesOf(evaluated(u"row==1 ? 1<<70 : c1"_qs, table)),
                testing::Pointwise(testing::NanSensitiveDoubleEq(), Values{0, nan, 2.5, 3}));
    EXPECT_THAT(valuesOf(evaluated(u"row==1 ? 1<<70 : c1 & 1"_qs, table)),
                testing::Pointwise(testing::NanSensitiveDoubleEq(), Values{0, nan, nan, 1}));
    const auto ended = evaluated(u"row==3 ? 1<<70 : c1 & 1"_qs, table);
    EXPECT_TRUE(ended.results.empty());
    EXPECT_EQ(ended.failures.size(), 1U);
    EXPECT_THAT(evaluated(u"c1+"_qs, table).progress, ElementsAre(0, 100)) << "the first row is the last";
    EXPECT_THAT(ended.progress, ElementsAre(0, 25, 50, 75, 100))
        << "kept: later rows are tried up to row 10,000";
}

TEST(Evaluation, WithoutATableOrBeyondAsciiOnlyAFailureIsHeard) {
    const support::LogRecorder log;
    for (const auto& outcome : {evaluated(u"c1"_qs, nullptr), evaluated(u"c1*é"_qs, tableOf({{1}}))}) {
        EXPECT_EQ(outcome.failures.size(), 1U);
        EXPECT_TRUE(outcome.results.empty());
        EXPECT_TRUE(outcome.progress.empty());
    }
    EXPECT_THAT(log.lines(), ElementsAre(u"-[XExpressionEvaluatorTask initWithExpression:withData:delegate:] "
                                         "Couldn't convert expression string to ASCII encoding"_qs));
}

TEST(Evaluation, ColumnVariablesEndAt9999) {
    const auto table = std::make_shared<XPTableData>();
    for (std::uint64_t column = 0; column < 10'001; ++column)
        table->writeValueAtColRow(static_cast<double>(column) + 1, column, 0);
    EXPECT_EQ(valuesOf(evaluated(u"c9999+c1"_qs, table)), Values{10'000});
    EXPECT_THAT(evaluated(u"c10000"_qs, table).failures, ElementsAre(HasSubstr("c10000")));
}

TEST(Evaluation, RowsSharedBetweenThreadsGiveTheSameBits) {
    const std::size_t rows = 123'457;
    const auto table = tableOf({many(rows, [](double row) { return row * 0.001 - 7; }),
                                many(rows, [](double row) { return row == 60'000 ? nan : std::sqrt(row); })});
    for (const char* expression : {"sin(c1)+c2*0.5", "c1>0 ? row : c2/c1",
                                   "mktimestamp(2000+mod(row,9),1,1,0,0,c1)" /* by the parser */,
                                   "mean(c2,9)-delta(c1)" /* not to be shared */}) {
        const auto prepared = expressionText::prepare(QString::fromLatin1(expression), 2);
        ASSERT_TRUE(prepared);
        Values alone(rows);
        makeParserRowEvaluator(*prepared, *table)->evaluate(0, alone, {});
        const Values shared = valuesOf(evaluated(QString::fromLatin1(expression), table));
        ASSERT_EQ(shared.size(), rows);
        for (std::size_t row = 0; row < rows; ++row)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(shared[row]), std::bit_cast<std::uint64_t>(alone[row]))
                << expression << " row " << row;
    }
}

TEST(Evaluation, StopsBeforeTheNextRow) {
    const auto table = tableOf({{1, 2, 3}});
    std::stop_source stop;
    stop.request_stop();
    Values untouched(3, 7);
    makeRowEvaluator(*expressionText::prepare(u"c1*2"_qs, 1), *table)
        ->evaluate(1, untouched, stop.get_token());
    EXPECT_EQ(untouched, Values(3, 7));
}

TEST(Evaluation, TheFirstErrorInRowOrderDecidesWhicheverThreadMeetsIt) {
    const auto table = tableOf({Values(60'000)});
    const auto harmless = evaluated(u"row==20002 ? 1<<70 : row==20005 ? 2.5&1 : row"_qs, table);
    const auto values = valuesOf(harmless);
    ASSERT_EQ(values.size(), 60'000U);
    EXPECT_EQ(std::count_if(values.begin(), values.end(), [](double value) { return std::isnan(value); }), 2);
    for (const QString& fatal :
         {u"row==20002 ? 2.5&1 : row==20005 ? 1<<70 : row"_qs, u"row==59999 ? 2.5&1 : row"_qs})
        EXPECT_EQ(evaluated(fatal, table).failures.size(), 1U) << fatal.toStdString();
}

} // namespace
