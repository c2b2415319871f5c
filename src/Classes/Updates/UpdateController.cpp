// When to check, and what to say of the outcome.
#include "Classes/Updates/UpdateController.h"

#include "Platform/Core/Log.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/DesktopOpening.h"
#include "Product.h"

#include <QMessageBox>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 secondsADay = 86400;

QString lastCheckKey() {
    return u"SULastCheckTime"_qs;
}

/// Also when the clock has been put back since.
bool isDayOld(const QDateTime& last, const QDateTime& now) {
    return !last.isValid() || last > now || last.secsTo(now) >= secondsADay;
}

void offer(QWidget* window, const QString& newer, const QString& current, const QUrl& page) {
    Alerts::shared().ask(
        window,
        {Alert::Kind::Notice,
         UpdateController::tr("%1 %2 is available.").arg(QLatin1String(Product::name), newer),
         UpdateController::tr("You have %1. The download page opens in the web browser.").arg(current),
         {{UpdateController::tr("Open Page"), Alert::Role::Accept},
          {UpdateController::tr("Later"), Alert::Role::Cancel}}},
        [page, over = QPointer(window)](int button) {
            if (button == 0)
                DesktopOpening::openWebPage(page, over);
        });
}

} // namespace

UpdateController::Configuration UpdateController::productConfiguration() {
    return {.feed = QUrl(QLatin1String(Product::releaseFeed)),
            .version = QLatin1String(Product::version),
            .downloads = QUrl(QLatin1String(Product::downloads))};
}

UpdateController::UpdateController(Configuration configuration, std::function<QWidget*()> frontWindow,
                                   QObject* parent)
    : QObject(parent), m_configuration(std::move(configuration)), m_frontWindow(std::move(frontWindow)),
      m_isFirstStart(!UserDefaults::standard().contains(automaticChecksKey())) {}

void UpdateController::checkForUpdates(QWidget* from) {
    if (m_configuration.feed.isEmpty()) {
        tell(from, tr("The package manager updates %1.").arg(QLatin1String(Product::name)),
             tr("You have %1. A newer version comes with the other updates of the system.")
                 .arg(m_configuration.version));
        return;
    }
    m_from = from;
    m_isAskedFor = true;
    if (!isChecking())
        check();
}

void UpdateController::checkIfDue(const QDateTime& now) {
    const UserDefaults& defaults = UserDefaults::standard();
    if (m_configuration.feed.isEmpty() || m_isFirstStart || isChecking() ||
        defaults.integer(automaticChecksKey()) == 0)
        return;
    if (isDayOld(QDateTime::fromString(defaults.string(lastCheckKey()), Qt::ISODate), now))
        check();
}

void UpdateController::startAutomaticChecks() {
    if (m_configuration.feed.isEmpty())
        return;
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_timer.setInterval(std::chrono::hours(1));
        checkIfDue(QDateTime::currentDateTimeUtc());
    });
    m_timer.start(0);
}

void UpdateController::check() {
    const QByteArray userAgent = QByteArray(Product::name) + '/' + m_configuration.version.toLatin1();
    m_download = new FeedDownload(m_configuration.feed, userAgent, m_configuration.limits, this);
    connect(m_download, &FeedDownload::finished, this, &UpdateController::downloadFinished);
    m_download->start();
}

void UpdateController::downloadFinished(const QByteArray& bytes, const QString& fault) {
    std::exchange(m_download, nullptr)->deleteLater();
    Q_EMIT checkEnded();
    if (!fault.isEmpty()) {
        tellFault(fault);
    } else {
        // A day without a network is none on which was looked: that is tried again.
        UserDefaults::standard().set(lastCheckKey(), QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
        const ReleaseFeed::ReadResult feed = ReleaseFeed::read(bytes);
        if (feed.newest)
            tellRelease(*feed.newest);
        else
            tellFault(feed.error);
    }
    m_isAskedFor = false;
    m_from = nullptr;
}

void UpdateController::tellRelease(const Release& release) {
    const std::optional<Version> current = Version::parse(m_configuration.version);
    const QString name = QLatin1String(Product::name);
    if (!current || release.version <= *current) {
        if (m_isAskedFor)
            tell(windowToTellOver(), tr("%1 %2 is the newest version.").arg(name, m_configuration.version),
                 tr("No later one has been released."));
        return;
    }
    QWidget* window = windowToTellOver();
    if (!m_isAskedFor && (window == nullptr || m_toldVersion == release.version.text()))
        return;
    m_toldVersion = release.version.text();
    offer(window, release.version.text(), m_configuration.version,
          release.page.isEmpty() ? m_configuration.downloads : release.page);
}

void UpdateController::tellFault(const QString& reason) {
    const QString address = m_configuration.feed.toDisplayString();
    if (m_isAskedFor)
        Alerts::shared().tell(
            windowToTellOver(), tr("The list of releases was not read."),
            tr("%1: %2. %3 stays as it is.").arg(address, reason, QLatin1String(Product::name)));
    else
        qCInfo(velquinLog, "looking for a new version: %s: %s", qUtf8Printable(address),
               qUtf8Printable(reason));
}

void UpdateController::tell(QWidget* window, const QString& message, const QString& reason) {
    Alerts::shared().ask(
        window, {Alert::Kind::Notice, message, reason, {{QMessageBox::tr("OK"), Alert::Role::Accept}}},
        [](int) {});
}

/// The window from which it was asked may be gone.
QWidget* UpdateController::windowToTellOver() const {
    return m_from != nullptr ? m_from.data() : m_frontWindow ? m_frontWindow() : nullptr;
}
