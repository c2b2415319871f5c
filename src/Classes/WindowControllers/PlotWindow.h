// The window of one document: its plot, and one line on how its data are.
#pragma once

#include "Classes/GraphViewController/XGraphViewController.h"

#include <QMainWindow>

#include <memory>

class MoxDocument;

/// Owns its document; closing the window closes both, in the middle of a read, too.
class PlotWindow : public QMainWindow {
    Q_OBJECT

  public:
    explicit PlotWindow(std::unique_ptr<MoxDocument> document, const QString& title);
    ~PlotWindow() override;

    MoxDocument& document() { return *m_document; }
    void fitToData() { m_controller.fitToData(); }
    void showMessage(const QString& message);

  private:
    std::unique_ptr<MoxDocument> m_document;
    XGraphViewController m_controller; ///< after the document, which it observes
};
