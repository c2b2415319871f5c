// The window's tabs: in step with the document's sources, closed with a question, one after the other by
// keys.
#include "Classes/WindowControllers/MoxDocumentWindow.h"

#include "Classes/DropHere/XDropHereViewController.h"
#include "Classes/TabBar/QXNewSourceTabBarItem.h"
#include "Classes/TabBar/QXTabBar.h"
#include "Classes/WindowControllers/DataSourceTab.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/StatusLine.h"
#include "MoxDocument.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Alerts.h"

#include <QLabel>
#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr const char* statusKeys[] = {"status", "readouts"};

} // namespace

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
