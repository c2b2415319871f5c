// The open documents: making and opening them, the recent ones, quitting.
#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <set>

class ApplicationActions;
class MoxDocument;
class MoxDocumentWindow;
class QWidget;

/// Outlives the windows that it makes. Main thread.
class DocumentController : public QObject {
    Q_OBJECT

  public:
    explicit DocumentController(QObject* parent = nullptr);
    /// Windows that are left go without a question.
    ~DocumentController() override;

    /// The user default that remembers the folder of documents.
    static QString folderKey();
    /// A reason for an alert: with a capital letter and a full stop.
    static QString asSentence(QString reason);
    /// Says over `from`, which may be null, why a file was not opened.
    static void tellNotOpened(QWidget* from, const QString& path, const QString& reason);
    /// "14:02", with the day in front when that was not today.
    static QString timeOf(const QDateTime& moment);

    /// Null while there is no application around the documents. Not owned.
    ApplicationActions* application() const { return m_application; }
    void setApplication(ApplicationActions* application) { m_application = application; }

    const QList<MoxDocumentWindow*>& windows() const { return m_windows; }
    /// The document window that is or was in front last: dialogs, tools and other programs do not change it.
    /// Null when there is none.
    MoxDocumentWindow* mainWindow() const { return m_mainWindow; }
    /// The window of that file's document, if it is open.
    MoxDocumentWindow* windowOfFile(const QString& path) const;

    MoxDocumentWindow& newDocument();
    /// Shows a document's window. `name` stands for a document without a file; empty for "Untitled".
    /// An untouched `instead` closes, and the new window takes its place.
    MoxDocumentWindow& showDocument(std::unique_ptr<MoxDocument> document, const QString& name = {},
                                    MoxDocumentWindow* instead = nullptr);
    /// Asks for files and opens each.
    void openWithPanel(MoxDocumentWindow& from);
    /// A document's file opens as one document, however often it is asked for; any other becomes the data
    /// source of a new one. What cannot be opened is told over `from`, which may be null.
    void openFile(const QString& path, MoxDocumentWindow* from);

    /// The latest first.
    QStringList recentDocuments() const;
    void noteRecentDocument(const QString& path) const;
    void clearRecentDocuments() const;

    /// Asks for every changed document, one after the other; "Cancel" ends it with every window open.
    void quit();

    /// For windows alone: another one may be in front; the one in front is announced again if `anew`.
    void mainWindowMayHaveChanged(bool anew = false);
    void windowWillClose(MoxDocumentWindow& window); ///< its document is still whole
    void windowCloses(MoxDocumentWindow& window);

  Q_SIGNALS:
    void documentShown(MoxDocumentWindow& window);
    /// Emitted while the document is still whole; it goes afterwards.
    void documentWillClose(MoxDocumentWindow& window);
    /// Another document window is in front; null when none is.
    void mainWindowChanged(MoxDocumentWindow* window);
    /// The program ends: every window has agreed, and closes next.
    void willQuit();

  private:
    QString untitledName() const;
    void setMainWindow(MoxDocumentWindow* window);
    void askNextToClose();

    ApplicationActions* m_application = nullptr;
    QList<MoxDocumentWindow*> m_windows;
    QList<QPointer<MoxDocumentWindow>> m_closedWindows; ///< wait to be deleted
    QList<MoxDocumentWindow*> m_frontOrder;             ///< those that were in front, the latest last
    MoxDocumentWindow* m_mainWindow = nullptr;
    std::optional<std::set<const MoxDocumentWindow*>> m_mayClose; ///< while quitting: who has answered
    const MoxDocumentWindow* m_asked = nullptr; ///< while quitting: whose answer is waited for
};
