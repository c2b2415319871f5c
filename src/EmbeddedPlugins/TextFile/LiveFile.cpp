// Facts in, one step out, and the step's effects.
#include "EmbeddedPlugins/TextFile/LiveFile.h"

#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "EmbeddedPlugins/TextFile/LiveFiles.h"
#include "Platform/Core/UserDefaults.h"

#include <QPointer>

#include <utility>

LiveFile::LiveFile(LiveFileSource& source, QObject* parent) : QObject(parent), m_source(source) {
    m_clock.start();
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &LiveFile::look);
    connect(&UserDefaults::standard(), &UserDefaults::changed, this, [this](const QString& key) {
        if (key != QLatin1String(LiveFiles::defaultsKey))
            return;
        const QPointer<LiveFile> self(this);
        m_source.isLiveChanged();
        if (self != nullptr && std::exchange(m_isLive, LiveFiles::contains(m_path)) != m_isLive)
            look();
    });
}

LiveFile::~LiveFile() = default;

void LiveFile::readBegins(const QString& path) {
    FileWatcher* watcher = FileWatcher::shared();
    const QString key = watcher == nullptr ? QString() : LiveFiles::pathKey(path);
    if (key.isEmpty())
        return stop();
    m_lastRead = LiveFacts::Time(m_clock.elapsed());
    if (key == m_path)
        return;
    stop();
    m_path = key;
    m_isLive = LiveFiles::contains(key);
    m_watch = watcher->watch(key, [this] {
        m_hasNews = true;
        look();
    });
}

void LiveFile::fileOpened(const std::optional<FileStamp>& stamp, bool refused) {
    m_isInFault = refused;
    m_hasNews = false;
    if (!refused)
        m_read = stamp;
    else if (m_hasGivenUp)
        m_read.reset(); // what is shown is of another state
    m_hasGivenUp = false;
    setUpToDate();
    if (!refused && !stamp)
        stop(); // nothing tells when such a file changes
}

void LiveFile::readEnded(bool failed) {
    if (m_path.isEmpty())
        return;
    m_hasGivenUp = failed;
    if (m_hasNews)
        look();
}

void LiveFile::stop() {
    m_watch.end();
    m_timer.stop();
    m_path.clear();
    m_read.reset();
    m_isLive = m_isInFault = m_hasGivenUp = false;
    setUpToDate();
}

void LiveFile::setUpToDate() {
    m_awaySince.reset();
    if (std::exchange(m_offered, std::nullopt))
        m_source.setChangedOnDisk(false);
}

LiveFacts LiveFile::facts() {
    LiveFacts facts{.read = m_read,
                    .onDisk = FileStamp::ofPath(m_path),
                    .isLive = m_isLive,
                    .isReading = m_source.isReadingFile(),
                    .isInFault = m_isInFault,
                    .hasGivenUp = m_hasGivenUp,
                    .hasRows = m_source.hasRowsOfFile(),
                    .isEvaluating = m_isLive && !XExpressionEvaluator::sharedInstance().isIdle(),
                    .now = LiveFacts::Time(m_clock.elapsed()),
                    .lastRead = m_lastRead,
                    .awaySince = {}};
    if (facts.onDisk && facts.onDisk->size > 0)
        m_awaySince.reset();
    else if (!m_awaySince)
        m_awaySince = facts.now;
    facts.awaySince = m_awaySince;
    return facts;
}

/// The source may be let go of by those whom it tells: nothing is done after that.
void LiveFile::look() {
    if (m_path.isEmpty())
        return;
    const LiveFacts seen = facts();
    const LiveStep step = nextStep(seen);
    if (step.until)
        m_timer.start(*step.until - seen.now);
    else
        m_timer.stop();
    switch (step.kind) {
    case LiveStep::Kind::Wait:
        return;
    case LiveStep::Kind::Read:
        return m_source.readByItself();
    case LiveStep::Kind::Offer: {
        const bool isNews = !m_offered || hasChanged(*m_offered, *seen.onDisk);
        m_offered = seen.onDisk;
        const QPointer<LiveFile> self(this);
        if (std::exchange(m_isInFault, false))
            m_source.fileIsBack();
        if (self != nullptr && isNews)
            m_source.setChangedOnDisk(true);
        return;
    }
    case LiveStep::Kind::UpToDate:
        setUpToDate();
        if (m_isInFault && seen.onDisk) {
            m_isInFault = false;
            m_source.fileIsBack();
        }
    }
}
