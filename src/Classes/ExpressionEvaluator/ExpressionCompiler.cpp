// What operators and functions do to numbers and truths, and the walk over the postfix form of the library.
#include "Classes/ExpressionEvaluator/ExpressionCompiler.h"

#include "Classes/ExpressionEvaluator/ExpressionParser.h"
#include "Core/BlockOperations.h"
#include "Core/CalendarFields.h"

#include <muparserx/mpIPrecedence.h>
#include <muparserx/mpRPN.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

// The library keeps the postfix form to itself; an explicit instantiation may name a private member, and no
// longer compiles when that member changes.
template <auto member>
struct PostfixFormAccess {
    friend const mup::RPN& postfixFormOf(const mup::ParserXBase& parser) { return parser.*member; }
};
template struct PostfixFormAccess<&mup::ParserXBase::m_rpn>;
const mup::RPN& postfixFormOf(const mup::ParserXBase& parser);

namespace {

/// Whole numbers are a type of their own to the library, but to nothing that is translated. A truth is 0
/// or 1.
enum class OperandType { Number, Truth };

/// The operands that the library takes without an error of types.
enum class Takes { Numbers, OneType, Anything };

struct LibraryOperation {
    mup::ECmdCode kind;
    std::string_view name;
    int operandsNumber;
    Takes takes;
    OperandType result;
    BlockOperation operation;
};

constexpr int anyOperandsNumber = -1; // but 0

double identity(double x) {
    return x;
}

double negation(double x) {
    return -x;
}

/// The library multiplies for small whole exponents, where `pow` may round otherwise.
double power(double x, double y) {
    if (y == 1)
        return x;
    if (y == 2)
        return x * x;
    if (y == 3)
        return x * x * x;
    if (y == 4)
        return x * x * x * x;
    if (y == 5)
        return x * x * x * x * x;
    return std::pow(x, y);
}

// Of what is neither larger nor smaller the first stays, so that a NaN changes nothing.

struct Largest {
    static constexpr double start = -1e30;
    static double next(double largest, double x) { return largest < x ? x : largest; }
};

struct Smallest {
    static constexpr double start = 1e30;
    static double next(double smallest, double x) { return x < smallest ? x : smallest; }
};

struct Sum {
    static constexpr double start = 0;
    static double next(double sum, double x) { return sum + x; }
};

template <double (*f)(double)>
constexpr LibraryOperation function(std::string_view name) {
    return {mup::cmFUNC, name, 1, Takes::Anything, OperandType::Number, blockOperations::unary<f>};
}

template <double (*f)(double, double)>
constexpr LibraryOperation function2(std::string_view name) {
    return {mup::cmFUNC, name, 2, Takes::Anything, OperandType::Number, blockOperations::binary<f>};
}

template <class Fold>
constexpr LibraryOperation functionOfAll(std::string_view name) {
    return {mup::cmFUNC,         name,
            anyOperandsNumber,   Takes::Numbers,
            OperandType::Number, blockOperations::folded<Fold>};
}

template <double (*f)(double)>
constexpr LibraryOperation sign(std::string_view name, Takes takes = Takes::Numbers) {
    return {mup::cmOPRT_INFIX, name, 1, takes, OperandType::Number, blockOperations::unary<f>};
}

template <double (*f)(double)>
constexpr LibraryOperation unit(std::string_view name) {
    return {mup::cmOPRT_POSTFIX, name, 1, Takes::Numbers, OperandType::Number, blockOperations::unary<f>};
}

template <double (*f)(double, double)>
constexpr LibraryOperation arithmetic(std::string_view name, Takes takes = Takes::Numbers) {
    return {mup::cmOPRT_BIN, name, 2, takes, OperandType::Number, blockOperations::binary<f>};
}

template <double (*f)(double, double)>
constexpr LibraryOperation comparison(std::string_view name) {
    return {mup::cmOPRT_BIN, name, 2, Takes::OneType, OperandType::Truth, blockOperations::binary<f>};
}

constexpr std::array libraryOperations = {
    arithmetic<[](double x, double y) { return x + y; }>("+"),
    arithmetic<[](double x, double y) { return x - y; }>("-"),
    arithmetic<[](double x, double y) { return x * y; }>("*"),
    arithmetic<[](double x, double y) { return x / y; }>("/"),
    arithmetic<power>("^", Takes::Anything),
    comparison<[](double x, double y) { return x == y ? 1.0 : 0.0; }>("=="),
    comparison<[](double x, double y) { return x != y ? 1.0 : 0.0; }>("!="),
    comparison<[](double x, double y) { return x < y ? 1.0 : 0.0; }>("<"),
    comparison<[](double x, double y) { return x <= y ? 1.0 : 0.0; }>("<="),
    comparison<[](double x, double y) { return y < x ? 1.0 : 0.0; }>(">"),
    comparison<[](double x, double y) { return y <= x ? 1.0 : 0.0; }>(">="),
    sign<negation>("-"),
    sign<identity>("+"),
    sign<identity>("(float)", Takes::Anything),
    unit<[](double x) { return x * 1e-9; }>("n"),
    unit<[](double x) { return x * 1e-6; }>("u"),
    unit<[](double x) { return x * 1e-3; }>("m"),
    unit<[](double x) { return x * 1e3; }>("k"),
    unit<[](double x) { return x * 1e6; }>("M"),
    unit<[](double x) { return x * 1e9; }>("G"),
    function<std::sin>("sin"),
    function<std::cos>("cos"),
    function<std::tan>("tan"),
    function<std::asin>("asin"),
    function<std::acos>("acos"),
    function<std::atan>("atan"),
    function<std::sinh>("sinh"),
    function<std::cosh>("cosh"),
    function<std::tanh>("tanh"),
    function<std::asinh>("asinh"),
    function<std::acosh>("acosh"),
    function<std::atanh>("atanh"),
    function<std::log>("log"),
    function<std::log>("ln"),
    function<std::log2>("log2"),
    function<std::log10>("log10"),
    function<std::exp>("exp"),
    function<std::sqrt>("sqrt"),
    function<std::cbrt>("cbrt"),
    function<std::fabs>("abs"),
    function<calendarField<&CalendarFields::year>>("year"),
    function<calendarField<&CalendarFields::month>>("month"),
    function<calendarField<&CalendarFields::dayOfMonth>>("dayofmonth"),
    function<calendarField<&CalendarFields::hour>>("hour"),
    function<calendarField<&CalendarFields::minute>>("minute"),
    function<calendarField<&CalendarFields::second>>("second"),
    function<calendarField<&CalendarFields::dayOfWeek>>("dayofweek"),
    function<calendarField<&CalendarFields::dayOfYear>>("dayofyear"),
    function2<std::pow>("pow"),
    function2<std::hypot>("hypot"),
    function2<std::atan2>("atan2"),
    function2<std::fmod>("fmod"),
    function2<std::fmod>("mod"),
    function2<std::remainder>("remainder"),
    functionOfAll<Largest>("max"),
    functionOfAll<Smallest>("min"),
    functionOfAll<Sum>("sum"),
};

constexpr BlockOperation conjunction =
    blockOperations::binary<[](double x, double y) { return x != 0 ? y : x; }>;
constexpr BlockOperation disjunction =
    blockOperations::binary<[](double x, double y) { return x != 0 ? x : y; }>;

/// Walks over the postfix form once and keeps account of the types on the stack. Where the library jumps,
/// both branches are computed and one is chosen: no operation has an effect or an error.
class Translation {
  public:
    explicit Translation(const ExpressionParser& parser) : m_parser(parser) {}

    std::optional<PostfixProgram> translated(const mup::token_vec_type& tokens) && {
        constexpr std::size_t greatestDepth = 64;
        const bool isUnderstood = std::all_of(
            tokens.begin(), tokens.end(), [this](const mup::ptr_tok_type& token) { return take(*token); });
        if (!isUnderstood || !m_branches.empty() || m_types.size() != 1 ||
            m_program.greatestDepth() > greatestDepth)
            return {};
        return std::move(m_program);
    }

  private:
    /// A stretch of the postfix form that leaves one value and does not touch those before it.
    struct Branch {
        mup::ECmdCode end;
        std::size_t base;    ///< number of values before it
        BlockOperation join; ///< with the value before it; null where another branch follows
    };

    bool take(mup::IToken& token) {
        switch (token.GetCode()) {
        case mup::cmVAL:
            return takeValue(*token.AsIValue());
        case mup::cmFUNC:
        case mup::cmOPRT_BIN:
        case mup::cmOPRT_INFIX:
        case mup::cmOPRT_POSTFIX:
            return takeOperation(*token.AsICallback());
        case mup::cmIF:
            return endsWithTruth() && begin(mup::cmELSE);
        case mup::cmELSE:
            return end(mup::cmELSE) && begin(mup::cmENDIF);
        case mup::cmENDIF:
            return end(mup::cmENDIF) && m_types.rbegin()[0] == m_types.rbegin()[1] &&
                   apply(blockOperations::choice, 3, m_types.back());
        case mup::cmSHORTCUT_BEGIN:
            return endsWithTruth() &&
                   begin(mup::cmSHORTCUT_END,
                         token.AsIPrecedence()->GetPri() == mup::prLOGIC_OR ? disjunction : conjunction);
        case mup::cmSHORTCUT_END: {
            const BlockOperation join = m_branches.empty() ? nullptr : m_branches.back().join;
            return end(mup::cmSHORTCUT_END) && endsWithTruth() && apply(join, 2, OperandType::Truth);
        }
        default: // indices, arrays, lines
            return false;
        }
    }

    bool endsWithTruth() const { return !m_types.empty() && m_types.back() == OperandType::Truth; }

    bool begin(mup::ECmdCode end, BlockOperation join = nullptr) {
        m_branches.push_back({end, m_types.size(), join});
        return true;
    }

    bool end(mup::ECmdCode end) {
        if (m_branches.empty() || m_branches.back().end != end ||
            m_types.size() != m_branches.back().base + 1)
            return false;
        m_branches.pop_back();
        return true;
    }

    bool takeValue(mup::IValue& value) {
        if (const ExpressionParser::Source* source = m_parser.sourceOf(value)) {
            if (source->column)
                m_program.pushColumn(*source->column);
            else
                m_program.pushRowNumber();
            m_types.push_back(OperandType::Number);
            return true;
        }
        const char type = value.GetType();
        m_program.pushConstant(value.GetFloat());
        m_types.push_back(type == 'b' ? OperandType::Truth : OperandType::Number);
        return !value.IsVariable() && (type == 'i' || type == 'f' || type == 'b');
    }

    bool takeOperation(const mup::ICallback& callback) {
        const int count = callback.GetArgsPresent();
        const auto* const operation = std::find_if(
            libraryOperations.begin(), libraryOperations.end(), [&](const LibraryOperation& candidate) {
                return candidate.kind == callback.GetCode() && candidate.name == callback.GetIdent() &&
                       candidate.operandsNumber == callback.GetArgc();
            });
        if (operation == libraryOperations.end() || count < 1 ||
            static_cast<std::size_t>(count) > m_types.size())
            return false;
        const auto operands = std::span(m_types).last(static_cast<std::size_t>(count));
        const auto areAll = [operands](OperandType type) {
            return std::all_of(operands.begin(), operands.end(),
                               [type](OperandType operand) { return operand == type; });
        };
        const bool areTaken =
            operation->takes == Takes::Anything ||
            areAll(operation->takes == Takes::Numbers ? OperandType::Number : operands.front());
        return areTaken && apply(operation->operation, operands.size(), operation->result);
    }

    bool apply(BlockOperation operation, std::size_t operandsNumber, OperandType result) {
        const std::size_t untouched = m_branches.empty() ? 0 : m_branches.back().base;
        if (m_types.size() < untouched + operandsNumber)
            return false;
        m_program.apply(operation, operandsNumber);
        m_types.resize(m_types.size() - operandsNumber);
        m_types.push_back(result);
        return true;
    }

    const ExpressionParser& m_parser;
    PostfixProgram m_program;
    std::vector<OperandType> m_types; ///< of the values on the stack
    std::vector<Branch> m_branches;   ///< that are open
};

} // namespace

std::optional<PostfixProgram> compiled(ExpressionParser& parser) {
    if (parser.setUpError() || !parser.isStateless())
        return {};
    try {
        parser.evaluate(0); // the postfix form comes with the first evaluation
        return Translation(parser).translated(postfixFormOf(parser.parser()).GetData());
    } catch (const mup::ParserError&) {
        return {};
    } catch (const std::exception&) {
        return {};
    }
}
