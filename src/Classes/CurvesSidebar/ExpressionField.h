// The field of an expression.
#pragma once

#include "Classes/CurvesSidebar/RowTextField.h"

#include <QStringList>

/// Monospaced. Its box leaves the lowest pixels of its frame free, as much as `setBed` says.
class ExpressionField : public RowTextField {
    Q_OBJECT

  public:
    explicit ExpressionField(QWidget* parent = nullptr);

    void setBed(int pixels);
    /// Offered while typing; without the row number.
    void setColumnNames(const QStringList& names) { m_columnNames = names; }

    /// The frame of a field over a pop-up's: moved by 4 and 3, narrowed by 8.
    static QRect frameOver(const QRect& popup) {
        return {popup.x() + 4, popup.y() + 3, popup.width() - 8, popup.height()};
    }

  protected:
    void initStyleOption(QStyleOptionFrame* option) const override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QRect boxOf(const QRect& frame) const { return frame.adjusted(0, 0, 0, -m_bed); }

    QStringList m_columnNames;
    int m_bed = 0;
};
