// Offers what an ended program left: to open it again, to throw it away, or to be asked another time.
#pragma once

#include "Classes/Recovery/AutosaveFolder.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

class AutosaveController;
class DocumentController;
class MoxDocumentWindow;

/// Main thread.
class RecoveryOffer : public QObject {
    Q_OBJECT

  public:
    RecoveryOffer(DocumentController& documents, AutosaveController& autosaves, QString folder);

    /// Asks over that window if something was left. What is not decided stays for the next start.
    void ask(MoxDocumentWindow& over);

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
};
