// Undo and redo as groups of inverse closures, at most ten levels.
#pragma once

#include <QObject>
#include <QString>

#include <cstddef>
#include <functional>
#include <optional>
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
    /// Names the group that is open now, or that the next registration of this turn opens ("Setting color").
    /// While undoing or redoing the step keeps its name.
    void setActionName(const QString& name);
    /// Groups nest: the outermost is the step. Ends the group of this turn.
    void beginUndoGrouping();
    void endUndoGrouping();
    /// Ends a group whose maker has put everything back: it leaves no step. Within another group it is like
    /// the above.
    void cancelUndoGrouping();
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

  private:
    struct Group {
        QString name;
        std::vector<Inverse> inverses; ///< run from the last to the first
    };
    enum class Activity { Idle, Undoing, Redoing };

    void openTurnGroup();
    void closeOpenGroup();
    void revert(std::vector<Group>& from, std::vector<Group>& to, Activity activity);
    bool isGroupOpen() const { return m_open && !m_open->inverses.empty(); }

    std::vector<Group> m_undo;
    std::vector<Group> m_redo;
    std::optional<Group> m_open; ///< collects registrations; while undoing, what goes to the redo stack
    std::size_t m_handDepth = 0; ///< how many groups are open by hand
    bool m_turnEndIsPosted = false;
    Activity m_activity = Activity::Idle;
    std::size_t m_levels = 0;
    std::optional<std::size_t> m_cleanDepth = 0; ///< groups on the undo stack at the clean mark
};
