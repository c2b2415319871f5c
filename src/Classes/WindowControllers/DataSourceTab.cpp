// Follows a source and its page, and says on the tab what is wrong with them.
#include "Classes/WindowControllers/DataSourceTab.h"

#include "EmbeddedPlugins/TextFile/InputFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"

#include <QFileInfo>

#include <array>
#include <string_view>
#include <utility>

namespace {

constexpr std::array<const char*, 2> sourceKeys{"filename", "readError"};
constexpr std::array<const char*, 2> pageKeys{"fault", "status"};

/// The settings view refers to its source, which therefore goes after it.
QXTabBarItem::Controller makePage(const XDataSource& source) {
    std::unique_ptr<XViewController> page = source->configViewController();
    if (page == nullptr)
        return nullptr;
    return {page.release(), [source](XViewController* controller) { delete controller; }};
}

} // namespace

DataSourceTab::DataSourceTab(const XDataSource& source) : QXTabBarItem(makePage(source)), m_source(source) {
    m_sourceKeys =
        Observation(*source, sourceKeys, [this](const KeyChange& change) { sourceChanged(change); });
    takeFilename();
    if (viewController() == nullptr)
        return;
    m_page = Observation(*viewController(), pageKeys, [this](const KeyChange& change) {
        if (change.key == std::string_view("fault"))
            takeFault();
        else if (!viewController()->status().isEmpty() && viewController()->fault().isEmpty())
            takeStatus();
    });
    takeFault();
}

void DataSourceTab::sourceChanged(const KeyChange& change) {
    if (change.key == std::string_view("filename"))
        return takeFilename();
    const auto* file = qobject_cast<const XPTextFile*>(m_source.get());
    const QString& reason = m_source->readError();
    if (file == nullptr || reason.isEmpty())
        return;
    // A file that is gone or closed to us was not begun: its page says so.
    const QFileInfo info(file->path());
    if (file->filename().isEmpty() || (info.isFile() && info.isReadable()))
        Q_EMIT readWasGivenUp(reason);
}

/// A file that is read twice a second is no news, but what was said of it before has to stay true.
void DataSourceTab::takeStatus() {
    const auto* file = qobject_cast<const XPTextFile*>(m_source.get());
    const QString before = std::exchange(m_news, viewController()->status());
    if (file != nullptr && file->isReadByItself())
        Q_EMIT newsOutdated(before, m_news);
    else
        Q_EMIT newsCame(m_news);
}

void DataSourceTab::takeFilename() {
    const auto* file = qobject_cast<const XPTextFile*>(m_source.get());
    setToolTip(file == nullptr ? QString() : file->filename());
}

void DataSourceTab::takeFault() {
    const QString& fault = viewController()->fault();
    setFault(fault);
    if (!fault.isEmpty())
        Q_EMIT newsCame(fault);
}
