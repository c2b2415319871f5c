// The feed of releases, which comes from the web, and the order of the versions in it. The first lines are
// versions as well.
#include "Classes/Updates/ReleaseFeed.h"
#include "FuzzedBytes.h"

#include <algorithm>
#include <vector>

namespace {

void checkFeed(const QByteArray& bytes) {
    const ReleaseFeed::ReadResult feed = ReleaseFeed::read(bytes);
    require(feed.newest.has_value() == feed.error.isEmpty());
    if (!feed.newest)
        return;
    const QString& version = feed.newest->version.text();
    require(version.size() <= 64 && std::ranges::all_of(version, [](QChar letter) {
                return (letter.unicode() < 128 && letter.isLetterOrNumber()) ||
                       QStringLiteral(".-~_+").contains(letter);
            }));
    require(Version::parse(version) == feed.newest->version);
    const QUrl& page = feed.newest->page;
    require(page.isEmpty() || (page.scheme().startsWith(QStringLiteral("http")) && !page.host().isEmpty() &&
                               page.userInfo().isEmpty()));
}

/// Every two are ordered one way round, and every three without a circle.
void checkOrder(const std::vector<Version>& versions) {
    for (const Version& a : versions) {
        for (const Version& b : versions) {
            require((a < b) + (a == b) + (a > b) == 1);
            require((a < b) == (b > a));
            for (const Version& c : versions)
                require(!(a <= b && b <= c) || a <= c);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    checkFeed(text);
    constexpr qsizetype mostVersions = 4;
    std::vector<Version> versions;
    for (const QByteArray& line : text.split('\n').first(std::min(text.count('\n') + 1, mostVersions))) {
        if (auto version = Version::parse(QString::fromLatin1(line)))
            versions.push_back(*std::move(version));
    }
    checkOrder(versions);
    return 0;
}
