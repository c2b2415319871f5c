// The application around the documents: start-up, and the windows that belong to no document.
#pragma once

#include "Classes/Recovery/DocumentSafety.h"
#include "Classes/Updates/UpdateController.h"
#include "Classes/WindowControllers/AboutWindowController.h"
#include "Classes/WindowControllers/ApplicationActions.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/PreferencesWindowController.h"
#include "Classes/WindowControllers/XPlotInspectorWindowController.h"

#include <memory>

/// Owns the document controller. Main thread.
class ApplicationDelegate : public ApplicationActions {
    Q_OBJECT

  public:
    explicit ApplicationDelegate(
        UpdateController::Configuration updates = UpdateController::productConfiguration(),
        QObject* parent = nullptr);
    ~ApplicationDelegate() override;

    DocumentController& documents() { return m_documents; }
    AboutWindowController* controller() const { return m_controller.get(); } ///< null before it was asked for
    PreferencesWindowController* pwc() const { return m_pwc.get(); }         ///< the same
    XPlotInspectorWindowController* plotInspector() const { return m_plotInspector.get(); } ///< the same

    /// Called once, before the first document opens. Writes the defaults of settings that are not there yet.
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
    void openWebPage(const char* page);
    QWidget* frontWindow() const;
    void sayWhileChecking(MoxDocumentWindow& window);

    const UpdateController::Configuration m_updatesConfiguration;
    DocumentController m_documents;
    std::unique_ptr<DocumentSafety> m_safety;    ///< from the end of launching on; goes before the documents
    std::unique_ptr<UpdateController> m_updates; ///< from the end of launching on
    std::unique_ptr<AboutWindowController> m_controller;
    std::unique_ptr<PreferencesWindowController> m_pwc;
    std::unique_ptr<XPlotInspectorWindowController> m_plotInspector;
    bool m_plotInspectorVisible = false;
};
