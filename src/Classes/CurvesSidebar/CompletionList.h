// The list of suggestions under a field.
#pragma once

#include "Classes/CurvesSidebar/ExpressionSuggestions.h"

#include <QListWidget>

/// A child of the field's window, above everything in it; it never takes the focus. The field that opens it
/// moves its selection.
class CompletionList : public QListWidget {
    Q_OBJECT

  public:
    /// `labelFont` is for the suggestions' labels, the list's own font for their help.
    CompletionList(QWidget* window, const QFont& labelFont);

    /// Shows the suggestions below `box`, which counts in the window, or above it where there is more room.
    /// The first one is selected.
    void showAt(const QRect& box, const std::vector<Suggestion>& suggestions);
    void step(int rows);

  private:
    QFont m_labelFont;
};
