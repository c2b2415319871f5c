// The menus of a document's window, and the shortcuts.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <vector>

class MoxDocumentWindow;
class QAction;
class QMenu;
struct MenuCommand;

/// Built from one table; the states of all commands follow the window's.
class WindowMenus : public QObject {
    Q_OBJECT

  public:
    explicit WindowMenus(MoxDocumentWindow& window);

    /// By the command's name in the table, "addCurve"; null for an unknown one.
    QAction* action(const char* name) const;
    /// What had the focus before a menu took it.
    QWidget* focus() const { return m_focus; }
    void refresh();
    /// The keys of the commands work in that window too, but for those that it uses itself, and its texts
    /// are those that commands edit. Null ends it.
    void setTool(QWidget* tool);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    struct Entry {
        const MenuCommand* command;
        QAction* action;
    };

    QAction* add(QMenu& menu, const MenuCommand& command);
    void focusChanged(QWidget* now);

    MoxDocumentWindow& m_window;
    std::vector<Entry> m_entries;
    QPointer<QWidget> m_focus;
    QPointer<QWidget> m_tool;
};
