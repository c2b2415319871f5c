// Expressions: committing, faults that keep the curve, progress, and suggestions.
#include "Classes/CurvesSidebar/ExpressionField.h"
#include "Classes/CurvesSidebar/CompletionList.h"
#include "Classes/SmallViews/XMiniProgressIndicator.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "RowFixture.h"

#include <QSignalSpy>

namespace {

TEST_F(CurveRow, aFaultyExpressionSaysWhyAndKeepsTheCurve) {
    auto* field = control<ExpressionField>("yRowTextField");
    const QString plainTip = field->toolTip();
    QSignalSpy faults(row.get(), &CCurveViewController::faultChanged);
    click("yUseExpressionButton");
    enter("yRowTextField", "c1*2");
    ASSERT_TRUE(support::waitUntil([&] { return curve->y_evaluated_data() != nullptr; }));
    const XTable good = curve->y_evaluated_data();
    EXPECT_FALSE(VelquinStyle::isFaulty(field));

    // Without Return: the focus goes.
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, QStringLiteral("c1+"));
    EXPECT_EQ(curve->y_data_expression(), QStringLiteral("c1*2"));
    control("foldButton")->setFocus();
    EXPECT_EQ(curve->y_data_expression(), QStringLiteral("c1+"));
    ASSERT_TRUE(support::waitUntil([&] { return VelquinStyle::isFaulty(field); }));
    EXPECT_EQ(curve->y_evaluated_data(), good);
    EXPECT_EQ(field->text(), QStringLiteral("c1+"));
    EXPECT_EQ(field->toolTip(), curve->yExpressionError());
    EXPECT_EQ(faults.last().first().toString(), QStringLiteral("Air, y: ") + curve->yExpressionError());
    EXPECT_EQ(drawn(*row->view()).pixelColor(28, 90), currentColors().errorText);

    click("yUseExpressionButton");
    EXPECT_EQ(faults.last().first().toString(), QString()) << "not used";
    click("yUseExpressionButton");
    ASSERT_TRUE(support::waitUntil([&] { return VelquinStyle::isFaulty(field); }));
    enter("yRowTextField", "c1+1");
    ASSERT_TRUE(support::waitUntil([&] { return !VelquinStyle::isFaulty(field); }));
    EXPECT_EQ(field->toolTip(), plainTip);
    EXPECT_EQ(faults.last().first().toString(), QString());
    EXPECT_EQ(faults.count(), 4);
}

TEST_F(CurveRow, progressIsShownUnderTheExpression) {
    auto* bar = control<XMiniProgressIndicator>("xExpressionProgress");
    curve->setXExpressionProgress(40);
    EXPECT_EQ(bar->percentage(), 40);
    EXPECT_EQ(bar->accessibleDescription(), QStringLiteral("40 %"));
    EXPECT_FALSE(bar->isVisible()) << "no expression";
    curve->setX_uses_expression(true);
    EXPECT_EQ(drawn(*row->view()).pixelColor(32, 76), currentColors().text2);
    curve->setXExpressionError(QStringLiteral("wrong"));
    EXPECT_EQ(bar->percentage(), 0);
}

/// "replaced>text,text" for a text with "|" at the cursor.
std::string suggested(const char* textWithCursor, bool asked) {
    const QStringList columns{QStringLiteral("time"), QStringLiteral("air"), QStringLiteral("Air"),
                              QStringLiteral("minute x"), QStringLiteral("a\"b")};
    QString text = QString::fromUtf8(textWithCursor);
    const qsizetype cursor = text.indexOf(u'|');
    text.remove(cursor, 1);
    const Suggestions found = suggestionsFor(text, cursor, columns, asked);
    QStringList texts;
    for (const Suggestion& each : found.list)
        texts << each.text;
    return (text.mid(found.start, found.length) + u'>' + texts.join(u',')).toStdString();
}

TEST(ExpressionSuggestions, doNotListEveryColumnOfAWideTable) {
    QStringList columns(10'000, QStringLiteral("min"));
    const Suggestions found = suggestionsFor(QStringLiteral("mi"), 2, columns, false);
    ASSERT_LT(found.list.size(), 300U);
    EXPECT_EQ(found.list[0].text, QStringLiteral("\"min\""));
    EXPECT_EQ(found.list[1].text, QStringLiteral("c2")) << "the name means the first column";
    EXPECT_EQ(found.list.back().text, QStringLiteral("minute(")) << "functions stay within reach";
}

TEST(ExpressionSuggestions, nameWhatMayBeMeant) {
    const std::vector<std::tuple<const char*, const char*>> cases{
        {"mi|", R"(mi>"minute x",min(,minute()"},
        {"1+mea|", "mea>mean("},
        {"mea|(c1)", "mea>mean"},
        {"m|", "m>"},
        {"c1|", "c1>"},
        {"row|", "row>"},
        {"2e|", "2e>"},
        {R"("|)", R"(">"time","air",c3,"minute x",c5)"},
        {R"(mean("AI|", 3))", R"("AI">"air",c3)"},
        {R"("air"+ti|)", R"(ti>"time",time()"},
        {R"("air"|)", ">"},
        {"zz|", "zz>"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(suggested(text, false), expected) << text;
    EXPECT_EQ(suggested("abs|", true), "abs>abs(") << "asked for";
    EXPECT_GT(suggested("|", true).size(), 200U) << "all of them";
}

TEST_F(CurveRow, suggestionsAreChosenByKeyAndPointer) {
    curve->setX_uses_expression(true);
    auto* field = control<ExpressionField>("xRowTextField");
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("mea"));
    ASSERT_TRUE(field->isSuggesting());
    const CompletionList* suggestions = field->completionList();
    EXPECT_TRUE(window.rect().contains(suggestions->geometry()));
    EXPECT_GT(suggestions->y(), field->y() + 24) << "the field stays in sight";
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(field->text(), QStringLiteral("mean("));
    EXPECT_FALSE(field->isSuggesting());
    EXPECT_FALSE(curve->x_data_expression()) << "accepted, not committed";

    QTest::keyClicks(field, QStringLiteral("\""));
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(field->text(), QStringLiteral("mean(\"air\""));
    EXPECT_TRUE(field->hasFocus());

    QTest::keyClicks(field, QStringLiteral(",2)+de"));
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_FALSE(field->isSuggesting());
    EXPECT_EQ(field->text(), QStringLiteral("mean(\"air\",2)+de"));
    QTest::keyClick(field, Qt::Key_Space, Qt::ControlModifier);
    ASSERT_TRUE(field->isSuggesting());
    const int last = suggestions->count() - 1;
    QTest::mouseClick(suggestions->viewport(), Qt::LeftButton, {},
                      suggestions->visualItemRect(suggestions->item(last)).center());
    EXPECT_EQ(field->text(), QStringLiteral("mean(\"air\",2)+delta("));
    EXPECT_TRUE(field->hasFocus());

    QTest::keyClicks(field, QStringLiteral("ti"));
    ASSERT_TRUE(field->isSuggesting());
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(200, 480));
    EXPECT_FALSE(field->isSuggesting()) << "turned to something else";
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(field->text(), QString()) << "nothing was committed";
    curve->setX_uses_expression(false);
    row.reset();
    EXPECT_EQ(window.findChildren<CompletionList*>().size(), 0);
}

TEST_F(CurveRow, enterTakesFromTheListOnlyWhatWasChosenThere) {
    curve->setX_uses_expression(true);
    auto* field = control<ExpressionField>("xRowTextField");
    field->setFocus();
    field->clear();
    QTest::keyClicks(field, QStringLiteral("mea"));
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(field, Qt::Key_Up);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(field->text(), QStringLiteral("mean(")) << "chosen from the list";
    EXPECT_FALSE(curve->x_data_expression());
    field->clear();
    QTest::keyClicks(field, QStringLiteral("row+mea"));
    ASSERT_TRUE(field->isSuggesting());
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_FALSE(field->isSuggesting());
    EXPECT_EQ(curve->x_data_expression(), QStringLiteral("row+mea")) << "typed, whatever the list offers";
}

} // namespace
