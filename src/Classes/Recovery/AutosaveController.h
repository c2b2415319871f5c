// Keeps what was changed in the open documents and not saved, in case the program does not come to save it.
#pragma once

#include "Classes/Recovery/AutosaveFile.h"
#include "Classes/Recovery/AutosaveSchedule.h"
#include "Platform/Core/OperationQueue.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <map>
#include <memory>
#include <optional>

class DocumentController;
class MoxDocumentWindow;

/// One file a document, written a while after a change and gone once there is nothing left to save. Files are
/// encoded and written on a thread, in the order in which that was asked for. What stands when the controller
/// goes stays for the next start of the program. Main thread.
class AutosaveController : public QObject {
    Q_OBJECT

  public:
    /// Looks after every document that `documents` shows from now on.
    AutosaveController(DocumentController& documents, QString folder, AutosaveIntervals intervals);
    /// Waits for what is being written.
    ~AutosaveController() override;

    /// The autosave that a shown document came from: it is replaced by the document's next one, and goes with
    /// the document's changes.
    void adopt(MoxDocumentWindow& window, std::shared_ptr<AutosaveFile> file);

    /// Writes every edited document, text that waits in its fields included, and waits for it. Returns the
    /// names of those that could not be written.
    QStringList writeAll(bool becauseTheProgramEnds);
    /// Whether something is still to be written or removed.
    bool isWriting() const { return !m_queue.isIdle(); }

  private:
    struct Guarded {
        AutosaveSchedule schedule;
        std::shared_ptr<AutosaveFile> file;
        std::unique_ptr<QTimer> due;
        bool mayBeOnDisk = false;
    };

    void guard(MoxDocumentWindow& window);
    void drop(MoxDocumentWindow& window);
    void editedChanged(MoxDocumentWindow& window);
    static void putOff(Guarded& guarded);
    void forget(Guarded& guarded);
    void write(MoxDocumentWindow& window, bool becauseTheProgramEnds);
    void enqueue(const std::shared_ptr<AutosaveFile>& file, std::optional<QVariantMap> content);
    void wasWritten(const std::shared_ptr<AutosaveFile>& file, const std::optional<QString>& failure);
    void finishWriting();

    const QString m_folder;
    const AutosaveIntervals m_intervals;
    std::map<MoxDocumentWindow*, Guarded> m_guarded;
    bool m_failureIsTold = false; ///< until something is written again
    QStringList m_notWritten;     ///< by the present `writeAll`
    OperationQueue m_queue{1};
};
