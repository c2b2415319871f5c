// The callbacks between the parser and the filters and the calendar. A result is a double: the library itself
// takes one without a fraction for an integer.
#include "Classes/ExpressionEvaluator/EvaluatorFunctions.h"

#include "Core/CalendarFields.h"
#include "Core/MissingValue.h"
#include "Core/SignalFilters.h"

#include <muparserx/mpOprtPostfixCommon.h>
#include <muparserx/mpParser.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace {

constexpr int anyNumber = -1; // of arguments

class Arguments {
  public:
    Arguments(const mup::ptr_val_type* values, int count) : m_values(values), m_count(count) {}

    int count() const { return m_count; }
    double number(int index) const { return m_values[index]->GetFloat(); }
    /// The library's error for a value that is not whole.
    std::int64_t whole(int index) const { return m_values[index]->GetInteger(); }

  private:
    const mup::ptr_val_type* m_values;
    int m_count;
};

/// What the callbacks share. `Derived` has `name`, `argumentCount`, `description` and `value(arguments)`; a
/// clone copies its state. All arguments are read before the result is written: the library uses the first
/// one's place for it.
template <class Derived>
class EvaluatorFunction : public mup::ICallback {
  public:
    EvaluatorFunction() : ICallback(mup::cmFUNC, Derived::name, Derived::argumentCount) {}

    void Eval(mup::ptr_val_type& result, const mup::ptr_val_type* arguments, int count) final {
        *result = static_cast<Derived&>(*this).value(Arguments(arguments, count));
    }
    const mup::char_type* GetDesc() const final { return Derived::description; }
    mup::IToken* Clone() const final {
        return new Derived(static_cast<const Derived&>(*this));
    } // NOLINT: the library's
};

class FN_Mean final : public EvaluatorFunction<FN_Mean> {
  public:
    static constexpr auto name = "mean";
    static constexpr int argumentCount = 2;
    static constexpr auto description = "Moving average";

    /// The size is that of the first row.
    double value(const Arguments& arguments) {
        if (!m_average) {
            const std::int64_t size = arguments.whole(1);
            if (size < 1 || size > std::int64_t{MovingAverage::greatestSize})
                throw mup::ParserError("incorrect moving average size");
            m_average.emplace(static_cast<std::size_t>(size));
        }
        return m_average->push(arguments.number(0));
    }

  private:
    std::optional<MovingAverage> m_average;
};

class FN_Delta final : public EvaluatorFunction<FN_Delta> {
  public:
    static constexpr auto name = "delta";
    static constexpr int argumentCount = 1;
    static constexpr auto description = "Delta, y = x[n] - x[n-1]";

    double value(const Arguments& arguments) { return m_difference.push(arguments.number(0)); }

  private:
    Difference m_difference;
};

class FN_Integrate final : public EvaluatorFunction<FN_Integrate> {
  public:
    static constexpr auto name = "integrate";
    static constexpr int argumentCount = 1;
    static constexpr auto description = "Cumulative sum of values";

    double value(const Arguments& arguments) { return m_sum.push(arguments.number(0)); }

  private:
    CumulativeSum m_sum;
};

class FN_LowPass final : public EvaluatorFunction<FN_LowPass> {
  public:
    static constexpr auto name = "lowpass";
    static constexpr int argumentCount = 2;
    static constexpr auto description = "Low-pass filter";

    double value(const Arguments& arguments) {
        return m_filter.push(arguments.number(0), arguments.number(1));
    }

  private:
    LowPassFilter m_filter;
};

class FN_HighPass final : public EvaluatorFunction<FN_HighPass> {
  public:
    static constexpr auto name = "highpass";
    static constexpr int argumentCount = 2;
    static constexpr auto description = "High-pass filter";

    double value(const Arguments& arguments) {
        return m_filter.push(arguments.number(0), arguments.number(1));
    }

  private:
    HighPassFilter m_filter;
};

class FN_percentile final : public EvaluatorFunction<FN_percentile> {
  public:
    static constexpr auto name = "percentile";
    static constexpr int argumentCount = 3;
    static constexpr auto description = "Moving percentile";

    double value(const Arguments& arguments) {
        return m_percentile.push(arguments.number(0), arguments.number(1), arguments.number(2));
    }

  private:
    MovingPercentile m_percentile;
};

class FN_FIR_Filter final : public EvaluatorFunction<FN_FIR_Filter> {
  public:
    static constexpr auto name = "fir";
    static constexpr int argumentCount = anyNumber;
    static constexpr auto description = "Finite impulse response (FIR) filter";

    double value(const Arguments& arguments) {
        if (arguments.count() < 2)
            return missing;
        m_coefficients.clear();
        for (int i = 1; i < arguments.count(); ++i)
            m_coefficients.push_back(arguments.number(i));
        return m_filter.push(arguments.number(0), m_coefficients);
    }

  private:
    FirFilter m_filter;
    std::vector<double> m_coefficients; // of this row; kept for its storage
};

class FN_mod final : public EvaluatorFunction<FN_mod> {
  public:
    static constexpr auto name = "mod";
    static constexpr int argumentCount = 2;
    static constexpr auto description = "Modulo operation";

    static double value(const Arguments& arguments) {
        return std::fmod(arguments.number(0), arguments.number(1));
    }
};

class FN_CurrentTime final : public EvaluatorFunction<FN_CurrentTime> {
  public:
    static constexpr auto name = "time";
    static constexpr int argumentCount = 0;
    static constexpr auto description = "Returns current system time";

    /// Kept: seconds since the evaluation was set up, whatever the description says.
    double value(const Arguments&) const { return now() - m_creationTime; }

  private:
    static double now() {
        using std::chrono::microseconds;
        const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
        return static_cast<double>(std::chrono::duration_cast<microseconds>(sinceEpoch).count()) / 1'000'000;
    }

    double m_creationTime = now();
};

/// One field of a timestamp in local time.
class CalendarFunction final : public mup::ICallback {
  public:
    CalendarFunction(const char* name, const char* description, double (*field)(double timestamp))
        : ICallback(mup::cmFUNC, name, 1), m_description(description), m_field(field) {}

    void Eval(mup::ptr_val_type& result, const mup::ptr_val_type* arguments, int count) override {
        *result = m_field(Arguments(arguments, count).number(0));
    }
    const mup::char_type* GetDesc() const override { return m_description; }
    mup::IToken* Clone() const override { return new CalendarFunction(*this); } // NOLINT: the library's

  private:
    const char* m_description;
    double (*m_field)(double timestamp);
};

void defineCalendarFunctions(mup::ParserX& parser) {
    const struct {
        const char* name;
        const char* description;
        double (*field)(double timestamp);
    } functions[] = {
        {"year", "Returns year of given timestamp", calendarField<&CalendarFields::year>},
        {"month", "Returns month of given timestamp (1...12)", calendarField<&CalendarFields::month>},
        {"dayofmonth", "Returns day of month of given timestamp (1...31)",
         calendarField<&CalendarFields::dayOfMonth>},
        {"hour", "Returns hour component of given timestamp (0...23)", calendarField<&CalendarFields::hour>},
        {"minute", "Returns minute component of given timestamp (0...59)",
         calendarField<&CalendarFields::minute>},
        {"second", "Returns seconds of given timestamp (0...59)", calendarField<&CalendarFields::second>},
        {"dayofweek", "Returns day of week component of given timestamp (1...7, (Mon...Sun))",
         calendarField<&CalendarFields::dayOfWeek>},
        {"dayofyear", "Returns day of year of given timestamp (1...366)",
         calendarField<&CalendarFields::dayOfYear>},
    };
    for (const auto& [name, description, field] : functions)
        parser.DefineFun(
            mup::ptr_cal_type(new CalendarFunction(name, description, field))); // NOLINT: the library owns it
}

class FN_mktimestamp final : public EvaluatorFunction<FN_mktimestamp> {
  public:
    static constexpr auto name = "mktimestamp";
    static constexpr int argumentCount = 6;
    static constexpr auto description = "Returns timestamp for given year, month, day, hour, minute, second";

    /// A gap in the data is a gap in the result; a number that is not whole is the library's error.
    double value(const Arguments& arguments) {
        int fields[5];
        for (int i = 0; i < 6; ++i) {
            if (std::isnan(arguments.number(i)))
                return missing;
        }
        for (int i = 0; i < 5; ++i) {
            const std::int64_t field = arguments.whole(i);
            fields[i] = static_cast<int>(field);
            if (fields[i] != field)
                return missing;
        }
        return startOf({.year = fields[0],
                        .month = fields[1],
                        .dayOfMonth = fields[2],
                        .hour = fields[3],
                        .minute = fields[4]}) +
               arguments.number(5);
    }

  private:
    struct Minute {
        CalendarDate date;
        int daylightSaving; ///< in force now
        double start;
    };

    /// The row before has most often had the same minute, and the C library asks the file system for a
    /// changed time zone at each call.
    double startOf(const CalendarDate& date) {
        const std::tm now = currentLocalTime();
        if (!m_minute || m_minute->date != date || m_minute->daylightSaving != now.tm_isdst)
            m_minute = {date, now.tm_isdst, timestampOf(date, now)};
        return m_minute->start;
    }

    std::optional<Minute> m_minute;
};

// Limits to what the library itself offers: one wrong number must not take all memory, nor keep a single row
// busy for minutes, which nothing can cancel.

/// zeros, ones and eye.
class BoundedArray final : public mup::ICallback {
  public:
    explicit BoundedArray(const mup::ptr_cal_type& original)
        : ICallback(mup::cmFUNC, original->GetIdent().c_str(), original->GetArgc()), m_original(original) {}

    void Eval(mup::ptr_val_type& result, const mup::ptr_val_type* arguments, int count) override {
        constexpr double mostElements = 10'000;
        const Arguments sizes(arguments, count);
        double elements = 1;
        for (int i = 0; i < count; ++i)
            elements *= sizes.number(i);
        if (count == 1) // a square
            elements *= elements;
        if (elements > mostElements)
            throw mup::ParserError("an array of more than 10000 elements");
        m_original->Eval(result, arguments, count);
    }
    const mup::char_type* GetDesc() const override { return m_original->GetDesc(); }
    mup::IToken* Clone() const override { return new BoundedArray(*this); } // NOLINT: the library's

  private:
    mup::ptr_cal_type m_original; // without state
};

/// The factorial, which the library multiplies out one by one even when the product has long left the
/// doubles.
class BoundedFactorial final : public mup::OprtFact {
  public:
    void Eval(mup::ptr_val_type& result, const mup::ptr_val_type* arguments, int count) override {
        constexpr mup::int_type greatestFinite = 170;
        if (arguments[0]->IsInteger() && arguments[0]->GetInteger() > greatestFinite)
            *result = std::numeric_limits<double>::infinity();
        else
            OprtFact::Eval(result, arguments, count);
    }
    mup::IToken* Clone() const override { return new BoundedFactorial(*this); } // NOLINT: the library's
};

void limitLibrary(mup::ParserX& parser) {
    for (const char* name : {"zeros", "ones", "eye"}) {
        const mup::ptr_cal_type original(parser.GetFunDef().at(name)->AsICallback());
        parser.RemoveFun(name);
        parser.DefineFun(mup::ptr_cal_type(new BoundedArray(original))); // NOLINT: the library owns it
    }
    parser.RemovePostfixOprt("!");
    parser.DefinePostfixOprt(
        mup::TokenPtr<mup::IOprtPostfix>(new BoundedFactorial)); // NOLINT: the library owns it
}

template <class... Functions>
void define(mup::ParserX& parser) {
    (parser.DefineFun(mup::ptr_cal_type(new Functions)), ...); // NOLINT: the library owns them
}

} // namespace

void defineEvaluatorFunctions(mup::ParserX& parser) {
    define<FN_Mean, FN_Delta, FN_Integrate, FN_mod, FN_CurrentTime, FN_LowPass, FN_HighPass, FN_FIR_Filter,
           FN_mktimestamp, FN_percentile>(parser);
    defineCalendarFunctions(parser);
    limitLibrary(parser);
}
