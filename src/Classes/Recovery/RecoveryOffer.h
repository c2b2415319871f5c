// Offers what an ended program left: to open it again, to throw it away, or to be asked another time.
#pragma once

#include "Classes/Recovery/AutosaveFolder.h"
#include "Platform/Core/OperationQueue.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <stop_token>
#include <vector>

class AutosaveController;
class DocumentController;
class MoxDocumentWindow;

/// Main thread.
class RecoveryOffer : public QObject {
    Q_OBJECT

  public:
    RecoveryOffer(DocumentController& documents, AutosaveController& autosaves, QString folder);
    ~RecoveryOffer() override;

    /// Looks in the background whether something was left, and if so asks: over that window, or another if it
    /// went meanwhile. What is not decided stays for the next start. The end of this object ends the looking.
    void ask(MoxDocumentWindow& over);
    bool isLooking() const { return !m_queue.isIdle(); }

  Q_SIGNALS:
    /// Something was left, but no window is there any more to ask over.
    void foundNobody();

  private:
    using Left = std::shared_ptr<std::vector<LeftAutosave>>; ///< held until the answer is there

    void ask(MoxDocumentWindow& over, const Left& left);
    void askToDiscard(MoxDocumentWindow& over, const Left& left);
    void recover(MoxDocumentWindow& over, const std::vector<LeftAutosave>& left);
    /// False if there is no document in it. A window that is replaced gives `over` to its successor.
    bool recover(const LeftAutosave& left, QPointer<MoxDocumentWindow>& over);

    DocumentController& m_documents;
    AutosaveController& m_autosaves;
    const QString m_folder;
    std::stop_source m_end;
    OperationQueue m_queue{1}; ///< last: what it hands over is for this object
};
