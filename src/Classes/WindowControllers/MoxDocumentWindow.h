// The window of one document: the tabs of its data sources, the tab of its plot, menus and the status line.
#pragma once

#include "Classes/DropHere/XDropHereDelegate.h"
#include "Classes/TabBar/QXTabBarDelegate.h"
#include "DocumentWindow.h"
#include "Platform/Core/Observable.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>

class DataSourceTab;
class DocumentController;
class PendingEdits;
class MoxDocument;
class QXNewSourceTabBarItem;
class QXTabBar;
class QXTabBarItem;
class StatusLine;
class WindowDrops;
class WindowMenus;
class XGraphViewController;
class XViewController;
struct DroppedData;

namespace Ui {
class MoxDocument;
}

/// Owns its document; closing the window closes both, in the middle of a read, too. Deletes itself when it is
/// closed.
class MoxDocumentWindow : public QMainWindow,
                          public DocumentWindow,
                          private XDropHereDelegate,
                          private QXTabBarDelegate {
    Q_OBJECT

  public:
    using Answer = std::function<void(bool)>;

    /// `name` stands for the document until it is saved.
    MoxDocumentWindow(DocumentController& documents, std::unique_ptr<MoxDocument> document, QString name);
    ~MoxDocumentWindow() override;

    MoxDocument& document() const { return *m_document; }
    DocumentController& documents() const { return m_documents; }
    XGraphViewController& graphViewController() const { return *m_graphViewController; }
    QXTabBar& dataSourcesTabBar() const;
    QXTabBar& graphTabBar() const;
    StatusLine& statusLine() const;
    WindowMenus& menus() const { return *m_menus; }

    /// The name of the document's file, or what stands for it.
    QString documentName() const;
    /// Without file, data, curves and changes: opening another document may take its place.
    bool isUntouched() const;
    bool isPlotSelected() const;
    /// Of the selected tab of either bar; null when none is selected or it has no page.
    XViewController* selectedPage() const;
    bool isDropTabSelected() const;
    bool isDataSourceTabSelected() const;
    bool hasTimeAxis() const;

    // What menus and buttons do.
    void onAddDataSource();
    void addTextFileDatasource();
    void addTextEditorDatasource();
    void closeSelectedTab();
    void paste();
    void onReloadData();
    void onAddCurve();
    void onFitToData();
    /// The size that pictures of the window have by custom; the origin stays.
    void onPrepareToSnapshot();
    void selectNextTab(int step) const;
    void save(const Answer& saved = {});
    void saveAs(const Answer& saved = {});
    /// Takes what was typed and waits: the focused field's text, and what pages hold back.
    void commitPendingEdits();
    /// Takes of what waits only what its user, who may be typing, does not notice.
    void handOverQuietly();
    /// Asks whether changes are to be saved, and saves them; answers whether the window may close.
    void canCloseDocument(const Answer& shouldClose);
    void bringToFront();
    /// A window that edits this one's document: this one's commands work there by their keys, and what was
    /// typed there is taken along. Null ends it.
    void setTool(QWidget* tool);
    /// Closes without asking; for those who asked.
    void closeNow();

    /// Says something in the status line until the next thing is said there.
    void showMessage(const QString& message);
    /// Puts `now` in the place of a message that does not hold any more, if that still stands there.
    void replaceMessage(const QString& before, const QString& now);

    // DocumentWindow
    int dataSourceTabCount() const override;
    void insertDataSourceTab(const XDataSource& dataSource, int index) override;
    void removeDataSourceTab(const XDataSource& dataSource) override;
    void removeTabsWithoutSource() override;
    void addDropHereTab() override;
    void removeDropHereTab() override;
    void selectDataSourceTab(int index) override;
    void insertCurveAtIndex(const XCurveHandle& curve, int index) override;
    void removeCurveAtIndex(int index) override;
    void fitToData() override { onFitToData(); }
    void documentWillClose() override;

  Q_SIGNALS:
    /// Something changed on which the state of a command depends.
    void commandStatesChanged();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void fileDroppedOnDropzone(const QString& path, XDropHereView& dropzone) override;
    void textDroppedOnDropzone(const QString& text, XDropHereView& dropzone) override;
    bool tabBarWillCloseTabWithIndex(QXTabBar& bar, int index) override;
    void tabBarDidCloseTabWithIndex(QXTabBar& bar, int index) override;

    void windowControllerDidLoadNib();
    void setUpGraphTab();
    void addTabOf(const XDataSource& dataSource, int index);
    DataSourceTab* tabOf(const XDataSource& dataSource) const;
    void takeFile(const QString& path);
    void takeDropped(const DroppedData& dropped);
    void chooseDataFile();
    void selectionChanged();
    void newsCame(const QString& news);
    void updateTitle();
    void updateStatus();
    void updateReadouts() const;
    void statusChanged(const KeyChange& change);
    void askToSave(const Answer& mayGoOn);
    void saveTo(const QString& path, const Answer& saved);
    void forEachPageWithEdits(const std::function<void(PendingEdits&)>& act) const;
    void askToOverwrite(const Answer& saved);
    void tellNotSaved(const QString& path, const QString& reason, const Answer& saved);

    DocumentController& m_documents;
    std::unique_ptr<MoxDocument> m_document;
    const QString m_name;
    std::unique_ptr<Ui::MoxDocument> m_ui;
    std::shared_ptr<XGraphViewController> m_graphViewController;
    WindowMenus* m_menus = nullptr;
    QPointer<QWidget> m_tool;
    WindowDrops* m_drops = nullptr;
    QXNewSourceTabBarItem* m_dropHereTab = nullptr;
    XDataSource m_closingSource; ///< whose tab the tab bar is about to close
    Observation m_legendKeys;
    Observation m_selectedPage;
    QString m_news; ///< what was last said of data
    QString m_dragMessage;
    bool m_mayClose = false;
    bool m_isAsking = false;
};
