// The request, its redirections and its bounds.
#include "Classes/Updates/FeedDownload.h"

#include <QNetworkReply>
#include <QNetworkRequest>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int statusOk = 200;

bool isWebAddress(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == u"https"_qs || url.scheme() == u"http"_qs);
}

} // namespace

FeedDownload::FeedDownload(QUrl address, QByteArray userAgent, DownloadLimits limits, QObject* parent)
    : QObject(parent), m_address(std::move(address)), m_userAgent(std::move(userAgent)), m_limits(limits) {
    m_timeOut.setSingleShot(true);
    connect(&m_timeOut, &QTimer::timeout, this, [this] { end(tr("the server did not answer in time")); });
}

FeedDownload::~FeedDownload() {
    dropReply();
}

bool FeedDownload::mayLeadTo(const QUrl& from, const QUrl& to) {
    return isWebAddress(to) && to.userInfo().isEmpty() &&
           (to.scheme() == u"https"_qs || from.scheme() == u"http"_qs);
}

void FeedDownload::start() {
    m_timeOut.start(m_limits.time);
    if (isWebAddress(m_address))
        request(m_address);
    else
        end(tr("it is no address of the web"));
}

void FeedDownload::request(const QUrl& address) {
    QNetworkRequest request(address);
    request.setHeader(QNetworkRequest::UserAgentHeader, m_userAgent);
    request.setRawHeader("Accept", "application/rss+xml, application/xml, text/xml");
    request.setRawHeader("Accept-Language", "*");        // the toolkit would tell the user's
    request.setRawHeader("Accept-Encoding", "identity"); // what is counted is what comes
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        request.setAttribute(attribute, QNetworkRequest::Manual);
    m_bytes.clear();
    m_reply = m_network.get(request);
    m_reply->setReadBufferSize(m_limits.bytes + 1);
    connect(m_reply, &QNetworkReply::readyRead, this, &FeedDownload::take);
    connect(m_reply, &QNetworkReply::finished, this, &FeedDownload::replyFinished);
}

void FeedDownload::take() {
    m_bytes += m_reply->read(m_limits.bytes + 1 - m_bytes.size());
    if (m_bytes.size() > m_limits.bytes)
        end(tr("it is larger than %1 KiB").arg(m_limits.bytes / 1024));
}

void FeedDownload::replyFinished() {
    take();
    if (m_hasEnded)
        return;
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const QVariant target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute);
    if (target.isValid())
        follow(m_reply->url().resolved(target.toUrl()));
    else if (status.isValid() && status.toInt() != statusOk)
        end(tr("the server answered with status %1").arg(status.toInt()));
    else if (m_reply->error() != QNetworkReply::NoError)
        end(m_reply->errorString());
    else
        end({});
}

void FeedDownload::follow(const QUrl& target) {
    if (!mayLeadTo(m_reply->url(), target))
        return end(tr("it leads to “%1”, which is not followed").arg(target.toDisplayString().left(200)));
    if (++m_redirections > m_limits.redirections)
        return end(tr("it leads from address to address without an end"));
    dropReply();
    request(target);
}

void FeedDownload::end(const QString& fault) {
    m_hasEnded = true;
    m_timeOut.stop();
    dropReply();
    Q_EMIT finished(fault.isEmpty() ? std::exchange(m_bytes, {}) : QByteArray(), fault);
}

void FeedDownload::dropReply() {
    if (m_reply == nullptr)
        return;
    m_reply->disconnect(this);
    m_reply->abort();
    m_reply->deleteLater();
    m_reply = nullptr;
}
