// Start-up, and the windows and pages that menus ask for.
#include "ApplicationDelegate.h"

#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "Classes/WindowControllers/StatusLine.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/DesktopOpening.h"
#include "Product.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// One by one, so that what the user has chosen stays. No profile is sent, whatever its key says.
void writeMissingDefaults() {
    UserDefaults& defaults = UserDefaults::standard();
    const std::pair<QString, QVariant> rows[] = {
        {UpdateController::automaticChecksKey(), 1},
        {u"SUSendProfileInfo"_qs, 1},
        {u"SnapshotsDirType"_qs, 2},
        {u"SnapshotsDir"_qs, QString()},
        {u"SnapshotsFormat"_qs, 0},
    };
    for (const auto& [key, value] : rows) {
        if (!defaults.contains(key))
            defaults.set(key, value);
    }
}

} // namespace

ApplicationDelegate::ApplicationDelegate(UpdateController::Configuration updates, QObject* parent)
    : ApplicationActions(parent), m_updatesConfiguration(std::move(updates)) {
    m_documents.setApplication(this);
}

ApplicationDelegate::~ApplicationDelegate() {
    m_documents.setApplication(nullptr);
}

void ApplicationDelegate::applicationDidFinishLaunching() {
    m_safety = std::make_unique<DocumentSafety>(m_documents);
    m_updates = std::make_unique<UpdateController>(m_updatesConfiguration, [this] { return frontWindow(); });
    writeMissingDefaults();
    setPlotInspectorVisible(false);
    m_updates->startAutomaticChecks();
}

void ApplicationDelegate::onAboutPanel() {
    if (m_controller == nullptr)
        m_controller = std::make_unique<AboutWindowController>();
    m_controller->makeKeyAndOrderFront();
}

void ApplicationDelegate::showPreferencesWindow() {
    if (m_pwc == nullptr)
        m_pwc = std::make_unique<PreferencesWindowController>(!m_updatesConfiguration.feed.isEmpty());
    m_pwc->makeKeyAndOrderFront();
}

void ApplicationDelegate::setPlotInspectorVisible(bool visible) {
    if (visible == m_plotInspectorVisible)
        return;
    m_plotInspectorVisible = visible;
    if (visible && m_plotInspector == nullptr) {
        m_plotInspector = std::make_unique<XPlotInspectorWindowController>(m_documents);
        connect(m_plotInspector.get(), &XPlotInspectorWindowController::closed, this,
                [this] { setPlotInspectorVisible(false); });
    }
    if (visible)
        m_plotInspector->show();
    else if (m_plotInspector != nullptr)
        m_plotInspector->window()->close();
    Q_EMIT plotInspectorVisibleChanged(visible);
}

void ApplicationDelegate::openCommunityForum() {
    openWebPage(Product::forum);
}

void ApplicationDelegate::openCommunityForumBugReport() {
    openWebPage(Product::bugReports);
}

void ApplicationDelegate::openCommunityForumFeatureRequest() {
    openWebPage(Product::featureRequests);
}

void ApplicationDelegate::openWebPage(const char* page) {
    DesktopOpening::openWebPage(QUrl(QLatin1String(page)), frontWindow());
}

/// Right after the start none is the main one yet.
QWidget* ApplicationDelegate::frontWindow() const {
    if (MoxDocumentWindow* window = m_documents.mainWindow())
        return window;
    return m_documents.windows().isEmpty() ? nullptr : m_documents.windows().first();
}

void ApplicationDelegate::checkForUpdates(QWidget* from) {
    m_updates->checkForUpdates(from);
    auto* window = qobject_cast<MoxDocumentWindow*>(from);
    if (window != nullptr && m_updates->isChecking())
        sayWhileChecking(*window);
}

/// A slow server takes its time.
void ApplicationDelegate::sayWhileChecking(MoxDocumentWindow& window) {
    const QString said = tr("Looking for a new version…");
    const QString before = window.statusLine().message();
    if (before == said)
        return;
    window.showMessage(said);
    const auto takeBack = [&window, said, before] {
        if (window.statusLine().message() == said)
            window.showMessage(before);
    };
    connect(m_updates.get(), &UpdateController::checkEnded, &window, takeBack, Qt::SingleShotConnection);
}
