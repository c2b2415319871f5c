// The questions, and a window for each document that comes back.
#include "Classes/Recovery/RecoveryOffer.h"

#include "Classes/Recovery/AutosaveController.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "MoxDocument.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Widgets/Alerts.h"

#include <algorithm>
#include <functional>
#include <system_error>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t mostNamed = 6;

QString namesOf(const std::vector<LeftAutosave>& left) {
    QStringList lines;
    for (const LeftAutosave& each : left) {
        if (lines.size() == mostNamed)
            break;
        lines.append(RecoveryOffer::tr("“%1”, %2")
                         .arg(each.record.name, DocumentController::timeOf(each.record.savedAt)));
    }
    if (left.size() > mostNamed)
        lines.append(RecoveryOffer::tr("and %1 more").arg(left.size() - mostNamed));
    return lines.join(u'\n');
}

class Looking : public Operation {
  public:
    using Found = std::function<void(std::vector<LeftAutosave> left)>;

    Looking(QString folder, std::stop_token end, Found found)
        : m_folder(std::move(folder)), m_end(std::move(end)), m_found(std::move(found)) {}

    void main() override {
        auto left = std::make_shared<std::vector<LeftAutosave>>(AutosaveFolder::takeLeft(m_folder, m_end));
        MainThread::perform([end = m_end, found = m_found, left] {
            if (!end.stop_requested())
                found(std::move(*left));
        });
    }

  private:
    const QString m_folder;
    const std::stop_token m_end; ///< of the offer
    const Found m_found;
};

} // namespace

RecoveryOffer::RecoveryOffer(DocumentController& documents, AutosaveController& autosaves, QString folder)
    : m_documents(documents), m_autosaves(autosaves), m_folder(std::move(folder)) {}

/// The queue still serves what was handed over: nothing of it is for an object that goes.
RecoveryOffer::~RecoveryOffer() {
    m_end.request_stop();
}

void RecoveryOffer::ask(MoxDocumentWindow& over) {
    const auto found = [this, near = QPointer(&over)](std::vector<LeftAutosave> left) {
        if (left.empty())
            return;
        MoxDocumentWindow* window =
            near != nullptr && near->isVisible() ? near.data() : m_documents.mainWindow();
        if (window == nullptr)
            Q_EMIT foundNobody();
        else
            ask(*window, std::make_shared<std::vector<LeftAutosave>>(std::move(left)));
    };
    try {
        m_queue.add(std::make_shared<Looking>(m_folder, m_end.get_token(), found));
    } catch (const std::system_error& failure) { // no thread: what was left stays for another start
        qCWarning(velquinLog, "autosaves in %s: %s", qUtf8Printable(m_folder), failure.what());
    }
}

void RecoveryOffer::ask(MoxDocumentWindow& over, const Left& left) {
    const bool asDemanded = std::all_of(left->begin(), left->end(),
                                        [](const LeftAutosave& each) { return each.record.endedOnDemand; });
    Alerts::shared().ask(
        &over,
        {Alert::Kind::Question,
         asDemanded ? tr("Velquin was ended before changes were saved.") : tr("Velquin ended unexpectedly."),
         tr("Unsaved changes were kept:") + u'\n' + namesOf(*left),
         {{tr("Recover"), Alert::Role::Accept},
          {tr("Discard…"), Alert::Role::Destructive},
          {tr("Later"), Alert::Role::Cancel}}},
        [this, &over, left](int button) {
            if (button == 0)
                recover(over, *left);
            else if (button == 1)
                askToDiscard(over, left);
        });
}

void RecoveryOffer::askToDiscard(MoxDocumentWindow& over, const Left& left) {
    const QString message = left->size() == 1
                                ? tr("Discard the kept changes to “%1”?").arg(left->front().record.name)
                                : tr("Discard the kept changes to %1 documents?").arg(left->size());
    Alerts::shared().ask(&over,
                         {Alert::Kind::Question,
                          message,
                          tr("They cannot be recovered afterwards. Documents on the disk stay as they are."),
                          {{tr("Cancel"), Alert::Role::Cancel}, {tr("Discard"), Alert::Role::Destructive}}},
                         [this, &over, left](int button) {
                             if (button == 0) {
                                 ask(over, left);
                                 return;
                             }
                             for (const LeftAutosave& each : *left)
                                 each.file->remove();
                         });
}

void RecoveryOffer::recover(MoxDocumentWindow& over, const std::vector<LeftAutosave>& left) {
    QPointer<MoxDocumentWindow> window = &over;
    std::vector<LeftAutosave> refused;
    for (const LeftAutosave& each : left) { // the latest first: of two of one file, it gets the file
        if (!recover(each, window))
            refused.push_back(each);
    }
    for (const LeftAutosave& each : refused) { // over a window that stays
        each.file->setAside();
        Alerts::shared().tell(
            window, tr("“%1” cannot be recovered.").arg(each.record.name),
            tr("Its autosave is damaged. It is kept as %1.").arg(AutosaveFile::asidePath(each.file->path())));
    }
}

bool RecoveryOffer::recover(const LeftAutosave& left, QPointer<MoxDocumentWindow>& over) {
    UnsavedDocument kept = left.record.document;
    MoxDocumentWindow* open = kept.filePath.isEmpty() ? nullptr : m_documents.windowOfFile(kept.filePath);
    if (open != nullptr && open->document().isDocumentEdited()) { // two windows never share a file
        kept.filePath.clear();
        kept.onDisk.reset();
        open = nullptr;
    }
    auto document = std::make_unique<MoxDocument>();
    if (const std::optional<QString> reason = document->restore(kept)) {
        qCWarning(velquinLog, "autosave %s: %s", qUtf8Printable(left.file->path()), qUtf8Printable(*reason));
        return false;
    }
    MoxDocumentWindow& window = m_documents.showDocument(std::move(document), left.record.name, over);
    m_autosaves.adopt(window, left.file);
    if (open != nullptr)
        open->closeNow(); // it shows the file as it was before the changes
    if (over == nullptr || over->isHidden())
        over = &window;
    return true;
}
