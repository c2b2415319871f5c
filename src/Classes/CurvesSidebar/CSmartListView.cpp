// Moves rows to their places and fades them in and out.
#include "Classes/CurvesSidebar/CSmartListView.h"

#include "Core/Assertions.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Widgets/Animation.h"

#include <QVariantAnimation>

#include <algorithm>
#include <utility>

namespace {

constexpr int layoutMilliseconds = 100;
constexpr int fadeInMilliseconds = 100;
constexpr int fadeOutMilliseconds = 200;

QRect between(const QRect& from, const QRect& to, double part) {
    const auto mixed = [part](int a, int b) { return a + static_cast<int>(part * (b - a)); };
    return part >= 1 ? to : QRect(to.x(), mixed(from.y(), to.y()), to.width(), to.height());
}

} // namespace

CSmartListView::CSmartListView(QWidget* parent) : QWidget(parent) {
    setFixedHeight(0);
}

CSmartListView::~CSmartListView() = default;

void CSmartListView::insertViewControllerAtIndex(Row row, int index) {
    const auto count = static_cast<int>(m_viewControllers.size());
    const int place = std::clamp(index, 0, count);
    QWidget* view = row->view();
    if (place < count)
        Animation::setOpacity(*view, 0);
    // It appears where it belongs, so that only what makes room for it moves.
    const int top =
        place == 0 ? 0
                   : m_viewControllers[static_cast<std::size_t>(place - 1)]->view()->geometry().bottom() + 1;
    m_viewControllers.insert(m_viewControllers.begin() + place, std::move(row));
    view->setParent(this);
    view->setGeometry(0, top, width(), view->height());
    view->show();
    updateLayout();
}

void CSmartListView::removeViewControllerAtIndex(int index) {
    const auto count = static_cast<int>(m_viewControllers.size());
    if (!xAssert(index < count, "Wrong index for deleteViewControllerAtIndex : %ld", index) ||
        !xAssert(index >= 0, "deleteViewControllerAtIndex: no view controller for index %ld", index))
        return;
    const auto place = m_viewControllers.begin() + index;
    XViewController* leaving = place->get();
    m_leaving.push_back(std::move(*place));
    m_viewControllers.erase(place);
    QWidget* view = leaving->view();
    view->setEnabled(false);
    Animation::fade(*view, 0, fadeOutMilliseconds, [this, leaving, view] {
        // A button of the row itself may have asked for this: row and view go with a later round of events.
        view->hide();
        view->deleteLater();
        const auto gone = std::find_if(m_leaving.begin(), m_leaving.end(),
                                       [leaving](const Row& row) { return row.get() == leaving; });
        MainThread::perform([row = std::move(*gone)] {});
        m_leaving.erase(gone);
        updateLayout();
    });
}

void CSmartListView::updateLayout() {
    if (m_movement != nullptr)
        m_movement->stop();
    struct Move {
        QPointer<QWidget> view;
        QRect from;
        QRect to;
    };
    std::vector<Move> moves;
    int y = 0;
    for (const Row& row : m_viewControllers) {
        QWidget* view = row->view();
        moves.push_back({view, view->geometry(), QRect(0, y, width(), view->height())});
        y += view->height();
    }
    m_neededContentFrame = QRect(0, 0, width(), y);
    m_movement = Animation::run(
        *this, layoutMilliseconds, QEasingCurve::OutQuad,
        [moves = std::move(moves)](double part) {
            for (const Move& move : moves) {
                if (move.view != nullptr)
                    move.view->setGeometry(between(move.from, move.to, part));
            }
        },
        [this] { finishLayout(); });
}

void CSmartListView::finishLayout() {
    for (const Row& row : m_viewControllers) {
        QWidget* view = row->view();
        if (Animation::opacity(*view) < 1)
            Animation::fade(*view, 1, fadeInMilliseconds);
    }
    setFixedHeight(m_neededContentFrame.height());
    updateGeometry();
    Q_EMIT layoutFinished();
}

void CSmartListView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (width() == m_neededContentFrame.width())
        return;
    // A new width is followed at once: the divider is being dragged.
    for (const Row& row : m_viewControllers)
        row->view()->resize(width(), row->view()->height());
    updateLayout();
}
