// The outlines of the point markers and their list.
#include "Classes/PlotView/XPointsLibrary.h"

#include <QPainterPath>

#include <algorithm>
#include <utility>

namespace {

void appendOval(QPainterPath& path, float x, float y, float r) {
    path.addEllipse(QPointF(x, y), r, r);
}

void appendSquare(QPainterPath& path, float x, float y, float r) {
    path.addRect(x - r, y - r, 2 * r, 2 * r);
}

/// Closed by its last line, not by a close operation.
void appendDiamond(QPainterPath& path, float x, float y, float r) {
    path.moveTo(x, y + r);
    path.lineTo(x + r, y);
    path.lineTo(x, y - r);
    path.lineTo(x - r, y);
    path.lineTo(x, y + r);
}

void appendX(QPainterPath& path, float x, float y, float r) {
    path.moveTo(x - r, y - r);
    path.lineTo(x + r, y + r);
    path.moveTo(x - r, y + r);
    path.lineTo(x + r, y - r);
}

void appendPlus(QPainterPath& path, float x, float y, float r) {
    path.moveTo(x, y - r);
    path.lineTo(x, y + r);
    path.moveTo(x - r, y);
    path.lineTo(x + r, y);
}

} // namespace

XGraphPointDescription::XGraphPointDescription(int pointIdentifier, QString name, DrawCallback callback,
                                               bool filled)
    : m_identifier(pointIdentifier), m_displayName(std::move(name)), m_drawCallback(callback),
      m_isFilled(filled) {}

// Identifiers are stored in documents; "Ring" came last and is listed beside its sibling.
XPointsLibrary::XPointsLibrary()
    : m_pointDescriptions{
          {0, QStringLiteral("None"), nullptr, false},
          {1, QStringLiteral("Circle"), appendOval, true},
          {6, QStringLiteral("Ring"), appendOval, false},
          {2, QStringLiteral("Square"), appendSquare, true},
          {3, QStringLiteral("Diamond"), appendDiamond, true},
          {4, QStringLiteral("X"), appendX, false},
          {5, QStringLiteral("Plus"), appendPlus, false},
      } {}

const XPointsLibrary& XPointsLibrary::sharedLibrary() {
    static const XPointsLibrary library;
    return library;
}

const XGraphPointDescription* XPointsLibrary::pointDescriptionWithId(int identifier) const {
    const auto found =
        std::find_if(m_pointDescriptions.begin(), m_pointDescriptions.end(),
                     [=](const auto& description) { return description.identifier() == identifier; });
    return found == m_pointDescriptions.end() ? m_pointDescriptions.data() : &*found;
}

const XGraphPointDescription*
XPointsLibrary::nextPointDescription(const XGraphPointDescription* description) const {
    if (description == nullptr)
        return pointDescriptionWithId(0);
    return pointDescriptionWithId((description->identifier() + 1) %
                                  static_cast<int>(m_pointDescriptions.size()));
}
