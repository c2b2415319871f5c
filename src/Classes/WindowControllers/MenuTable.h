// The commands of a document's window as a table: one row a command.
#pragma once

#include <span>

class MoxDocumentWindow;
class QMenu;
class QString;

using MenuTest = bool (*)(const MoxDocumentWindow& window);

/// What of a command changes with the state of its window.
struct MenuState {
    MenuTest isEnabled = nullptr;                                  ///< null: always
    const char* whyDisabled = nullptr;                             ///< tooltip while it is disabled
    MenuTest isChecked = nullptr;                                  ///< null: the command is no switch
    const char* choiceGroup = nullptr;                             ///< one of those with this group is on
    QString (*textNow)(const MoxDocumentWindow& window) = nullptr; ///< null: always the same
};

/// A row without a text is a separator. Keys are portable sequences, several of them separated by a blank.
struct MenuCommand {
    const char* name = nullptr; ///< of the action
    const char* text = nullptr;
    const char* keys = nullptr;
    const char* help = nullptr; ///< tooltip
    void (*perform)(MoxDocumentWindow& window) = nullptr;
    MenuState state = {};
    /// In place of `perform`: fills a submenu, each time it opens.
    void (*fillSubmenu)(QMenu& menu, MoxDocumentWindow& window) = nullptr;
};

struct MenuRows {
    const char* title;
    std::span<const MenuCommand> commands;
    void (*fillEnd)(QMenu& menu, MoxDocumentWindow& window) = nullptr; ///< rows after the fixed ones
};

std::span<const MenuRows> menuTable();
