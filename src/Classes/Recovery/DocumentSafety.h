// Sees to it that no change is lost when the program ends otherwise than by its user's choice.
#pragma once

#include "Classes/Recovery/AutosaveController.h"
#include "Classes/Recovery/EndSignals.h"
#include "Classes/Recovery/RecoveryOffer.h"

#include <QObject>

class DocumentController;

/// Keeps changes, offers what was kept once the first document is shown, and ends the program without
/// questions when the system or the session asks for it: the changes are kept, and the exit code is 0, since
/// the program did as it was asked; 1 when some could not be kept, which holds up a session that listens.
/// Must go before the documents' windows do. Main thread.
class DocumentSafety : public QObject {
    Q_OBJECT

  public:
    /// Autosaves in the user's own folder, at the usual intervals or those of VELQUIN_AUTOSAVE_SECONDS.
    explicit DocumentSafety(DocumentController& documents);
    DocumentSafety(DocumentController& documents, const QString& folder, AutosaveIntervals intervals);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void firstDocumentShown(MoxDocumentWindow& window);
    void tellNotKept(const QStringList& names);
    void end();

    DocumentController& m_documents;
    AutosaveController m_autosaves;
    RecoveryOffer m_recovery;
    EndSignals m_signals;
    bool m_isOffered = false;
};
