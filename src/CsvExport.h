// Tables and curves as comma-separated values: shortest round-trip numbers, NaN as an empty cell.
#pragma once

#include "Classes/PlotModel/XCurve.h"
#include "EmbeddedPlugins/Common/XPTableData.h"

#include <QList>
#include <QStringList>

class QIODevice;

namespace CsvExport {

/// A header of `columnNames` (the row number first) and one line a row. Returns whether every byte was taken.
bool writeTable(QIODevice& device, const QStringList& columnNames, const XPTableData& table);

/// Columns x1, y1, x2, y2, ... as drawn, and size1, ... where a curve has sizes of its own; a curve that ends
/// early leaves its cells empty.
bool writeValues(QIODevice& device, const QList<CurveSnapshot>& curves);

} // namespace CsvExport
