// Expressions over 1,000,000 rows, beside the plainest loop around the parser library that could do the same.
//
// Run bench_expressions. `scalar` is the compiler's own loop; `loop` sets the two variables and evaluates, on
// one thread; `oneThread` is the program's own loop on one thread, by the road that it takes and by the
// parser; `task` is a whole evaluation as a curve starts it, on the processors that are free, column ranges
// included: its CPU time is that of all threads.
#include "Classes/ExpressionEvaluator/ExpressionErrors.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Classes/ExpressionEvaluator/RowEvaluator.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluatorTask.h"

#include <muparserx/mpParser.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t rows = 1'000'000;
const std::string sine = "sin(c1)+c2*0.5";

std::shared_ptr<const XPTableData> makeTable(std::uint64_t columns) {
    std::mt19937_64 random(42);
    auto table = std::make_shared<XPTableData>();
    table->writeNullAtColRow(columns - 1, rows - 1);
    for (std::uint64_t column = 0; column < columns; ++column) {
        for (double& value : table->writableColumn(column))
            value = static_cast<double>(random() >> 11U) * 0x1p-53 * 100;
    }
    return table;
}

const std::shared_ptr<const XPTableData>& tableOf(std::uint64_t columns) {
    static const auto narrow = makeTable(2);
    static const auto wide = makeTable(20);
    return columns == 2 ? narrow : wide;
}

struct SilentDelegate : XExpressionEvaluatorDelegate {
    void progressChangedPercentage(const QString&, float, quint64) override {}
    void expressionEvaluatedData(const QString&, std::shared_ptr<const XPTableData>, quint64) override {}
    void expressionFailed(const QString&, const QString&, quint64) override {}
};

void scalar(benchmark::State& state) {
    const auto& table = tableOf(2);
    const auto x = table->column(0);
    const auto y = table->column(1);
    for (auto _ : state) {
        std::vector<double> results(rows);
        for (std::size_t row = 0; row < rows; ++row)
            results[row] = std::sin(x[row]) + y[row] * 0.5;
        benchmark::DoNotOptimize(results.data());
    }
}
BENCHMARK(scalar)->Unit(benchmark::kMillisecond)->UseRealTime();

void loop(benchmark::State& state) {
    const auto& table = tableOf(2);
    const auto x = table->column(0);
    const auto y = table->column(1);
    for (auto _ : state) {
        std::vector<double> results(rows);
        mup::ParserX parser(mup::pckALL_NON_COMPLEX);
        mup::Value c1(0.0);
        mup::Value c2(0.0);
        parser.DefineVar("c1", mup::Variable(&c1));
        parser.DefineVar("c2", mup::Variable(&c2));
        parser.SetExpr(sine);
        for (std::size_t row = 0; row < rows; ++row) {
            c1 = x[row];
            c2 = y[row];
            results[row] = parser.Eval().GetFloat();
        }
        benchmark::DoNotOptimize(results.data());
    }
}
BENCHMARK(loop)->Unit(benchmark::kMillisecond)->UseRealTime();

using MakeEvaluator = decltype(makeRowEvaluator);

void oneThread(benchmark::State& state, MakeEvaluator* make, const std::string& expression,
               std::uint64_t columns) {
    const auto& table = tableOf(columns);
    const auto prepared = expressionText::prepare(QString::fromStdString(expression), columns);
    for (auto _ : state) {
        std::vector<double> results(rows);
        make(*prepared, *table)->evaluate(0, results, std::stop_source().get_token());
        benchmark::DoNotOptimize(results.data());
    }
}

void task(benchmark::State& state, const std::string& expression) {
    const auto delegate = std::make_shared<SilentDelegate>();
    for (auto _ : state) {
        XExpressionEvaluatorTask evaluation(QString::fromStdString(expression), tableOf(2), delegate, 1);
        evaluation.main();
        if (!evaluation.result())
            state.SkipWithError("no result");
    }
}

void registerExpressions() {
    const auto oneOf = [](const std::string& road, MakeEvaluator* make, const std::string& expression,
                          std::uint64_t columns) {
        benchmark::RegisterBenchmark(("oneThread/" + road + "/" + expression).c_str(), oneThread, make,
                                     expression, columns)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    };
    for (const char* expression :
         {"sin(c1)+c2*0.5", "c1*2", "(c1+c2)/(c1-c2)", "c2>15 ? c1 : -1", "c1^2+c2^0.5"}) {
        oneOf("taken", makeRowEvaluator, expression, 2);
        oneOf("parser", makeParserRowEvaluator, expression, 2);
    }
    oneOf("parser, 20 columns", makeParserRowEvaluator, sine, 20);
    for (const char* expression :
         {"sin(c1)+c2*0.5", "c1*2", "c1", "mean(c1,10)", "mean(c1,100000)", "percentile(c1,50,1001)",
          "percentile(c1,50,-1)", "hour(c1)", "mktimestamp(2000,1,c1-mod(c1,1),0,0,0)",
          "mktimestamp(2000,1,1,0,(row-mod(row,60))/60,mod(row,60))"})
        benchmark::RegisterBenchmark((std::string("task/") + expression).c_str(), task, expression)
            ->Unit(benchmark::kMillisecond)
            ->MeasureProcessCPUTime()
            ->UseRealTime();
}

/// What a bare column is compared with: the values copied into new memory, their ranges taken.
void copy(benchmark::State& state) {
    const auto source = tableOf(2)->column(0);
    for (auto _ : state) {
        XPTableData table;
        table.writeNullAtColRow(0, rows - 1);
        std::copy(source.begin(), source.end(), table.writableColumn(0).begin());
        table.summarizeColumns();
        benchmark::DoNotOptimize(table.column(0).data());
    }
}
BENCHMARK(copy)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    expressionErrors::prepareLibrary();
    registerExpressions();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
