// A progress bar of a line or two, without words.
#pragma once

#include <QWidget>

#include <atomic>

/// Draws nothing but its ground at 0 and at 100 and beyond. What it shows is told to assistive technology as
/// its description.
class XMiniProgressIndicator : public QWidget {
    Q_OBJECT
    Q_PROPERTY(float percentage READ percentage WRITE setPercentage)

  public:
    explicit XMiniProgressIndicator(QWidget* parent = nullptr);

    /// 0 to 100; any thread.
    float percentage() const { return m_percentage.load(std::memory_order_relaxed); }
    /// Any thread; drawn later, on the main thread.
    void setPercentage(float percentage);

    QSize sizeHint() const override { return {40, 2}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void percentageChanged();

    std::atomic<float> m_percentage{0};
};
