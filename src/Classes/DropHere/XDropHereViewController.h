// The page of a document without data: the drop zone, buttons for those who do not drag, recent files.
#pragma once

#include "Platform/Core/XViewController.h"

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <memory>

class XDropHereDelegate;
class XDropHereView;

namespace Ui {
class XDropHereViewController;
}

/// The document is the drop zone's delegate; a chosen recent file reaches it as a dropped one does.
class XDropHereViewController : public XViewController {
    Q_OBJECT

  public:
    explicit XDropHereViewController(XDropHereDelegate* document, QObject* parent = nullptr);
    ~XDropHereViewController() override;

    QWidget* view() override { return m_view; }
    void onBecameVisible() override;

    XDropHereDelegate* document() const { return m_document; }
    void setDocument(XDropHereDelegate* document);
    XDropHereView* dropzone() const;

    /// Paths, the latest first; the first five are shown.
    void setRecentFiles(const QStringList& paths);

  Q_SIGNALS:
    void chooseFileRequested();
    void typeOrPasteRequested();

  private:
    XDropHereDelegate* m_document;
    std::unique_ptr<Ui::XDropHereViewController> m_ui;
    QPointer<QWidget> m_view; ///< goes with the widget that shows it, if that goes first
};
