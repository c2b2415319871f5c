// Keeps the list of windows and walks through it when quitting.
#include "Classes/WindowControllers/DocumentController.h"

#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "MoxDocument.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/FilePanels.h"

#include <QApplication>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostRecentDocuments = 10;

QString recentDocumentsKey() {
    return u"RecentDocuments"_qs;
}

/// Equal for all names of one file.
QString identityOf(const QString& path) {
    const QFileInfo file(path);
    const QString canonical = file.canonicalFilePath();
    return canonical.isEmpty() ? file.absoluteFilePath() : canonical;
}

} // namespace

DocumentController::DocumentController(QObject* parent) : QObject(parent) {}

DocumentController::~DocumentController() {
    const QList<MoxDocumentWindow*> open = m_windows;
    qDeleteAll(open);
    for (const QPointer<MoxDocumentWindow>& window : std::exchange(m_closedWindows, {}))
        delete window.data();
}

QString DocumentController::folderKey() {
    return u"DocumentsFolder"_qs;
}

QString DocumentController::asSentence(QString reason) {
    if (!reason.isEmpty())
        reason[0] = reason[0].toUpper();
    return reason.endsWith(u'.') ? reason : reason + u'.';
}

QString DocumentController::timeOf(const QDateTime& moment) {
    const QLocale locale;
    const bool today = moment.date() == QDate::currentDate();
    const QString format =
        today ? locale.timeFormat(QLocale::ShortFormat) : locale.dateTimeFormat(QLocale::ShortFormat);
    return locale.toString(moment, QString(format).remove(u":ss"_qs));
}

void DocumentController::tellNotOpened(QWidget* from, const QString& path, const QString& reason) {
    Alerts::shared().tell(from, tr("“%1” cannot be opened.").arg(QFileInfo(path).fileName()),
                          asSentence(reason));
}

MoxDocumentWindow* DocumentController::windowOfFile(const QString& path) const {
    const auto found = std::find_if(m_windows.begin(), m_windows.end(), [&](const MoxDocumentWindow* window) {
        const QString& file = window->document().filePath();
        return !file.isEmpty() && identityOf(file) == identityOf(path);
    });
    return found == m_windows.end() ? nullptr : *found;
}

/// "Untitled", "Untitled 2": the first that no open document has.
QString DocumentController::untitledName() const {
    const auto isTaken = [this](const QString& name) {
        return std::any_of(m_windows.begin(), m_windows.end(),
                           [&](const MoxDocumentWindow* window) { return window->documentName() == name; });
    };
    QString name = tr("Untitled");
    for (int number = 2; isTaken(name); ++number)
        name = tr("Untitled %1").arg(number);
    return name;
}

MoxDocumentWindow& DocumentController::newDocument() {
    return showDocument(std::make_unique<MoxDocument>());
}

MoxDocumentWindow& DocumentController::showDocument(std::unique_ptr<MoxDocument> document,
                                                    const QString& name, MoxDocumentWindow* instead) {
    const QString file = document->filePath();
    auto* window = new MoxDocumentWindow(*this, std::move(document), name.isEmpty() ? untitledName() : name);
    m_windows.append(window);
    const bool replaces = instead != nullptr && instead->isUntouched();
    if (replaces)
        window->setGeometry(instead->geometry());
    window->show();
    if (replaces)
        instead->closeNow();
    if (!file.isEmpty())
        noteRecentDocument(file);
    Q_EMIT documentShown(*window);
    return *window;
}

void DocumentController::openWithPanel(MoxDocumentWindow& from) {
    FilePanels::shared().choose(
        &from,
        {.purpose = FilePanel::Purpose::OpenSeveral,
         .title = tr("Open"),
         .filters = {tr("Documents and data files (*)"), tr("Velquin documents (*.mox)")},
         .folderKey = folderKey(),
         .proposedName = {},
         .defaultSuffix = {}},
        [this, window = QPointer(&from)](const QStringList& paths) {
            for (const QString& path : paths)
                openFile(path, window);
        });
}

void DocumentController::openFile(const QString& path, MoxDocumentWindow* from) {
    if (MoxDocumentWindow* open = windowOfFile(path)) {
        open->bringToFront();
        return;
    }
    const QFileInfo file(path);
    auto document = std::make_unique<MoxDocument>();
    if (!MoxDocument::isDocument(path)) {
        document->fileDropped(file.absoluteFilePath());
        document->setUnedited();
        showDocument(std::move(document), file.completeBaseName(), from);
        return;
    }
    if (const std::optional<QString> reason = document->readFromURL(file.absoluteFilePath())) {
        tellNotOpened(from, path, *reason);
        return;
    }
    showDocument(std::move(document), {}, from);
}

// --- Recent documents
// -----------------------------------------------------------------------------------------

QStringList DocumentController::recentDocuments() const {
    return UserDefaults::standard().stringList(recentDocumentsKey());
}

void DocumentController::noteRecentDocument(const QString& path) const {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList paths = recentDocuments();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    UserDefaults::standard().set(recentDocumentsKey(),
                                 paths.first(std::min(paths.size(), mostRecentDocuments)));
}

void DocumentController::clearRecentDocuments() const {
    UserDefaults::standard().remove(recentDocumentsKey());
}

// --- Windows
// --------------------------------------------------------------------------------------------------

void DocumentController::mainWindowMayHaveChanged(bool anew) {
    if (auto* window = qobject_cast<MoxDocumentWindow*>(QApplication::activeWindow()))
        setMainWindow(window);
    if (anew && m_mainWindow != nullptr)
        m_mainWindow->document().windowDidBecomeMain();
}

void DocumentController::setMainWindow(MoxDocumentWindow* window) {
    if (window == m_mainWindow || (window != nullptr && !m_windows.contains(window)))
        return;
    if (MoxDocumentWindow* former = std::exchange(m_mainWindow, window))
        former->document().windowDidResignMain();
    if (m_mainWindow != nullptr) {
        m_frontOrder.removeAll(m_mainWindow);
        m_frontOrder.append(m_mainWindow);
        m_mainWindow->document().windowDidBecomeMain();
    }
    Q_EMIT mainWindowChanged(m_mainWindow);
}

void DocumentController::windowWillClose(MoxDocumentWindow& window) {
    if (m_windows.contains(&window))
        Q_EMIT documentWillClose(window);
}

void DocumentController::windowCloses(MoxDocumentWindow& window) {
    if (m_windows.removeAll(&window) == 0)
        return;
    m_frontOrder.removeAll(&window);
    if (m_mainWindow == &window) {
        m_mainWindow = nullptr; // it has told already that it closes
        if (m_frontOrder.isEmpty())
            Q_EMIT mainWindowChanged(nullptr);
        else
            setMainWindow(m_frontOrder.last());
    }
    if (m_mayClose)
        m_mayClose->erase(&window); // another one may come to lie there
    if (m_asked == &window) {       // it took its question with it
        m_asked = nullptr;
        m_mayClose.reset();
    }
    m_closedWindows.removeAll(nullptr);
    m_closedWindows.append(&window);
}

void DocumentController::quit() {
    if (m_mayClose)
        return;
    m_mayClose.emplace();
    askNextToClose();
}

void DocumentController::askNextToClose() {
    const auto next = std::find_if(m_windows.begin(), m_windows.end(), [this](const MoxDocumentWindow* each) {
        return !m_mayClose->contains(each);
    });
    if (next != m_windows.end()) {
        MoxDocumentWindow* window = *next;
        m_asked = window;
        window->canCloseDocument([this, window](bool mayClose) {
            m_asked = nullptr;
            if (!m_mayClose)
                return;
            if (!mayClose) {
                m_mayClose.reset();
                return;
            }
            m_mayClose->insert(window);
            askNextToClose();
        });
        return;
    }
    m_mayClose.reset();
    Q_EMIT willQuit();
    const QList<MoxDocumentWindow*> open = m_windows;
    for (MoxDocumentWindow* window : open)
        window->closeNow();
    QCoreApplication::quit();
}
