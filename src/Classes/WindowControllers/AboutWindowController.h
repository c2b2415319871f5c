// The window that tells which program and version this is.
#pragma once

#include "Classes/WindowControllers/XWindowController.h"

#include <memory>

class QLabel;
class XHrefButton;

namespace Ui {
class AboutWindowController;
}

class AboutWindowController : public XWindowController {
    Q_OBJECT

  public:
    explicit AboutWindowController(QObject* parent = nullptr);
    ~AboutWindowController() override;

    QLabel* versionLabel() const;
    XHrefButton* siteLinkButton() const;
    XHrefButton* forumLinkButton() const;

    void onSiteLink();
    void onForumLink();

  private:
    void awakeFromNib();

    std::unique_ptr<Ui::AboutWindowController> m_ui;
};
