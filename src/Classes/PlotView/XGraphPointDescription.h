// One kind of point marker: its stable identifier, its name and its outline.
#pragma once

#include <QString>

class QPainterPath;

/// Immutable. Listed by XPointsLibrary.
class XGraphPointDescription {
  public:
    /// Appends one marker's outline, centred at (x, y) with half-size r, to the path.
    using DrawCallback = void (*)(QPainterPath& path, float x, float y, float r);

    XGraphPointDescription(int pointIdentifier, QString name, DrawCallback callback, bool filled);

    int identifier() const { return m_identifier; }
    const QString& displayName() const { return m_displayName; }
    DrawCallback drawCallback() const { return m_drawCallback; } ///< null draws nothing
    bool isFilled() const { return m_isFilled; }                 ///< filled, else stroked

  private:
    int m_identifier;
    QString m_displayName;
    DrawCallback m_drawCallback;
    bool m_isFilled;
};
