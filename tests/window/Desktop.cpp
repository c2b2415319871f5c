// Xvfb with its frame buffer in a file, openbox, and xdotool.
#include "Desktop.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QtEndian>

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;
using support::waitUntil;

namespace window_test {

namespace {

constexpr int commandTimeout = 20'000; // milliseconds

QString run(const QString& command, const QStringList& arguments, const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(command, arguments);
    EXPECT_TRUE(process.waitForFinished(commandTimeout)) << command.toStdString() << " hangs";
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

QStringList at(QPoint place) {
    return {u"mousemove"_qs, QString::number(place.x()), QString::number(place.y())};
}

} // namespace

Desktop::Desktop() {
    m_server.start(u"Xvfb"_qs, {u"-displayfd"_qs, u"1"_qs, u"-screen"_qs, u"0"_qs, u"1400x900x24"_qs,
                                u"-nolisten"_qs, u"tcp"_qs, u"-fbdir"_qs, m_folder.path()});
    QByteArray number;
    const bool serverStarted = waitUntil([&] {
        number += m_server.readAllStandardOutput();
        return number.endsWith('\n');
    });
    m_display = u':' + QString::fromLatin1(number.trimmed());
    m_windowManager.setProcessEnvironment(environment());
    const bool managed =
        serverStarted && waitUntil([&] {
            if (m_windowManager.state() == QProcess::NotRunning)
                m_windowManager.start(u"openbox"_qs, {u"--sm-disable"_qs});
            return run(u"xprop"_qs, {u"-root"_qs, u"_NET_SUPPORTING_WM_CHECK"_qs}, environment())
                .contains(u"0x");
        });
    if (!managed)
        m_fault =
            serverStarted
                ? u"openbox does not start: "_qs + QString::fromUtf8(m_windowManager.readAllStandardError())
                : u"Xvfb does not start: "_qs + QString::fromUtf8(m_server.readAllStandardError());
}

Desktop::~Desktop() {
    for (QProcess* process : {&m_windowManager, &m_server}) {
        process->terminate();
        if (!process->waitForFinished(commandTimeout))
            process->kill();
    }
}

QProcessEnvironment Desktop::environment() const {
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(u"DISPLAY"_qs, m_display);
    variables.insert(u"QT_QPA_PLATFORM"_qs, u"xcb"_qs);
    variables.insert(u"TZ"_qs, u"UTC"_qs);
    variables.remove(u"QT_SCALE_FACTOR"_qs);
    variables.remove(u"WAYLAND_DISPLAY"_qs);
    return variables;
}

QString Desktop::xdotool(const QStringList& arguments) const {
    return run(u"xdotool"_qs, arguments, environment());
}

void Desktop::type(const QString& text) const {
    const QStringList lines = text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0)
            key(u"Return"_qs); // as text, a line end types nothing
        xdotool({u"type"_qs, u"--delay"_qs, u"5"_qs, u"--"_qs, lines[i]});
    }
}

void Desktop::moveTo(QPoint place) const {
    xdotool(at(place));
}

void Desktop::click(QPoint place, int button) const {
    xdotool(at(place) + QStringList{u"click"_qs, QString::number(button)});
}

void Desktop::doubleClick(QPoint place) const {
    xdotool(at(place) + QStringList{u"click"_qs, u"--repeat"_qs, u"2"_qs, u"--delay"_qs, u"50"_qs, u"1"_qs});
}

void Desktop::drag(QPoint from, QPoint to) const {
    const QPoint middle = (from + to) / 2;
    xdotool(at(from) + QStringList{u"mousedown"_qs, u"1"_qs} + at(middle) + at(to) +
            QStringList{u"mouseup"_qs, u"1"_qs});
}

void Desktop::wheel(QPoint place, int notches) const {
    xdotool(at(place) + QStringList{u"click"_qs, u"--repeat"_qs, QString::number(std::abs(notches)),
                                    QString::number(notches > 0 ? 4 : 5)});
}

QImage Desktop::screen() const {
    // The X window dump format: big-endian 32-bit fields, a colour table, then rows of pixels.
    enum Field { HeaderSize = 0, Width = 4, Height = 5, BytesPerLine = 12, Colors = 19, FieldCount = 25 };
    constexpr qsizetype colorSize = 12;
    const QByteArray dump = support::ScratchFolder::read(m_folder.path(u"Xvfb_screen0"_qs));
    std::array<quint32, FieldCount> fields{};
    if (dump.size() < qsizetype(sizeof fields))
        return {};
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i] = qFromBigEndian<quint32>(dump.constData() + 4 * i);
    const qsizetype start = fields[HeaderSize] + colorSize * fields[Colors];
    if (dump.size() < start + qsizetype(fields[BytesPerLine]) * fields[Height])
        return {};
    const QImage view(reinterpret_cast<const uchar*>(dump.constData() + start), int(fields[Width]),
                      int(fields[Height]), fields[BytesPerLine], QImage::Format_RGB32);
    return view.copy();
}

QImage Desktop::steadyScreen() const {
    constexpr qint64 steadyTime = 300; // milliseconds
    QImage last = screen();
    QElapsedTimer unchanged;
    unchanged.start();
    EXPECT_TRUE(waitUntil([&] {
        QImage now = screen();
        if (now != last) {
            last = std::move(now);
            unchanged.start();
        }
        return unchanged.hasExpired(steadyTime);
    })) << "the screen does not come to rest";
    return last;
}

Program::Program(const Desktop& desktop, const support::ScratchFolder& folder, const QStringList& arguments,
                 const QString& workingFolder)
    : m_desktop(desktop) {
    QProcessEnvironment variables = desktop.environment();
    for (const QString& name : {u"XDG_CONFIG_HOME"_qs, u"XDG_DATA_HOME"_qs, u"XDG_STATE_HOME"_qs, u"HOME"_qs})
        variables.insert(name, folder.path(u"home"_qs));
    variables.insert(u"XDG_RUNTIME_DIR"_qs, folder.path()); // which is private
    variables.insert(u"VELQUIN_AUTOSAVE_SECONDS"_qs, u"1"_qs);
    // The message bus library keeps a buffer of its own to the end; this is about its leak alone.
    const QString suppressions = folder.write(u"leaks.txt"_qs, "leak:libdbus-1.so\n");
    variables.insert(u"LSAN_OPTIONS"_qs, u"print_suppressions=0:suppressions="_qs + suppressions);
    m_process.setProcessEnvironment(variables);
    m_process.setWorkingDirectory(folder.path(workingFolder));
    m_process.start(QStringLiteral(VELQUIN_PROGRAM), arguments);
    EXPECT_TRUE(m_process.waitForStarted(commandTimeout));
}

Program::~Program() {
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished(commandTimeout);
    }
}

QString Program::find(const QString& title) const {
    // xdotool wants a regular expression.
    const QStringList search{u"search"_qs,
                             u"--onlyvisible"_qs,
                             u"--all"_qs,
                             u"--pid"_qs,
                             QString::number(m_process.processId()),
                             u"--name"_qs,
                             QRegularExpression::escape(title)};
    return m_desktop.xdotool(search).section(u'\n', -1);
}

bool Program::hasWindow(const QString& title) const {
    return !find(title).isEmpty();
}

bool Program::waitForWindow(const QString& title) {
    const bool came = waitUntil([&] {
        m_window = find(title);
        return !m_window.isEmpty() || !isRunning();
    });
    if (!came || m_window.isEmpty())
        return false;
    m_desktop.xdotool({u"windowactivate"_qs, u"--sync"_qs, m_window});
    return true;
}

void Program::placeWindow(const QRect& frame) {
    m_desktop.xdotool(
        {u"windowsize"_qs, m_window, QString::number(frame.width()), QString::number(frame.height())});
    m_desktop.xdotool({u"windowmove"_qs, m_window, QString::number(frame.x()), QString::number(frame.y())});
    EXPECT_TRUE(waitUntil([&] { return content().size() == frame.size(); }));
}

QRect Program::content() const {
    const QString lines = run(u"xwininfo"_qs, {u"-id"_qs, m_window}, m_desktop.environment());
    const auto number = [&](const QString& name) {
        return lines.section(name + u':', 1).section(u'\n', 0, 0).trimmed().toInt();
    };
    return {number(u"Absolute upper-left X"_qs), number(u"Absolute upper-left Y"_qs), number(u"Width"_qs),
            number(u"Height"_qs)};
}

QString Program::title() const {
    return m_desktop.xdotool({u"getwindowname"_qs, m_window});
}

int Program::waitForEnd() {
    const bool ended = waitUntil([&] { return !isRunning(); });
    return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

} // namespace window_test
