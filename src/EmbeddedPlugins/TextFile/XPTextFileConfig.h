// The settings view of a text file: which file, how to split it, what came of it, what to do about it.
#pragma once

#include "EmbeddedPlugins/Common/SourceNotices.h"
#include "EmbeddedPlugins/Common/SourcePage.h"

#include <QPointer>
#include <QString>

#include <memory>
#include <set>

class NoticeBar;
class QComboBox;

namespace Ui {
class XPTextFileConfig;
}

/// Every change of a setting reads the file again; the file's name is only ever changed by the user.
class XPTextFileConfig : public SourcePage {
    Q_OBJECT

  public:
    explicit XPTextFileConfig(QObject* parent = nullptr);
    ~XPTextFileConfig() override;

    /// Shows and observes a source from now on.
    void setPlugin(XPTextFile* plugin);
    /// Ties the controls; called once, by the constructor.
    void awakeFromNib();

    QComboBox* filenameCombobox() const;
    QWidget* parsedDataBox() const;
    NoticeBar* noticeBar() const;

    /// Lets the user choose a file, in a panel that does not block.
    void onBrowse();
    /// Shows the preview anew, without reading.
    void onReload();

    /// A page without a file waits for its name.
    void onBecameVisible() override;

  protected:
    void observeValueForKeyPath(const KeyChange& change) override;
    QString emptyText() const override;
    QString surveyedPath() const override;
    void surveyChanged() override;

  private:
    void bindControls();
    void updateRecentFiles();
    void chooseFilename(const QString& path);
    void fileChanged(const KeyChange& change);
    void updateNotices();
    const SourceNotice* shownNotice() const; ///< null without one
    void showNotice();
    void onNoticeAction();

    std::unique_ptr<Ui::XPTextFileConfig> m_ui;
    SourceFacts m_facts;
    QList<SourceNotice> m_notices; ///< that hold
    std::set<NoticeKind> m_dismissed;
    bool m_isChoosing = false; ///< a file panel is open
    Observation m_changeOnDisk;
};
