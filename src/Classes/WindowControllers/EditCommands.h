// The Edit menu's commands where text has the focus.
#pragma once

class QWidget;

enum class EditCommand { Undo, Redo, Cut, Copy, Paste, SelectAll };

namespace EditCommands {

/// Whether the widget, or the field inside it, can do that now. Undo and Redo: whether it holds typing of its
/// own that can be taken back; a field whose text was handed over holds none.
bool can(EditCommand command, const QWidget* focus);
void perform(EditCommand command, QWidget* focus);

/// Lets the field of this window that has the keyboard, or will have it again, hand its text over as if it
/// were left. It keeps the keyboard.
void commitTyping(const QWidget& window);

} // namespace EditCommands
