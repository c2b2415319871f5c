// What a document tells its window: a small interface, so that documents work without one.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Classes/PlotModel/XCurve.h"

/// Implemented by the document window; absent in batch runs. Main thread.
class DocumentWindow {
  public:
    virtual ~DocumentWindow() = default;

    /// The tabs of data sources, the drop tab not counted.
    virtual int dataSourceTabCount() const = 0;
    /// Inserts and selects a data source's tab.
    virtual void insertDataSourceTab(const XDataSource& dataSource, int index) = 0;
    virtual void removeDataSourceTab(const XDataSource& dataSource) = 0;
    /// Removes the tabs that stand for no source of the document.
    virtual void removeTabsWithoutSource() = 0;
    virtual void addDropHereTab() = 0;
    virtual void removeDropHereTab() = 0;
    virtual void selectDataSourceTab(int index) = 0;

    /// Told before the document stores its new list of curves.
    virtual void insertCurveAtIndex(const XCurveHandle& curve, int index) = 0;
    virtual void removeCurveAtIndex(int index) = 0;

    /// Fits the plot to its data, if a plot is selected.
    virtual void fitToData() = 0;

    /// The document is about to give its sources and curves up; nothing is told afterwards.
    virtual void documentWillClose() = 0;
};
