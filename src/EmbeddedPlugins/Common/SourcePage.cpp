// Follows a source: hands its table to the preview, has it counted off the main thread, and says what it
// found.
#include "EmbeddedPlugins/Common/SourcePage.h"

#include "Core/ClampToInt.h"
#include "EmbeddedPlugins/Common/PreviewTableView.h"
#include "EmbeddedPlugins/Common/SourceNotices.h"
#include "EmbeddedPlugins/TextFile/InputFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Widgets/Binding.h"
#include "Platform/Widgets/ThemeColors.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>

#include <array>
#include <cmath>
#include <utility>

namespace {

/// For so long nothing is said of a read that nobody asked for.
constexpr qint64 quietMilliseconds = 1000;

constexpr std::array<const char*, 5> observedKeys{"data", "title", "progress", "isLoading", "readError"};

QString grouped(std::uint64_t number) {
    return QLocale(QLocale::English).toString(static_cast<qulonglong>(number));
}

QString countOf(std::uint64_t number, const QString& one, const QString& many) {
    return number == 1 ? one : many.arg(grouped(number));
}

QString fileSize(std::uint64_t bytes) {
    if (bytes < 1000)
        return SourcePage::tr("%1 bytes").arg(bytes);
    double size = static_cast<double>(bytes) / 1000;
    const char* const units[] = {"KB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    for (; size >= 999.95 && unit + 1 < std::size(units); ++unit)
        size /= 1000;
    return QStringLiteral("%1 %2").arg(size, 0, 'f', 1).arg(QLatin1String(units[unit]));
}

} // namespace

/// Looks at the head of a file and counts a table; its result is of no use once it was cancelled.
class SourcePage::SurveyOperation : public Operation {
  public:
    SurveyOperation(QPointer<SourcePage> page, quint64 number, QString path, XTable table)
        : m_page(std::move(page)), m_number(number), m_path(std::move(path)), m_table(std::move(table)) {}

    void main() override {
        Survey survey;
        if (!m_path.isEmpty())
            lookAtFile(survey);
        if (m_table != nullptr)
            survey.table = surveyTable(*m_table, stopToken());
        m_table.reset();
        if (!isCancelled())
            MainThread::perform([page = m_page, number = m_number, survey = std::move(survey)] {
                if (page != nullptr)
                    page->takeSurvey(number, survey);
            });
    }

  private:
    void lookAtFile(Survey& survey) const {
        const InputFile input = openInputFile(m_path);
        survey.fileExists = input.file != nullptr || QFileInfo::exists(expandedPath(m_path));
        QByteArray head;
        while (input.file != nullptr && static_cast<std::size_t>(head.size()) <= HeadSurvey::bytes) {
            const QByteArray part =
                input.file->read(static_cast<qint64>(HeadSurvey::bytes) + 1 - head.size());
            if (part.isEmpty())
                break;
            head += part;
        }
        const bool isWhole = static_cast<std::size_t>(head.size()) <= HeadSurvey::bytes;
        survey.head = surveyHead({head.constData(), static_cast<std::size_t>(head.size())}, isWhole);
    }

    QPointer<SourcePage> m_page; ///< for the main thread alone
    quint64 m_number;
    QString m_path;
    XTable m_table;
};

SourcePage::SourcePage(QObject* parent) : XViewController(parent) {}

SourcePage::~SourcePage() {
    deleteView();
}

void SourcePage::deleteView() {
    delete m_view.data();
}

void SourcePage::setOutlets(const Outlets& outlets) {
    m_outlets = outlets;
    QFont bold = outlets.parsedDataLabel->font();
    bold.setBold(true);
    outlets.parsedDataLabel->setFont(bold);
    outlets.countLabel->setForegroundRole(labelRole);
    outlets.countLabel->setFont(VelquinStyle::smallFont(outlets.countLabel->font()));
    outlets.delimiterBox->addItems(delimiterTitles());
    outlets.dataTable->setModel(&m_model);
    connect(outlets.dataTable, &PreviewTableView::copyWasCut, this, [this](int rows, int selectedRows) {
        setStatus(tr("Copied the first %1 of %2 selected rows")
                      .arg(grouped(static_cast<std::uint64_t>(rows)),
                           grouped(static_cast<std::uint64_t>(selectedRows))));
    });
}

// ---- The source

XPTextFile* SourcePage::plugin() const {
    return m_plugin;
}

void SourcePage::observePlugin(XPTextFile* plugin) {
    m_settingsObservation.end();
    m_observation.end();
    m_plugin = plugin;
    unbind(m_outlets.headerBox);
    unbind(m_outlets.delimiterBox);
    if (plugin != nullptr) {
        setTitle(plugin->title());
        const auto observe = [this](const KeyChange& change) {
            if (m_view != nullptr)
                observeValueForKeyPath(change);
        };
        m_settingsObservation = Observation(*plugin, plugin->kvoKeys(), observe);
        m_observation = Observation(*plugin, observedKeys, observe);
        bind(m_outlets.delimiterBox, *plugin, "delimiterType");
        bind(m_outlets.headerBox, *plugin, "extractColumnNames");
        follow(m_outlets.headerBox, *plugin, "delimiterType",
               [box = m_outlets.headerBox](const QVariant& type) { box->setEnabled(type.toInt() != 0); });
        if (plugin->isLoading())
            m_readClock.start();
    }
    m_readSeconds.reset();
    refreshDataTable();
    startSurvey();
}

void SourcePage::observeValueForKeyPath(const KeyChange& change) {
    const std::string_view key = change.key;
    if (key == "data") {
        refreshDataTable();
    } else if (key == "isLoading") {
        readingChanged();
    } else if (key == "progress" || key == "readError") {
        showState();
    } else if (key == "title") {
        setTitle(m_plugin->title());
        showState();
    } else {
        m_plugin->read();
    }
}

void SourcePage::readingChanged() {
    if (m_plugin->isLoading()) {
        m_readClock.start();
    } else {
        const bool timed = m_readClock.isValid() && m_plugin->readError().isEmpty() && m_plugin->data();
        m_readSeconds =
            timed ? std::optional(static_cast<double>(m_readClock.nsecsElapsed()) / 1e9) : std::nullopt;
        m_readClock.invalidate();
        startSurvey();
    }
    showState();
}

void SourcePage::refreshDataTable() {
    if (m_view == nullptr)
        return;
    setProgress(100);
    const bool byItself = m_plugin != nullptr && m_plugin->isReadByItself();
    if (m_survey && !byItself)
        m_survey->table.reset(); // of the table before
    if (m_plugin == nullptr)
        m_model.setTable(nullptr, {});
    else if (byItself)
        m_model.replaceTable(m_plugin->data(), m_plugin->columnNames());
    else
        m_model.setTable(m_plugin->data(), m_plugin->columnNames());
    showState();
}

void SourcePage::commitPendingEdits() {
    auto* field = m_view == nullptr ? nullptr : qobject_cast<QLineEdit*>(m_view->focusWidget());
    if (field != nullptr && field->isModified())
        Q_EMIT field->editingFinished();
}

// ---- The survey

/// The one before is of a table or of settings that were replaced.
void SourcePage::startSurvey() {
    m_queue.cancelAll();
    ++m_surveyNumber;
    if (m_plugin == nullptr || m_plugin->isLoading()) {
        m_surveyTaken = m_surveyNumber;
        return;
    }
    m_queue.add(std::make_shared<SurveyOperation>(QPointer<SourcePage>(this), m_surveyNumber, surveyedPath(),
                                                  m_plugin->data()));
}

void SourcePage::takeSurvey(quint64 number, const Survey& survey) {
    if (number != m_surveyNumber || m_plugin == nullptr || m_view == nullptr)
        return;
    m_surveyTaken = number;
    m_survey = survey;
    surveyChanged();
    showState();
}

// ---- What is said

QString SourcePage::countText() const {
    if (m_plugin == nullptr)
        return {};
    if (m_plugin->isLoading()) {
        const double part = m_plugin->progress();
        return std::isnan(part) ? tr("Reading…") : tr("Reading… %1 %").arg(clampToInt(part * 100));
    }
    const XTable table = m_plugin->data();
    if (table == nullptr)
        return {};
    const std::uint64_t columns = table->columnsNumber();
    if (columns == 0)
        return tr("No rows");
    QString text = tr("%1 × %2").arg(countOf(table->rowsNumber(), tr("1 row"), tr("%1 rows")),
                                     countOf(columns, tr("1 column"), tr("%1 columns")));
    if (!surveyedPath().isEmpty() && m_plugin->inputStreamLength() > 0)
        text += tr(", %1").arg(fileSize(m_plugin->inputStreamLength()));
    return text;
}

QString SourcePage::statusText() const {
    if (m_plugin == nullptr)
        return {};
    if (!fault().isEmpty())
        return fault();
    const QString name = m_plugin->title();
    if (m_plugin->isLoading())
        return tr("Reading %1…").arg(name);
    const XTable table = m_plugin->data();
    if (table == nullptr)
        return tr("%1: no data yet").arg(name);
    if (table->columnsNumber() == 0)
        return tr("%1: no rows").arg(name);
    QString text = tr("%1: %2").arg(name, countOf(table->rowsNumber(), tr("1 row"), tr("%1 rows")));
    const TableSurvey counts = m_survey && m_survey->table ? *m_survey->table : TableSurvey();
    if (counts.emptyRows > 0)
        text += tr(", %1 of them empty").arg(grouped(counts.emptyRows));
    if (counts.unreadableCells > 0)
        text += countOf(counts.unreadableCells, tr(", 1 unreadable cell"), tr(", %1 unreadable cells"));
    return text;
}

/// What is shown still holds, and does not flicker twice a second.
bool SourcePage::isReadingQuietly() const {
    return m_plugin != nullptr && m_plugin->isLoading() && m_plugin->isReadByItself() &&
           !m_readClock.hasExpired(quietMilliseconds);
}

/// Assigns what has changed alone: every assignment makes the window lay out its status line.
void SourcePage::showState() {
    const bool reading = m_plugin != nullptr && m_plugin->isLoading();
    if (isReadingQuietly())
        return;
    m_outlets.dataTable->setReading(reading ? std::optional(m_plugin->progress()) : std::nullopt);
    m_outlets.dataTable->setEmptyText(reading ? QString() : emptyText());
    m_outlets.countLabel->setText(countText());
    const QString text = statusText();
    if (text != status())
        setStatus(text);
    Readouts values;
    if (m_readSeconds && !reading) {
        const QString seconds =
            *m_readSeconds < 0.005 ? tr("less than 0.01") : QString::number(*m_readSeconds, 'f', 2);
        values.append({QString(), tr("Read in %1 s").arg(seconds)});
    }
    if (values != readouts())
        setReadouts(values);
}
