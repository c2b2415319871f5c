// The commands of a document's window as a table: one row a command.
#pragma once

#include <span>

class MoxDocumentWindow;
class QMenu;
class QString;

/// A row without a text is a separator. Keys are portable sequences, several of them separated by a blank.
struct MenuCommand {
    const char* name = nullptr; ///< of the action
    const char* text = nullptr;
    const char* keys = "";
    const char* help = ""; ///< tooltip
    void (*perform)(MoxDocumentWindow& window) = nullptr;
    bool (*isEnabled)(const MoxDocumentWindow& window) = nullptr; ///< null: always
    bool (*isChecked)(const MoxDocumentWindow& window) = nullptr; ///< null: the command is no switch
    const char* choiceGroup = nullptr;                            ///< one of those with this group is on
    const char* whyDisabled = nullptr;                            ///< tooltip while it is disabled
    QString (*textNow)(const MoxDocumentWindow& window) = nullptr;
    void (*fillSubmenu)(QMenu& menu, MoxDocumentWindow& window) = nullptr; ///< when it opens
};

struct MenuRows {
    const char* title;
    std::span<const MenuCommand> commands;
    void (*fillEnd)(QMenu& menu, MoxDocumentWindow& window) = nullptr; ///< rows after the fixed ones
};

std::span<const MenuRows> menuTable();
