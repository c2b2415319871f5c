// The style of every standard widget: measures, outlines, the focus ring and the two palettes' use.
#pragma once

#include <QPointer>
#include <QProxyStyle>

class QFocusFrame;

/// Drawn over Fusion. Fields have a white body and a dark foot, pop-ups a chevron, buttons neither. A system
/// font taller than 16 px raises every height by the difference.
class VelquinStyle : public QProxyStyle {
    Q_OBJECT

  public:
    VelquinStyle();
    /// For `QApplication::setStyle`, which takes it over.
    static QStyle* create();

    /// The focus rings of everything in `container` lie inside the controls' outlines, as tight rows of
    /// controls need; elsewhere they lie outside, one pixel off.
    static void setFocusRingInside(QWidget& container, bool inside = true);
    static bool focusRingInside(const QWidget* widget);

    /// Shows a field as faulty, with the reason as its tooltip; an empty reason ends it and brings the
    /// former tooltip back.
    static void setFault(QWidget& field, const QString& reason);
    static bool isFaulty(const QWidget* field);

    /// The scroll bars of `area` lie over its content, 6 px wide.
    static void setOverlayScrollBars(QWidget& area);

    /// The font of counts, hints and the status line: a pixel less than `font`, never under 11.
    static QFont smallFont(const QFont& font);

    void polish(QApplication* application) override;
    void polish(QWidget* widget) override;
    using QProxyStyle::polish;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl subControl,
                         const QWidget* widget) const override;
    QIcon standardIcon(StandardPixmap pixmap, const QStyleOption* option,
                       const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void followFocus(QWidget* now);

    QPointer<QFocusFrame> m_ring; ///< goes with the window that it last stood in
};
