// Inserts a long text by whole lines, a piece a turn.
#include "EmbeddedPlugins/TextEditor/LongTextEdit.h"

#include <QMimeData>
#include <QTimerEvent>

#include <algorithm>

namespace {

/// How much of the text from `begin` on makes a piece: whole lines where there are any.
qsizetype pieceLength(const QString& text, qsizetype begin) {
    if (text.size() - begin <= LongTextEdit::piece)
        return text.size() - begin;
    const qsizetype lineEnd = text.lastIndexOf(QLatin1Char('\n'), begin + LongTextEdit::piece);
    return lineEnd >= begin ? lineEnd + 1 - begin : LongTextEdit::piece;
}

} // namespace

void LongTextEdit::showText(const QString& text) {
    if (isTakingText())
        endTaking();
    if (text.size() <= longText) {
        setPlainText(text);
        return;
    }
    clear();
    setUndoRedoEnabled(false);
    beginTaking(text, textCursor());
}

bool LongTextEdit::canInsertFromMimeData(const QMimeData* source) const {
    return !source->hasUrls() && QPlainTextEdit::canInsertFromMimeData(source);
}

void LongTextEdit::insertFromMimeData(const QMimeData* source) {
    if (!canInsertFromMimeData(source)) // pasting does not ask
        return;
    const QString text = source->text();
    if (text.size() <= longText || isReadOnly()) {
        QPlainTextEdit::insertFromMimeData(source);
        return;
    }
    textCursor().removeSelectedText();
    beginTaking(text, textCursor());
}

void LongTextEdit::beginTaking(const QString& text, const QTextCursor& place) {
    m_text = text;
    m_taken = 0;
    m_place = place;
    setReadOnly(true);
    m_incoming.start(0, this);
}

void LongTextEdit::timerEvent(QTimerEvent* event) {
    if (event->timerId() != m_incoming.timerId()) {
        QPlainTextEdit::timerEvent(event);
        return;
    }
    takePiece(pieceLength(m_text, m_taken));
    const double part = static_cast<double>(m_taken) / static_cast<double>(m_text.size());
    if (m_taken == m_text.size())
        endTaking();
    Q_EMIT textTaken(part);
}

/// The pieces are one step to undo.
void LongTextEdit::takePiece(qsizetype length) {
    if (m_taken == 0)
        m_place.beginEditBlock();
    else
        m_place.joinPreviousEditBlock();
    m_place.insertText(m_text.mid(m_taken, length));
    m_place.endEditBlock();
    m_taken += length;
}

void LongTextEdit::takeRest() {
    if (!isTakingText())
        return;
    takePiece(m_text.size() - m_taken);
    endTaking();
    Q_EMIT textTaken(1);
}

void LongTextEdit::endTaking() {
    m_incoming.stop();
    m_text.clear();
    m_place = QTextCursor();
    setReadOnly(false);
    setUndoRedoEnabled(true);
}
