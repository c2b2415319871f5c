// Gives the thin line a wide handle, and the curves their first width.
#include "Classes/GraphViewController/PaneSplitter.h"

#include <QRegion>
#include <QShowEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr int grabRoom = 3; ///< at either side of the line

class ThinHandle : public QSplitterHandle {
  public:
    using QSplitterHandle::QSplitterHandle;

  protected:
    // In the place of the toolkit's own, which makes less room to grab. New margins lead here again.
    void resizeEvent(QResizeEvent* event) override {
        setAttribute(Qt::WA_MouseNoMask);
        setContentsMargins(grabRoom, 0, grabRoom, 0);
        setMask(QRegion(contentsRect()));
        QWidget::resizeEvent(event); // NOLINT(bugprone-parent-virtual-call)
    }
};

} // namespace

PaneSplitter::PaneSplitter(QWidget* parent) : QSplitter(Qt::Horizontal, parent) {
    setHandleWidth(1);
    setChildrenCollapsible(false);
}

int PaneSplitter::firstWidth(int windowWidth) {
    return windowWidth < 860 ? leastWidth : windowWidth < 1100 ? 216 : 248;
}

QSplitterHandle* PaneSplitter::createHandle() {
    return new ThinHandle(orientation(), this);
}

void PaneSplitter::showEvent(QShowEvent* event) {
    QSplitter::showEvent(event);
    if (std::exchange(m_wasShown, true))
        return;
    const int left = firstWidth(window()->width());
    setSizes({left, std::max(0, width() - left - handleWidth())});
}
