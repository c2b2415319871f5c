// The run with windows: opening files, those of later launches too, and the rim at which faults of event
// handlers end.
#include "WindowRun.h"

#include "ApplicationDelegate.h"
#include "BatchRun.h"
#include "Classes/SingleInstance/DesktopSession.h"
#include "Classes/SingleInstance/InstanceServer.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "CommandLine.h"
#include "DocumentRequest.h"
#include "MoxDocument.h"
#include "Platform/Widgets/Alerts.h"

#include <QDir>
#include <QFileInfo>
#include <QPlatformSurfaceEvent>
#include <QWindow>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// What was asked of a document names columns, so it waits for the data. Asked again whenever a source tells
/// of its state, until it is done.
class PendingRequest : public QObject {
  public:
    PendingRequest(MoxDocumentWindow& window, QString file, CommandLine line)
        : QObject(&window), m_window(window), m_file(std::move(file)), m_line(std::move(line)) {
        static constexpr const char* keys[] = {"isLoading"};
        for (const XDataSource& source : window.document().dataSourcesManager().dataSources()) {
            m_observations.emplace_back(*source, keys, [this](const KeyChange&) { applyWhenRead(); });
        }
        applyWhenRead();
    }

  private:
    void applyWhenRead() {
        MoxDocument& document = m_window.document();
        if (m_isDone || document.isReading())
            return;
        m_isDone = true;
        // The command line can be given again; what the user did meanwhile cannot.
        const bool needsNoSaving = document.filePath().isEmpty() && !document.isDocumentEdited();
        if (const auto failure = firstReadFailure(document))
            m_window.showMessage(failure->file + u": "_qs + failure->reason);
        else if (const auto refused = applyRequest(document, m_file, m_line))
            m_window.showMessage(refused->file + u": "_qs + refused->reason);
        else
            m_window.fitToData();
        if (needsNoSaving)
            document.setUnedited();
    }

    MoxDocumentWindow& m_window;
    const QString m_file;
    const CommandLine m_line;
    std::vector<Observation> m_observations;
    bool m_isDone = false;
};

/// What the FILEs of a command line came to.
struct Opening {
    std::vector<RequestFailure> failures;
    MoxDocumentWindow* lastWindow = nullptr; ///< null when nothing was opened

    /// For a launch that does not wait until the windows close.
    int exitCode() const {
        const bool wrongUsage = std::any_of(failures.begin(), failures.end(),
                                            [](const RequestFailure& failure) { return failure.wrongUsage; });
        return lastWindow != nullptr ? 0 : wrongUsage ? 2 : 1;
    }
};

/// `file` is as the user wrote it.
std::variant<MoxDocumentWindow*, RequestFailure> openWindow(DocumentController& documents,
                                                            const QString& file, const CommandLine& line,
                                                            const QDir& workingFolder) {
    const QString path = file.isEmpty() ? file : workingFolder.absoluteFilePath(file);
    if (MoxDocumentWindow* open = documents.windowOfFile(path)) {
        open->bringToFront();
        return open;
    }
    auto opened = openRequested(path, line, workingFolder);
    if (auto* failure = std::get_if<RequestFailure>(&opened)) {
        if (failure->file == path)
            failure->file = file;
        return *failure;
    }
    auto& document = std::get<std::unique_ptr<MoxDocument>>(opened);
    if (document->filePath().isEmpty())
        document->setUnedited();
    MoxDocumentWindow& window = documents.showDocument(
        std::move(document), QFileInfo(file).completeBaseName(), documents.mainWindow());
    new PendingRequest(window, file, line); // the window owns it
    return &window;
}

Opening openFiles(DocumentController& documents, const CommandLine& line, const QDir& workingFolder) {
    Opening opening;
    if (line.files.isEmpty())
        opening.lastWindow = &documents.newDocument();
    for (const QString& file : line.files) {
        auto opened = openWindow(documents, file, line, workingFolder);
        if (const auto* failure = std::get_if<RequestFailure>(&opened))
            opening.failures.push_back(*failure);
        else
            opening.lastWindow = std::get<MoxDocumentWindow*>(opened);
    }
    return opening;
}

/// One alert, however many files there are.
void tellFailures(MoxDocumentWindow* over, const std::vector<RequestFailure>& failures) {
    constexpr qsizetype mostNamed = 8;
    if (failures.size() == 1)
        DocumentController::tellNotOpened(over, failures.front().file, failures.front().reason);
    if (failures.size() < 2)
        return;
    QStringList lines;
    for (const RequestFailure& failure : failures)
        lines += QFileInfo(failure.file).fileName() + u": "_qs + failure.reason;
    if (lines.size() > mostNamed)
        lines = lines.first(mostNamed) << u"…"_qs;
    Alerts::shared().tell(over, Application::tr("%1 files cannot be opened.").arg(failures.size()),
                          lines.join(u"\n\n"_qs));
}

/// A user who started the program from a desktop sees no standard error.
bool readsNobodyStandardError() {
    const QString platform = QGuiApplication::platformName();
    return (platform == u"xcb"_qs || platform.startsWith(u"wayland"_qs)) && ::isatty(STDERR_FILENO) == 0;
}

InstanceReply serveLaunch(DocumentController& documents, const InstanceRequest& request) {
    const auto parsed = parseCommandLine(request.arguments);
    if (const auto* wrong = std::get_if<UsageError>(&parsed)) // of another version
        return {2, {wrong->reason}};
    const auto& line = std::get<CommandLine>(parsed);
    if (line.hasOutputs() || line.help || line.version)
        return {2, {Application::tr("a program that runs already opens windows only")}};
    const Opening opening = openFiles(documents, line, QDir(request.workingFolder));
    MoxDocumentWindow* front = opening.lastWindow != nullptr ? opening.lastWindow : documents.mainWindow();
    if (front == nullptr && !documents.windows().isEmpty())
        front = documents.windows().last();
    if (front != nullptr)
        front->bringToFront();
    DesktopSession::endLaunch(front, request.activationToken, request.startupId);
    tellFailures(front, opening.failures);
    InstanceReply reply{opening.exitCode(), {}};
    for (const RequestFailure& failure : opening.failures)
        reply.errors += failure.file + u": "_qs + failure.reason;
    return reply;
}

void nameNewWindow(const QObject* receiver, const QPlatformSurfaceEvent& event) {
    const auto* window = qobject_cast<const QWindow*>(receiver);
    if (window != nullptr && window->isTopLevel() &&
        event.surfaceEventType() == QPlatformSurfaceEvent::SurfaceCreated)
        DesktopSession::setWindowClass(*window);
}

} // namespace

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        if (event->type() == QEvent::PlatformSurface)
            nameNewWindow(receiver, static_cast<const QPlatformSurfaceEvent&>(*event));
        return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
        reportFailure({}, QString::fromUtf8(error.what()));
        return false;
    }
}

int runWindows(const CommandLine& line, InstanceServer* server) {
    // Windows that quitting leaves open go while there is an application: their documents end reads and
    // renderings.
    ApplicationDelegate application;
    application.applicationDidFinishLaunching();
    DocumentController& documents = application.documents();
    const Opening opening = openFiles(documents, line, QDir::current());
    for (const RequestFailure& failure : opening.failures)
        reportFailure(failure.file, failure.reason);
    const bool tells = !opening.failures.empty() && readsNobodyStandardError();
    if (opening.lastWindow == nullptr && !tells)
        return opening.exitCode();
    if (tells)
        tellFailures(opening.lastWindow, opening.failures);
    if (server != nullptr) {
        server->listen(
            [&documents](const InstanceRequest& request) { return serveLaunch(documents, request); });
        // From then on a launch waits until it can be the first.
        QObject::connect(&documents, &DocumentController::willQuit, server, &InstanceServer::close);
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, server, &InstanceServer::close);
    }
    const int exitCode = QApplication::exec();
    return opening.lastWindow != nullptr ? exitCode : opening.exitCode();
}
