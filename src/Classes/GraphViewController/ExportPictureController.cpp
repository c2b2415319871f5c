// Ties the controls to the choices, and the choices to looks that a thread takes.
#include "Classes/GraphViewController/ExportPictureController.h"

#include "Platform/Core/MainThread.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/FilePanels.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "ui_ExportPicture.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int pauseMilliseconds = 200;

using Work = std::function<void(const std::stop_token& stop)>;

class PictureOperation : public Operation {
  public:
    explicit PictureOperation(Work work) : m_work(std::move(work)) {}
    void main() override { m_work(stopToken()); }

  private:
    Work m_work;
};

QString sizeWords(const ExportChoices& choices) {
    if (isVectorFormat(choices.format))
        return ExportPictureController::tr("%1 × %2 points").arg(choices.width).arg(choices.height);
    const QSize pixels = pixelsOf(choices.size());
    return ExportPictureController::tr("%1 × %2 pixels").arg(pixels.width()).arg(pixels.height());
}

QString byteWords(qint64 bytes) {
    constexpr const char* units[] = {"bytes", "KB", "MB", "GB"};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= 999.5 && unit + 1 < std::size(units); ++unit)
        size /= 1000;
    const int decimals = unit > 1 && size < 99.95 ? 1 : 0;
    return u"%1 %2"_s.arg(size, 0, 'f', decimals).arg(QLatin1String(units[unit]));
}

QString filterOf(PictureFormat format) {
    switch (format) {
    case PictureFormat::Png:
        break;
    case PictureFormat::Jpeg:
        return ExportPictureController::tr("JPEG pictures (*.jpg *.jpeg)");
    case PictureFormat::Pdf:
        return ExportPictureController::tr("PDF documents (*.pdf)");
    case PictureFormat::Svg:
        return ExportPictureController::tr("SVG drawings (*.svg)");
    }
    return ExportPictureController::tr("PNG pictures (*.png)");
}

} // namespace

ExportPictureController::ExportPictureController(std::function<PlotPictureOptions()> options, QString name,
                                                 QWidget* window)
    : QDialog(window), m_options(std::move(options)), m_name(std::move(name)),
      m_ui(std::make_unique<Ui::ExportPicture>()) {
    m_ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    setUp();
    show(ExportChoices::remembered(m_options().showLegend));
    choicesChanged();
    m_pause.start(0); // the first look needs no pause
}

ExportPictureController::~ExportPictureController() {
    m_isEnding = true;
    m_queue.cancelAll();
}

// --- The controls
// ----------------------------------------------------------------------------------------------

void ExportPictureController::setUp() {
    m_scales = new QButtonGroup(this);
    int id = 0;
    for (QAbstractButton* button :
         {m_ui->scale1Button, m_ui->scale15Button, m_ui->scale2Button, m_ui->scale3Button})
        m_scales->addButton(button, id++);
    m_ui->captionLabel->setFont(VelquinStyle::smallFont(font()));
    for (QLabel* label :
         {m_ui->formatLabel, m_ui->sizeLabel, m_ui->scaleLabel, m_ui->timesLabel, m_ui->unitLabel})
        label->setForegroundRole(labelRole);
    connect(m_scales, &QButtonGroup::idClicked, this, &ExportPictureController::choicesChanged);
    connect(m_ui->formatBox, &QComboBox::currentIndexChanged, this, &ExportPictureController::choicesChanged);
    for (const QLineEdit* field : {m_ui->widthField, m_ui->heightField})
        connect(field, &QLineEdit::textChanged, this, &ExportPictureController::choicesChanged);
    for (const QCheckBox* box : {m_ui->legendBox, m_ui->titlesBox})
        connect(box, &QCheckBox::toggled, this, &ExportPictureController::choicesChanged);
    connect(m_ui->cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->exportButton, &QPushButton::clicked, this, &ExportPictureController::chooseFile);
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &ExportPictureController::survey);
}

void ExportPictureController::show(const ExportChoices& choices) {
    m_ui->formatBox->setCurrentIndex(static_cast<int>(choices.format));
    m_ui->widthField->setText(QString::number(choices.width));
    m_ui->heightField->setText(QString::number(choices.height));
    const auto* const scale = std::ranges::find(ExportChoices::scales, choices.scale);
    m_scales->button(static_cast<int>(scale - std::begin(ExportChoices::scales)))->setChecked(true);
    m_ui->legendBox->setChecked(choices.legend);
    m_ui->titlesBox->setChecked(choices.titles);
}

double ExportPictureController::chosenScale() const {
    return ExportChoices::scales[std::max(0, m_scales->checkedId())];
}

std::optional<ExportChoices> ExportPictureController::choices() const {
    const std::optional<int> width = exportSide(m_ui->widthField->text());
    const std::optional<int> height = exportSide(m_ui->heightField->text());
    if (!width || !height)
        return std::nullopt;
    return ExportChoices{static_cast<PictureFormat>(m_ui->formatBox->currentIndex()),
                         *width,
                         *height,
                         chosenScale(),
                         m_ui->legendBox->isChecked(),
                         m_ui->titlesBox->isChecked()};
}

/// Returns whether there are none.
bool ExportPictureController::showFaults() {
    const bool isVector = isVectorFormat(static_cast<PictureFormat>(m_ui->formatBox->currentIndex()));
    m_ui->unitLabel->setText(isVector ? tr("pt") : tr("px"));
    QString first;
    for (QLineEdit* field : {m_ui->widthField, m_ui->heightField}) {
        const QString fault = exportSideFault(field->text(), isVector ? 1 : chosenScale());
        VelquinStyle::setFault(*field, fault);
        first = first.isEmpty() ? fault : first;
    }
    if (!first.isEmpty())
        showCaption(first, true);
    return first.isEmpty();
}

void ExportPictureController::choicesChanged() {
    ++m_surveyNumber; // what is under way no longer matters
    m_queue.cancelAll();
    m_isPossible = showFaults();
    updateControls();
    if (m_isPossible) {
        if (const std::optional<ExportChoices> chosen = choices())
            showCaption(sizeWords(*chosen), false);
        m_pause.start(pauseMilliseconds);
    } else {
        m_pause.stop();
    }
}

void ExportPictureController::updateControls() {
    const bool isVector = isVectorFormat(static_cast<PictureFormat>(m_ui->formatBox->currentIndex()));
    for (QWidget* control :
         {static_cast<QWidget*>(m_ui->scaleGroup), static_cast<QWidget*>(m_ui->scaleLabel)})
        control->setEnabled(!m_isWriting && !isVector);
    for (QWidget* control : {static_cast<QWidget*>(m_ui->formatBox), static_cast<QWidget*>(m_ui->widthField),
                             static_cast<QWidget*>(m_ui->heightField), static_cast<QWidget*>(m_ui->legendBox),
                             static_cast<QWidget*>(m_ui->titlesBox)})
        control->setEnabled(!m_isWriting);
    m_ui->exportButton->setEnabled(m_isPossible && !m_isWriting);
}

void ExportPictureController::showCaption(const QString& text, bool isFault) {
    m_ui->captionLabel->setText(text);
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, isFault ? currentColors().errorText : currentColors().text3);
    m_ui->captionLabel->setPalette(colors);
    m_ui->captionLabel->setToolTip(isFault ? text : QString());
}

// --- The look at it
// --------------------------------------------------------------------------------------------

void ExportPictureController::survey() {
    const std::optional<ExportChoices> chosen = choices();
    if (!chosen)
        return;
    const RecordedPicture picture(chosen->applied(m_options()), chosen->size(), chosen->format);
    const QSize room = (QSizeF(m_ui->previewLabel->size() - QSize(2, 2)) * devicePixelRatioF()).toSize();
    const quint64 number = ++m_surveyNumber;
    m_queue.add(std::make_shared<PictureOperation>(
        [self = QPointer<ExportPictureController>(this), number, picture, room](const std::stop_token& stop) {
            const PictureSurvey survey = PictureWork::survey(picture, room, stop);
            MainThread::perform([self, number, survey] {
                if (self != nullptr)
                    self->surveyed(number, survey);
            });
        }));
}

void ExportPictureController::surveyed(quint64 number, const PictureSurvey& survey) {
    if (m_isEnding || number != m_surveyNumber || m_isWriting)
        return;
    QImage preview = survey.preview;
    preview.setDevicePixelRatio(devicePixelRatioF());
    m_ui->previewLabel->setPixmap(QPixmap::fromImage(preview));
    m_isPossible = survey.failure.isEmpty();
    updateControls();
    if (!m_isPossible)
        return showCaption(survey.failure, true);
    if (const std::optional<ExportChoices> chosen = choices())
        showCaption(tr("%1, about %2").arg(sizeWords(*chosen), byteWords(survey.bytes)), false);
}

/// The frame around the preview, one pixel of the screen.
void ExportPictureController::paintEvent(QPaintEvent* event) {
    QDialog::paintEvent(event);
    QPainter painter(this);
    StylePainting::drawBox(painter, m_ui->previewLabel->geometry(), 0, currentColors().field,
                           currentColors().edge);
}

// --- The file
// --------------------------------------------------------------------------------------------------

void ExportPictureController::chooseFile() {
    const std::optional<ExportChoices> chosen = choices();
    if (!chosen || !m_isPossible || m_isWriting)
        return;
    const QString ending = endingOf(chosen->format);
    FilePanels::shared().choose(this,
                                {.purpose = FilePanel::Purpose::Save,
                                 .title = tr("Export Picture"),
                                 .filters = {filterOf(chosen->format)},
                                 .folderKey = u"ExportFolder"_s,
                                 .proposedName = m_name + u'.' + ending,
                                 .defaultSuffix = ending},
                                [this](const QStringList& paths) {
                                    if (!paths.isEmpty())
                                        write(paths.first());
                                });
}

void ExportPictureController::write(const QString& path) {
    const std::optional<ExportChoices> chosen = choices();
    if (!chosen)
        return;
    if (const auto other = pictureFormatOfPath(path); other && *other != chosen->format)
        return tellFailure(
            path, tr("Its ending is that of another format than %1. Choose that format, or another name.")
                      .arg(endingOf(chosen->format).toUpper()));
    chosen->remember();
    ++m_surveyNumber;
    m_pause.stop();
    m_queue.cancelAll();
    m_isWriting = true;
    updateControls();
    m_ui->progressLabel->setText(tr("Writing “%1”…").arg(QFileInfo(path).fileName()));
    const RecordedPicture picture(chosen->applied(m_options()), chosen->size(), chosen->format);
    m_queue.add(std::make_shared<PictureOperation>(
        [self = QPointer<ExportPictureController>(this), picture, path](const std::stop_token& stop) {
            const std::optional<QString> failure = PictureWork::write(picture, path, stop);
            MainThread::perform([self, path, failure] {
                if (self != nullptr)
                    self->written(path, failure);
            });
        }));
}

void ExportPictureController::written(const QString& path, const std::optional<QString>& failure) {
    if (m_isEnding)
        return;
    m_isWriting = false;
    m_ui->progressLabel->clear();
    updateControls();
    if (failure)
        return tellFailure(path, *failure);
    Q_EMIT exported(path);
    accept();
}

void ExportPictureController::tellFailure(const QString& path, const QString& reason) {
    Alerts::shared().tell(this, tr("“%1” was not written.").arg(QFileInfo(path).fileName()),
                          u"%1: %2"_s.arg(QDir::toNativeSeparators(path), reason));
}
