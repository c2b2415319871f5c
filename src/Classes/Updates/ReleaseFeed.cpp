// One pass over the elements, with the item that is open.
#include "Classes/Updates/ReleaseFeed.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {

constexpr int deepest = 32;
constexpr int mostItems = 1000;
constexpr qsizetype longestText = 2048; ///< of a field; the rest is left out

/// The namespace of an appcast's elements and attributes.
QString appcast() {
    return u"http://www.andymatuschak.org/xml-namespaces/sparkle"_qs;
}

QString tr(const char* text) {
    return QCoreApplication::translate("ReleaseFeed", text);
}

struct Item {
    QString title;
    QString link;
    QString version;
    QString shortVersion;
    QString system;
};

/// "Velquin 1.2 is out" gives 1.2; a number without a point counts only at the end, "Velquin 2".
std::optional<Version> versionInTitle(const QString& title) {
    const QStringList words = title.simplified().split(u' ');
    for (QString word : words) {
        while (!word.isEmpty() && u",;:.!)"_qs.contains(word.back()))
            word.chop(1);
        if (word.startsWith(u'('))
            word.remove(0, 1);
        if (auto version = Version::parse(word); version && word.contains(u'.'))
            return version;
    }
    return Version::parse(words.last());
}

std::optional<Version> versionOf(const Item& item) {
    for (const QString& text : {item.shortVersion, item.version}) {
        if (auto version = Version::parse(text))
            return version;
    }
    return versionInTitle(item.title);
}

/// A page that a browser may be sent to.
QUrl webPage(const QString& address) {
    const QUrl url(address.trimmed(), QUrl::StrictMode);
    const bool isWeb = url.scheme() == u"https"_qs || url.scheme() == u"http"_qs;
    return url.isValid() && isWeb && !url.host().isEmpty() && url.userInfo().isEmpty() ? url : QUrl();
}

class FeedReader {
  public:
    explicit FeedReader(const QByteArray& bytes) : m_xml(bytes) {}

    ReleaseFeed::ReadResult read() {
        while (m_error.isEmpty() && !m_xml.atEnd())
            take(m_xml.readNext());
        if (m_error.isEmpty() && m_xml.hasError())
            m_error = tr("line %1 is malformed: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString());
        if (m_error.isEmpty() && !m_newest)
            m_error = tr("it names no version");
        return m_error.isEmpty() ? ReleaseFeed::ReadResult{m_newest, {}}
                                 : ReleaseFeed::ReadResult{{}, m_error};
    }

  private:
    void take(QXmlStreamReader::TokenType token) {
        switch (token) {
        case QXmlStreamReader::DTD:
            m_error = tr("it is no feed of releases");
            return;
        case QXmlStreamReader::StartElement:
            enter();
            return;
        case QXmlStreamReader::EndElement:
            leave();
            return;
        case QXmlStreamReader::Characters:
            if (m_field != nullptr)
                *m_field += m_xml.text().left(longestText - m_field->size());
            return;
        default:
            return;
        }
    }

    void enter() {
        ++m_depth;
        if (m_depth == 1 && m_xml.name() != u"rss")
            m_error = tr("it is no feed of releases");
        else if (m_depth > deepest)
            m_error = tr("it is nested too deeply");
        else if (m_item && m_depth == m_itemDepth + 1)
            enterField();
        else if (!m_item && m_xml.name() == u"item")
            enterItem();
    }

    void enterItem() {
        if (++m_items > mostItems)
            m_error = tr("it has too many items");
        m_item.emplace();
        m_itemDepth = m_depth;
    }

    void enterField() {
        const QStringView name = m_xml.name();
        if (m_xml.namespaceUri() == appcast())
            m_field = name == u"shortVersionString" ? &m_item->shortVersion
                      : name == u"version"          ? &m_item->version
                                                    : nullptr;
        else if (m_xml.namespaceUri().isEmpty())
            m_field = name == u"title" ? &m_item->title : name == u"link" ? &m_item->link : nullptr;
        if (m_field != nullptr)
            m_field->clear();
        if (name == u"enclosure")
            takeAttributes(m_xml.attributes());
    }

    void takeAttributes(const QXmlStreamAttributes& attributes) {
        const std::pair<QString, QString*> wanted[] = {{u"shortVersionString"_qs, &m_item->shortVersion},
                                                       {u"version"_qs, &m_item->version},
                                                       {u"os"_qs, &m_item->system}};
        for (const auto& [name, field] : wanted) {
            if (attributes.hasAttribute(appcast(), name))
                *field = attributes.value(appcast(), name).left(longestText).toString();
        }
    }

    void leave() {
        m_field = nullptr;
        if (m_item && m_depth == m_itemDepth) {
            takeItem(*m_item);
            m_item.reset();
        }
        --m_depth;
    }

    void takeItem(const Item& item) {
        if (!item.system.isEmpty() && item.system.compare(u"linux"_qs, Qt::CaseInsensitive) != 0)
            return;
        const auto version = versionOf(item);
        if (version && (!m_newest || *version > m_newest->version))
            m_newest = Release{*version, webPage(item.link)};
    }

    QXmlStreamReader m_xml;
    int m_depth = 0;
    int m_items = 0;
    std::optional<Item> m_item; ///< the one that is open
    int m_itemDepth = 0;
    QString* m_field = nullptr; ///< of that item; takes the text
    std::optional<Release> m_newest;
    QString m_error;
};

} // namespace

ReleaseFeed::ReadResult ReleaseFeed::read(const QByteArray& bytes) {
    if (bytes.size() > mostBytes)
        return {{}, tr("it is larger than 1 MiB")};
    return FeedReader(bytes).read();
}
