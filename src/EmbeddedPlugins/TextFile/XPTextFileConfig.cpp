// Binds the controls to the source and shows the first notice that holds.
#include "EmbeddedPlugins/TextFile/XPTextFileConfig.h"

#include "Core/Assertions.h"
#include "EmbeddedPlugins/Common/NoticeBar.h"
#include "EmbeddedPlugins/Common/PreviewTableView.h"
#include "EmbeddedPlugins/TextFile/InputFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Binding.h"
#include "Platform/Widgets/FilePanels.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/ThemeColors.h"
#include "ui_XPTextFileConfig.h"

#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <string_view>

namespace {

/// A count of lines, 0 or more. An emptied field resets the key in the source's own way.
ValueTransform lineCount(const QPointer<XPTextFile>& source, const char* key) {
    return {{},
            [source, key](const QVariant& text) -> std::optional<QVariant> {
                const QString entered = text.toString().trimmed();
                if (entered.isEmpty() && source != nullptr) {
                    source->setNilValueForKey(key);
                    return source->valueForKey(key);
                }
                bool isNumber = false;
                int count = entered.toInt(&isNumber);
                if (!isNumber)
                    count = QLocale().toInt(entered, &isNumber);
                return isNumber && count >= 0 ? std::optional<QVariant>(count) : std::nullopt;
            },
            XPTextFileConfig::tr("This is not a number of lines: 0 or more")};
}

} // namespace

XPTextFileConfig::XPTextFileConfig(QObject* parent)
    : SourcePage(parent), m_ui(std::make_unique<Ui::XPTextFileConfig>()) {
    m_ui->setupUi(view());
    setOutlets(
        {m_ui->dataTable, m_ui->parsedDataLabel, m_ui->countLabel, m_ui->delimiterBox, m_ui->headerBox});
    awakeFromNib();
}

XPTextFileConfig::~XPTextFileConfig() {
    deleteView();
}

QComboBox* XPTextFileConfig::filenameCombobox() const {
    return m_ui->filenameCombobox;
}

QWidget* XPTextFileConfig::parsedDataBox() const {
    return m_ui->parsedDataBox;
}

NoticeBar* XPTextFileConfig::noticeBar() const {
    return m_ui->noticeBar;
}

void XPTextFileConfig::awakeFromNib() {
    for (QLabel* label : {m_ui->fileLabel, m_ui->delimiterLabel, m_ui->linesLabel})
        label->setForegroundRole(labelRole);
    m_ui->filenameCombobox->lineEdit()->setPlaceholderText(tr("Choose a data file"));
    m_ui->filenameCombobox->setCompleter(nullptr); // it would take "A.csv" of the list for a typed "a.csv"
    m_ui->reloadButton->setIcon(Pictures::icon(QStringLiteral("reload")));
    connect(m_ui->filenameCombobox, &QComboBox::activated, this,
            [this](int row) { chooseFilename(m_ui->filenameCombobox->itemText(row)); });
    connect(m_ui->browseButton, &QPushButton::clicked, this, &XPTextFileConfig::onBrowse);
    connect(m_ui->reloadButton, &QToolButton::clicked, this, [this] {
        if (plugin() != nullptr)
            plugin()->read();
    });
    connect(m_ui->dataTable, &PreviewTableView::refreshRequested, this, &XPTextFileConfig::onReload);
    connect(m_ui->noticeBar, &NoticeBar::actionClicked, this, &XPTextFileConfig::onNoticeAction);
    connect(m_ui->noticeBar, &NoticeBar::dismissed, this, [this] {
        if (const SourceNotice* shown = shownNotice())
            m_dismissed.insert(shown->kind);
        showNotice();
    });
    refreshDataTable();
}

void XPTextFileConfig::setPlugin(XPTextFile* plugin) {
    m_notices.clear();
    m_dismissed.clear();
    showNotice();
    m_changeOnDisk.end();
    observePlugin(plugin);
    if (plugin != nullptr) {
        static constexpr const char* keys[] = {"isChangedOnDisk", "readError"};
        m_changeOnDisk = Observation(*plugin, keys, [this](const KeyChange& change) { fileChanged(change); });
        m_ui->filenameCombobox->lineEdit()->setReadOnly(plugin->isSandboxed());
        bindControls();
    }
}

void XPTextFileConfig::bindControls() {
    updateRecentFiles();
    bind(m_ui->filenameCombobox->lineEdit(), *plugin(), "filename");
    bind(m_ui->skiplinesField, *plugin(), "skiplines", lineCount(plugin(), "skiplines"));
    bind(m_ui->everyNthLineField, *plugin(), "everyNthLine", lineCount(plugin(), "everyNthLine"));
    bind(m_ui->liveBox, *plugin(), "isLive");
    follow(m_ui->liveBox, *plugin(), "filename",
           [box = m_ui->liveBox](const QVariant& name) { box->setEnabled(!name.toString().isEmpty()); });
}

void XPTextFileConfig::observeValueForKeyPath(const KeyChange& change) {
    const std::string_view key = change.key;
    if (key == "title")
        xAssert(MainThread::isCurrent(), "UI operation not from main thread!");
    if (key == "progress") {
        xAssert(MainThread::isCurrent(), "UI operation not from main thread!");
        if (!isReadingQuietly())
            setProgress(plugin()->progress());
    }
    if (key == "filename") {
        m_dismissed.clear();
        updateRecentFiles();
    }
    SourcePage::observeValueForKeyPath(change);
}

void XPTextFileConfig::onBecameVisible() {
    if (view() != nullptr && plugin() != nullptr && plugin()->filename().isEmpty())
        m_ui->filenameCombobox->setFocus();
}

QString XPTextFileConfig::emptyText() const {
    if (!fault().isEmpty())
        return fault();
    return surveyedPath().isEmpty() ? tr("Choose a data file above, and its values are shown here")
                                    : tr("Nothing was read yet");
}

// ---- The file

void XPTextFileConfig::updateRecentFiles() {
    QComboBox* box = m_ui->filenameCombobox;
    const QString typed = box->lineEdit()->text();
    box->clear();
    box->addItems(UserDefaults::standard().stringList(QStringLiteral("TextFilePluginRecentFiles")));
    box->setCurrentIndex(-1);
    box->lineEdit()->setText(typed);
}

/// An equal name is no change: nothing is read for it, and there is nothing to undo.
void XPTextFileConfig::chooseFilename(const QString& path) {
    if (plugin() != nullptr && path != plugin()->filename())
        plugin()->setFilename(path);
}

void XPTextFileConfig::onBrowse() {
    if (m_isChoosing || plugin() == nullptr || view() == nullptr)
        return;
    m_isChoosing = true;
    const QString& path = plugin()->filename();
    FilePanels::shared().choose(
        view(),
        {.purpose = FilePanel::Purpose::OpenOne,
         .title = tr("Choose a Data File"),
         .filters = {tr("All files (*)")},
         .folderKey = path.isEmpty() ? QStringLiteral("DataFilesFolder") : QString(),
         .startFolder = path.isEmpty() ? QString() : QFileInfo(plugin()->path()).absolutePath()},
        [page = QPointer<XPTextFileConfig>(this)](const QStringList& paths) {
            if (page == nullptr)
                return;
            page->m_isChoosing = false;
            if (!paths.isEmpty())
                page->chooseFilename(paths.first());
        });
}

void XPTextFileConfig::onReload() {
    refreshDataTable();
}

// ---- Notices

QString XPTextFileConfig::surveyedPath() const {
    return plugin() == nullptr ? QString() : plugin()->path();
}

void XPTextFileConfig::surveyChanged() {
    updateNotices();
}

/// What a read finds out is told when it ended and was looked at; the rest, at once.
void XPTextFileConfig::fileChanged(const KeyChange& change) {
    const bool isOfARead = plugin()->isLoading() || !plugin()->readError().isEmpty();
    if (change.key == std::string_view("readError") && isOfARead)
        return;
    m_dismissed.erase(NoticeKind::ChangedOnDisk); // that was the change before
    updateNotices();
    showState();
}

void XPTextFileConfig::updateNotices() {
    if (plugin() == nullptr || view() == nullptr || !survey())
        return; // the file has not been looked at yet
    const XPTextFile& source = *plugin();
    m_facts = {
        surveyedPath(),
        source.readError(),
        survey()->fileExists,
        source.isChangedOnDisk(),
        {source.skiplines(), source.everyNthLine(), source.delimiterType(), source.extractColumnNames()},
        source.columnNames().mid(1),
        survey()->head,
        survey()->table};
    m_notices = noticesOf(m_facts);
    const QString reason =
        !m_notices.isEmpty() && m_notices.first().isFault() ? m_notices.first().text : QString();
    if (reason != fault())
        setFault(reason);
    showNotice();
}

const SourceNotice* XPTextFileConfig::shownNotice() const {
    const auto shown = std::find_if(m_notices.begin(), m_notices.end(), [this](const SourceNotice& notice) {
        return !m_dismissed.contains(notice.kind);
    });
    return shown == m_notices.end() ? nullptr : &*shown;
}

void XPTextFileConfig::showNotice() {
    if (const SourceNotice* shown = shownNotice())
        m_ui->noticeBar->showNotice(shown->text, shown->action, shown->isFault());
    else
        m_ui->noticeBar->showNotice(QString(), QString(), false);
}

void XPTextFileConfig::onNoticeAction() {
    const SourceNotice* shown = shownNotice();
    if (shown == nullptr || plugin() == nullptr)
        return;
    if (shown->kind == NoticeKind::FileGone) {
        onBrowse();
        return;
    }
    if (shown->kind == NoticeKind::Unreadable || shown->kind == NoticeKind::ChangedOnDisk) {
        plugin()->read();
        return;
    }
    // All in this turn of the event loop, so that it is one step to undo.
    const SplitSettings after = adjusted(shown->kind, m_facts);
    XPTextFile& source = *plugin();
    if (after.delimiterType != source.delimiterType())
        source.setDelimiterType(after.delimiterType);
    if (after.extractColumnNames != source.extractColumnNames())
        source.setExtractColumnNames(after.extractColumnNames);
    if (after.skiplines != source.skiplines())
        source.setSkiplines(after.skiplines);
    if (after.everyNthLine != source.everyNthLine())
        source.setEveryNthLine(after.everyNthLine);
}
