// The Edit menu's commands where text has the focus.
#pragma once

class QWidget;

enum class EditCommand { Undo, Redo, Cut, Copy, Paste, SelectAll };

namespace EditCommands {

/// Whether the widget, or the field inside it, can do that now. Undo and Redo: whether it holds typing of its
/// own that can be taken back; a field whose text was handed over holds none.
bool can(EditCommand command, const QWidget* focus);
void perform(EditCommand command, QWidget* focus);

} // namespace EditCommands
