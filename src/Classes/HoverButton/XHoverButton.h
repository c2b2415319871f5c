// A button that is nothing but a picture, with another one while the pointer is over it.
#pragma once

#include <QAbstractButton>
#include <QString>

/// For the close buttons of tabs and rows and for the expression switches. Pictures are named as in
/// `Pictures`; the one for the pointer has the suffix "_hover" and must exist.
class XHoverButton : public QAbstractButton {
    Q_OBJECT

  public:
    explicit XHoverButton(QWidget* parent = nullptr);

    /// The picture when the button is at rest.
    void setImage(const QString& name);
    /// The picture while the button is pressed; without one the other two stay.
    void setAlternateImage(const QString& name);

    const QString& normalImageName() const { return m_normalImageName; }
    /// Empty until the button was shown or entered.
    const QString& hoverImageName() const { return m_hoverImageName; }
    /// What is drawn now.
    const QString& shownImageName() const;

    QSize sizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void setupImages();
    void setHovered(bool hovered);

    QString m_normalImageName;
    QString m_hoverImageName;
    QString m_alternateImageName;
    bool m_hovered = false;
};
