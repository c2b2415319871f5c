// A field for plain text that takes long texts a piece at a time, so that the window goes on answering.
#pragma once

#include <QBasicTimer>
#include <QPlainTextEdit>
#include <QString>
#include <QTextCursor>

/// What is shown or pasted beyond `longText` characters comes in over several turns of the event loop; until
/// it is in, the field is read-only.
class LongTextEdit : public QPlainTextEdit {
    Q_OBJECT

  public:
    static constexpr qsizetype longText = qsizetype{1} << 20;
    static constexpr qsizetype piece = qsizetype{1} << 16;

    using QPlainTextEdit::QPlainTextEdit;

    /// Takes the place of all text; cannot be undone.
    void showText(const QString& text);
    bool isTakingText() const { return m_incoming.isActive(); }
    /// Takes what is still to come now.
    void takeRest();

  Q_SIGNALS:
    /// `part` of the text is in, 0 to 1.
    void textTaken(double part);

  protected:
    /// Files are not text: they are for whoever takes drops around this field.
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    void beginTaking(const QString& text, const QTextCursor& place);
    void takePiece(qsizetype length);
    void endTaking();

    QString m_text; ///< being taken
    qsizetype m_taken = 0;
    QTextCursor m_place;
    QBasicTimer m_incoming;
};
