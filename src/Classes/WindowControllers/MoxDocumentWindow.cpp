// Sets the window up and keeps its tabs in step with the document.
#include "Classes/WindowControllers/MoxDocumentWindow.h"

#include "Classes/Axes/XTimeAxis.h"
#include "Classes/DropHere/DroppedData.h"
#include "Classes/DropHere/XDropHereView.h"
#include "Classes/DropHere/XDropHereViewController.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/TabBar/QXGraphViewTab.h"
#include "Classes/TabBar/QXNewSourceTabBarItem.h"
#include "Classes/TabBar/QXTabBar.h"
#include "Classes/WindowControllers/ApplicationActions.h"
#include "Classes/WindowControllers/DataSourceTab.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/WindowDrops.h"
#include "Classes/WindowControllers/WindowMenus.h"
#include "Core/Assertions.h"
#include "MoxDocument.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/FilePanels.h"
#include "Platform/Widgets/Pictures.h"
#include "ui_MoxDocument.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QScreen>

#include <algorithm>
#include <string_view>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize snapshotSize{920, 550};
constexpr double greatestPartOfScreen = 0.85;
constexpr int dataPaddingLeft = 30;
constexpr int paddingRight = 10;

constexpr const char* legendKeys[] = {"showLegend", "legendAlignment", "legendMargins"};
constexpr const char* statusKeys[] = {"status", "readouts"};

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

// --- Tabs
// -----------------------------------------------------------------------------------------------------

int MoxDocumentWindow::dataSourceTabCount() const {
    return static_cast<int>(dataSourcesTabBar().tabs().size()) - (m_dropHereTab != nullptr ? 1 : 0);
}

DataSourceTab* MoxDocumentWindow::tabOf(const XDataSource& dataSource) const {
    for (QXTabBarItem* each : dataSourcesTabBar().tabs()) {
        auto* tab = qobject_cast<DataSourceTab*>(each);
        if (tab != nullptr && tab->source() == dataSource)
            return tab;
    }
    return nullptr;
}

void MoxDocumentWindow::addTabOf(const XDataSource& dataSource, int index) {
    auto* tab = new DataSourceTab(dataSource);
    connect(tab, &DataSourceTab::newsCame, this, &MoxDocumentWindow::newsCame);
    connect(tab, &DataSourceTab::newsOutdated, this, &MoxDocumentWindow::replaceMessage);
    connect(tab, &DataSourceTab::readWasGivenUp, this, [this, dataSource](const QString& reason) {
        const QString sentence = DocumentController::asSentence(reason);
        const QString kept = tr("The data read before are kept.");
        Alerts::shared().tell(this, tr("“%1” was not read to the end.").arg(dataSource->title()),
                              dataSource->data() != nullptr ? sentence + u' ' + kept : sentence);
    });
    dataSourcesTabBar().insertTabAtIndex(tab, index);
}

void MoxDocumentWindow::insertDataSourceTab(const XDataSource& dataSource, int index) {
    addTabOf(dataSource, index);
    dataSourcesTabBar().selectTabWithIndex(index);
}

void MoxDocumentWindow::removeDataSourceTab(const XDataSource& dataSource) {
    if (DataSourceTab* tab = tabOf(dataSource))
        dataSourcesTabBar().removeTab(tab);
}

void MoxDocumentWindow::removeTabsWithoutSource() {
    const auto sources = m_document->dataSourcesManager().dataSources();
    const std::vector<QXTabBarItem*> tabs = dataSourcesTabBar().tabs();
    for (QXTabBarItem* each : tabs) {
        const auto* tab = qobject_cast<DataSourceTab*>(each);
        if (tab != nullptr && std::find(sources.begin(), sources.end(), tab->source()) == sources.end())
            dataSourcesTabBar().removeTab(each);
    }
}

void MoxDocumentWindow::addDropHereTab() {
    auto page = std::make_shared<XDropHereViewController>(static_cast<XDropHereDelegate*>(this));
    connect(page.get(), &XDropHereViewController::chooseFileRequested, this,
            &MoxDocumentWindow::chooseDataFile);
    connect(page.get(), &XDropHereViewController::typeOrPasteRequested, this,
            &MoxDocumentWindow::addTextEditorDatasource);
    m_dropHereTab = new QXNewSourceTabBarItem(std::move(page));
    dataSourcesTabBar().addTab(m_dropHereTab);
}

void MoxDocumentWindow::removeDropHereTab() {
    if (QXNewSourceTabBarItem* tab = std::exchange(m_dropHereTab, nullptr))
        dataSourcesTabBar().removeTab(tab);
}

void MoxDocumentWindow::selectDataSourceTab(int index) {
    dataSourcesTabBar().selectTabWithIndex(index);
}

bool MoxDocumentWindow::tabBarWillCloseTabWithIndex(QXTabBar& bar, int index) {
    const auto* tab = qobject_cast<DataSourceTab*>(bar.tabWithIndex(index));
    const XDataSource source = tab != nullptr ? tab->source() : nullptr;
    const QPointer<MoxDocumentWindow> self(this);
    const int answer = Alerts::shared().askAndWait(
        this, {Alert::Kind::Question,
               tr("Delete datasource"),
               tr("The datasource will be deleted"),
               {{tr("OK"), Alert::Role::Accept}, {tr("Cancel"), Alert::Role::Cancel}}});
    if (self == nullptr)
        return false;
    m_document->setDontDeleteTab(true); // Kept: after a cancelled close, too, until the next one that happens
    m_closingSource = answer == 0 ? source : nullptr;
    return answer == 0;
}

void MoxDocumentWindow::tabBarDidCloseTabWithIndex(QXTabBar&, int) {
    const auto sources = m_document->dataSourcesManager().dataSources();
    const auto found = std::find(sources.begin(), sources.end(), std::exchange(m_closingSource, nullptr));
    if (found != sources.end()) // else its source went before the tab did
        m_document->removeDataSourceAtIndex(static_cast<int>(found - sources.begin()));
    m_document->setDontDeleteTab(false);
}

void MoxDocumentWindow::closeSelectedTab() {
    QXTabBarItem* tab = dataSourcesTabBar().selectedTab();
    if (tab != nullptr && tab != m_dropHereTab)
        tab->onClose();
}

void MoxDocumentWindow::selectNextTab(int step) const {
    const auto dataTabs = static_cast<int>(dataSourcesTabBar().tabs().size());
    const int count = dataTabs + static_cast<int>(graphTabBar().tabs().size());
    const int current = isPlotSelected() ? dataTabs : std::max(0, dataSourcesTabBar().selectedIndex());
    const int next = (current + step + count) % count;
    if (next < dataTabs)
        dataSourcesTabBar().selectTabWithIndex(next);
    else
        graphTabBar().selectTabWithIndex(next - dataTabs);
}

bool MoxDocumentWindow::isPlotSelected() const {
    return graphTabBar().selectedTab() != nullptr;
}

bool MoxDocumentWindow::isDropTabSelected() const {
    return m_dropHereTab != nullptr && dataSourcesTabBar().selectedTab() == m_dropHereTab;
}

bool MoxDocumentWindow::isDataSourceTabSelected() const {
    return dataSourcesTabBar().selectedTab() != nullptr && !isDropTabSelected();
}

XViewController* MoxDocumentWindow::selectedPage() const {
    const QXTabBarItem* tab =
        isPlotSelected() ? graphTabBar().selectedTab() : dataSourcesTabBar().selectedTab();
    return tab != nullptr ? tab->viewController().get() : nullptr;
}

void MoxDocumentWindow::selectionChanged() {
    if (isDropTabSelected()) {
        auto& page = static_cast<XDropHereViewController&>(*m_dropHereTab->viewController());
        page.setRecentFiles(UserDefaults::standard().stringList(u"TextFilePluginRecentFiles"_qs));
    }
    m_selectedPage.end();
    if (XViewController* page = selectedPage())
        m_selectedPage =
            Observation(*page, statusKeys, [this](const KeyChange& change) { statusChanged(change); });
    // A page that was just put into the window comes last for the keyboard, but for the status line.
    QWidget* last = previousInFocusChain();
    if (!statusLine().isAncestorOf(last))
        setTabOrder(last, statusLine().messageLabel());
    updateStatus();
    Q_EMIT commandStatesChanged();
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
