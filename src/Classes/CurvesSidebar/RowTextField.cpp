// What a click, a key and a look at a row's text field do beyond those of any line of text.
#include "Classes/CurvesSidebar/RowTextField.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFrame>
#include <QToolTip>

namespace {

constexpr int innerMargin = 2; ///< of the toolkit, on either side of the text

} // namespace

RowTextField::RowTextField(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textChanged, this, [this] {
        if (isModified()) // by typing
            return;
        m_settledText = text();
        if (!hasFocus())
            home(false);
    });
    connect(this, &QLineEdit::editingFinished, this, [this] {
        m_settledText = text();
        if (!isUndoAvailable())
            return;
        const int cursor = cursorPosition();
        setText(QString(m_settledText)); // what was committed is the document's to undo
        setCursorPosition(cursor);
    });
}

QRect RowTextField::textRoom() const {
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect room = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    return room.marginsRemoved(textMargins()).adjusted(innerMargin, 0, -innerMargin, 0);
}

bool RowTextField::showsAll() const {
    return fontMetrics().horizontalAdvance(text()) <= textRoom().width();
}

void RowTextField::paintEvent(QPaintEvent* event) {
    if (hasFocus() || showsAll()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QPainter painter(this);
    QStyleOptionFrame option;
    initStyleOption(&option);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
    const QRect room = textRoom();
    const int top = room.top() + (room.height() - fontMetrics().height() + 1) / 2; // as the toolkit has it
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(room.left(), top + fontMetrics().ascent(),
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width()));
}

bool RowTextField::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && takesKey(*static_cast<QKeyEvent*>(event))) {
        event->accept(); // before a window that Escape closes
        return true;
    }
    if (event->type() == QEvent::ToolTip && !VelquinStyle::isFaulty(this) && !showsAll()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QLineEdit::event(event);
}

bool RowTextField::takesKey(const QKeyEvent& key) const {
    return key.key() == Qt::Key_Escape && text() != settledText();
}

void RowTextField::keyPressEvent(QKeyEvent* event) {
    if (takesKey(*event)) {
        setText(settledText());
        selectAll();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void RowTextField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        home(false);
}

void RowTextField::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard)
        event->ignore(); // the row's
    else
        QLineEdit::contextMenuEvent(event);
}

TitleField::TitleField(QWidget* parent) : RowTextField(parent) {
    setFrame(false);
    setTextMargins(innerMargin, 0, innerMargin, 0);
    connect(this, &QLineEdit::textChanged, this, &TitleField::showWeight);
}

void TitleField::showWeight() {
    QFont weighted = font();
    weighted.setBold(!text().isEmpty());
    setFont(weighted);
}

void TitleField::setQuiet(bool quiet) {
    m_isQuiet = quiet;
    showInk();
}

void TitleField::showInk() {
    const QColor ink = m_isQuiet ? currentColors().text3 : currentColors().text;
    QPalette inked = palette();
    if (inked.color(QPalette::Active, QPalette::Text) == ink)
        return;
    for (const auto group : {QPalette::Active, QPalette::Inactive})
        inked.setColor(group, QPalette::Text, ink);
    setPalette(inked);
}

void TitleField::changeEvent(QEvent* event) {
    RowTextField::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showInk();
}

void TitleField::paintEvent(QPaintEvent* event) {
    if (isEnabled() && (hasFocus() || underMouse())) {
        QPainter painter(this);
        StylePainting::drawField(painter, rect(),
                                 {.enabled = true, .hovered = underMouse(), .focused = hasFocus()});
    }
    RowTextField::paintEvent(event);
}
