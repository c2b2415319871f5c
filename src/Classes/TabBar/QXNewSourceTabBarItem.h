// The tab of the drop zone, shown while a document has no data source.
#pragma once

#include "Classes/TabBar/QXTabBarItem.h"

/// Of one width, with a dashed outline and a glyph; it never closes by itself.
class QXNewSourceTabBarItem : public QXTabBarItem {
    Q_OBJECT

  public:
    explicit QXNewSourceTabBarItem(Controller viewController = {}, QWidget* parent = nullptr);

    int minWidth() const override { return 75; }
    int maxWidth() const override { return 75; }
    QRect titleRect() const override;

  protected:
    TabPainting::Outline outlineStyle() const override { return TabPainting::Outline::Dashed; }
    void drawTitle(QPainter& painter) override;
};
