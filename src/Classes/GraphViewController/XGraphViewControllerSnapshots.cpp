// Snapshots of the plot: into a file, onto the clipboard, and the modes of the button that makes them.
#include "Classes/Axes/XAxis.h"
#include "Classes/GraphViewController/DocumentPicture.h"
#include "Classes/GraphViewController/ExportPictureController.h"
#include "Classes/GraphViewController/ImageExport.h"
#include "Classes/GraphViewController/ShutterSound.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/PlotView/LegendDrawing.h"
#include "Classes/ValueEncodings/XVelquin.h"
#include "EmbeddedPlugins/TextFile/InputFile.h"
#include "MoxDocument.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/DesktopOpening.h"
#include "Platform/Widgets/FilePanels.h"
#include "Platform/Widgets/Pictures.h"
#include "ui_XGraphViewController.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

enum SnapshotMode { toFile = 0, toClipboard = 1, revealFolder = 2 };

constexpr double opacityOfBlink = 0.5;
constexpr std::chrono::milliseconds blink{200};
constexpr std::chrono::seconds newsStay{5};

QString elided(const QString& title, TextRole role, double room) {
    return QFontMetricsF(plotFont(role)).elidedText(title, Qt::ElideMiddle, room);
}

} // namespace

// --- The button
// ------------------------------------------------------------------------------------------------

void XGraphViewController::setUpSnapshots() {
    showSnapshotMode(toFile);
    connect(m_ui->snapshotButton, &QAbstractButton::clicked, this, [this] {
        flagsChanged(QGuiApplication::keyboardModifiers());
        onMakeSnapshot();
    });
    // A key that is held shows on the button wherever the keyboard is in the window.
    qApp->installEventFilter(this);
    m_snapshotNews.setSingleShot(true);
    m_snapshotNews.setInterval(newsStay);
    connect(&m_snapshotNews, &QTimer::timeout, this, &XGraphViewController::updateStatusLine);
    connect(&m_snapshotWriter, &SnapshotWriter::written, this, [this](const QString& path) {
        saySnapshot(tr("Snapshot saved as “%1”").arg(QFileInfo(path).fileName()));
    });
    connect(&m_snapshotWriter, &SnapshotWriter::failed, this,
            [this](const QString& path, const QString& reason) {
                tellSnapshotFailure(tr("The snapshot was not written."), u"%1: %2"_s.arg(path, reason));
            });
}

void XGraphViewController::noticeModifiers(QObject* object, QEvent* event) {
    if (m_view == nullptr)
        return;
    if (object == m_view->window()) {
        if (event->type() == QEvent::WindowActivate)
            flagsChanged(QGuiApplication::queryKeyboardModifiers());
        else if (event->type() == QEvent::WindowDeactivate)
            flagsChanged(Qt::NoModifier);
    }
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return;
    const auto* key = static_cast<QKeyEvent*>(event); // NOLINT(*-static-cast-downcast): by its type
    if ((key->key() == Qt::Key_Control || key->key() == Qt::Key_Alt) && m_view->window()->isActiveWindow())
        flagsChanged(key->modifiers());
}

void XGraphViewController::flagsChanged(Qt::KeyboardModifiers modifiers) {
    setSnapshotMode(modifiers.testFlag(Qt::AltModifier)       ? revealFolder
                    : modifiers.testFlag(Qt::ControlModifier) ? toClipboard
                                                              : toFile);
}

void XGraphViewController::setSnapshotMode(int mode) {
    m_snapshotButtonMode = mode;
    showSnapshotMode(mode);
}

void XGraphViewController::showSnapshotMode(int mode) {
    struct Shown {
        QString picture;
        QString words;
        QString keys;
    };
    const Shown shown =
        mode == revealFolder
            ? Shown{u"snapshot_reveal_in_finder"_s, tr("Show the folder of the snapshots"), {}}
        : mode == toClipboard
            ? Shown{u"snapshot_copy_to_clipboard"_s, tr("Copy a snapshot of the plot to the clipboard"),
                    tr(" (Ctrl+Shift+C)")}
            : Shown{u"snapshot_make"_s, tr("Save a snapshot of the plot"),
                    tr(" (Ctrl+Shift+E); with Ctrl copy it, with Alt show the folder")};
    m_ui->snapshotButton->setIcon(Pictures::icon(shown.picture));
    m_ui->snapshotButton->setAccessibleName(shown.words);
    m_ui->snapshotButton->setToolTip(shown.words + shown.keys);
}

// --- Making them
// -----------------------------------------------------------------------------------------------

void XGraphViewController::onMakeSnapshotToFile() {
    m_snapshotButtonMode = toFile;
    onMakeSnapshot();
}

void XGraphViewController::onMakeSnapshotToClipboard() {
    m_snapshotButtonMode = toClipboard;
    onMakeSnapshot();
    m_snapshotButtonMode = toFile;
}

void XGraphViewController::onRevealSnapshotsFolder() {
    m_snapshotButtonMode = revealFolder;
    onMakeSnapshot();
}

void XGraphViewController::onMakeSnapshot() {
    if (m_snapshotButtonMode == revealFolder)
        return revealSnapshotsFolder();
    const QImage image = getSnapshot();
    ShutterSound::play();
    blinkContainer(!image.isNull());
    if (image.isNull()) {
        logMethod("-[XGraphViewController onMakeSnapshot:]", u"Couldn't make snapshot!\n"_s);
        return;
    }
    if (m_snapshotButtonMode == toClipboard)
        return copySnapshot(image);
    const int format = UserDefaults::standard().integer(u"SnapshotsFormat"_s);
    withSnapshotsFolder(tr("The snapshot was not written."), [this, image, format](const QString& folder) {
        m_snapshotWriter.write(image, folder, format);
    });
}

/// Kept: without an image it does not come back, until the next snapshot.
void XGraphViewController::blinkContainer(bool isBack) {
    if (!Appearance::instance().animations())
        return;
    PaperView* container = m_ui->plotViewContainer;
    container->setOpacity(opacityOfBlink);
    if (isBack)
        QTimer::singleShot(blink, container, [container] { container->setOpacity(1); });
}

void XGraphViewController::copySnapshot(const QImage& image) {
    if (ImageExport::copyToClipboard(image))
        saySnapshot(tr("Snapshot copied to the clipboard"));
    else
        tellSnapshotFailure(tr("The snapshot was not copied."), tr("There is no memory for it."));
}

void XGraphViewController::revealSnapshotsFolder() {
    withSnapshotsFolder(tr("The folder of the snapshots cannot be shown."),
                        [this](const QString& folder) { DesktopOpening::openFolder(folder, m_view); });
    setSnapshotMode(toFile);
}

void XGraphViewController::withSnapshotsFolder(const QString& failure,
                                               const std::function<void(const QString&)>& use) {
    QString reason;
    const std::optional<QString> folder = XVelquin::snapshotsDirectory(&reason);
    if (!reason.isEmpty())
        return tellSnapshotFailure(failure, reason);
    if (folder && !folder->isEmpty())
        return use(QDir(expandedPath(*folder)).absolutePath());
    FilePanels::shared().choose(m_view,
                                {.purpose = FilePanel::Purpose::ChooseFolder,
                                 .title = tr("Select directory for snapshots"),
                                 .folderKey = {},
                                 .startFolder = QDir::homePath()},
                                [use](const QStringList& paths) {
                                    if (paths.isEmpty())
                                        return;
                                    XVelquin::setSnapshotsDirectory(paths.first());
                                    use(paths.first());
                                });
}

void XGraphViewController::tellSnapshotFailure(const QString& message, const QString& reason) {
    const QList<Alert::Button> buttons{{tr("OK"), Alert::Role::Accept},
                                       {tr("Open Preferences"), Alert::Role::Other}};
    if (m_view == nullptr) { // the window went meanwhile
        logMethod("-[XGraphViewController onMakeSnapshot:]", reason);
        return;
    }
    Alerts::shared().ask(m_view, {Alert::Kind::Fault, message, reason, buttons},
                         [self = QPointer(this)](int button) {
                             if (button == 1 && self != nullptr)
                                 Q_EMIT self->preferencesRequested();
                         });
}

void XGraphViewController::saySnapshot(const QString& news) {
    setStatus(news);
    m_snapshotNews.start();
}

void XGraphViewController::onMakeSnapshotToPDF() {
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    PlacedFile::Result result{PlacedFile::Result::Outcome::Failed, tr("The page could not be drawn.")};
    if (writePdfPage(bytes, m_ui->plotViewContainer->size(), m_ui->plotArea_titleLabel->text(),
                     [this](QPainter& painter) { paintContainer(painter, PageOutput::Vector); }))
        result = PlacedFile::writeInSharedFolder(m_pdfPath, bytes.data());
    if (result.isWritten())
        saySnapshot(tr("Snapshot written as “%1”").arg(m_pdfPath));
    else
        Alerts::shared().tell(m_view, tr("“%1” was not written.").arg(QFileInfo(m_pdfPath).fileName()),
                              u"%1: %2"_s.arg(m_pdfPath, result.reason));
}

void XGraphViewController::onExportPicture(const QString& name) {
    auto* dialog = new ExportPictureController([this] { return pictureOptions(); }, name, m_view->window());
    connect(dialog, &ExportPictureController::exported, this, [this](const QString& path) {
        saySnapshot(tr("Picture written as “%1”").arg(QFileInfo(path).fileName()));
    });
    dialog->open();
}

PlotPictureOptions XGraphViewController::pictureOptions() const {
    if (m_document == nullptr) // which closes; a dialog may outlive it by a turn
        return {};
    PlotPictureOptions options = pictureOptionsOf(*m_document);
    options.showLegend = m_legendVisible;
    options.blackBackground = m_blackBackground;
    const PlotScene& scene = plotView().scene();
    const auto rangeOf = [](const XAxis& axis) { return XValueRange{axis.minValue(), axis.maxValue()}; };
    options.ranges = {rangeOf(*scene.axisX()), rangeOf(*scene.axisY())};
    return options;
}

// --- The picture
// -----------------------------------------------------------------------------------------------

QImage XGraphViewController::getSnapshot() {
    const QWidget& container = *m_ui->plotViewContainer;
    const double ratio = container.devicePixelRatioF();
    QImage image((QSizeF(container.size()) * ratio).toSize(), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    paintContainer(painter, PageOutput::Pixels);
    return image;
}

/// Through the scene, not the widgets: no card, focus ring or text cursor gets into a picture.
void XGraphViewController::paintContainer(QPainter& painter, PageOutput output) {
    PlotScene& scene = plotView().scene();
    PlotPage page;
    page.size = m_ui->plotViewContainer->size();
    page.rooms = titleRooms();
    page.plotAreaTitle =
        elided(m_ui->plotArea_titleLabel->text(), TextRole::PlotTitle, page.rooms.plotAreaTitle.width());
    page.axisTitleX =
        elided(m_ui->axisX_titleLabel->text(), TextRole::AxisTitle, page.rooms.axisTitleX.width());
    page.underPlot = scene.calculateMargins().marginBottom;
    page.axisTitleY = elided(titleText(&MoxDocument::axisTitleY), TextRole::AxisTitle,
                             page.rooms.axisTitleY.height() - page.underPlot);
    page.styles = scene.styles();
    paintPage(painter, page, output, [&](PlotCanvas& plot) {
        scene.draw(plot, page.aroundPlot(),
                   output == PageOutput::Vector ? PlotScene::CurveOutput::Vector
                                                : PlotScene::CurveOutput::Images);
        if (m_graphLegend->isVisibleTo(&plotView()))
            LegendDrawing::drawLegend(plot, m_graphLegend->frame().topLeft(), scene.curves(),
                                      FontTextMeasure());
    });
}
