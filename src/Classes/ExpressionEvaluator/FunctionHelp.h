// What the functions of expressions are called and what they do, for those who type them.
#pragma once

#include <QString>

#include <vector>

struct FunctionHelp {
    QString name;      ///< "mean"
    QString signature; ///< "mean(x, n)"
    QString help;      ///< one line
};

/// The functions that give numbers, by name. The list is made at the first call; main thread.
const std::vector<FunctionHelp>& functionsOfExpressions();
