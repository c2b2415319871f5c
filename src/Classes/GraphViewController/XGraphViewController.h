// Keeps a plot view in step with a document: its curves, its options and its titles.
#pragma once

#include "Classes/PlotView/XPlotView.h"
#include "Platform/Core/XViewController.h"

#include <memory>

class MoxDocument;
class PlotPage;
class XAxisInfo;

/// The plot page of a document's window. Main thread.
class XGraphViewController : public XViewController {
    Q_OBJECT

  public:
    explicit XGraphViewController(QObject* parent = nullptr);
    ~XGraphViewController() override;

    /// Attaches to a document, whose plot is fitted to its data, or detaches with null. Fails the assertion
    /// "XGraphViewController already has a document!" when another one is attached.
    void setDocument(MoxDocument* document);
    MoxDocument* document() const { return m_document; }

    QWidget* view() override;
    XPlotView& plotView();
    void fitToData();
    void onBecameVisible() override;

  private:
    void observeValueForKeyPath(const KeyChange& change);
    void takeAxis(const XAxisInfo* kind, void (PlotScene::*setAxis)(XAxisHandle));
    void takeCurves();
    void takeOptions();
    void takeTitles();

    MoxDocument* m_document = nullptr;
    std::unique_ptr<PlotPage> m_page;
    Observation m_observation;
};
