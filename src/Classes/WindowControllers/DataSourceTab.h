// The tab of a data source.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Classes/TabBar/QXTabBarItem.h"

#include <functional>

/// Shows the source's settings view and its faults. Keeps its source alive, since the view edits it.
class DataSourceTab : public QXTabBarItem {
    Q_OBJECT

  public:
    explicit DataSourceTab(const XDataSource& source);

    const XDataSource& source() const { return m_source; }

  Q_SIGNALS:
    /// The source was read, or failed to be: what its page says about it.
    void newsCame(const QString& news);
    /// The source was read by itself: where `before` is still shown, `news` is true now.
    void newsOutdated(const QString& before, const QString& news);
    /// A read that had begun well was given up.
    void readWasGivenUp(const QString& reason);

  private:
    void takeStatus();
    void takeFilename();
    void takeFault();
    void sourceChanged(const KeyChange& change);

    XDataSource m_source;
    QString m_news; ///< told last
    Observation m_sourceKeys;
    Observation m_page;
};
