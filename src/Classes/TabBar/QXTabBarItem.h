// A tab: the title of its view controller, a close button under the pointer, a thin progress bar.
#pragma once

#include "Classes/TabBar/QXTabBarItemDelegate.h"
#include "Classes/TabBar/TabPainting.h"
#include "Platform/Core/XViewController.h"

#include <QWidget>

#include <memory>

class XHoverButton;
class XMiniProgressIndicator;

/// Stands in a `QXTabBar`, which is its parent and lays it out. Its frame is counted upwards from the foot of
/// the bar. It keeps its view controller alive; the controller's view belongs to whatever widget shows it,
/// and a controller deletes a view that nothing shows any more.
class QXTabBarItem : public QWidget {
    Q_OBJECT

  public:
    using Controller = std::shared_ptr<XViewController>;

    explicit QXTabBarItem(Controller viewController = {}, QWidget* parent = nullptr);
    ~QXTabBarItem() override;

    /// Bounds of the width, in points.
    virtual int minWidth() const { return 100; }
    virtual int maxWidth() const { return 200; }

    bool isSelected() const { return m_isSelected; }
    void setSelected(bool selected);

    QXTabBarItemDelegate* delegate() const { return m_delegate; }
    void setDelegate(QXTabBarItemDelegate* delegate) { m_delegate = delegate; }

    const Controller& viewController() const { return m_viewController; }
    void setViewController(Controller viewController);

    QString title() const; ///< the view controller's
    /// Room of the title, counted downwards.
    virtual QRect titleRect() const;

    /// Marks the tab with a warning glyph and the reason as tooltip; an empty reason ends it.
    void setFault(const QString& reason);

    /// Shows the progress bar for a number between 0 and 100 exclusive, and hides it for any other.
    void handleProgressChange(float percentage);

    XHoverButton* closeButton() const { return m_closeButton; } ///< null for tabs that stay
    XMiniProgressIndicator* progressIndicator() const { return m_progressIndicator; }

    /// Whether the bar's keyboard focus is drawn on this tab.
    void setShowsFocus(bool shows);

    void onClose();

  protected:
    enum class CloseButton { Yes, No };
    QXTabBarItem(CloseButton closeButton, Controller viewController, QWidget* parent);

    virtual TabPainting::Outline outlineStyle() const { return TabPainting::Outline::Solid; }
    /// Draws glyph and title.
    virtual void drawTitle(QPainter& painter);
    QFont titleFont() const;
    QColor titleColor() const;

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void createCloseButton();
    void createProgressIndicator();
    void titleChanged();

    Controller m_viewController;
    Observation m_observation;
    QXTabBarItemDelegate* m_delegate = nullptr;
    XHoverButton* m_closeButton = nullptr;
    XMiniProgressIndicator* m_progressIndicator = nullptr;
    QString m_fault;
    bool m_isSelected = false;
    bool m_showsFocus = false;
};
