// The document file as values: a property list with data sources, curves, their map and the plot area's
// options.
#pragma once

#include <QByteArray>
#include <QSizeF>
#include <QString>
#include <QVariant>

#include <optional>
#include <vector>

/// The plot area's options. In a file that was read, absent means that the key is missing.
struct PlotAreaOptions {
    std::optional<QString> title;
    std::optional<QString> axisTitleX;
    std::optional<QString> axisTitleY;
    std::optional<double> axisMaxX; ///< absent: the limit follows the data
    std::optional<double> axisMinX;
    std::optional<double> axisMaxY;
    std::optional<double> axisMinY;
    std::optional<QString> axisX_type; ///< identifier of an axis kind
    std::optional<QString> axisY_type;
    std::optional<bool> showOriginX;
    std::optional<bool> showOriginY;
    std::optional<bool> showHorizontalLines;
    std::optional<bool> showVerticalLines;
    std::optional<bool> showLegend;
    std::optional<int> legendAlignment;
    std::optional<QSizeF> legendMargins; ///< read in single precision

    bool operator==(const PlotAreaOptions&) const = default;
};

/// What a document file holds, before any object is made of it.
struct DocumentValues {
    QVariant datasources; ///< checked by the data-source manager
    QVariantList curves;  ///< one entry a curve, checked by the curve
    std::vector<qint64>
        datasourcesMap; ///< kept: entry i belongs to curve i, whatever was left out when writing
    PlotAreaOptions plotAreaOptions;
};

namespace DocumentFile {

/// Fails an assertion (which throws while a document loads) whose text says what is wrong with the root, a
/// missing key or the map. Options of the wrong type read as if their accessor had met nothing.
DocumentValues fromPlist(const QVariant& root);
QVariantMap toPlist(const DocumentValues& values);

} // namespace DocumentFile
