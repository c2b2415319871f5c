// Ties autosaves, recovery and the ways to end together.
#include "Classes/Recovery/DocumentSafety.h"

#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "Platform/Widgets/Alerts.h"

#include <QApplication>
#include <QEvent>
#include <QSessionManager>

#include <cstdio>
#include <utility>

namespace {

constexpr int longestSeconds = 3600;

AutosaveIntervals intervalsOfEnvironment() {
    const int seconds = qEnvironmentVariableIntValue("VELQUIN_AUTOSAVE_SECONDS");
    if (seconds < 1 || seconds > longestSeconds)
        return {};
    return {.quiet = std::chrono::seconds(seconds), .longest = std::chrono::seconds(4 * seconds)};
}

} // namespace

DocumentSafety::DocumentSafety(DocumentController& documents)
    : DocumentSafety(documents, AutosaveFolder::standardPath(), intervalsOfEnvironment()) {}

DocumentSafety::DocumentSafety(DocumentController& documents, const QString& folder,
                               AutosaveIntervals intervals)
    : m_documents(documents), m_autosaves(documents, folder, intervals),
      m_recovery(documents, m_autosaves, folder) {
    connect(&documents, &DocumentController::documentShown, this, &DocumentSafety::firstDocumentShown);
    connect(&m_recovery, &RecoveryOffer::foundNobody, this, [this] { m_isOffered = false; });
    connect(&m_signals, &EndSignals::endRequested, this, &DocumentSafety::end);
    // The session may yet go on: somebody else can hold it up.
    const auto keepChanges = [this](QSessionManager& session) {
        session.setRestartHint(QSessionManager::RestartNever); // what was kept is offered at the next start
        const QStringList lost = m_autosaves.writeAll(true);
        if (lost.isEmpty() || !session.allowsInteraction())
            return;
        session.release();
        session.cancel();
        tellNotKept(lost);
    };
    connect(qApp, &QGuiApplication::commitDataRequest, this, keepChanges, Qt::DirectConnection);
    connect(qApp, &QGuiApplication::saveStateRequest, this, keepChanges, Qt::DirectConnection);
    qApp->installEventFilter(this);
}

void DocumentSafety::tellNotKept(const QStringList& names) {
    const auto tell = [this, names] {
        Alerts::shared().tell(
            m_documents.mainWindow(), tr("The session does not end."),
            tr("Changes of “%1” could not be kept. They are still open here.").arg(names.join(tr("”, “"))));
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

void DocumentSafety::firstDocumentShown(MoxDocumentWindow& window) {
    if (std::exchange(m_isOffered, true))
        return;
    const auto offer = [this, shown = QPointer(&window)] {
        MoxDocumentWindow* over =
            shown != nullptr && shown->isVisible() ? shown.data() : m_documents.mainWindow();
        if (over != nullptr)
            m_recovery.ask(*over);
        else
            m_isOffered = false; // by the next window
    };
    QMetaObject::invokeMethod(this, offer, Qt::QueuedConnection);
}

/// Quitting by the user's command closes the windows first. While some are left, it is the session that ends,
/// or another program that asks for it.
bool DocumentSafety::eventFilter(QObject* object, QEvent* event) {
    const bool mayAsk = object == qApp && event->type() == QEvent::Quit && !m_documents.windows().isEmpty();
    if (mayAsk)
        end();
    return mayAsk;
}

void DocumentSafety::end() {
    const QStringList lost = m_autosaves.writeAll(true);
    for (const QString& name : lost)
        std::fprintf(stderr, "velquin: the changes of %s could not be kept\n", qPrintable(name));
    QCoreApplication::exit(lost.isEmpty() ? 0 : 1);
}
