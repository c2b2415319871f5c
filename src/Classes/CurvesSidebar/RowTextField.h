// One-line text fields that elide, and that Escape sets back; those of a curve's row among them.
#pragma once

#include <QLineEdit>

/// Elides a text that has no room while it is left alone, and shows all of it as a tooltip. Escape takes back
/// what was typed since the last commit; a commit ends the field's own history of undo.
class RowTextField : public QLineEdit {
    Q_OBJECT

  public:
    explicit RowTextField(QWidget* parent = nullptr);

  protected:
    /// What Escape brings back: the text as it was shown or committed last.
    virtual QString settledText() const { return m_settledText; }
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    QRect textRoom() const;
    bool showsAll() const;
    bool takesKey(const QKeyEvent& key) const;

    QString m_settledText;
};

/// Bold, and without a box until the pointer or the focus is in it.
class TitleField : public RowTextField {
    Q_OBJECT

  public:
    explicit TitleField(QWidget* parent = nullptr);

    /// In the colour of hints, for a curve that is not drawn.
    void setQuiet(bool quiet);

  protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void showWeight();
    void showInk();

    bool m_isQuiet = false;
};
