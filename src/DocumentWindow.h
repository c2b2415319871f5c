// What a document tells its window: a small interface, so that documents work without one.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Classes/PlotModel/XCurve.h"

/// Implemented by the document window; absent in batch runs. Main thread.
class DocumentWindow {
  public:
    virtual ~DocumentWindow() = default;

    /// Adds and selects a data source's tab; returns its index.
    virtual int addDataSourceTab(const XDataSource& dataSource) = 0;
    virtual void removeDataSourceTab(int index) = 0;
    virtual void addDropHereTab() = 0;
    virtual void removeDropHereTab() = 0;
    virtual void selectDataSourceTab(int index) = 0;

    /// Told before the document stores its new list of curves.
    virtual void insertCurveAtIndex(const XCurveHandle& curve, int index) = 0;
    virtual void removeCurveAtIndex(int index) = 0;

    /// Fits the plot to its data, if a plot is selected.
    virtual void fitToData() = 0;
};
