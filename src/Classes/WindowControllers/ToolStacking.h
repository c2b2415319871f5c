// Which window a tool window stands in front of.
#pragma once

class QWidget;

namespace ToolStacking {

/// Keeps `tool` in front of `document`, and of no other window, until it is told another one; null: of none.
/// It need not be shown yet. The toolkit alone tells the desktop so only when a window is shown, which hiding
/// it for the sake of another document would let the user see.
void keepInFrontOf(QWidget& tool, const QWidget* document);

} // namespace ToolStacking
