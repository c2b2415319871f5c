// The plot inspector: titles, axes and legend of the document that is in front.
#pragma once

#include "Classes/WindowControllers/XWindowController.h"
#include "MoxDocument.h"
#include "Platform/Core/NotificationCenter.h"

#include <QPoint>
#include <QPointer>
#include <QRect>

#include <memory>
#include <optional>
#include <vector>

class DocumentController;
class MoxDocumentWindow;

namespace Ui {
class XPlotInspectorWindow;
}

/// A tool window, and not itself a main one: it goes on showing its document while it has the keyboard, and
/// the commands' keys of that document's window work in it. Must not outlive `documents`.
class XPlotInspectorWindowController : public XWindowController {
    Q_OBJECT
    Q_PROPERTY(MoxDocument* currentDocument READ currentDocument WRITE setCurrentDocument)

  public:
    explicit XPlotInspectorWindowController(DocumentController& documents, QObject* parent = nullptr);
    ~XPlotInspectorWindowController() override;

    /// The active document; null: none, and all controls are empty and disabled.
    MoxDocument* currentDocument() const { return m_currentDocument; }
    /// What was typed before and waits still goes to the document it was typed for.
    void setCurrentDocument(MoxDocument* document);

    /// Beside the document's window the first time, later where it was left.
    void show();

    /// Where a tool with a frame of that size stands beside a document's: to its right, to its left or, where
    /// neither has room, over it at the screen's edge; always on the screen, if that is large enough.
    static QPoint placeBeside(const QRect& documentFrame, QSize frame, const QRect& screen);

  Q_SIGNALS:
    /// By the program or by the user.
    void closed();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void awakeFromNib();
    void documentBecomeActive(QObject* object);
    void documentBecomeInactive(QObject* object);
    void bindControls();
    void emptyControls();
    void tellRefusal(const QString& reason);
    void fitToContent();

    DocumentController& m_documents;
    std::unique_ptr<Ui::XPlotInspectorWindow> m_ui;
    std::vector<NotificationCenter::Registration> m_registrations;
    QPointer<MoxDocument> m_currentDocument;
    QPointer<MoxDocumentWindow> m_documentWindow; ///< of the current document
    QString m_refusal;                            ///< that was told last
    QPointer<QWidget> m_lastFocus;                ///< before there was no document
    std::optional<QPoint> m_lastPlace;            ///< of the content, on the screen
};
