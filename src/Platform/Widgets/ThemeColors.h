// The colours of the interface: one table a theme, and the palette that widgets get from it.
#pragma once

#include <QColor>
#include <QPalette>

enum class Theme { Light, Dark };

/// Every colour that the interface uses outside the plot. Text on window has a contrast of at least 4.5:1.
struct ThemeColors {
    QColor bezel;      ///< menu bar, tab bars
    QColor window;     ///< pages, strips, the selected tab
    QColor raised;     ///< buttons, pop-ups
    QColor field;      ///< fields, tables, drop zone
    QColor line;       ///< separators
    QColor rowLine;    ///< between the rows of a table
    QColor tableHead;  ///< behind column names
    QColor edge;       ///< outlines
    QColor edge2;      ///< foot of a field, check box, dashes
    QColor text;       ///< text, the selected tab
    QColor text2;      ///< labels, icons, other tabs
    QColor text3;      ///< hints, counts; not on accentSoft
    QColor disabled;   ///< disabled text and icons
    QColor accent;     ///< on, focus, default button, links
    QColor accentSoft; ///< fill of "on", selection
    QColor onAccent;   ///< text on accent
    QColor warnText;
    QColor warnFill;
    QColor warnEdge;
    QColor errorText;
    QColor errorFill;
    QColor errorEdge;
    QColor hover;       ///< laid over a control under the pointer
    QColor pressed;     ///< laid over a pressed control
    QColor tabLine;     ///< outline of tabs, edge of the bar
    QColor tabShadeMid; ///< of a tab that is not selected, at 0.6 of its height
    QColor tabShade;    ///< the same, at its foot
    QColor tabGlow;     ///< under a tab's title
};

const ThemeColors& themeColors(Theme theme);

/// Foreground roles of labels: text2 for labels, text3 for hints and counts.
inline constexpr QPalette::ColorRole labelRole = QPalette::BrightText;
inline constexpr QPalette::ColorRole hintRole = QPalette::PlaceholderText;

/// The same colours by the roles that the toolkit's own widgets ask for.
QPalette themePalette(Theme theme);
