// Literal dumps, descriptions and rectangles.
#include "Classes/ValueEncodings/LiteralDump.h"
#include "Classes/ValueEncodings/XKeyValue.h"
#include "Classes/ValueEncodings/XUtility.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

TEST(LiteralDump, rendersEachKindOfValue) {
    struct Row {
        const char* name;
        QVariant value;
        QString literal;
    };
    const std::vector<Row> rows{
        {"text", u"a\nb\tc"_qs, u"@\"a\\nb\\tc\""_qs},
        {"kept: quotes and backslashes are not escaped", u"say \"\\hi\""_qs, u"@\"say \"\\hi\"\""_qs},
        {"integer", 42, u"@42"_qs},
        {"real", 0.1, u"@0.1"_qs},
        {"boolean", true, u"@1"_qs},
        {"empty list", QVariantList(), u"@[]"_qs},
        {"list", QVariantList{1, u"x"_qs}, u"@[\n@1, \n@\"x\"]"_qs},
        {"map in key order, without nulls",
         QVariantMap{{u"b"_qs, QVariantList{2.5}}, {u"a"_qs, 1}, {u"0"_qs, QVariant()}},
         u"@{@\"a\": @1, @\"b\": @[\n@2.5]}"_qs},
        {"other types", QByteArray("x"), QString()},
    };
    for (const Row& row : rows)
        EXPECT_EQ(LiteralDump::objcRepresentation(row.value), row.literal) << row.name;
}

TEST(XKeyValue, describesItselfWithItsAddress) {
    const auto pair = XKeyValue::keyValueWithKeyValue(u"width"_qs, 2);
    const QString address = QString::number(reinterpret_cast<quintptr>(pair.get()), 16);
    EXPECT_EQ(pair->description(), u"XKeyValue 0x%1: width => 2"_qs.arg(address));
    EXPECT_TRUE(XKeyValue().description().endsWith(u": (null) => (null)"_qs));
}

TEST(XUtility, normalizesRectanglesDraggedInAnyDirection) {
    EXPECT_EQ(XUtility::normalizeRect({10, 10, -4, -6}), QRectF(6, 4, 4, 6));
    EXPECT_EQ(XUtility::normalizeRect({10, 10, 4, -6}), QRectF(10, 4, 4, 6));
    EXPECT_EQ(XUtility::normalizeRect({-1, 2, -4, 6}), QRectF(-5, 2, 4, 6));
    EXPECT_EQ(XUtility::normalizeRect({1, 2, 3, 4}), QRectF(1, 2, 3, 4));
}

} // namespace
