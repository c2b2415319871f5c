// Sets the window up, takes data in and says what goes on in it.
#include "Classes/WindowControllers/MoxDocumentWindow.h"

#include "Classes/Axes/XTimeAxis.h"
#include "Classes/DropHere/DroppedData.h"
#include "Classes/DropHere/XDropHereView.h"
#include "Classes/DropHere/XDropHereViewController.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/TabBar/QXGraphViewTab.h"
#include "Classes/TabBar/QXTabBar.h"
#include "Classes/WindowControllers/ApplicationActions.h"
#include "Classes/WindowControllers/DataSourceTab.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/WindowDrops.h"
#include "Classes/WindowControllers/WindowMenus.h"
#include "Core/Assertions.h"
#include "MoxDocument.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/FilePanels.h"
#include "Platform/Widgets/Pictures.h"
#include "ui_MoxDocument.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>

#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize snapshotSize{920, 550};
constexpr double greatestPartOfScreen = 0.85;
constexpr int dataPaddingLeft = 30;
constexpr int paddingRight = 10;

constexpr const char* legendKeys[] = {"showLegend", "legendAlignment", "legendMargins"};

} // namespace

MoxDocumentWindow::MoxDocumentWindow(DocumentController& documents, std::unique_ptr<MoxDocument> document,
                                     QString name)
    : m_documents(documents), m_document(std::move(document)), m_name(std::move(name)),
      m_ui(std::make_unique<Ui::MoxDocument>()) {
    m_ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    m_ui->addDataSourceButton->setIcon(Pictures::icon(u"add"_qs));
    connect(m_ui->addDataSourceButton, &QToolButton::clicked, this, &MoxDocumentWindow::onAddDataSource);
    m_drops = new WindowDrops(*this, *m_ui->clientView,
                              [this](const DroppedData& dropped) { takeDropped(dropped); });
    connect(m_drops, &WindowDrops::messageChanged, this, [this](const QString& message) {
        m_dragMessage = message;
        updateStatus();
    });
    windowControllerDidLoadNib();
    m_menus = new WindowMenus(*this);
    m_menus->refresh();
    m_graphViewController->setInspectorAction(*m_menus->action("plotInspector"));
    if (const ApplicationActions* application = m_documents.application())
        connect(application, &ApplicationActions::plotInspectorVisibleChanged, this,
                &MoxDocumentWindow::commandStatesChanged);

    const QSize room = screen()->availableSize() * greatestPartOfScreen;
    resize(size().boundedTo(room));
    connect(m_document.get(), &MoxDocument::editedChanged, this, [this] {
        updateTitle();
        Q_EMIT commandStatesChanged();
    });
    updateTitle();
}

MoxDocumentWindow::~MoxDocumentWindow() {
    delete std::exchange(m_menus, nullptr); // nobody asks what can be done from here on
    m_documents.windowWillClose(*this);
    m_document->close();
    m_documents.windowCloses(*this);
    // Ending what the pages do in the background serves the main thread: what is told meanwhile tells nobody.
    m_selectedPage.end();
    m_legendKeys.end();
    for (QXTabBar* bar : {&dataSourcesTabBar(), &graphTabBar()})
        bar->disconnect(this);
    for (DataSourceTab* tab : findChildren<DataSourceTab*>())
        tab->disconnect(this);
    m_graphViewController.reset();
    // Pages refer to the document: they go before it does.
    delete takeCentralWidget();
}

void MoxDocumentWindow::windowControllerDidLoadNib() {
    QXTabBar& dataBar = dataSourcesTabBar();
    QXTabBar& graphBar = graphTabBar();
    dataBar.setClientViewForTabControllers(m_ui->clientView);
    graphBar.setClientViewForTabControllers(m_ui->clientView);
    for (const QXTabBar* bar : {&dataBar, &graphBar})
        connect(bar, &QXTabBar::selectionChanged, this, &MoxDocumentWindow::selectionChanged);

    dataBar.setDelegate(this);
    dataBar.setPaddingLeft(dataPaddingLeft);
    dataBar.setPaddingRight(paddingRight);
    const auto sources = m_document->dataSourcesManager().dataSources();
    if (sources.empty())
        addDropHereTab();
    graphBar.setPaddingRight(paddingRight);
    setUpGraphTab();
    for (const XDataSource& source : sources) {
        addTabOf(source, dataSourceTabCount());
        dataBar.selectTabWithIndex(dataSourceTabCount() - 1);
    }
    const QString link = QString::asprintf("tabbar_%p", static_cast<void*>(m_document.get()));
    dataBar.setTabBarsLinkIdentifier(link);
    graphBar.setTabBarsLinkIdentifier(link);
    graphBar.selectTabWithIndex(0);
    m_document->setWindow(this);
    m_document->finishOpening();
}

void MoxDocumentWindow::setUpGraphTab() {
    m_graphViewController = std::make_shared<XGraphViewController>();
    m_graphViewController->setDocument(m_document.get());
    graphTabBar().addTab(new QXGraphViewTab(m_graphViewController));
    connect(m_graphViewController.get(), &XGraphViewController::commandStatesChanged, this,
            &MoxDocumentWindow::commandStatesChanged);
    connect(m_graphViewController.get(), &XGraphViewController::preferencesRequested, this, [this] {
        if (ApplicationActions* application = m_documents.application())
            application->showPreferencesWindow();
    });
    const auto showLegend = [this] { m_graphViewController->setLegendVisible(m_document->showLegend()); };
    m_legendKeys = Observation(*m_document, legendKeys, [this, showLegend](const KeyChange&) {
        showLegend();
        Q_EMIT commandStatesChanged();
    });
    showLegend();
}

QXTabBar& MoxDocumentWindow::dataSourcesTabBar() const {
    return *m_ui->dataSourcesTabBar;
}

QXTabBar& MoxDocumentWindow::graphTabBar() const {
    return *m_ui->graphTabBar;
}

StatusLine& MoxDocumentWindow::statusLine() const {
    return *m_ui->statusLine;
}

void MoxDocumentWindow::setTool(QWidget* tool) {
    m_tool = tool;
    if (m_menus != nullptr)
        m_menus->setTool(tool);
}

// --- Data
// -----------------------------------------------------------------------------------------------------

void MoxDocumentWindow::onAddDataSource() {
    auto* kinds = new QMenu(m_ui->addDataSourceButton);
    kinds->setAttribute(Qt::WA_DeleteOnClose);
    kinds->addAction(Pictures::icon(u"file"_qs), tr("Text File…"), this,
                     &MoxDocumentWindow::addTextFileDatasource);
    kinds->addAction(Pictures::icon(u"editor"_qs), tr("Text Editor"), this,
                     &MoxDocumentWindow::addTextEditorDatasource);
    kinds->popup(m_ui->addDataSourceButton->mapToGlobal(QPoint(m_ui->addDataSourceButton->width(), 0)));
}

void MoxDocumentWindow::addTextFileDatasource() {
    m_document->addTextFileDatasource();
}

void MoxDocumentWindow::addTextEditorDatasource() {
    m_document->addTextEditorDatasource();
}

void MoxDocumentWindow::chooseDataFile() {
    FilePanels::shared().choose(this,
                                {.purpose = FilePanel::Purpose::OpenOne,
                                 .title = tr("Choose a Data File"),
                                 .filters = {tr("All files (*)")},
                                 .folderKey = u"DataFilesFolder"_qs,
                                 .proposedName = {},
                                 .defaultSuffix = {}},
                                [this](const QStringList& paths) {
                                    if (!paths.isEmpty())
                                        takeFile(paths.first());
                                });
}

/// A document that comes in by one of the doors of data is opened, since there are no numbers in it.
void MoxDocumentWindow::takeFile(const QString& path) {
    if (MoxDocument::isDocument(path))
        m_documents.openFile(path, this);
    else
        m_document->fileDropped(path);
}

void MoxDocumentWindow::fileDroppedOnDropzone(const QString& path, XDropHereView&) {
    takeFile(path);
}

void MoxDocumentWindow::textDroppedOnDropzone(const QString& text, XDropHereView&) {
    m_document->textDropped(text);
}

void MoxDocumentWindow::takeDropped(const DroppedData& dropped) {
    if (dropped.kind == DroppedData::Kind::File)
        takeFile(dropped.text);
    else
        m_document->textDropped(dropped.text);
}

void MoxDocumentWindow::paste() {
    m_document->pasteText(QGuiApplication::clipboard()->text());
}

void MoxDocumentWindow::onReloadData() {
    QXTabBarItem* selected = dataSourcesTabBar().selectedTab();
    if (selected == nullptr) {
        m_document->onReloadData();
        return;
    }
    const auto* tab = qobject_cast<DataSourceTab*>(selected);
    if (xAssert(tab != nullptr, "Bad plugin view controller %@", selected->title().toStdString()))
        tab->source()->read();
}

// --- Plot
// -----------------------------------------------------------------------------------------------------

void MoxDocumentWindow::insertCurveAtIndex(const XCurveHandle& curve, int index) {
    m_graphViewController->insertCurveAtIndex(curve, index);
}

void MoxDocumentWindow::removeCurveAtIndex(int index) {
    m_graphViewController->removeCurveAtIndex(index);
}

bool MoxDocumentWindow::hasTimeAxis() const {
    return dynamic_cast<const XTimeAxis*>(m_graphViewController->plotView().scene().axisX().get()) != nullptr;
}

void MoxDocumentWindow::onAddCurve() {
    m_graphViewController->onAddCurve();
    if (!isPlotSelected())
        graphTabBar().selectTabWithIndex(0);
}

void MoxDocumentWindow::onFitToData() {
    if (isPlotSelected())
        m_graphViewController->fitToData();
}

void MoxDocumentWindow::onPrepareToSnapshot() {
    if (isMaximized() || isFullScreen())
        showNormal();
    resize(snapshotSize);
    update();
}

void MoxDocumentWindow::documentWillClose() {
    m_legendKeys.end();
    m_graphViewController->setDocument(nullptr);
}

// --- Status line
// ----------------------------------------------------------------------------------------------

void MoxDocumentWindow::showMessage(const QString& message) {
    m_news = message;
    if (m_dragMessage.isEmpty())
        statusLine().setMessage(message);
}

void MoxDocumentWindow::replaceMessage(const QString& before, const QString& now) {
    if (m_news == before && statusLine().message() == before)
        showMessage(now);
}

/// What was read well does not hide what was not.
void MoxDocumentWindow::newsCame(const QString& news) {
    for (const QXTabBarItem* tab : dataSourcesTabBar().tabs()) {
        const XViewController* page = tab->viewController().get();
        if (page != nullptr && !page->fault().isEmpty())
            return showMessage(page->fault());
    }
    showMessage(news);
}

void MoxDocumentWindow::statusChanged(const KeyChange& change) {
    if (change.oldValue == change.newValue)
        return;
    if (change.key == std::string_view("readouts"))
        updateReadouts();
    else
        updateStatus();
}

void MoxDocumentWindow::updateReadouts() const {
    const XViewController* page = selectedPage();
    Readouts readouts = page != nullptr ? page->readouts() : Readouts();
    if (isDropTabSelected())
        readouts = {{QString(), tr("Ctrl+V adds text from the clipboard")}};
    statusLine().setReadouts(readouts);
}

void MoxDocumentWindow::updateStatus() {
    updateReadouts();
    const XViewController* page = selectedPage();
    const bool isEmpty = m_document->dataSourcesManager().dataSources().empty();
    const QString said = isEmpty ? tr("No data source yet") : page != nullptr ? page->status() : QString();
    statusLine().setMessage(!m_dragMessage.isEmpty() ? m_dragMessage : said.isEmpty() ? m_news : said);
}
