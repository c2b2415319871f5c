// The window of the user's settings, which apply at once.
#pragma once

#include "Classes/WindowControllers/XWindowController.h"

#include <memory>

class QStandardItem;

namespace Ui {
class PreferencesWindow;
}

class PreferencesWindowController : public XWindowController {
    Q_OBJECT

  public:
    /// Without a feed of releases there is nothing to look for: that switch is off.
    explicit PreferencesWindowController(bool hasReleaseFeed, QObject* parent = nullptr);
    ~PreferencesWindowController() override;

    // The rows of the folders' pop-up.
    QStandardItem* desktopDirMenuItem() const { return m_desktopDirMenuItem; }
    QStandardItem* documentsDirMenuItem() const { return m_documentsDirMenuItem; }
    QStandardItem* picturesDirMenuItem() const { return m_picturesDirMenuItem; }
    /// Null while there is no folder of the user's own.
    QStandardItem* customPlaceholderMenuItem() const { return m_customPlaceholderMenuItem; }

    /// Asks for a folder and takes it for the snapshots. A cancelled panel leaves the settings as they were.
    void selectCustomSnapshotsDir();
    /// Asks for one where there is none.
    void openSnapshotsDirectory();

  private:
    void awakeFromNib();
    void fillFolders();
    void connectControls();
    void defaultChanged(const QString& key);
    void snapshotsDirTypeChanged();
    void showFolder();
    void showOthers();

    std::unique_ptr<Ui::PreferencesWindow> m_ui;
    const bool m_hasReleaseFeed;
    QStandardItem* m_desktopDirMenuItem = nullptr;
    QStandardItem* m_documentsDirMenuItem = nullptr;
    QStandardItem* m_picturesDirMenuItem = nullptr;
    QStandardItem* m_customPlaceholderMenuItem = nullptr;
    int m_chosenType = 0; ///< the last one that was a folder
};
