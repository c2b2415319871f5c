// Controls tied to keys: what is shown, what is written, and what is not.
#include "Platform/Widgets/Binding.h"
#include "Platform/Core/Observable.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

#include <array>

namespace {

class Settings : public Observable {
    Q_OBJECT
    OBSERVED(QString, name, setName, {})
    OBSERVED(std::optional<QString>, expression, setExpression, {})
    OBSERVED(std::optional<double>, limit, setLimit, {})
    OBSERVED(int, column, setColumn, 0)
    OBSERVED(float, alpha, setAlpha, 1.0F)
    OBSERVED(bool, isOn, setIsOn, false)
    Q_PROPERTY(int even READ even WRITE setEven)

  public:
    int even() const { return m_even; }
    /// Refuses odd numbers.
    void setEven(int value) {
        if (value % 2 == 0)
            assign(m_even, value, "even");
    }

  private:
    int m_even = 0;
};

class Bindings : public testing::Test {
  protected:
    void type(QLineEdit& field, const char* text) {
        field.setText(QString::fromUtf8(text));
        QTest::keyClick(&field, Qt::Key_Return);
    }
    /// Every assignment since the last call, as "key;".
    QString writes() { return std::exchange(m_writes, {}); }

    Settings settings;

  private:
    QString m_writes;
    static constexpr std::array<const char*, 7> keys{"name",  "expression", "limit", "column",
                                                     "alpha", "isOn",       "even"};
    Observation m_observation{settings, keys, [this](const KeyChange& change) {
                                  m_writes += QLatin1String(change.key) + QLatin1Char(';');
                              }};
};

struct FieldRow {
    const char* name;
    const char* key;
    QVariant before;
    const char* typed;
    QVariant after;
    const char* shown;
    bool written;
    bool faulty;
};

TEST_F(Bindings, aFieldWritesOnReturnAndOnlyWhatChanged) {
    const auto text = [](const char* value) { return QString::fromUtf8(value); };
    const auto maybe = [](const char* value) {
        return QVariant::fromValue(value == nullptr ? std::nullopt : std::optional(QString::fromUtf8(value)));
    };
    const auto number = [](std::optional<double> value) { return QVariant::fromValue(value); };
    const FieldRow rows[] = {
        {"a text", "name", text("a"), "b", text("b"), "b", true, false},
        {"the same text", "name", text("a"), "a", text("a"), "a", false, false},
        {"an absent text gets one", "expression", maybe(nullptr), "c1", maybe("c1"), "c1", true, false},
        {"an emptied text is absent", "expression", maybe("c1"), "", maybe(nullptr), "", true, false},
        {"an empty text that nobody touched stays", "expression", maybe(""), "", maybe(""), "", false, false},
        {"an absent number stays absent", "limit", number({}), "", number({}), "", false, false},
        {"a number", "limit", number({}), " 2.5 ", number(2.5), "2.5", true, false},
        {"an emptied number is absent", "limit", number(2.5), "", number({}), "", true, false},
        {"all digits are shown, none is rounded", "limit", number(0.1 + 0.2), "0.30000000000000004",
         number(0.1 + 0.2), "0.30000000000000004", false, false},
        {"no number is refused and stays to be mended", "limit", number(1), "2,5x", number(1), "2,5x", false,
         true},
        {"an infinite number is refused", "limit", number(1), "inf", number(1), "inf", false, true},
    };
    for (const FieldRow& row : rows) {
        SCOPED_TRACE(row.name);
        QLineEdit field;
        settings.setValueForKey(row.key, row.before);
        bind(&field, settings, row.key);
        writes();
        type(field, row.typed);
        EXPECT_EQ(settings.valueForKey(row.key), row.after);
        EXPECT_EQ(field.text(), QString::fromUtf8(row.shown));
        EXPECT_EQ(writes().isEmpty(), !row.written);
        EXPECT_EQ(VelquinStyle::isFaulty(&field), row.faulty);
    }
}

TEST_F(Bindings, choicesAndNumbersGoBothWaysWithoutLoops) {
    QSpinBox column;
    QSpinBox percent;
    QCheckBox on;
    QComboBox names;
    names.addItems({QStringLiteral("row"), QStringLiteral("x"), QStringLiteral("y")});
    percent.setRange(1, 100);
    bind(&column, settings, "column");
    bind(&percent, settings, "alpha", percentOfOne());
    bind(&on, settings, "isOn");
    bind(&names, settings, "column");

    settings.setColumn(2);
    settings.setAlpha(0.333F);
    settings.setIsOn(true);
    EXPECT_EQ(writes(), QStringLiteral("column;alpha;isOn;")) << "nothing is written back";
    EXPECT_EQ(column.value(), 2);
    EXPECT_EQ(names.currentIndex(), 2);
    EXPECT_EQ(percent.value(), 33);
    EXPECT_TRUE(on.isChecked());

    QTest::keyClick(&names, Qt::Key_Up);
    EXPECT_EQ(settings.column(), 1);
    EXPECT_EQ(column.value(), 1);
    QTest::keyClick(&column, Qt::Key_Up);
    QTest::keyClick(&percent, Qt::Key_Up);
    on.click();
    EXPECT_EQ(writes(), QStringLiteral("column;column;alpha;isOn;"));
    EXPECT_FLOAT_EQ(settings.alpha(), 0.34F);
    EXPECT_FALSE(settings.isOn());

    names.clear();
    names.addItems({QStringLiteral("row"), QStringLiteral("t"), QStringLiteral("u"), QStringLiteral("v")});
    EXPECT_EQ(names.currentIndex(), 2) << "new rows show the value, and do not change it";
    EXPECT_EQ(writes(), QString());
}

TEST_F(Bindings, oneOfSeveralByData) {
    QComboBox box;
    QActionGroup group(nullptr);
    for (const int data : {4, 2, 8}) {
        box.addItem(QString::number(data), data);
        QAction* action = group.addAction(QString::number(data));
        action->setCheckable(true);
        action->setData(data);
    }
    settings.setEven(2);
    bindCurrentData(&box, settings, "even");
    bind(&group, settings, "even");
    EXPECT_EQ(box.currentText(), QStringLiteral("2"));
    QTest::keyClick(&box, Qt::Key_Down);
    EXPECT_EQ(settings.even(), 8);
    EXPECT_EQ(group.checkedAction()->data(), 8);
    group.actions().constFirst()->trigger();
    EXPECT_EQ(box.currentText(), QStringLiteral("4"));
    settings.setEven(6);
    EXPECT_EQ(box.currentIndex(), -1) << "a value that no row has";
}

TEST_F(Bindings, aRefusedValueIsShownAgain) {
    QSpinBox field;
    bind(&field, settings, "even");
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(field.value(), 0);
    EXPECT_EQ(settings.even(), 0);
}

TEST_F(Bindings, aBindingEndsWithItsControlItsObjectOrTheNextOne) {
    QLineEdit field;
    int followed = 0;
    {
        QLineEdit shortLived;
        bind(&shortLived, settings, "name");
        follow(&shortLived, settings, "name", [&followed](const QVariant&) { ++followed; });
    }
    settings.setName(QStringLiteral("after the control"));
    EXPECT_EQ(followed, 1) << "once at the start";

    {
        Settings other;
        bind(&field, settings, "name");
        bind(&field, other, "name");
        settings.setName(QStringLiteral("rebound"));
        EXPECT_EQ(field.text(), QString());
    }
    type(field, "the object is gone");
    EXPECT_EQ(settings.name(), QStringLiteral("rebound"));
}

} // namespace

#include "BindingTest.moc"
