// The catalogue of point markers: its order, its cycle and the outlines.
#include "Classes/PlotView/XPointsLibrary.h"

#include <QPainterPath>
#include <QTransform>

#include <gtest/gtest.h>

#include <string>

namespace {

const XPointsLibrary& library() {
    return XPointsLibrary::sharedLibrary();
}

TEST(PointsLibrary, ListsTheMarkersInMenuOrder) {
    std::string listed;
    for (const XGraphPointDescription& point : library().pointDescriptions())
        listed += std::to_string(point.identifier()) + point.displayName().toStdString() +
                  (point.isFilled() ? " filled," : ",");
    EXPECT_EQ(listed, "0None,1Circle filled,6Ring,2Square filled,3Diamond filled,4X,5Plus,");
}

TEST(PointsLibrary, OutlinesAreCentredAndAsWideAsTwiceTheHalfSize) {
    struct Row {
        int identifier;
        QPointF inside; ///< relative to the centre, r = 2
        QPointF outside;
        int elements;
    };
    for (const Row& row : {Row{1, {1.9, 0}, {1.6, 1.6}, 13}, Row{6, {0, -1.9}, {-1.6, 1.6}, 13},
                           Row{2, {1.9, -1.9}, {2.1, 0}, 5}, Row{3, {0.9, 0.9}, {1.1, 1.1}, 5}}) {
        QPainterPath path;
        library().pointDescriptionWithId(row.identifier)->drawCallback()(path, 10, 20, 2);
        EXPECT_EQ(path.boundingRect(), QRectF(8, 18, 4, 4)) << row.identifier;
        EXPECT_TRUE(path.contains(QPointF(10, 20) + row.inside)) << row.identifier;
        EXPECT_FALSE(path.contains(QPointF(10, 20) + row.outside)) << row.identifier;
        EXPECT_EQ(path.elementCount(), row.elements) << row.identifier;
    }
    QPainterPath lines; // appended, each line with a start of its own
    library().pointDescriptionWithId(4)->drawCallback()(lines, 0, 0, 1);
    library().pointDescriptionWithId(5)->drawCallback()(lines, 0, 0, 1);
    std::string drawn;
    for (int i = 0; i < lines.elementCount(); ++i) {
        const QPainterPath::Element element = lines.elementAt(i);
        drawn += (element.isMoveTo() ? "M" : "L") + std::to_string(static_cast<int>(element.x)) + "," +
                 std::to_string(static_cast<int>(element.y)) + " ";
    }
    EXPECT_EQ(drawn, "M-1,-1 L1,1 M-1,1 L1,-1 M0,-1 L0,1 M-1,0 L1,0 ");
    EXPECT_EQ(library().pointDescriptionWithId(0)->drawCallback(), nullptr);
}

} // namespace
