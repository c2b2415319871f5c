// The three pictures over a plot without curves that say how to begin.
#pragma once

#include "Platform/Widgets/ThemeColors.h"

#include <QColor>
#include <QWidget>

class PlotStyles;

/// Lets the mouse through to the plot.
class QuickHelpCard : public QWidget {
    Q_OBJECT

  public:
    explicit QuickHelpCard(QWidget* parent);

    void setStyles(const PlotStyles& styles); ///< of the plot under it
    /// Centres the card on the plot rectangle and shows it, if wanted. It gets narrower with the plot, and
    /// hides where its words would have no room.
    void placeOn(const QRect& plot, bool wanted);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QSize leastSize() const;

    QColor m_paper;
    QColor m_edge;
    Theme m_theme = Theme::Light;
};
