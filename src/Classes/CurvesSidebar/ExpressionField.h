// The field of an expression.
#pragma once

#include "Classes/CurvesSidebar/ExpressionSuggestions.h"
#include "Classes/CurvesSidebar/RowTextField.h"

#include <QPointer>
#include <QStringList>

class CompletionList;

/// Monospaced. Suggests columns and functions while a name is typed, and when Ctrl+Space or Down asks: Tab
/// accepts, and so does Enter once the list was asked for or walked through; Escape closes. Its box leaves
/// the lowest pixels of its frame free, as many as `setBed` says.
class ExpressionField : public RowTextField {
    Q_OBJECT

  public:
    explicit ExpressionField(QWidget* parent = nullptr);
    ~ExpressionField() override;

    void setBed(int pixels);
    /// To be suggested; without the row number.
    void setColumnNames(const QStringList& names) { m_columnNames = names; }

    /// The frame of a field over a pop-up's: moved by 4 and 3, narrowed by 8.
    static QRect frameOver(const QRect& popup) {
        return {popup.x() + 4, popup.y() + 3, popup.width() - 8, popup.height()};
    }

    bool isSuggesting() const;
    CompletionList* completionList() const;

  protected:
    void initStyleOption(QStyleOptionFrame* option) const override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    QRect boxOf(const QRect& frame) const { return frame.adjusted(0, 0, 0, -m_bed); }
    void suggest(bool asked);
    void stopSuggesting();
    void acceptSuggestion();
    /// Whether the key was for the list.
    bool takesKey(const QKeyEvent& key);

    QStringList m_columnNames;
    int m_bed = 0;
    QPointer<CompletionList> m_completionList; ///< made when it is needed first; a child of the window
    Suggestions m_suggestions;
    bool m_isAccepting = false;
    bool m_isChoosing = false; ///< the list was asked for or walked through, so that Return accepts from it
};
