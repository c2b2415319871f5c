// Fetches a small file from the web, within bounds and without telling who asks.
#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

#include <chrono>

class QNetworkReply;

struct DownloadLimits {
    std::chrono::milliseconds time{15000}; ///< for all of it, redirections included
    qint64 bytes = qint64{1} << 20;
    int redirections = 5;
};

/// One download; destroying it ends it without a word. The request names the program and its version, and
/// carries no cookies, no language and nothing that the address does not. Redirections lead from http to http
/// or https, and from https to https only. Main thread.
class FeedDownload : public QObject {
    Q_OBJECT

  public:
    FeedDownload(QUrl address, QByteArray userAgent, DownloadLimits limits = {}, QObject* parent = nullptr);
    ~FeedDownload() override;

    /// Whether a redirection is followed: to an address of the web without a password, and not from https to
    /// http.
    static bool mayLeadTo(const QUrl& from, const QUrl& to);

    /// Called once.
    void start();

  Q_SIGNALS:
    /// Emitted once, perhaps by `start` itself. `fault` is empty or the reason, as the part of a sentence;
    /// then there are no bytes.
    void finished(const QByteArray& bytes, const QString& fault);

  private:
    void request(const QUrl& address);
    void follow(const QUrl& target);
    void take();
    void replyFinished();
    void end(const QString& fault);
    void dropReply();

    const QUrl m_address;
    const QByteArray m_userAgent;
    const DownloadLimits m_limits;
    QNetworkAccessManager m_network;
    QTimer m_timeOut;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_bytes;
    int m_redirections = 0;
    bool m_hasEnded = false;
};
