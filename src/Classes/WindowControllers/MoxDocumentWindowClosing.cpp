// A document's name, and its way to its file: saving, and the questions before it closes.
#include "Classes/WindowControllers/MoxDocumentWindow.h"

#include "Classes/TabBar/QXTabBar.h"
#include "Classes/TabBar/QXTabBarItem.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/EditCommands.h"
#include "MoxDocument.h"
#include "Platform/Core/PendingEdits.h"
#include "Platform/Core/XViewController.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/FilePanels.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

void tell(const MoxDocumentWindow::Answer& answer, bool value) {
    if (answer)
        answer(value);
}

} // namespace

QString MoxDocumentWindow::documentName() const {
    return m_document->filePath().isEmpty() ? m_name : QFileInfo(m_document->filePath()).fileName();
}

bool MoxDocumentWindow::isUntouched() const {
    return m_document->filePath().isEmpty() && !m_document->isDocumentEdited() &&
           m_document->dataSourcesManager().dataSources().empty() && m_document->curves().isEmpty();
}

void MoxDocumentWindow::updateTitle() {
    QString name = documentName();
    name.replace(u"[*]"_qs, u"[*][*]"_qs); // a name's own asterisk is none
    setWindowTitle(name + u"[*] — Velquin"_qs);
    setWindowModified(m_document->isDocumentEdited());
}

void MoxDocumentWindow::commitPendingEdits() {
    EditCommands::commitTyping(*this);
    if (m_tool != nullptr)
        EditCommands::commitTyping(*m_tool);
    forEachPageWithEdits([](PendingEdits& page) { page.commitPendingEdits(); });
}

void MoxDocumentWindow::handOverQuietly() {
    forEachPageWithEdits([](PendingEdits& page) { page.handOverQuietly(); });
}

void MoxDocumentWindow::forEachPageWithEdits(const std::function<void(PendingEdits&)>& act) const {
    for (const QXTabBar* bar : {&dataSourcesTabBar(), &graphTabBar()}) {
        for (const QXTabBarItem* tab : bar->tabs()) {
            if (auto* page = dynamic_cast<PendingEdits*>(tab->viewController().get()))
                act(*page);
        }
    }
}

void MoxDocumentWindow::save(const Answer& saved) {
    commitPendingEdits();
    if (m_document->filePath().isEmpty()) {
        saveAs(saved);
        return;
    }
    const MoxDocument::Saving saving = m_document->saveUnlessChanged();
    switch (saving.outcome) {
    case MoxDocument::Saving::Outcome::Saved:
        m_documents.noteRecentDocument(m_document->filePath());
        tell(saved, true);
        break;
    case MoxDocument::Saving::Outcome::ChangedOnDisk:
        askToOverwrite(saved);
        break;
    case MoxDocument::Saving::Outcome::Failed:
        tellNotSaved(m_document->filePath(), saving.reason, saved);
        break;
    }
}

void MoxDocumentWindow::askToOverwrite(const Answer& saved) {
    Alerts::shared().ask(
        this,
        {Alert::Kind::Question,
         tr("“%1” was changed by another program.").arg(documentName()),
         tr("Overwriting the file loses what the other program wrote. So far it is as that program left it; "
            "your changes are still open here."),
         {{tr("Save As…"), Alert::Role::Accept},
          {tr("Overwrite"), Alert::Role::Destructive},
          {tr("Cancel"), Alert::Role::Cancel}}},
        [this, saved](int button) {
            if (button == 0)
                saveAs(saved);
            else if (button == 1)
                saveTo(m_document->filePath(), saved);
            else
                tell(saved, false);
        });
}

void MoxDocumentWindow::saveAs(const Answer& saved) {
    commitPendingEdits();
    const QString name = m_document->filePath().isEmpty() ? m_name + u".mox"_qs : documentName();
    FilePanels::shared().choose(this,
                                {.purpose = FilePanel::Purpose::Save,
                                 .title = tr("Save Document"),
                                 .filters = {tr("Velquin documents (*.mox)")},
                                 .folderKey = DocumentController::folderKey(),
                                 .proposedName = name,
                                 .defaultSuffix = u"mox"_qs},
                                [this, saved](const QStringList& paths) {
                                    if (paths.isEmpty())
                                        tell(saved, false);
                                    else
                                        saveTo(paths.first(), saved);
                                });
}

void MoxDocumentWindow::saveTo(const QString& path, const Answer& saved) {
    const MoxDocumentWindow* other = m_documents.windowOfFile(path);
    const bool isTaken = other != nullptr && other != this;
    const std::optional<QString> failure =
        isTaken ? tr("it is open in another window") : m_document->writeToURL(path);
    if (failure) {
        tellNotSaved(path, *failure, saved);
        return;
    }
    m_documents.noteRecentDocument(path);
    tell(saved, true);
}

void MoxDocumentWindow::tellNotSaved(const QString& path, const QString& reason, const Answer& saved) {
    const QString stays = QFileInfo::exists(path)
                              ? tr("The document on the disk is as it was; your changes are still open here.")
                              : tr("Your changes are still open here.");
    Alerts::shared().ask(this,
                         {Alert::Kind::Fault,
                          tr("“%1” was not saved.").arg(QFileInfo(path).fileName()),
                          DocumentController::asSentence(reason) + u' ' + stays,
                          {{tr("OK"), Alert::Role::Cancel}, {tr("Save As…"), Alert::Role::Other}}},
                         [this, saved](int button) {
                             if (button == 1)
                                 saveAs(saved);
                             else
                                 tell(saved, false);
                         });
}

void MoxDocumentWindow::canCloseDocument(const Answer& shouldClose) {
    commitPendingEdits();
    m_document->windowDidResignMain();
    if (!m_document->isDocumentEdited()) {
        tell(shouldClose, true);
        return;
    }
    askToSave([this, shouldClose](bool mayGoOn) {
        if (!mayGoOn)
            m_documents.mainWindowMayHaveChanged(true);
        tell(shouldClose, mayGoOn);
    });
}

void MoxDocumentWindow::askToSave(const Answer& mayGoOn) {
    if (m_isAsking) {
        tell(mayGoOn, false); // the question stands already
        return;
    }
    m_isAsking = true;
    bringToFront();
    const QDateTime since = m_document->editedSince().value_or(QDateTime::currentDateTime());
    Alerts::shared().ask(
        this,
        {Alert::Kind::Question,
         tr("Save changes to “%1”?").arg(documentName()),
         tr("Without saving, your changes since %1 are lost.").arg(DocumentController::timeOf(since)),
         {{tr("Save"), Alert::Role::Accept},
          {tr("Discard"), Alert::Role::Destructive},
          {tr("Cancel"), Alert::Role::Cancel}}},
        [this, mayGoOn](int button) {
            m_isAsking = false;
            if (button == 0)
                save(mayGoOn);
            else
                tell(mayGoOn, button == 1);
        });
}

void MoxDocumentWindow::bringToFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    activateWindow(); // which raises it, where windows can be raised
}

void MoxDocumentWindow::closeNow() {
    m_mayClose = true;
    close();
}

void MoxDocumentWindow::closeEvent(QCloseEvent* event) {
    if (!m_mayClose) {
        // An answer that is there at once closes by this very event; a later one closes anew.
        const auto isThisEvent = std::make_shared<bool>(true);
        canCloseDocument([this, isThisEvent](bool mayClose) {
            m_mayClose = mayClose;
            if (mayClose && !*isThisEvent)
                close();
        });
        *isThisEvent = false;
    }
    event->setAccepted(m_mayClose);
    if (!m_mayClose)
        return;
    m_documents.windowWillClose(*this);
    m_document->close();
    m_documents.windowCloses(*this);
}

void MoxDocumentWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange)
        m_documents.mainWindowMayHaveChanged();
}
