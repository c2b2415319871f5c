// The bands over the two panes of the plot page: sidebar head and tool strip.
#pragma once

#include <QWidget>

/// As high as its controls with 4 points above and below, with a line at its foot.
class StripView : public QWidget {
    Q_OBJECT

  public:
    explicit StripView(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

  protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

/// A strip of tools whose words go when it gets narrow.
class ToolStrip : public StripView {
    Q_OBJECT

  public:
    using StripView::StripView;

    /// The tools' words are shown from this width on.
    static constexpr int wordsFrom = 440;

  protected:
    void resizeEvent(QResizeEvent* event) override;
};

/// The frame around tools of which one is on.
class ToolGroup : public QWidget {
    Q_OBJECT

  public:
    using QWidget::QWidget;

  protected:
    void paintEvent(QPaintEvent* event) override;
};
