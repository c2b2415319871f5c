// A flat postfix program over columns of doubles, carried out a block of rows at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>
#include <vector>

/// One operation on the rows of a block. Its operands lie behind each other, `PostfixProgram::blockRows`
/// apart, the first at `operands`, which its results replace.
using BlockOperation = void (*)(double* operands, std::size_t operandsNumber, std::size_t rows);

/// A value: a program is built once, then evaluated by any number of threads, each with a stack of its own.
/// A whole block goes through one operation before the next, so that choosing the operation costs nothing a
/// row and its loop is the compiler's to vectorise; the blocks of a stack stay in the nearest cache.
class PostfixProgram {
  public:
    static constexpr std::size_t blockRows = 512;

    void pushConstant(double value);
    /// The column's values, NaN for rows beyond its end. It must outlive the program.
    void pushColumn(std::span<const double> column);
    void pushRowNumber(); ///< from 0
    /// Takes the last `operandsNumber` values, of which there are at least 1 and as many as were pushed, off
    /// the stack and pushes their result.
    void apply(BlockOperation operation, std::size_t operandsNumber);

    std::size_t depth() const { return m_depth; } ///< of the stack when the program has ended
    std::size_t greatestDepth() const { return m_greatestDepth; }

    /// The values of the rows from `firstRow` on, one for each place of `results`, of which there are at most
    /// `blockRows`. `stack` has `greatestDepth() * blockRows` places. The program leaves one value.
    void evaluate(std::uint64_t firstRow, std::span<double> results, std::span<double> stack) const;

  private:
    struct RowNumber {};
    struct Application {
        BlockOperation operation;
        std::size_t operandsNumber;
    };
    using Step = std::variant<double, std::span<const double>, RowNumber, Application>;

    void push(Step step);

    std::vector<Step> m_steps;
    std::size_t m_depth = 0;
    std::size_t m_greatestDepth = 0;
};
