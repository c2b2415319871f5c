// What a document's window may ask of the application around it.
#pragma once

#include <QObject>

class QWidget;

/// Implemented by the application's delegate; windows without one (tests) have these commands disabled. Main
/// thread.
class ApplicationActions : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    virtual void onAboutPanel() = 0;
    virtual void showPreferencesWindow() = 0;

    virtual bool plotInspectorVisible() const = 0;
    virtual void setPlotInspectorVisible(bool visible) = 0;

    virtual void openCommunityForum() = 0;
    virtual void openCommunityForumBugReport() = 0;
    virtual void openCommunityForumFeatureRequest() = 0;

    /// Tells what it found over `from`.
    virtual void checkForUpdates(QWidget* from) = 0;

  Q_SIGNALS:
    void plotInspectorVisibleChanged(bool visible);
};
