// Expressions: any text gives values or an error, never a crash, and the same twice.
#include "Classes/ExpressionEvaluator/ExpressionErrors.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Classes/ExpressionEvaluator/RowEvaluator.h"
#include "EmbeddedPlugins/Common/XPTableData.h"
#include "FuzzedBytes.h"

#include <QString>

#include <array>
#include <bit>
#include <limits>

namespace {

constexpr std::size_t rows = 6;

const XPTableData& table() {
    static const auto filled = [] {
        constexpr auto none = std::numeric_limits<double>::quiet_NaN();
        constexpr std::array<std::array<double, rows>, 3> columns{
            {{0, 1, 2, 3, 4, 5}, {-1.5, none, 1e300, 0, 1e9, -0.0}, {1700000000, 7, none, none, 1e-9, 2}}};
        auto made = std::make_unique<XPTableData>();
        for (std::size_t column = 0; column < columns.size(); ++column)
            for (std::size_t row = 0; row < rows; ++row)
                made->writeValueAtColRow(columns[column][row], column, row);
        return made;
    }();
    return *filled;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const bool isReady = [] {
        expressionErrors::prepareLibrary();
        return true;
    }();
    require(isReady);
    const auto text = QString::fromLatin1(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const auto prepared = expressionText::prepare(
        expressionText::withColumnVariables(text, std::array<std::string, 2>{"speed", "c1"}),
        table().columnsNumber());
    if (!prepared)
        return 0;
    std::array<double, rows> values{};
    makeRowEvaluator(*prepared, table())->evaluate(0, values, {});
    return 0;
}
