// The divider between the curves and the plot: one pixel to see, seven to grab.
#pragma once

#include <QSplitter>

/// The left pane is 186 to 420 wide. Its first width follows that of the window; later sizes of the window
/// are the right pane's alone.
class PaneSplitter : public QSplitter {
    Q_OBJECT

  public:
    explicit PaneSplitter(QWidget* parent = nullptr);

    static constexpr int leastWidth = 186;
    static constexpr int greatestWidth = 420;
    /// Of the left pane, in a window of that width.
    static int firstWidth(int windowWidth);

  protected:
    QSplitterHandle* createHandle() override;
    void showEvent(QShowEvent* event) override;

  private:
    bool m_wasShown = false;
};
