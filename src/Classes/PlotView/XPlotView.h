// The widget that shows a plot scene.
#pragma once

#include "Classes/PlotView/PlotScene.h"

#include <QWidget>

/// Repaints when the scene asks, lays it out for its own size and renders again when the screen's device
/// pixel ratio changes. All state is the scene's.
class XPlotView : public QWidget {
    Q_OBJECT

  public:
    explicit XPlotView(QWidget* parent = nullptr);

    PlotScene& scene() { return m_scene; }
    const PlotScene& scene() const { return m_scene; }

    QSize minimumSizeHint() const override { return {100, 100}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    PlotScene m_scene;
};
