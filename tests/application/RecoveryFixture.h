// Documents whose changes are kept in a scratch folder, a millisecond after each change.
#pragma once

#include "Classes/PlotModel/XCurve.h"
#include "Classes/Recovery/AutosaveController.h"
#include "Classes/Recovery/AutosaveFolder.h"
#include "Platform/Core/PropertyList.h"
#include "shell/WindowFixture.h"

#include <QDir>

class RecoveryFixture : public WindowFixture {
  protected:
    static constexpr AutosaveIntervals soon{std::chrono::milliseconds(1), std::chrono::milliseconds(1)};
    static constexpr AutosaveIntervals never{std::chrono::hours(24), std::chrono::hours(24)};

    QString autosaves() const { return folder.path(QStringLiteral("state/velquin/autosave")); }
    QStringList names(const char* pattern = "*.autosave") const {
        return QDir(autosaves()).entryList({QLatin1String(pattern)}, QDir::AllEntries | QDir::System);
    }
    QVariantMap content(const QString& name) const {
        return PropertyList::read(support::ScratchFolder::read(autosaves() + u'/' + name))
            .value.value_or(QVariant())
            .toMap();
    }
    /// Whether one of the files holds that document as it is now.
    bool isKept(const MoxDocumentWindow& window) const {
        const QStringList all = names();
        return std::any_of(all.begin(), all.end(), [&](const QString& name) {
            return content(name)[QStringLiteral("Document")] == window.document().plist();
        });
    }
    bool waitUntilKept(const MoxDocumentWindow& window) const {
        return support::waitUntil([&] { return isKept(window); });
    }
    bool waitForFiles(int count) const {
        return support::waitUntil([&] { return !controller->isWriting() && names().size() == count; });
    }
    static void change(MoxDocumentWindow& window, const char* title) {
        window.document().setPlotAreaTitle(QString::fromUtf8(title));
        nextTurn(window);
    }
    /// As if the program were gone.
    void letGo() {
        controller.reset();
        finishDeletions(); // the writing thread hands its files over to be released
    }
    /// The same, and started again with an untouched window.
    MoxDocumentWindow& crash() {
        letGo();
        const QList<MoxDocumentWindow*> open = documents.windows();
        for (MoxDocumentWindow* window : open)
            window->closeNow();
        finishDeletions();
        controller.emplace(documents, autosaves(), soon);
        return newWindow();
    }

    std::optional<AutosaveController> controller{std::in_place, documents, autosaves(), soon};
};
