// The plot page of a small document in a window of its own.
#pragma once

#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "DocumentWindow.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "MoxDocument.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

/// Passes curves on to the page, as a document's window does.
class CurvesWindow : public DocumentWindow {
  public:
    explicit CurvesWindow(XGraphViewController& page) : m_page(page) {}

    int dataSourceTabCount() const override { return m_tabs; }
    void insertDataSourceTab(const XDataSource&, int) override { ++m_tabs; }
    void removeDataSourceTab(const XDataSource&) override { --m_tabs; }
    void removeTabsWithoutSource() override {}
    void addDropHereTab() override {}
    void removeDropHereTab() override {}
    void selectDataSourceTab(int) override {}
    void insertCurveAtIndex(const XCurveHandle& curve, int index) override {
        m_page.insertCurveAtIndex(curve, index);
    }
    void removeCurveAtIndex(int index) override { m_page.removeCurveAtIndex(index); }
    void fitToData() override {}
    void documentWillClose() override {}

  private:
    XGraphViewController& m_page;
    int m_tabs = 0;
};

class PageFixture : public testing::Test {
  protected:
    PageFixture() {
        XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
        document.finishOpening();
        document.setWindow(&curvesWindow);
        page().resize(1000, 484);
        controller.setDocument(&document);
        page().show();
        page().activateWindow();
        EXPECT_TRUE(support::waitUntil([this] { return page().isActiveWindow(); }));
        controller.onBecameVisible();
    }
    ~PageFixture() override {
        controller.setDocument(nullptr);
        document.setWindow(nullptr);
    }

    void addData() {
        document.addDatasourceWithSettings(QLatin1String(XPTextEditor::identifier),
                                           {{QStringLiteral("Text"), QStringLiteral("1 10\n2 20\n3 40\n")}});
        EXPECT_TRUE(support::waitUntil([this] { return !document.isReading(); }));
    }
    XCurveHandle addCurve(const QString& title = {}) {
        const XCurveHandle curve = document.addNewCurve();
        curve->setTitle(title);
        return curve;
    }
    /// Ends the event-loop turn and saves: what comes is a step of its own, and the only change.
    void forgetChanges() {
        document.undoManager().closeTurnGroup();
        document.undoManager().removeAllActions();
        EXPECT_EQ(document.writeToURL(folder.path(QStringLiteral("d.mox"))), std::nullopt);
    }

    QWidget& page() { return *controller.view(); }
    template <class Widget = QWidget>
    Widget& part(const char* name) {
        auto* found = page().findChild<Widget*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    XPlotView& plotView() { return controller.plotView(); }
    PlotScene& scene() { return plotView().scene(); }

    support::ScratchFolder folder;
    MoxDocument document;
    XGraphViewController controller;
    CurvesWindow curvesWindow{controller};
};
