// A user who does anything at any time: gestures, keys, menus, controls, edits, and files that change
// meanwhile.
#pragma once

#include "ApplicationDelegate.h"
#include "soak/AnsweredDialogs.h"

#include <QEvent>
#include <QObject>
#include <QStringList>

#include <map>
#include <random>
#include <string>

class MoxDocument;
class MoxDocumentWindow;
class QWidget;

/// Drives the documents of an application through their widgets. The data files and the document's file are
/// made anew by `startOver`.
class RandomUser : public QObject {
  public:
    /// Files are written to `folder`; the data have that many rows.
    RandomUser(ApplicationDelegate& application, QString folder, int rows, unsigned seed);

    /// No window is open; the files are as they were at first.
    void startOver();
    /// Does one thing, in a new window of the document if there is none, and lets some of what follows
    /// happen.
    void act();
    /// Closes every window without a question.
    void closeEverything();
    /// Lets everything come to its end.
    void settle();

    /// How often each thing was done.
    const std::map<std::string, int>& counts() const { return m_counts; }

  private:
    struct Deed {
        const char* name;
        unsigned weight;
        void (RandomUser::*perform)();
    };
    static const Deed deeds[];

    void dragOnPlot();
    void turnWheel();
    void pressKeysOnPlot();
    void chooseCommand();
    void undoAndRedo();
    void typeExpression();
    void useAnyControl();
    void changeCurves();
    void changePlot();
    void changeSettings();
    void changeFiles();
    void changeTabs();
    void resizeWindow();
    void changeWindows();

    unsigned below(unsigned bound) { return static_cast<unsigned>(m_engine() % bound); }
    template <class List>
    auto& anyOf(List& list) {
        return list[static_cast<typename List::size_type>(below(static_cast<unsigned>(list.size())))];
    }
    MoxDocumentWindow& window();
    MoxDocument& document();
    QPoint anyPointOf(const QWidget& widget);
    Qt::KeyboardModifiers anyModifiers();
    void mouse(QEvent::Type type, QWidget& widget, QPoint point, Qt::MouseButton button,
               Qt::MouseButtons held);
    void drag(QWidget& widget);
    void wheel(QWidget& widget);
    void pressKeys(QWidget& widget);
    void leaveMenus();
    void makeDocument();
    bool isIdle();
    QString path(const char* name) const;
    QStringList choosePaths(const FilePanel& panel);

    ApplicationDelegate& m_application;
    const QString m_folder;
    const int m_rows;
    std::mt19937_64 m_engine;
    AnsweredDialogs m_dialogs;
    QByteArray m_documentBytes;
    std::map<std::string, int> m_counts;
};
