// One table of what each kind of text can do.
#include "Classes/WindowControllers/EditCommands.h"

#include <QAbstractSpinBox>
#include <QClipboard>
#include <QComboBox>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace {

/// What the commands of a text depend on.
struct TextState {
    bool canUndo = false;
    bool canRedo = false;
    bool hasSelection = false;
    bool isEditable = false;
    bool hasText = false;
};

/// Boxes keep the focus for the field inside them.
QWidget* textWidget(const QWidget* focus) {
    auto* widget = const_cast<QWidget*>(focus);
    if (qobject_cast<QAbstractSpinBox*>(widget) != nullptr || qobject_cast<QComboBox*>(widget) != nullptr)
        widget = widget->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
    return widget;
}

bool hasMethod(const QWidget* widget, const char* signature) {
    return widget != nullptr && widget->metaObject()->indexOfMethod(signature) >= 0;
}

bool stateOf(const QWidget* widget, TextState& state) {
    if (const auto* line = qobject_cast<const QLineEdit*>(widget)) {
        state = {line->isUndoAvailable(), line->isRedoAvailable(), line->hasSelectedText(),
                 !line->isReadOnly(), !line->text().isEmpty()};
        return true;
    }
    if (const auto* text = qobject_cast<const QPlainTextEdit*>(widget)) {
        const QTextDocument* document = text->document();
        state = {document->isUndoAvailable(), document->isRedoAvailable(), text->textCursor().hasSelection(),
                 !text->isReadOnly(), !document->isEmpty()};
        return true;
    }
    if (const auto* label = qobject_cast<const QLabel*>(widget)) {
        state.hasSelection = label->hasSelectedText();
        return true;
    }
    // Tables and the like that bring these commands themselves.
    state.hasSelection = hasMethod(widget, "copy()");
    state.hasText = hasMethod(widget, "selectAll()");
    return state.hasSelection;
}

} // namespace

bool EditCommands::can(EditCommand command, const QWidget* focus) {
    TextState state;
    if (!stateOf(textWidget(focus), state))
        return false;
    switch (command) {
    case EditCommand::Undo:
        return state.isEditable && state.canUndo;
    case EditCommand::Redo:
        return state.isEditable && state.canRedo;
    case EditCommand::Cut:
        return state.isEditable && state.hasSelection;
    case EditCommand::Copy:
        return state.hasSelection;
    case EditCommand::Paste:
        return state.isEditable;
    case EditCommand::SelectAll:
        return state.hasText;
    }
    return false;
}

void EditCommands::perform(EditCommand command, QWidget* focus) {
    QWidget* widget = textWidget(focus);
    if (!can(command, widget))
        return;
    const auto* label = qobject_cast<const QLabel*>(widget);
    if (command == EditCommand::Copy && label != nullptr)
        return QGuiApplication::clipboard()->setText(label->selectedText());
    constexpr const char* methods[] = {"undo", "redo", "cut", "copy", "paste", "selectAll"};
    QMetaObject::invokeMethod(widget, methods[static_cast<int>(command)]);
}

void EditCommands::commitTyping(const QWidget& window) {
    QWidget* field = window.focusWidget();
    if (field == nullptr)
        return;
    if (field->hasFocus()) {
        field->clearFocus();
        field->setFocus();
    } else { // an inactive window's field was left without a commit
        QFocusEvent leave(QEvent::FocusOut, Qt::OtherFocusReason);
        QCoreApplication::sendEvent(field, &leave);
    }
}
