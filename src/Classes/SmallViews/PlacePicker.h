// Nine cells that stand for nine places in a frame; one of them is chosen.
#pragma once

#include <QWidget>

class QButtonGroup;

/// Places count from the top left to the bottom right, row by row. One stop for Tab, arrow keys inside. Each
/// cell is a radio button with an accessible name.
class PlacePicker : public QWidget {
    Q_OBJECT

  public:
    static constexpr int count = 9;

    explicit PlacePicker(QWidget* parent = nullptr);

    int place() const; ///< -1: none
    void setPlace(int place);

  Q_SIGNALS:
    /// By the user, who may choose the place that is chosen already.
    void placeChosen(int place);

  private:
    void chooseTabStop();

    QButtonGroup* m_cells;
};
