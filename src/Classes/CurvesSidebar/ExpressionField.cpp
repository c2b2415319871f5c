// How an expression is typed, with suggestions.
#include "Classes/CurvesSidebar/ExpressionField.h"

#include "Classes/CurvesSidebar/CompletionList.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QKeyEvent>
#include <QStyleOptionFrame>

#include <algorithm>

namespace {

constexpr int leastFontPixels = 12;
constexpr int pageOfSuggestions = 7;

bool isPlain(const QKeyEvent& key) {
    return (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

} // namespace

ExpressionField::ExpressionField(QWidget* parent) : RowTextField(parent) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(std::max(leastFontPixels, QFontInfo(QApplication::font()).pixelSize() - 1));
    setFont(font);
    connect(this, &QLineEdit::textEdited, this, [this] {
        if (!m_isAccepting)
            suggest(false);
    });
}

ExpressionField::~ExpressionField() {
    delete m_completionList.data();
}

void ExpressionField::setBed(int pixels) {
    m_bed = pixels;
    setMask(boxOf(rect()));
}

void ExpressionField::initStyleOption(QStyleOptionFrame* option) const {
    RowTextField::initStyleOption(option);
    option->rect = boxOf(option->rect);
}

void ExpressionField::resizeEvent(QResizeEvent* event) {
    RowTextField::resizeEvent(event);
    setMask(boxOf(rect()));
}

// Suggestions

bool ExpressionField::isSuggesting() const {
    return m_completionList != nullptr && m_completionList->isVisible();
}

CompletionList* ExpressionField::completionList() const {
    return m_completionList;
}

void ExpressionField::suggest(bool asked) {
    m_isChoosing = asked;
    m_suggestions = suggestionsFor(text(), cursorPosition(), m_columnNames, asked);
    if (m_suggestions.list.empty()) {
        stopSuggesting();
        return;
    }
    if (m_completionList != nullptr && m_completionList->parentWidget() != window())
        delete m_completionList.data();
    if (m_completionList == nullptr) {
        m_completionList = new CompletionList(window(), font());
        connect(m_completionList, &QListWidget::itemClicked, this, &ExpressionField::acceptSuggestion);
    }
    m_completionList->showAt(boxOf(rect()).translated(mapTo(window(), QPoint())), m_suggestions.list);
    qApp->installEventFilter(this);
}

void ExpressionField::stopSuggesting() {
    qApp->removeEventFilter(this);
    if (m_completionList != nullptr)
        m_completionList->hide();
}

void ExpressionField::acceptSuggestion() {
    const auto chosen = static_cast<std::size_t>(m_completionList->currentRow());
    stopSuggesting();
    if (chosen >= m_suggestions.list.size())
        return;
    m_isAccepting = true;
    setSelection(static_cast<int>(m_suggestions.start), static_cast<int>(m_suggestions.length));
    insert(m_suggestions.list[chosen].text);
    m_isAccepting = false;
}

bool ExpressionField::takesKey(const QKeyEvent& key) {
    if (key.key() == Qt::Key_Space && key.modifiers() == Qt::ControlModifier) {
        suggest(true);
        return true;
    }
    if (!isPlain(key))
        return false;
    if (!isSuggesting()) {
        if (key.key() != Qt::Key_Down)
            return false;
        suggest(true);
        return true;
    }
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!m_isChoosing) { // the list came by itself: what was typed is what is meant
            stopSuggesting();
            return false;
        }
        [[fallthrough]];
    case Qt::Key_Tab:
        acceptSuggestion();
        return true;
    case Qt::Key_Escape:
        stopSuggesting();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        m_isChoosing = true;
        m_completionList->step(key.key() == Qt::Key_Up ? -1 : 1);
        return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        m_isChoosing = true;
        m_completionList->step(key.key() == Qt::Key_PageUp ? -pageOfSuggestions : pageOfSuggestions);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
        stopSuggesting(); // what was typed is no longer where the cursor is
        return false;
    default:
        return false;
    }
}

bool ExpressionField::event(QEvent* event) {
    // Before the toolkit takes Tab for itself.
    if (event->type() == QEvent::KeyPress && takesKey(*static_cast<QKeyEvent*>(event)))
        return true;
    if (event->type() == QEvent::ShortcutOverride && isSuggesting() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return RowTextField::event(event);
}

void ExpressionField::hideEvent(QHideEvent* event) {
    stopSuggesting();
    RowTextField::hideEvent(event);
}

void ExpressionField::focusOutEvent(QFocusEvent* event) {
    stopSuggesting();
    RowTextField::focusOutEvent(event);
}

/// Of the whole program while the list is open: it closes when the user turns to something else.
bool ExpressionField::eventFilter(QObject* object, QEvent* event) {
    const auto* widget = qobject_cast<const QWidget*>(object);
    const bool isOutside = widget != nullptr && m_completionList != nullptr && widget != this &&
                           widget != m_completionList && !m_completionList->isAncestorOf(widget);
    const bool isElsewhere =
        isOutside && (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::Wheel);
    if (isElsewhere || (widget == window() && event->type() == QEvent::Resize))
        stopSuggesting();
    return RowTextField::eventFilter(object, event);
}
