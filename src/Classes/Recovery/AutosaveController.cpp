// Follows the documents' edited marks, and hands what is due to the writing thread.
#include "Classes/Recovery/AutosaveController.h"

#include "Classes/Recovery/AutosaveRecord.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "MoxDocument.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/PropertyList.h"

#include <QPointer>

#include <algorithm>
#include <system_error>
#include <utility>

namespace {

/// Writes a file's new content, or removes the file.
class AutosaveOperation : public Operation {
  public:
    using Written = std::function<void(const std::optional<QString>& failure)>;

    AutosaveOperation(std::shared_ptr<AutosaveFile> file, std::optional<QVariantMap> content, Written written)
        : m_file(std::move(file)), m_content(std::move(content)), m_written(std::move(written)) {}

    void main() override {
        if (isCancelled()) // what comes after it says more
            return;
        if (!m_content) {
            m_file->remove();
            return;
        }
        std::optional<QString> failure;
        try {
            failure = m_file->write(PropertyList::writeXml(*m_content));
        } catch (const std::exception& error) { // no memory
            failure = QString::fromUtf8(error.what());
        }
        MainThread::perform([written = m_written, failure] { written(failure); });
    }
    bool concerns(const std::shared_ptr<AutosaveFile>& file) const { return m_file == file; }

  private:
    const std::shared_ptr<AutosaveFile> m_file;
    const std::optional<QVariantMap> m_content;
    const Written m_written;
};

} // namespace

AutosaveController::AutosaveController(DocumentController& documents, QString folder,
                                       AutosaveIntervals intervals)
    : m_folder(std::move(folder)), m_intervals(intervals) {
    connect(&documents, &DocumentController::documentShown, this, &AutosaveController::guard);
    connect(&documents, &DocumentController::documentWillClose, this, &AutosaveController::drop);
}

AutosaveController::~AutosaveController() {
    finishWriting();
}

void AutosaveController::finishWriting() {
    MainThread::serveUntil([this] { return m_queue.isIdle(); });
}

void AutosaveController::guard(MoxDocumentWindow& window) {
    Guarded guarded{AutosaveSchedule(m_intervals), std::make_shared<AutosaveFile>(m_folder),
                    std::make_unique<QTimer>()};
    guarded.due->setSingleShot(true);
    connect(guarded.due.get(), &QTimer::timeout, this, [this, &window] { write(window, false); });
    m_guarded.insert_or_assign(&window, std::move(guarded));
    connect(&window.document(), &MoxDocument::editedChanged, this,
            [this, &window] { editedChanged(window); });
    editedChanged(window);
}

void AutosaveController::adopt(MoxDocumentWindow& window, std::shared_ptr<AutosaveFile> file) {
    if (const auto found = m_guarded.find(&window); found != m_guarded.end()) {
        found->second.file = std::move(file);
        found->second.mayBeOnDisk = true;
    }
}

/// The window closes with the user's consent: the changes are saved or not wanted.
void AutosaveController::drop(MoxDocumentWindow& window) {
    window.document().disconnect(this);
    if (auto guarded = m_guarded.extract(&window))
        forget(guarded.mapped());
}

void AutosaveController::editedChanged(MoxDocumentWindow& window) {
    const auto found = m_guarded.find(&window);
    if (found == m_guarded.end())
        return;
    Guarded& guarded = found->second;
    if (window.document().isDocumentEdited()) {
        putOff(guarded);
        return;
    }
    forget(guarded);
}

/// There is nothing to save.
void AutosaveController::forget(Guarded& guarded) {
    guarded.schedule.written();
    guarded.due->stop();
    if (std::exchange(guarded.mayBeOnDisk, false))
        enqueue(guarded.file, std::nullopt);
}

void AutosaveController::putOff(Guarded& guarded) {
    guarded.due->start(guarded.schedule.changed(std::chrono::steady_clock::now()));
}

void AutosaveController::write(MoxDocumentWindow& window, bool becauseTheProgramEnds) {
    if (!becauseTheProgramEnds)
        window.handOverQuietly();
    Guarded& guarded = m_guarded.at(&window);
    guarded.due->stop();
    guarded.schedule.written();
    const AutosaveRecord record{.document = window.document().unsaved(),
                                .name = window.documentName(),
                                .savedAt = QDateTime::currentDateTime(),
                                .process = ProcessIdentity::current(),
                                .endedOnDemand = becauseTheProgramEnds};
    guarded.mayBeOnDisk = true;
    enqueue(guarded.file, record.toPlist());
}

QStringList AutosaveController::writeAll(bool becauseTheProgramEnds) {
    m_notWritten.clear();
    for (const auto& [window, guarded] : m_guarded)
        window->commitPendingEdits();
    for (const auto& [window, guarded] : m_guarded) {
        if (window->document().isDocumentEdited())
            write(*window, becauseTheProgramEnds);
    }
    finishWriting();
    bool isTold = false; // what was written, or was not
    MainThread::perform([&isTold] { isTold = true; });
    MainThread::serveUntil([&isTold] { return isTold; });
    return m_notWritten;
}

void AutosaveController::enqueue(const std::shared_ptr<AutosaveFile>& file,
                                 std::optional<QVariantMap> content) {
    auto operation = std::make_shared<AutosaveOperation>(
        file, std::move(content), [self = QPointer(this), file](const std::optional<QString>& failure) {
            if (self != nullptr)
                self->wasWritten(file, failure);
        });
    const auto inPlaceOfEarlierOnes = [&](std::span<const std::shared_ptr<Operation>> listed) {
        for (const auto& earlier : listed) {
            if (static_cast<AutosaveOperation&>(*earlier).concerns(file))
                earlier->cancel();
        }
        return std::move(operation);
    };
    try {
        m_queue.addUnderLock(inPlaceOfEarlierOnes);
    } catch (const std::system_error& failure) { // no thread
        wasWritten(file, QString::fromLocal8Bit(failure.code().message().c_str()));
    }
}

/// A failure is told once, in the status line: whoever edits on a full disk has other alerts to answer.
void AutosaveController::wasWritten(const std::shared_ptr<AutosaveFile>& file,
                                    const std::optional<QString>& failure) {
    if (!failure) {
        m_failureIsTold = false;
        return;
    }
    logMethod("-[AutosaveController write]", file->path() + QStringLiteral(": ") + *failure);
    const auto found = std::find_if(m_guarded.begin(), m_guarded.end(),
                                    [&](const auto& entry) { return entry.second.file == file; });
    if (found == m_guarded.end() || !found->first->document().isDocumentEdited())
        return;
    m_notWritten += found->first->documentName();
    if (!found->second.due->isActive())
        putOff(found->second); // tried again
    if (!std::exchange(m_failureIsTold, true))
        found->first->showMessage(tr("Unsaved changes cannot be kept in case of a crash: %1")
                                      .arg(DocumentController::asSentence(*failure)));
}
