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
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/ThemeColors.h"
#include "ui_XPTextFileConfig.h"

#include <QFileDialog>
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
        const auto shown =
            std::find_if(m_notices.begin(), m_notices.end(),
                         [this](const SourceNotice& notice) { return !m_dismissed.contains(notice.kind); });
        if (shown != m_notices.end())
            m_dismissed.insert(shown->kind);
        showNotice();
    });
    refreshDataTable();
}

void XPTextFileConfig::setPlugin(XPTextFile* plugin) {
    m_notices.clear();
    m_dismissed.clear();
    showNotice();
    observePlugin(plugin);
    if (plugin != nullptr) {
        m_ui->filenameCombobox->lineEdit()->setReadOnly(plugin->isSandboxed());
        bindControls();
    }
}

void XPTextFileConfig::bindControls() {
    updateRecentFiles();
    bind(m_ui->filenameCombobox->lineEdit(), *plugin(), "filename");
    bind(m_ui->skiplinesField, *plugin(), "skiplines", lineCount(plugin(), "skiplines"));
    bind(m_ui->everyNthLineField, *plugin(), "everyNthLine", lineCount(plugin(), "everyNthLine"));
}

void XPTextFileConfig::observeValueForKeyPath(const KeyChange& change) {
    const std::string_view key = change.key;
    if (key == "title")
        xAssert(MainThread::isCurrent(), "UI operation not from main thread!");
    if (key == "progress") {
        xAssert(MainThread::isCurrent(), "UI operation not from main thread!");
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
    if (m_openPanel != nullptr || plugin() == nullptr)
        return;
    const QString folder = QFileInfo(expandedPath(plugin()->filename())).path();
    m_openPanel = new QFileDialog(view(), tr("Choose a data file"), folder);
    m_openPanel->setAttribute(Qt::WA_DeleteOnClose);
    m_openPanel->setFileMode(QFileDialog::ExistingFile);
    m_openPanel->setOption(QFileDialog::ReadOnly); // no new folders
    connect(m_openPanel, &QFileDialog::fileSelected, this, &XPTextFileConfig::chooseFilename);
    m_openPanel->open();
}

void XPTextFileConfig::onReload() {
    refreshDataTable();
}

// ---- Notices

QString XPTextFileConfig::surveyedPath() const {
    return plugin() == nullptr ? QString() : expandedPath(plugin()->filename());
}

void XPTextFileConfig::surveyChanged() {
    const XPTextFile& source = *plugin();
    m_facts = {
        surveyedPath(),
        source.readError(),
        survey()->fileExists,
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

void XPTextFileConfig::showNotice() {
    for (const SourceNotice& notice : m_notices) {
        if (m_dismissed.contains(notice.kind))
            continue;
        m_ui->noticeBar->showNotice(notice.text, notice.action, notice.isFault());
        return;
    }
    m_ui->noticeBar->showNotice(QString(), QString(), false);
}

void XPTextFileConfig::onNoticeAction() {
    const auto shown = std::find_if(m_notices.begin(), m_notices.end(), [this](const SourceNotice& notice) {
        return !m_dismissed.contains(notice.kind);
    });
    if (shown == m_notices.end() || plugin() == nullptr)
        return;
    if (shown->kind == NoticeKind::FileGone) {
        onBrowse();
        return;
    }
    if (shown->kind == NoticeKind::Unreadable) {
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
