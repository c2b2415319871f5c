// The panels in which a user chooses files or a folder.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

struct FilePanel {
    enum class Purpose { OpenOne, OpenSeveral, Save, ChooseFolder };

    Purpose purpose;
    QString title;
    QStringList filters = {}; ///< as the toolkit writes them: "Documents (*.mox)"
    QString folderKey; ///< the user default that remembers where the panel was; empty remembers nothing
    QString startFolder = {};   ///< where it opens while nothing is remembered; empty for the home folder
    QString proposedName = {};  ///< of a file to save
    QString defaultSuffix = {}; ///< without its point; added to a name that has none
};

/// How file panels reach the user. Main thread.
class FilePanels {
  public:
    using Chosen = std::function<void(const QStringList& paths)>;

    virtual ~FilePanels() = default;

    static FilePanels& shared();
    /// Puts another way in its place, which is not owned; null brings the panels back.
    static void setShared(FilePanels* panels);

    /// Returns at once. `chosen` gets at least one path; it gets an empty list when the panel was cancelled,
    /// and is not called when `window` is destroyed first.
    virtual void choose(QWidget* window, const FilePanel& panel, Chosen chosen) = 0;
};
