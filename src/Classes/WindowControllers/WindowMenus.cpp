// Makes actions of the menu table and keeps them up to date.
#include "Classes/WindowControllers/WindowMenus.h"

#include "Classes/WindowControllers/EditCommands.h"
#include "Classes/WindowControllers/MenuTable.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <cstring>

namespace {

QString translated(const char* text) {
    return QCoreApplication::translate("WindowMenus", text);
}

QList<QKeySequence> sequencesOf(const char* keys) {
    QList<QKeySequence> sequences;
    for (const QString& each : QString::fromLatin1(keys).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        sequences.append(QKeySequence(each, QKeySequence::PortableText));
    return sequences;
}

} // namespace

WindowMenus::WindowMenus(MoxDocumentWindow& window) : QObject(&window), m_window(window) {
    for (const MenuRows& rows : menuTable()) {
        QMenu& menu = *window.menuBar()->addMenu(translated(rows.title));
        menu.setToolTipsVisible(true);
        for (const MenuCommand& command : rows.commands)
            add(menu, command);
        const qsizetype fixed = menu.actions().size();
        connect(&menu, &QMenu::aboutToShow, this, [this, &menu, &rows, fixed] {
            refresh();
            for (QAction* old : menu.actions().mid(fixed))
                delete old;
            if (rows.fillEnd != nullptr)
                rows.fillEnd(menu, m_window);
        });
    }
    connect(&window, &MoxDocumentWindow::commandStatesChanged, this, &WindowMenus::refresh);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusChanged(now); });
}

QAction* WindowMenus::add(QMenu& menu, const MenuCommand& command) {
    if (command.text == nullptr)
        return menu.addSeparator();
    if (command.fillSubmenu != nullptr) {
        QMenu* submenu = menu.addMenu(translated(command.text));
        submenu->setToolTipsVisible(true);
        connect(submenu, &QMenu::aboutToShow, this, [this, submenu, &command] {
            submenu->clear();
            command.fillSubmenu(*submenu, m_window);
        });
        m_entries.push_back({&command, submenu->menuAction()});
        return submenu->menuAction();
    }
    QAction* action = menu.addAction(translated(command.text));
    action->setObjectName(QLatin1String(command.name));
    action->setShortcuts(sequencesOf(command.keys));
    action->setCheckable(command.state.isChecked != nullptr);
    if (command.state.choiceGroup != nullptr) {
        const QString groupName = QLatin1String(command.state.choiceGroup);
        auto* group = findChild<QActionGroup*>(groupName);
        if (group == nullptr) {
            group = new QActionGroup(this);
            group->setObjectName(groupName);
        }
        group->addAction(action);
    }
    connect(action, &QAction::triggered, this, [this, &command] {
        const QPointer<WindowMenus> self(this);
        command.perform(m_window);
        if (self != nullptr)
            refresh();
    });
    m_entries.push_back({&command, action});
    return action;
}

QAction* WindowMenus::action(const char* name) const {
    for (const Entry& entry : m_entries) {
        if (std::strcmp(entry.command->name, name) == 0)
            return entry.action;
    }
    return nullptr;
}

void WindowMenus::refresh() {
    for (const auto& [command, action] : m_entries) {
        const bool enabled = command->state.isEnabled == nullptr || command->state.isEnabled(m_window);
        action->setEnabled(enabled);
        if (command->state.isChecked != nullptr)
            action->setChecked(command->state.isChecked(m_window));
        if (command->state.textNow != nullptr)
            action->setText(command->state.textNow(m_window));
        const bool tellsWhy = !enabled && command->state.whyDisabled != nullptr;
        action->setToolTip(translated(tellsWhy ? command->state.whyDisabled : command->help));
    }
}

void WindowMenus::setTool(QWidget* tool) {
    if (tool == m_tool)
        return;
    if (m_tool != nullptr) {
        for (const Entry& entry : m_entries)
            m_tool->removeAction(entry.action);
        if (m_focus != nullptr && m_focus->window() == m_tool)
            focusChanged(nullptr);
    }
    m_tool = tool;
    if (m_tool == nullptr)
        return;
    QList<QKeySequence> own;
    for (const QAction* action : m_tool->actions())
        own += action->shortcuts();
    for (const Entry& entry : m_entries) {
        const QList<QKeySequence> keys = entry.action->shortcuts();
        if (std::ranges::none_of(keys, [&own](const QKeySequence& each) { return own.contains(each); }))
            m_tool->addAction(entry.action);
    }
    if (QWidget* focus = QApplication::focusWidget(); focus != nullptr && focus->window() == m_tool)
        focusChanged(focus);
}

void WindowMenus::focusChanged(QWidget* now) {
    const bool isMenu = qobject_cast<QMenuBar*>(now) != nullptr || qobject_cast<QMenu*>(now) != nullptr;
    if (isMenu || (now != nullptr && now->window() != &m_window && now->window() != m_tool))
        return;
    if (m_focus != nullptr)
        m_focus->removeEventFilter(this);
    m_focus = now;
    if (m_focus != nullptr)
        m_focus->installEventFilter(this);
    refresh();
}

/// A field without typing of its own to take back lets the document have the key.
bool WindowMenus::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && object == m_focus) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const auto isLeft = [&](QKeySequence::StandardKey keys, EditCommand command) {
            return key->matches(keys) && !EditCommands::can(command, m_focus);
        };
        if (isLeft(QKeySequence::Undo, EditCommand::Undo) || isLeft(QKeySequence::Redo, EditCommand::Redo)) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(object, event);
}
