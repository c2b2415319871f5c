#include "ApplicationDelegate.h"

#include "Product.h"

#include <QDesktopServices>
#include <QUrl>

ApplicationDelegate::ApplicationDelegate(QObject* parent) : ApplicationActions(parent) {
    m_documents.setApplication(this);
}

ApplicationDelegate::~ApplicationDelegate() {
    m_documents.setApplication(nullptr);
}

void ApplicationDelegate::applicationDidFinishLaunching() {
    setPlotInspectorVisible(false);
}

void ApplicationDelegate::onAboutPanel() {}

void ApplicationDelegate::showPreferencesWindow() {}

void ApplicationDelegate::setPlotInspectorVisible(bool visible) {
    if (visible == m_plotInspectorVisible)
        return;
    m_plotInspectorVisible = visible;
    Q_EMIT plotInspectorVisibleChanged(visible);
}

void ApplicationDelegate::openCommunityForum() {
    QDesktopServices::openUrl(QUrl(QLatin1String(Product::forum)));
}

void ApplicationDelegate::openCommunityForumBugReport() {
    QDesktopServices::openUrl(QUrl(QLatin1String(Product::bugReports)));
}

void ApplicationDelegate::openCommunityForumFeatureRequest() {
    QDesktopServices::openUrl(QUrl(QLatin1String(Product::featureRequests)));
}

void ApplicationDelegate::checkForUpdates(QWidget*) {}
