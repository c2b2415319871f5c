// The plot's style table: colours, paddings and gradients by name.
#pragma once

#include <QBrush>
#include <QColor>
#include <QVariantMap>

/// Starts with the colours of the white plot; single entries are replaced by `update`.
class PlotStyles {
  public:
    PlotStyles();

    /// Every entry of the white plot, and every entry of a black one: each takes the other one back.
    static QVariantMap defaultStyles();
    static QVariantMap blackBackgroundStyles();

    /// Replaces the entries that `changes` names and keeps the others.
    void update(const QVariantMap& changes);

    QColor color(const QString& key) const; ///< invalid, which draws nothing, for an unknown key
    double number(const QString& key) const;
    QGradientStops gradient(const QString& key) const;

    bool isDark() const; ///< whether the background is

  private:
    QVariantMap m_entries;
};
