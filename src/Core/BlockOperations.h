// Operations of a postfix program, made from functions of doubles.
#pragma once

#include "Core/PostfixProgram.h"

namespace blockOperations {

/// f(x)
template <double (*f)(double)>
void unary(double* x, std::size_t, std::size_t rows) {
    for (std::size_t row = 0; row < rows; ++row)
        x[row] = f(x[row]);
}

/// f(x, y)
template <double (*f)(double, double)>
void binary(double* x, std::size_t, std::size_t rows) {
    const double* const y = x + PostfixProgram::blockRows;
    for (std::size_t row = 0; row < rows; ++row)
        x[row] = f(x[row], y[row]);
}

/// next(next(next(start, x), y), z) and so on, for one operand or more
template <class Fold>
void folded(double* operands, std::size_t operandsNumber, std::size_t rows) {
    for (std::size_t row = 0; row < rows; ++row)
        operands[row] = Fold::next(Fold::start, operands[row]);
    for (std::size_t i = 1; i < operandsNumber; ++i) {
        const double* const operand = operands + i * PostfixProgram::blockRows;
        for (std::size_t row = 0; row < rows; ++row)
            operands[row] = Fold::next(operands[row], operand[row]);
    }
}

/// x != 0 ? y : z
inline void choice(double* x, std::size_t, std::size_t rows) {
    const double* const y = x + PostfixProgram::blockRows;
    const double* const z = y + PostfixProgram::blockRows;
    for (std::size_t row = 0; row < rows; ++row)
        x[row] = x[row] != 0 ? y[row] : z[row];
}

} // namespace blockOperations
