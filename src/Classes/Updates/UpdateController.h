// Looks for a newer release and tells of it; the download page opens in the web browser.
#pragma once

#include "Classes/Updates/FeedDownload.h"
#include "Classes/Updates/ReleaseFeed.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QWidget>

#include <functional>

/// Replaces no file, and sends nothing but the request for the feed. Main thread.
class UpdateController : public QObject {
    Q_OBJECT

  public:
    struct Configuration {
        QUrl feed; ///< empty: a package manager updates the program
        QString version;
        QUrl downloads; ///< the page for a feed that names none
        DownloadLimits limits = {};
    };
    static Configuration productConfiguration();
    /// Of the user default that says whether to look every day.
    static QString automaticChecksKey() { return QStringLiteral("SUEnableAutomaticChecks"); }

    /// `frontWindow` is asked for the window over which to tell news that nobody has just asked for; it may
    /// give null. The first start of the program is known by its settings, so it must be made before their
    /// defaults are written.
    UpdateController(Configuration configuration, std::function<QWidget*()> frontWindow,
                     QObject* parent = nullptr);

    bool isChecking() const { return m_download != nullptr; }

    /// Answers with an alert over `from`, whatever comes of it.
    void checkForUpdates(QWidget* from);
    /// Checks when the last check is a day old, the user wishes it and this is not the first start; tells of
    /// a newer release alone, and of each once a run. `now` is in UTC.
    void checkIfDue(const QDateTime& now);
    /// Asks in the next turn of the event loop and every hour whether a check is due.
    void startAutomaticChecks();

  Q_SIGNALS:
    /// Emitted before what came of it is told.
    void checkEnded();

  private:
    void check();
    void downloadFinished(const QByteArray& bytes, const QString& fault);
    void tellRelease(const Release& release);
    void tellFault(const QString& reason);
    void tell(QWidget* window, const QString& message, const QString& reason);
    QWidget* windowToTellOver() const;

    const Configuration m_configuration;
    const std::function<QWidget*()> m_frontWindow;
    const bool m_isFirstStart;
    FeedDownload* m_download = nullptr;
    QPointer<QWidget> m_from;
    bool m_isAskedFor = false; ///< by the user, who waits for an answer
    QString m_toldVersion;     ///< without having been asked
    QTimer m_timer;
};
