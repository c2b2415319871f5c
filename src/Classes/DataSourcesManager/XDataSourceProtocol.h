// What every data source is: settings, a table read from them, and a view to edit them in.
#pragma once

#include "EmbeddedPlugins/Common/XPTableData.h"
#include "Platform/Core/Observable.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <mutex>
#include <optional>
#include <span>

class XViewController;

using XTable = std::shared_ptr<const XPTableData>; ///< null: no data

/// A data-source plugin. Main thread, except where a worker takes the table under `tableMutex`.
class XDataSourceProtocol : public Observable {
    Q_OBJECT
    Q_PROPERTY(XTable data READ data WRITE setData)
    Q_PROPERTY(QString title READ title WRITE setTitle)

  public:
    using Observable::Observable;

    virtual QString pluginIdentifier() const = 0; ///< registry key, e.g. "com.quarnix.textfile"
    virtual QString pluginName() const = 0;

    /// The settings as saved in a document; absent when there are none.
    virtual std::optional<QVariantMap> plist() const = 0;
    virtual void setPlist(const QVariantMap& settings) = 0;

    /// Starts (re)reading; the table arrives later through `setData`. Always true.
    virtual bool read() = 0;
    /// Drops the table and ends work in progress.
    virtual void clean() = 0;
    /// Whether a read is under way; its end is announced after the table was installed.
    virtual bool isLoading() const = 0;

    /// The current table; takes `tableMutex`. Setting it posts "kDataSource_Updated" after the lock is
    /// released.
    virtual XTable data() const = 0;
    virtual void setData(XTable table) = 0;
    /// "Row number", then one name per table column.
    virtual QStringList columnNames() const = 0;

    virtual const QString& title() const = 0;
    virtual void setTitle(QString title) = 0;

    /// Settings keys that the document observes for undo.
    virtual std::span<const char* const> kvoKeys() const = 0;
    /// Other keys that are saved: assigning one marks the document edited, without a step to undo.
    virtual std::span<const char* const> contentKeys() const { return {}; }

    /// Why the last read failed; empty when it did not. Neither saved nor undoable.
    virtual const QString& readError() const = 0;

    /// A new settings view, owned by the caller; null where the program brought no views.
    virtual std::unique_ptr<XViewController> configViewController() = 0;

    /// The lock under which the table is replaced.
    virtual std::mutex& tableMutex() const = 0;
};

using XDataSource = std::shared_ptr<XDataSourceProtocol>;
