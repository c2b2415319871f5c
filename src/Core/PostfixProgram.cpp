// Builds a postfix program and runs blocks of rows through it.
#include "Core/PostfixProgram.h"

#include "Core/MissingValue.h"

#include <algorithm>

namespace {

void fillWithColumn(std::span<double> block, std::span<const double> column, std::uint64_t firstRow) {
    const std::size_t start = std::min<std::uint64_t>(firstRow, column.size());
    const auto copied = column.subspan(start, std::min(block.size(), column.size() - start));
    std::fill(std::copy(copied.begin(), copied.end(), block.begin()), block.end(), missing);
}

void fillWithRowNumbers(std::span<double> block, std::uint64_t firstRow) {
    for (double& number : block)
        number = static_cast<double>(firstRow++);
}

} // namespace

void PostfixProgram::pushConstant(double value) {
    push(value);
}

void PostfixProgram::pushColumn(std::span<const double> column) {
    push(column);
}

void PostfixProgram::pushRowNumber() {
    push(RowNumber());
}

void PostfixProgram::push(Step step) {
    m_steps.push_back(step);
    m_greatestDepth = std::max(m_greatestDepth, ++m_depth);
}

void PostfixProgram::apply(BlockOperation operation, std::size_t operandsNumber) {
    m_steps.emplace_back(Application{operation, operandsNumber});
    m_depth -= operandsNumber - 1;
}

void PostfixProgram::evaluate(std::uint64_t firstRow, std::span<double> results,
                              std::span<double> stack) const {
    double* top = stack.data(); // where the next value goes
    for (const Step& step : m_steps) {
        if (const auto* application = std::get_if<Application>(&step)) {
            top -= application->operandsNumber * blockRows;
            application->operation(top, application->operandsNumber, results.size());
        } else if (const auto* column = std::get_if<std::span<const double>>(&step)) {
            fillWithColumn({top, results.size()}, *column, firstRow);
        } else if (const auto* constant = std::get_if<double>(&step)) {
            std::fill_n(top, results.size(), *constant);
        } else {
            fillWithRowNumbers({top, results.size()}, firstRow);
        }
        top += blockRows;
    }
    std::copy_n(stack.begin(), results.size(), results.begin());
}
