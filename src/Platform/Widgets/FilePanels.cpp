// Panels of the toolkit or the desktop, each with a folder that it remembers.
#include "Platform/Widgets/FilePanels.h"

#include "Platform/Core/UserDefaults.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include <utility>

namespace {

FilePanels* thePanels = nullptr;

using Purpose = FilePanel::Purpose;

QFileDialog::FileMode fileModeOf(Purpose purpose) {
    switch (purpose) {
    case Purpose::OpenOne:
        return QFileDialog::ExistingFile;
    case Purpose::OpenSeveral:
        return QFileDialog::ExistingFiles;
    case Purpose::ChooseFolder:
        return QFileDialog::Directory;
    case Purpose::Save:
        break;
    }
    return QFileDialog::AnyFile;
}

QString firstFolderOf(const FilePanel& panel) {
    const QString remembered =
        panel.folderKey.isEmpty() ? QString() : UserDefaults::standard().string(panel.folderKey);
    for (const QString& folder : {remembered, panel.startFolder})
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return folder;
    return QDir::homePath();
}

class DialogPanels : public FilePanels {
  public:
    void choose(QWidget* window, const FilePanel& panel, Chosen chosen) override {
        auto* dialog = new QFileDialog(window, panel.title);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setAcceptMode(panel.purpose == Purpose::Save ? QFileDialog::AcceptSave
                                                             : QFileDialog::AcceptOpen);
        dialog->setFileMode(fileModeOf(panel.purpose));
        if (panel.purpose == Purpose::ChooseFolder)
            dialog->setOption(QFileDialog::ShowDirsOnly);
        dialog->setNameFilters(panel.filters);
        dialog->setDefaultSuffix(panel.defaultSuffix);
        dialog->setDirectory(firstFolderOf(panel));
        if (!panel.proposedName.isEmpty())
            dialog->selectFile(panel.proposedName);
        QObject::connect(dialog, &QDialog::finished, dialog,
                         [dialog, key = panel.folderKey, chosen = std::move(chosen)](int result) {
                             const QStringList paths =
                                 result == QDialog::Accepted ? dialog->selectedFiles() : QStringList();
                             if (!paths.isEmpty() && !key.isEmpty())
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
