// The two stacks, the grouping by event-loop turns, and the clean mark.
#include "Platform/Core/UndoManager.h"

#include "Core/Assertions.h"

#include <algorithm>
#include <utility>

UndoManager::UndoManager(QObject* parent) : QObject(parent) {}

void UndoManager::registerUndo(Inverse inverse) {
    if (m_activity == Activity::Idle) {
        openTurnGroup();
        m_redo.clear();
        if (m_cleanDepth && *m_cleanDepth > m_undo.size()) // the mark was in the redo branch
            m_cleanDepth.reset();
    }
    const bool isFirst = !isGroupOpen();
    m_open->inverses.push_back(std::move(inverse));
    if (isFirst)
        Q_EMIT changed();
}

void UndoManager::setActionName(const QString& name) {
    if (m_activity != Activity::Idle)
        return;
    openTurnGroup();
    m_open->name = name;
    Q_EMIT changed();
}

/// Unless a group is open. A posted event ends it: it comes after the turn's own events.
void UndoManager::openTurnGroup() {
    if (m_open)
        return;
    m_open.emplace();
    if (std::exchange(m_turnEndIsPosted, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_turnEndIsPosted = false;
            closeTurnGroup();
        },
        Qt::QueuedConnection);
}

void UndoManager::closeOpenGroup() {
    if (isGroupOpen()) {
        m_undo.push_back(std::move(*m_open));
        setLevelsOfUndo(m_levels);
    }
    m_open.reset();
    Q_EMIT changed();
}

void UndoManager::closeTurnGroup() {
    if (m_activity == Activity::Idle && m_handDepth == 0 && m_open)
        closeOpenGroup();
}

void UndoManager::beginUndoGrouping() {
    if (m_activity != Activity::Idle) // all that registers while undoing is one group
        return;
    closeTurnGroup();
    if (m_handDepth++ == 0) {
        m_open.emplace();
        Q_EMIT changed();
    }
}

void UndoManager::endUndoGrouping() {
    if (m_activity != Activity::Idle)
        return;
    if (!xAssert(m_handDepth > 0, "endUndoGrouping without beginUndoGrouping"))
        return;
    if (--m_handDepth == 0)
        closeOpenGroup();
}

void UndoManager::cancelUndoGrouping() {
    if (m_activity == Activity::Idle && m_handDepth == 1)
        m_open->inverses.clear();
    endUndoGrouping();
}

bool UndoManager::canUndo() const {
    return m_activity == Activity::Idle && m_handDepth == 0 && (isGroupOpen() || !m_undo.empty());
}

bool UndoManager::canRedo() const {
    return m_activity == Activity::Idle && m_handDepth == 0 && !m_redo.empty();
}

void UndoManager::undo() {
    closeTurnGroup();
    if (canUndo())
        revert(m_undo, m_redo, Activity::Undoing);
}

void UndoManager::redo() {
    closeTurnGroup();
    if (canRedo())
        revert(m_redo, m_undo, Activity::Redoing);
}

void UndoManager::revert(std::vector<Group>& from, std::vector<Group>& to, Activity activity) {
    const Group group = std::move(from.back());
    from.pop_back();
    m_open = Group{group.name, {}};
    m_activity = activity;
    const auto finish = [&] {
        if (isGroupOpen())
            to.push_back(std::move(*m_open));
        else
            m_cleanDepth.reset(); // there is no way back over this step
        m_open.reset();
        m_activity = Activity::Idle;
        Q_EMIT changed();
    };
    try {
        std::for_each(group.inverses.rbegin(), group.inverses.rend(), [](const auto& inverse) { inverse(); });
    } catch (...) {
        m_cleanDepth.reset();
        finish();
        throw;
    }
    finish();
}

QString UndoManager::undoActionName() const {
    if (isGroupOpen())
        return m_open->name;
    return m_undo.empty() ? QString() : m_undo.back().name;
}

QString UndoManager::redoActionName() const {
    return m_redo.empty() ? QString() : m_redo.back().name;
}

bool UndoManager::isUndoing() const {
    return m_activity == Activity::Undoing;
}

bool UndoManager::isRedoing() const {
    return m_activity == Activity::Redoing;
}

void UndoManager::setLevelsOfUndo(std::size_t levels) {
    m_levels = levels;
    while (m_levels > 0 && m_undo.size() > m_levels) {
        m_undo.erase(m_undo.begin());
        if (m_cleanDepth == 0U)
            m_cleanDepth.reset();
        else if (m_cleanDepth)
            --*m_cleanDepth;
    }
}

std::size_t UndoManager::levelsOfUndo() const {
    return m_levels;
}

void UndoManager::removeAllActions() {
    const bool wasClean = isClean();
    m_undo.clear();
    m_redo.clear();
    if (m_open)
        m_open->inverses.clear();
    m_cleanDepth = wasClean ? std::optional<std::size_t>(0) : std::nullopt;
    Q_EMIT changed();
}

void UndoManager::setClean() {
    // A group that is open by hand goes on as a step of its own, so that the mark lies between two steps.
    const QString name = m_open ? m_open->name : QString();
    if (m_activity == Activity::Idle && m_open)
        closeOpenGroup();
    if (m_handDepth > 0)
        m_open = Group{name, {}};
    m_cleanDepth = m_undo.size();
    Q_EMIT changed();
}

bool UndoManager::isClean() const {
    return m_cleanDepth == m_undo.size() && !isGroupOpen();
}
