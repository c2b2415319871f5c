// The three pictures over a plot without curves that say how to begin.
#pragma once

#include <QWidget>

/// Lets the mouse through to the plot.
class QuickHelpCard : public QWidget {
    Q_OBJECT

  public:
    explicit QuickHelpCard(QWidget* parent);

    void setDark(bool dark); ///< on a dark plot
    /// Centres the card on the plot rectangle and shows it, if wanted. It gets narrower with the plot, and
    /// hides where its words would have no room.
    void placeOn(const QRect& plot, bool wanted);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QSize leastSize() const;

    bool m_dark = false;
};
