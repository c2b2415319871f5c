// A desktop of its own for tests that use the program as a person does: an X server without a screen, a
// window manager, a keyboard, a mouse and eyes.
#pragma once

#include "support/TestSupport.h"

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QRect>
#include <QString>
#include <QStringList>

#include <memory>

namespace window_test {

/// Starts with the object and ends with it. All waits are for conditions and fail the test when they do not
/// come true.
class Desktop {
  public:
    Desktop();
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    /// Why there is no desktop, if so.
    const QString& fault() const { return m_fault; }
    QProcessEnvironment environment() const;

    /// The output of one xdotool command, trimmed.
    QString xdotool(const QStringList& arguments) const;
    void key(const QString& keys) const { xdotool({QStringLiteral("key"), keys}); }
    void type(const QString& text) const;
    void moveTo(QPoint place) const;
    void click(QPoint place, int button = 1) const;
    void doubleClick(QPoint place) const;
    void drag(QPoint from, QPoint to) const;
    void wheel(QPoint place, int notches) const; ///< upwards when positive

    /// What is on the screen now.
    QImage screen() const;
    /// The screen once it has shown the same for a while.
    QImage steadyScreen() const;

  private:
    support::ScratchFolder m_folder;
    mutable QProcess m_server;
    mutable QProcess m_windowManager;
    QString m_display;
    QString m_fault;
};

/// The program, running on a desktop with settings of its own.
class Program {
  public:
    /// `workingFolder` is below `folder`.
    Program(const Desktop& desktop, const support::ScratchFolder& folder, const QStringList& arguments,
            const QString& workingFolder = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Waits for a window with that text in its title and makes it the active one; false if none came.
    [[nodiscard]] bool waitForWindow(const QString& title);
    /// Whether a window with that text in its title is on the screen.
    bool hasWindow(const QString& title) const;
    /// Gives the window that was waited for a place and a size.
    void placeWindow(const QRect& frame);
    /// The window's content, on the screen.
    QRect content() const;
    QString title() const;
    const QString& windowId() const { return m_window; }

    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// The exit code once the program has ended; -1 if it does not, or crashed.
    int waitForEnd();
    void kill() { m_process.kill(); }
    void terminate() { m_process.terminate(); }
    QByteArray errors() { return m_process.readAllStandardError(); }

  private:
    QString find(const QString& title) const;

    const Desktop& m_desktop;
    mutable QProcess m_process;
    QString m_window;
};

} // namespace window_test
