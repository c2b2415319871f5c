// The page around a plot view: room for the titles, and the paper they stand on.
#pragma once

#include "Classes/PlotView/PlotDrawing.h"
#include "Classes/PlotView/TitleLayout.h"

#include <QWidget>

class XPlotView;

/// Lays the plot view out between its titles and draws those.
class PlotPage : public QWidget {
    Q_OBJECT

  public:
    explicit PlotPage(QWidget* parent = nullptr);

    XPlotView& plotView() { return *m_plotView; }
    void setTitles(const PlotDrawing::Titles& titles);

    QSize sizeHint() const override { return {920, 550}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void updateLayout();

    XPlotView* m_plotView;
    PlotDrawing::Titles m_titles;
    TitleLayout m_rooms;
};
