// Ties the controls to the user defaults.
#include "Classes/WindowControllers/PreferencesWindowController.h"

#include "Classes/SmallViews/MenuItemIcon.h"
#include "Classes/Updates/UpdateController.h"
#include "Classes/ValueEncodings/XVelquin.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "EmbeddedPlugins/TextFile/InputFile.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/DesktopOpening.h"
#include "Platform/Widgets/FilePanels.h"
#include "Platform/Widgets/ThemeColors.h"
#include "ui_PreferencesWindow.h"

#include <QDir>
#include <QFile>
#include <QStandardItemModel>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

enum FolderType { Other = -1, Custom = 0, Desktop = 1, Pictures = 2, Documents = 3, PicturesToo = 4 };

constexpr int recentFilesAtFirst = 15;

QString folderTypeKey() {
    return u"SnapshotsDirType"_qs;
}

QString folderKey() {
    return u"SnapshotsDir"_qs;
}

QString formatKey() {
    return u"SnapshotsFormat"_qs;
}

QString recentFilesKey() {
    return u"MaxRecentFiles"_qs;
}

UserDefaults& defaults() {
    return UserDefaults::standard();
}

/// The row that stands for a stored type.
int shownType(int stored) {
    if (stored >= Desktop && stored <= Documents)
        return stored;
    return stored == PicturesToo ? Pictures : Custom;
}

QStandardItem* folderItem(const QString& text, FolderType type) {
    auto* item = new QStandardItem(text);
    item->setData(int{type}, Qt::UserRole);
    return item;
}

} // namespace

PreferencesWindowController::PreferencesWindowController(bool hasReleaseFeed, QObject* parent)
    : XWindowController(parent), m_ui(std::make_unique<Ui::PreferencesWindow>()),
      m_hasReleaseFeed(hasReleaseFeed) {
    m_ui->setupUi(window());
    awakeFromNib();
}

PreferencesWindowController::~PreferencesWindowController() = default;

void PreferencesWindowController::awakeFromNib() {
    for (QLabel* head : {m_ui->snapshotsHead, m_ui->dataHead, m_ui->updatesHead}) {
        QFont bold = head->font();
        bold.setBold(true);
        head->setFont(bold);
    }
    for (QLabel* label : {m_ui->folderLabel, m_ui->formatLabel, m_ui->recentLabel, m_ui->rememberedLabel})
        label->setForegroundRole(labelRole);
    m_ui->updatesBox->setEnabled(m_hasReleaseFeed);
    m_ui->updatesBox->setToolTip(m_hasReleaseFeed ? tr("Nothing but the list of releases is asked for")
                                                  : tr("The package manager updates the program"));
    m_chosenType = std::max(int{Custom}, defaults().integer(folderTypeKey()));
    connect(&defaults(), &UserDefaults::changed, this, &PreferencesWindowController::defaultChanged);
    fillFolders();
    showFolder();
    showOthers();
    connectControls();
}

void PreferencesWindowController::fillFolders() {
    m_desktopDirMenuItem = folderItem(tr("Desktop"), Desktop);
    m_picturesDirMenuItem = folderItem(tr("Velquin in Pictures"), FolderType::Pictures);
    m_documentsDirMenuItem = folderItem(tr("Documents"), Documents);
    MenuItemIcon::setIconBySearchPathDirectory(*m_desktopDirMenuItem, QStandardPaths::DesktopLocation);
    MenuItemIcon::setIconBySearchPathDirectory(*m_picturesDirMenuItem, QStandardPaths::PicturesLocation);
    MenuItemIcon::setIconBySearchPathDirectory(*m_documentsDirMenuItem, QStandardPaths::DocumentsLocation);
    auto* model = qobject_cast<QStandardItemModel*>(m_ui->folderBox->model());
    for (QStandardItem* item : {m_desktopDirMenuItem, m_picturesDirMenuItem, m_documentsDirMenuItem})
        model->appendRow(item);
    m_ui->folderBox->insertSeparator(model->rowCount());
    QStandardItem* other = folderItem(tr("Other…"), Other);
    QPixmap blank(m_ui->folderBox->iconSize());
    blank.fill(Qt::transparent);
    other->setIcon(blank); // in line with the other rows
    model->appendRow(other);
}

void PreferencesWindowController::connectControls() {
    connect(m_ui->folderBox, &QComboBox::activated, this,
            [this] { defaults().set(folderTypeKey(), m_ui->folderBox->currentData().toInt()); });
    connect(m_ui->openButton, &QPushButton::clicked, this,
            &PreferencesWindowController::openSnapshotsDirectory);
    connect(m_ui->formatBox, &QComboBox::activated, this,
            [](int format) { defaults().set(formatKey(), format); });
    connect(m_ui->recentField, &QSpinBox::valueChanged, this,
            [](int count) { defaults().set(recentFilesKey(), count); });
    connect(m_ui->updatesBox, &QCheckBox::clicked, this,
            [](bool on) { defaults().set(UpdateController::automaticChecksKey(), on ? 1 : 0); });
}

void PreferencesWindowController::defaultChanged(const QString& key) {
    if (key == folderTypeKey())
        snapshotsDirTypeChanged();
    else if (key == folderKey())
        showFolder();
    else if (key == formatKey() || key == recentFilesKey() || key == UpdateController::automaticChecksKey())
        showOthers();
}

void PreferencesWindowController::snapshotsDirTypeChanged() {
    const int type = defaults().integer(folderTypeKey());
    if (type == Other) {
        QTimer::singleShot(0, this, &PreferencesWindowController::selectCustomSnapshotsDir);
        return;
    }
    m_chosenType = type;
    showFolder();
}

void PreferencesWindowController::selectCustomSnapshotsDir() {
    FilePanels::shared().choose(window(),
                                {.purpose = FilePanel::Purpose::ChooseFolder,
                                 .title = tr("Select directory for snapshots"),
                                 .folderKey = {},
                                 .startFolder = expandedPath(defaults().string(folderKey()))},
                                [this](const QStringList& paths) {
                                    if (!paths.isEmpty())
                                        XVelquin::setSnapshotsDirectory(paths.first());
                                    else if (defaults().integer(folderTypeKey()) == Other)
                                        defaults().set(folderTypeKey(), m_chosenType);
                                });
}

void PreferencesWindowController::openSnapshotsDirectory() {
    QString failure;
    const std::optional<QString> folder = XVelquin::snapshotsDirectory(&failure);
    if (!failure.isEmpty())
        Alerts::shared().tell(window(), tr("The folder for snapshots was not made."),
                              DocumentController::asSentence(failure) + tr(" Another folder can be chosen."));
    else if (!folder || folder->isEmpty())
        selectCustomSnapshotsDir();
    else
        DesktopOpening::openFolder(expandedPath(*folder), window());
}

/// The folder of the user's own has a row while there is one.
void PreferencesWindowController::showFolder() {
    auto* model = qobject_cast<QStandardItemModel*>(m_ui->folderBox->model());
    const QString path = defaults().string(folderKey());
    if (path.isEmpty() && m_customPlaceholderMenuItem != nullptr) {
        model->removeRow(m_customPlaceholderMenuItem->row());
        m_customPlaceholderMenuItem = nullptr;
    } else if (!path.isEmpty()) {
        if (m_customPlaceholderMenuItem == nullptr) {
            m_customPlaceholderMenuItem = folderItem({}, Custom);
            model->insertRow(m_documentsDirMenuItem->row() + 1, m_customPlaceholderMenuItem);
        }
        const QString name = QDir(expandedPath(path)).dirName();
        m_customPlaceholderMenuItem->setText(name.isEmpty() ? path : name);
        m_customPlaceholderMenuItem->setToolTip(path);
        MenuItemIcon::setIconByPath(*m_customPlaceholderMenuItem, expandedPath(path));
    }
    const int type = shownType(m_chosenType);
    m_ui->folderBox->setCurrentIndex(m_ui->folderBox->findData(type));
    m_ui->folderBox->setToolTip(type == Custom && !path.isEmpty() ? path : tr("Where snapshots are kept"));
}

void PreferencesWindowController::showOthers() {
    const int recent = defaults().integer(recentFilesKey());
    const QSignalBlocker blocker(m_ui->recentField);
    m_ui->formatBox->setCurrentIndex(defaults().integer(formatKey()) == 0 ? 0 : 1);
    m_ui->recentField->setValue(recent == 0 ? recentFilesAtFirst : recent);
    m_ui->updatesBox->setChecked(m_hasReleaseFeed &&
                                 defaults().integer(UpdateController::automaticChecksKey()) != 0);
}
