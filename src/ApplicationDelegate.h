// The application around the documents: start-up, and the windows that belong to no document.
#pragma once

#include "Classes/WindowControllers/ApplicationActions.h"
#include "Classes/WindowControllers/DocumentController.h"

/// Owns the document controller. Main thread.
class ApplicationDelegate : public ApplicationActions {
    Q_OBJECT

  public:
    explicit ApplicationDelegate(QObject* parent = nullptr);
    ~ApplicationDelegate() override;

    DocumentController& documents() { return m_documents; }

    /// Called once, before the first document opens.
    void applicationDidFinishLaunching();

    void onAboutPanel() override;
    void showPreferencesWindow() override;

    bool plotInspectorVisible() const override { return m_plotInspectorVisible; }
    void setPlotInspectorVisible(bool visible) override;

    void openCommunityForum() override;
    void openCommunityForumBugReport() override;
    void openCommunityForumFeatureRequest() override;

    void checkForUpdates(QWidget* from) override;

  private:
    DocumentController m_documents;
    bool m_plotInspectorVisible = false;
};
