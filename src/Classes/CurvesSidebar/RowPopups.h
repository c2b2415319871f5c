// The pop-ups of a curve's row.
#pragma once

#include <QComboBox>

/// Elides what is chosen, and shows all of it as a tooltip; its list is as wide as the items need.
class RowPopup : public QComboBox {
    Q_OBJECT

  public:
    explicit RowPopup(QWidget* parent = nullptr);

    void showPopup() override;

  protected:
    bool event(QEvent* event) override;
};

/// Its box is painted inside its frame, 4 px narrower on either side and 3 px lower, so that a field that is
/// laid out by the rule of frames falls on the very same pixels.
class ColumnPopup : public RowPopup {
    Q_OBJECT

  public:
    using RowPopup::RowPopup;

    /// Replaces the choices, unless they are the same. A binding shows its value again.
    void setChoices(const QStringList& names);

    static QRect boxOf(const QRect& frame) { return frame.adjusted(4, 3, -4, 0); }

  protected:
    void initStyleOption(QStyleOptionComboBox* option) const override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QStringList m_names;
};

/// The point markers with their glyphs, in the order of the catalogue; the item's data is the marker.
class ShapePopup : public QComboBox {
    Q_OBJECT

  public:
    explicit ShapePopup(QWidget* parent = nullptr);

    void showPopup() override;

  protected:
    void initStyleOption(QStyleOptionComboBox* option) const override;
};
