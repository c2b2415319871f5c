// A title of the plot, edited where it stands.
#pragma once

#include "Classes/PlotView/InPlaceField.h"
#include "Classes/PlotView/PlotText.h"

#include <QColor>

class PlotStyles;

/// At rest it is drawn as in pictures of the plot; a title that is too long for its room is shortened in the
/// middle.
class PlotTitleField : public InPlaceField {
    Q_OBJECT

  public:
    explicit PlotTitleField(QWidget* parent = nullptr);

    void setRole(TextRole role);
    /// In the colours of the plot that it stands beside.
    void setStyles(const PlotStyles& styles);

  protected:
    void paintAtRest(PlotCanvas& canvas) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    TextRole m_role = TextRole::AxisTitle;
    QColor m_ink = Qt::black;
    QColor m_paper = Qt::white;
    QColor m_ring;
};
