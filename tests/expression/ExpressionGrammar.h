// Makes expressions up: most make sense, some mix types, and a few are beyond what can be compiled.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

/// `choose(n)` is a number below n: from a random generator, or from the bytes of a fuzzer, where 0 comes
/// without end when they are used up.
template <class Choose>
class ExpressionGrammar {
  public:
    explicit ExpressionGrammar(Choose choose) : m_choose(choose) {}

    std::string expression() { return m_choose(4) == 3 ? truth(5) : number(5); }

  private:
    std::string oneOf(std::initializer_list<const char*> texts) {
        return texts.begin()[m_choose(static_cast<unsigned>(texts.size()))];
    }

    std::string number(int depth) {
        switch (depth == 0 ? 0 : m_choose(15)) {
        case 0:
        case 1:
            return oneOf({"c1", "c2", "c3", "row", "pi", "e", "nan"});
        case 2:
            return oneOf(
                {"0", "1", "2", "3", "5", "6", "0.5", "1e-9", "1e308", "2147483648", "0x1F", "0b101", "7."});
        case 3:
        case 4:
        case 5:
            return number(depth - 1) + oneOf({"+", "-", "*", "/", "^", " - "}) + number(depth - 1);
        case 6:
            return '(' + number(depth - 1) + ')';
        case 7:
            return oneOf({"-", "+", "(float)", "- "}) + number(depth - 1);
        case 8:
        case 9:
            return oneOf({"sin",   "cos",   "tan",   "asin",  "acos", "atan",   "sinh",     "cosh",
                          "tanh",  "asinh", "acosh", "atanh", "log",  "ln",     "log2",     "exp",
                          "log10", "sqrt",  "cbrt",  "abs",   "hour", "second", "dayofyear"}) +
                   '(' + number(depth - 1) + ')';
        case 10:
            return oneOf({"pow", "hypot", "atan2", "fmod", "mod", "remainder"}) + '(' + number(depth - 1) +
                   ',' + number(depth - 1) + ')';
        case 11:
            return oneOf({"max", "min", "sum"}) + '(' + listOfNumbers(depth - 1) + ')';
        case 12:
            return truth(depth - 1) + '?' + number(depth - 1) + ':' + number(depth - 1);
        case 13:
            return number(depth - 1) + oneOf({"k", "m", "u", "n", "M", "G"});
        default:
            return beyond(depth - 1);
        }
    }

    std::string listOfNumbers(int depth) {
        std::string list = number(depth);
        for (unsigned more = m_choose(3); more > 0; --more)
            list += ',' + number(depth);
        return list;
    }

    std::string truth(int depth) {
        switch (depth == 0 ? 0 : m_choose(9)) {
        case 0:
            return oneOf({"true", "false"});
        case 1:
        case 2:
        case 3:
            return number(depth - 1) + oneOf({"<", "<=", ">", ">=", "==", "!="}) + number(depth - 1);
        case 4:
        case 5:
            return truth(depth - 1) + oneOf({"&&", "||", " and ", " or ", "==", "!=", "<"}) +
                   truth(depth - 1);
        case 6:
            return '(' + truth(depth - 1) + ')';
        case 7:
            return truth(depth - 1) + '?' + truth(depth - 1) + ':' + truth(depth - 1);
        default:
            return beyond(depth - 1);
        }
    }

    /// What the other productions never say: wrong types, errors of single rows, states, bits, arrays, texts.
    std::string beyond(int depth) {
        switch (m_choose(10)) {
        case 0:
            return '(' + truth(depth) + ')';
        case 1:
            return number(depth);
        case 2:
            return oneOf({"(int)", "delta", "sizeof", "strlen"}) + '(' + number(depth) + ')';
        case 3:
            return number(depth) + oneOf({"&", "|", "<<", ">>", ",", "//"}) + number(depth);
        case 4:
            return '{' + listOfNumbers(depth) + "}[0]";
        case 5:
            return number(depth) + oneOf({"!", "'", "i", "\n", "%", " # "});
        case 6:
            return "mean(" + number(depth) + ",2)";
        case 7:
            return oneOf({"max", "min", "sum", "sin", "fir"}) + '(' + truth(depth) + ')';
        case 8:
            return oneOf({"\"a\"", "c4", "ones(2,2)", "()", "max()"});
        default:
            return oneOf({"-", "!", "or ", "andmean("}) + truth(depth);
        }
    }

    Choose m_choose;
};
