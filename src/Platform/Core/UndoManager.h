// Undo and redo as groups of inverse closures, at most ten levels.
#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <vector>

/// What registers while a change happens lands on the undo stack; what registers while undoing lands on the
/// redo stack, and the other way round. All registrations of one event-loop turn form one group, unless a
/// group is opened by hand (an editing session, a slider drag, a removal). Closures keep their objects alive.
/// Main thread.
class UndoManager : public QObject {
    Q_OBJECT

  public:
    using Inverse = std::function<void()>;

    explicit UndoManager(QObject* parent = nullptr);

    void registerUndo(Inverse inverse);
    /// Names the group that is open now ("Setting color").
    void setActionName(const QString& name);
    void beginUndoGrouping();
    void endUndoGrouping();
    /// Closes the group of this event-loop turn early, so that what follows is a step of its own.
    void closeTurnGroup();

    bool canUndo() const;
    bool canRedo() const;
    void undo();
    void redo();
    QString undoActionName() const;
    QString redoActionName() const;
    bool isUndoing() const;
    bool isRedoing() const;

    void setLevelsOfUndo(std::size_t levels); ///< oldest groups are dropped; 0 means no limit
    std::size_t levelsOfUndo() const;
    void removeAllActions();

    /// The clean mark: where the stack stood when the document was last saved. `isClean` is false for good
    /// once the mark was dropped with an old group or a cut-off redo branch.
    void setClean();
    bool isClean() const;

  Q_SIGNALS:
    void changed(); ///< stacks, names or cleanness may have changed
};
