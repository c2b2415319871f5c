// Which expressions are compiled, and that nobody can tell from their values.
#include "expression/EvaluationRoads.h"
#include "expression/ExpressionGrammar.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// So many values on the stack at once.
std::string nested(std::size_t values) {
    std::string text;
    for (std::size_t i = 1; i < values; ++i)
        text += "c1+(";
    return text + "c1" + std::string(values - 1, ')');
}

TEST(ExpressionCompiler, TakesWhatTheParserEvaluatesWithoutAnErrorInAnyRow) {
    const EvaluationRoads roads;
    const QStringList texts =
        QStringLiteral(
            "sin(c1)+c2*0.5; row/2; -c1^2; 2^-c1; 2^3^c1; c1^c2; c1-c2-c3; c1/c2/c3; c1*c2^3k; "
            "sin(row)^3+sin(row)^4+sin(row)^5; sin(row)n; sin(row)u; sin(row)m; sin(row)k; sin(row)M; "
            "sin(row)G; c1<c2 ? c1 : c2<c3 ? row : -1; c1<0 && c2<0 || c3<0; "
            "c1<0 || c2<0 && c3<0 ? c1<1 : c1<2; (c1<c2)==(c2<c3); (c1<0)<(c2<0); (float)(c1<c2); "
            "sqrt(c1<c2)+(c1==c2)^2; true ? c1 : c2; max(c1,c2,c3)-min(c1)+sum(c1,c2); 0xFF+0b101+1e3+7.; "
            "nan; 1/0; (c1); pow(c1,c2); hour(c1); mod(c1,c2)+fmod(c1,c3); remainder(c1,c2); "
            "atan2(c1,c2)*hypot(c2,c3); -(+c1); c1 # a comment")
            .split(QStringLiteral("; "));
    for (const QString& each : texts) {
        const std::string text = each.toStdString();
        EXPECT_TRUE(roads.isCompiled(text)) << text;
        EXPECT_EQ(roads.difference(text), "");
    }
    EXPECT_TRUE(roads.isCompiled(nested(64)));
}

TEST(ExpressionCompiler, LeavesTheRestToTheParser) {
    const EvaluationRoads roads;
    const struct {
        const char* why;
        std::vector<const char*> texts;
    } rows[] = {
        {"states, the clock, dates",
         {"delta(c1)", "true anddelta(c1)>=0", "time()*0", "mktimestamp(c1,1,1,0,0,0)"}},
        {"whole and complex numbers", {"c1&1", "c1|c2", "1<<c1", "c1>>1", "(int)c1", "c1!", "2i"}},
        {"a truth is no number", {"-(c1>0)", "(c1>0)*2", "(c1>0)k", "(c1>0)==1", "1<(c1>0)", "max(c1>0)"}},
        {"not even in some rows",
         {"c1<0 ? -(c1>0) : c1", "c1<0 ? (c1>0)+(c1>0) : c1", "c1<0 ? sum(c1>0) : c1"}},
        {"a number is no truth", {"c1 ? 1 : 2", "true && c1", "c1 || true", "true ? c1 : c2<0"}},
        {"texts, arrays, lines", {"\"a\"", "strlen(\"a\")", "{c1,c2}[0]", "ones(2,2)", "c1'", "c1\nc2"}},
        {"faults", {"c1+", "c4", "sin(c1,c2)", "max()", "c1=5", "|| c1", "c1,c2", ""}},
    };
    for (const auto& [why, texts] : rows) {
        for (const char* text : texts) {
            EXPECT_FALSE(roads.isCompiled(text)) << why << ": " << text;
            EXPECT_EQ(roads.difference(text), "");
        }
    }
    EXPECT_FALSE(roads.isCompiled(nested(65)));
}

TEST(ExpressionCompiler, RandomExpressionsGiveTheParsersBits) {
    const EvaluationRoads roads;
    std::mt19937 random(11); // NOLINT: the same every time
    ExpressionGrammar grammar([&random](unsigned n) { return static_cast<unsigned>(random() % n); });
    const int tried = support::rounds(300);
    int compiledNumber = 0;
    for (int i = 0; i < tried; ++i) {
        const std::string text = grammar.expression();
        compiledNumber += roads.isCompiled(text) ? 1 : 0;
        ASSERT_EQ(roads.difference(text), "");
    }
    EXPECT_GT(compiledNumber, tried / 3);
}

} // namespace
