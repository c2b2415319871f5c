// The run with windows: opening files, and the rim at which faults of event handlers end.
#include "WindowRun.h"

#include "ApplicationDelegate.h"
#include "BatchRun.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "CommandLine.h"
#include "DocumentRequest.h"
#include "MoxDocument.h"

#include <QFileInfo>

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

/// Why no window was opened, if so.
std::optional<RequestFailure> openWindow(DocumentController& documents, const QString& file,
                                         const CommandLine& line) {
    if (file.isEmpty() && line.files.isEmpty()) {
        documents.newDocument();
        return std::nullopt;
    }
    if (documents.windowOfFile(file) != nullptr)
        return std::nullopt; // named twice
    auto opened = openRequested(file, line);
    if (const auto* failure = std::get_if<RequestFailure>(&opened))
        return *failure;
    auto& document = std::get<std::unique_ptr<MoxDocument>>(opened);
    if (document->filePath().isEmpty())
        document->setUnedited();
    MoxDocumentWindow& window =
        documents.showDocument(std::move(document), QFileInfo(file).completeBaseName());
    new PendingRequest(window, file, line); // the window owns it
    return std::nullopt;
}

} // namespace

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
        reportFailure({}, QString::fromUtf8(error.what()));
        return false;
    }
}

int runWindows(const CommandLine& line) {
    // Windows that quitting leaves open go while there is an application: their documents end reads and
    // renderings.
    ApplicationDelegate application;
    application.applicationDidFinishLaunching();
    DocumentController& documents = application.documents();
    bool anyOpened = false;
    bool wrongUsage = false;
    for (const QString& file : line.files.isEmpty() ? QStringList{QString()} : line.files) {
        const std::optional<RequestFailure> failure = openWindow(documents, file, line);
        anyOpened = anyOpened || !failure;
        if (failure) {
            wrongUsage = wrongUsage || failure->wrongUsage;
            reportFailure(failure->file, failure->reason);
        }
    }
    return anyOpened ? QApplication::exec() : wrongUsage ? 2 : 1;
}
