// Expressions over 1,000,000 rows, beside the plainest loop around the parser library that could do the same.
//
// Run bench_expressions. `loop` sets the two variables and evaluates, on one thread; `oneThread` is the
// program's own loop on one thread, over a table of that many columns; `task` is a whole evaluation as a
// curve starts it, on the processors that are free, column ranges included.
#include "Classes/ExpressionEvaluator/ExpressionErrors.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Classes/ExpressionEvaluator/RowEvaluator.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluatorTask.h"

#include <muparserx/mpParser.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
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

void oneThread(benchmark::State& state) {
    const auto& table = tableOf(static_cast<std::uint64_t>(state.range(0)));
    const auto prepared = expressionText::prepare(QString::fromStdString(sine), table->columnsNumber());
    for (auto _ : state) {
        std::vector<double> results(rows);
        makeRowEvaluator(*prepared, *table)->evaluate(0, results, std::stop_source().get_token());
        benchmark::DoNotOptimize(results.data());
    }
}
BENCHMARK(oneThread)->Arg(2)->Arg(20)->Unit(benchmark::kMillisecond)->UseRealTime();

void task(benchmark::State& state, const char* expression) {
    const auto delegate = std::make_shared<SilentDelegate>();
    for (auto _ : state) {
        XExpressionEvaluatorTask evaluation(QString::fromLatin1(expression), tableOf(2), delegate, 1);
        evaluation.main();
        if (!evaluation.result())
            state.SkipWithError("no result");
    }
}
BENCHMARK_CAPTURE(task, sine, "sin(c1)+c2*0.5")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(task, product, "c1*2")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(task, mean10, "mean(c1,10)")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(task, mean100000, "mean(c1,100000)")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(task, percentile1001, "percentile(c1,50,1001)")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(task, percentileOfAll, "percentile(c1,50,-1)")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(task, hour, "hour(c1)")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(task, mktimestamp, "mktimestamp(2000,1,c1-mod(c1,1),0,0,0)")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(task, bareColumn, "c1")->Unit(benchmark::kMillisecond)->UseRealTime();

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
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
