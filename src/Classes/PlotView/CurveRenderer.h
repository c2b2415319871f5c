// Turns a curve's snapshot into pixels or vector paths: pure, without widgets and without the main thread.
#pragma once

#include "Classes/PlotModel/XCurve.h"

#include <QImage>

#include <cstdint>
#include <functional>
#include <stop_token>

class QPainter;
class XAxis;

namespace CurveRenderer {

/// Called now and then with the number of rows done.
using Progress = std::function<void(std::uint64_t rowsDone)>;

/// The curve on a transparent image of the axes' lengths times `devicePixelRatio` (rounded), with that ratio
/// set. Axes have their lengths in points. A null image when cancelled, or when the curve has no rows.
QImage renderImage(const CurveSnapshot& curve, const XAxis& axisX, const XAxis& axisY,
                   double devicePixelRatio, const std::stop_token& stop, const Progress& progress = {});

/// The same curve as vector strokes and fills in points, y downwards from the top of the y axis, origin at
/// the plot rectangle's top left: one stroke for each sub-path of the line reducer. Ends early when stopped.
void paintVector(QPainter& painter, const CurveSnapshot& curve, const XAxis& axisX, const XAxis& axisY,
                 const std::stop_token& stop = {});

} // namespace CurveRenderer
