// The view of one curve's row: lays its controls out for any width and draws what is not a control.
#pragma once

#include "Classes/CurvesSidebar/CFlippedView.h"

#include <QColor>
#include <QString>

#include <array>
#include <vector>

/// The controls come from the interface file, which holds their frames for one width. What lies in its right
/// half keeps its distance to the right edge, what reaches into it stretches. A font taller than 16 px raises
/// every line by the difference.
class CCurveView : public CFlippedView {
    Q_OBJECT

  public:
    /// What is drawn beside the controls.
    struct Marks {
        QColor color;                   ///< of the spine
        bool isHidden = false;          ///< the curve is not drawn: the spine pales
        QString sourceGlyph;            ///< picture of the kind of data source
        std::array<bool, 3> isFaulty{}; ///< the expression of x, of y, of the point size has an error
        bool operator==(const Marks&) const = default;
    };

    explicit CCurveView(QWidget* parent = nullptr);

    /// Takes the frames that the children have now for those of the designed width.
    void takeFrames();
    /// The two fields that share what is left of their line.
    void setSharers(QWidget* left, QWidget* right);

    void setMarks(const Marks& marks);
    const Marks& marks() const { return m_marks; }

    bool isFolded() const { return m_isFolded; }
    /// Changes the height; the owner hides the controls that are out of sight.
    void setFolded(bool folded);
    int neededHeight() const; ///< of the row as it is, with the line at its foot

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Placed {
        QWidget* control;
        QRect designed;
    };

    int tallerBy() const;
    QRect frameOf(const Placed& placed) const;
    void layOut();

    std::vector<Placed> m_controls;
    QWidget* m_leftSharer = nullptr;
    QWidget* m_rightSharer = nullptr;
    Marks m_marks;
    bool m_isFolded = false;
};
