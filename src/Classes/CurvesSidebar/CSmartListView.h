// An animated vertical list of rows, each a view controller with a view of its own height.
#pragma once

#include "Platform/Core/XViewController.h"

#include <QPointer>
#include <QRect>
#include <QWidget>

#include <memory>
#include <vector>

class QVariantAnimation;

/// Made to be the content of a scroll area. Draws nothing itself. Main thread.
class CSmartListView : public QWidget {
    Q_OBJECT

  public:
    using Row = std::shared_ptr<XViewController>;

    explicit CSmartListView(QWidget* parent = nullptr);
    ~CSmartListView() override;

    const std::vector<Row>& viewControllers() const { return m_viewControllers; }

    /// The list keeps the row and becomes the parent of its view. A row that is not the last fades in when
    /// the others have made room. An index beyond the list appends.
    void insertViewControllerAtIndex(Row row, int index);
    /// The row leaves the list at once; its view fades out.
    void removeViewControllerAtIndex(int index);

    /// Stacks the rows from the top, moving; to be called when a row's height changed.
    void updateLayout();

    /// What the stacked rows need; the list takes this size when the movement ends.
    QRect neededContentFrame() const { return m_neededContentFrame; }

    QSize sizeHint() const override { return m_neededContentFrame.size(); }

  Q_SIGNALS:
    void layoutFinished();

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void finishLayout();

    std::vector<Row> m_viewControllers;
    std::vector<Row> m_leaving; ///< out of the list, their views still fading
    QRect m_neededContentFrame;
    QPointer<QVariantAnimation> m_movement;
};
