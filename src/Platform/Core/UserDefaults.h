// The user's settings that outlive a document.
#pragma once

#include <QObject>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>

/// The process-wide user defaults: a settings file of the user, or a store in memory (tests). Main thread.
class UserDefaults : public QObject {
    Q_OBJECT

  public:
    /// The user's own, in velquin/velquin.conf below the folder for settings (XDG_CONFIG_HOME).
    static UserDefaults& standard();

    explicit UserDefaults(QString settingsFile);

    /// Keeps everything in memory from here on, starting empty.
    void useMemoryStore();
    /// Reads go on, writes are dropped: batch runs leave no trace.
    void setReadOnly(bool readOnly);

    QVariant value(const QString& key) const; ///< invalid when missing
    int integer(const QString& key) const;    ///< 0 when missing or not a number
    QString string(const QString& key) const;
    QStringList stringList(const QString& key) const;
    bool contains(const QString& key) const;
    void set(const QString& key, const QVariant& value);
    void remove(const QString& key);

  Q_SIGNALS:
    /// Emitted after each value that this process stored or removed, equal ones included.
    void changed(const QString& key);

  private:
    QSettings& file() const;

    QString m_settingsFile;
    mutable std::unique_ptr<QSettings> m_file; ///< opened when it is first asked
    std::optional<QVariantMap> m_memory;       ///< takes the place of the file when present
    bool m_readOnly = false;
};
