// A row in a window, over a table of three columns.
#pragma once

#include "Classes/CurvesSidebar/CCurveView.h"
#include "Classes/CurvesSidebar/CCurveViewController.h"
#include "Platform/Core/UndoManager.h"
#include "Platform/Widgets/Appearance.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"
#include "widgetkit/WidgetFixtures.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QTest>

#include <gtest/gtest.h>

/// A table whose columns have names that a test may change.
class NamedSource : public support::TableSource {
  public:
    explicit NamedSource(const char* title, QStringList names)
        : TableSource(tableOf(names)), m_names(std::move(names)) {
        setTitle(QString::fromUtf8(title));
    }
    QStringList columnNames() const override { return QStringList{QStringLiteral("Row number")} + m_names; }
    void setNames(const QStringList& names) {
        m_names = names;
        setData(tableOf(names));
    }

  private:
    static XTable tableOf(const QStringList& names) {
        std::vector<std::vector<double>> columns;
        std::vector<std::string> texts;
        for (const QString& name : names) {
            columns.push_back({1, 2, 3});
            texts.push_back(name.toStdString());
        }
        auto table = std::const_pointer_cast<XPTableData>(support::makeTable(columns));
        table->setColumnNames(texts);
        return table;
    }
    QStringList m_names;
};

class CurveRow : public testing::Test, public CCurveViewControllerDelegate {
  protected:
    CurveRow() {
        list.insertObjectAtIndex(source, 0);
        curve->setDataSource(source);
        curve->setTitle(QStringLiteral("Air"));
        curve->setX_data_index(1);
        curve->setY_data_index(2);
        curve->setTicksSize(2);
        row = std::make_unique<CCurveViewController>(list, this);
        row->setCurve(curve);
        row->view()->setParent(&window);
        resize(248);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void curveRemoved(const XCurveHandle& removed) override { deleted.push_back(removed); }
    void foldAll(bool folded) override { calls += folded ? "fold all " : "unfold all "; }
    void gestureBegan() override { calls += "began "; }
    void gestureEnded() override { calls += "ended "; }
    void gestureCancelled() override { calls += "cancelled "; }

    template <class Widget = QWidget>
    Widget* control(const char* name) {
        auto* found = row->view()->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    void resize(int width) {
        window.resize(width, 500);
        row->view()->resize(width, row->view()->height());
    }
    static QStringList offscreenPopup() {
        return {QStringLiteral("raise()"), QStringLiteral("grabbing the keyboard")};
    }
    void click(const char* name) { QTest::mouseClick(control(name), Qt::LeftButton); }
    /// As a person does: into the field, everything replaced, Return.
    void enter(const char* name, const char* text) {
        auto* field = control(name);
        field->setFocus(Qt::TabFocusReason);
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, QString::fromUtf8(text));
        QTest::keyClick(field, Qt::Key_Return);
    }
    void choose(const char* name, int index) {
        auto* box = control<QComboBox>(name);
        box->setFocus();
        const support::ExpectedWarnings warnings(offscreenPopup());
        box->showPopup();
        box->view()->setCurrentIndex(box->model()->index(index, 0));
        QTest::keyClick(box->view(), Qt::Key_Return);
    }
    std::string value(const char* key) { return curve->valueForKey(key).toString().toStdString(); }

    std::shared_ptr<NamedSource> source = std::make_shared<NamedSource>(
        "harbour.csv",
        QStringList{QStringLiteral("time"), QStringLiteral("air"), QStringLiteral("dew point")});
    ArrangedObjects list;
    XCurveHandle curve = XCurve::make();
    QWidget window;
    std::unique_ptr<CCurveViewController> row;
    std::vector<XCurveHandle> deleted;
    std::string calls;
};
