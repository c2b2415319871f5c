// Panels of the toolkit or the desktop, each with a folder that it remembers.
#include "Platform/Widgets/FilePanels.h"

#include "Platform/Core/UserDefaults.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include <utility>

namespace {

FilePanels* thePanels = nullptr;

class DialogPanels : public FilePanels {
  public:
    void choose(QWidget* window, const FilePanel& panel, Chosen chosen) override {
        auto* dialog = new QFileDialog(window, panel.title);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        const bool saves = panel.purpose == FilePanel::Purpose::Save;
        dialog->setAcceptMode(saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        dialog->setFileMode(saves                                          ? QFileDialog::AnyFile
                            : panel.purpose == FilePanel::Purpose::OpenOne ? QFileDialog::ExistingFile
                                                                           : QFileDialog::ExistingFiles);
        dialog->setNameFilters(panel.filters);
        dialog->setDefaultSuffix(panel.defaultSuffix);
        const QString remembered = UserDefaults::standard().string(panel.folderKey);
        dialog->setDirectory(QFileInfo(remembered).isDir() ? remembered : QDir::homePath());
        if (!panel.proposedName.isEmpty())
            dialog->selectFile(panel.proposedName);
        QObject::connect(dialog, &QDialog::finished, dialog,
                         [dialog, key = panel.folderKey, chosen = std::move(chosen)](int result) {
                             const QStringList paths =
                                 result == QDialog::Accepted ? dialog->selectedFiles() : QStringList();
                             if (!paths.isEmpty())
                                 UserDefaults::standard().set(key, QFileInfo(paths.first()).absolutePath());
                             chosen(paths);
                         });
        dialog->open();
    }
};

} // namespace

FilePanels& FilePanels::shared() {
    static DialogPanels dialogs;
    return thePanels != nullptr ? *thePanels : dialogs;
}

void FilePanels::setShared(FilePanels* panels) {
    thePanels = panels;
}
