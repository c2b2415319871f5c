// The XML form of property lists: a recursive reader over a pull parser, and the writer.
#include "Core/Assertions.h"
#include "Core/TextToDouble.h"
#include "Platform/Core/PropertyListFormats.h"

#include <QDateTime>
#include <QXmlStreamReader>

#include <array>
#include <charconv>
#include <cmath>

using PropertyList::Malformed;

namespace {

class XmlReader {
  public:
    explicit XmlReader(const QByteArray& bytes) : m_xml(bytes) {}

    QVariant readDocument() {
        while (nextToken() != QXmlStreamReader::StartElement) {
            if (m_xml.tokenType() == QXmlStreamReader::DTD && !m_xml.entityDeclarations().isEmpty())
                throw Malformed("it declares entities");
        }
        if (m_xml.name() != u"plist")
            throw Malformed("its XML is no property list");
        if (!nextElement())
            throw Malformed("its property list has no value");
        QVariant value = readValue(1);
        if (nextElement())
            throw Malformed("its property list has more than one value");
        while (!m_xml.atEnd())
            nextToken();
        return value;
    }

  private:
    [[noreturn]] void fail(const QString& what) const {
        throw Malformed(QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(what).toStdString());
    }

    QXmlStreamReader::TokenType nextToken() {
        m_xml.readNext();
        if (m_xml.hasError())
            fail(m_xml.errorString());
        if (m_xml.isEntityReference())
            fail(QStringLiteral("unknown entity \"%1\"").arg(m_xml.name()));
        return m_xml.tokenType();
    }

    /// Moves to the next element of the current one; false at its end. Text in between is ignored.
    bool nextElement() {
        while (true) {
            switch (nextToken()) {
            case QXmlStreamReader::StartElement:
                return true;
            case QXmlStreamReader::EndElement:
                return false;
            default:
                break;
            }
        }
    }

    /// The text of the current element, up to its end.
    QString readText() {
        QString text;
        while (nextToken() != QXmlStreamReader::EndElement) {
            if (m_xml.isStartElement())
                fail(QStringLiteral("an element within a text"));
            if (m_xml.isCharacters())
                text += m_xml.text();
        }
        return text;
    }

    QVariant readValue(int depth) {
        if (depth > PropertyList::maximumDepth)
            throw Malformed("it is nested too deeply");
        const QStringView name = m_xml.name();
        if (name == u"dict")
            return readDictionary(depth);
        if (name == u"array")
            return readArray(depth);
        if (name == u"true" || name == u"false") {
            const bool value = name == u"true";
            readText();
            return value;
        }
        if (name == u"string")
            return readText();
        if (name == u"integer")
            return readInteger();
        if (name == u"real")
            return readReal();
        if (name == u"data")
            return readData();
        if (name == u"date")
            return readDate();
        fail(QStringLiteral("unknown element \"%1\"").arg(name));
    }

    QVariantMap readDictionary(int depth) {
        QVariantMap dictionary;
        while (nextElement()) {
            if (m_xml.name() != u"key")
                fail(QStringLiteral("a dictionary's entry without a key"));
            const QString key = readText();
            if (!nextElement())
                fail(QStringLiteral("a key without a value"));
            dictionary.insert(key, readValue(depth + 1));
        }
        return dictionary;
    }

    QVariantList readArray(int depth) {
        QVariantList array;
        while (nextElement())
            array.append(readValue(depth + 1));
        return array;
    }

    QVariant readInteger() {
        const QString text = readText().trimmed();
        bool fits = false;
        if (const qint64 value = text.toLongLong(&fits); fits)
            return value;
        if (const quint64 value = text.toULongLong(&fits); fits)
            return value;
        fail(QStringLiteral("\"%1\" is no integer of 64 bits").arg(text.left(40)));
    }

    double readReal() {
        const QByteArray text = readText().trimmed().toLatin1();
        const char* first = text.constData();
        const char* const last = first + text.size();
        if (text.startsWith('+') && !text.startsWith("+-"))
            ++first;
        double value = 0;
        const auto [end, error] = std::from_chars(first, last, value);
        if (end != last || error == std::errc::invalid_argument)
            fail(QStringLiteral("\"%1\" is no number").arg(QLatin1String(text.left(40))));
        return error == std::errc() ? value
                                    : textToDouble(first); // beyond the range: infinite, or next to zero
    }

    QByteArray readData() {
        QByteArray text = readText().toLatin1();
        text.removeIf([](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
        auto decoded =
            QByteArray::fromBase64Encoding(std::move(text), QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded)
            fail(QStringLiteral("data that is not in base 64"));
        return std::move(*decoded);
    }

    QDateTime readDate() {
        const QString text = readText().trimmed();
        QDateTime date = QDateTime::fromString(text, Qt::ISODate).toUTC();
        const int year = date.date().year(); // another zone may lead out of what can be written again
        if (!date.isValid() || year < 1 || year > 9999)
            fail(QStringLiteral("\"%1\" is no date").arg(text.left(40)));
        return date;
    }

    QXmlStreamReader m_xml;
};

/// A character as XML may carry it; U+FFFD for what it cannot.
void appendEscaped(QString& xml, QStringView text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const bool isPair = c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (c == u'&')
            xml += QLatin1String("&amp;");
        else if (c == u'<')
            xml += QLatin1String("&lt;");
        else if (c == u'>')
            xml += QLatin1String("&gt;");
        else if (c == u'\r') // a reader turns a plain one into a newline
            xml += QLatin1String("&#13;");
        else if (isPair)
            xml.append(c).append(text[++i]);
        else if ((c < u' ' && c != u'\t' && c != u'\n') || c.isSurrogate() || c >= QChar(0xFFFE))
            xml += QChar(QChar::ReplacementCharacter);
        else
            xml += c;
    }
}

template <class Number>
QString shortestText(Number value) {
    if (std::isnan(value))
        return QStringLiteral("nan"); // without a sign, which other readers refuse
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return QString::fromLatin1(text.data(), end - text.data());
}

class XmlWriter {
  public:
    QByteArray document(const QVariant& value) {
        m_xml = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                               "<plist version=\"1.0\">\n");
        writeValue(value);
        m_xml += QLatin1String("</plist>\n");
        return m_xml.toUtf8();
    }

  private:
    void line(const QString& text) { m_xml += QString(m_indent, u'\t') + text + u'\n'; }

    void writeText(const char* element, const QString& text) {
        m_xml += QString(m_indent, u'\t') + u'<' + QLatin1String(element) + u'>';
        appendEscaped(m_xml, text);
        m_xml += QLatin1String("</") + QLatin1String(element) + QLatin1String(">\n");
    }

    void writeDictionary(const QVariantMap& dictionary) {
        if (dictionary.isEmpty())
            return line(QStringLiteral("<dict/>"));
        line(QStringLiteral("<dict>"));
        ++m_indent;
        for (auto entry = dictionary.begin(); entry != dictionary.end(); ++entry) {
            writeText("key", entry.key());
            writeValue(entry.value());
        }
        --m_indent;
        line(QStringLiteral("</dict>"));
    }

    void writeArray(const QVariantList& array) {
        if (array.isEmpty())
            return line(QStringLiteral("<array/>"));
        line(QStringLiteral("<array>"));
        ++m_indent;
        for (const QVariant& value : array)
            writeValue(value);
        --m_indent;
        line(QStringLiteral("</array>"));
    }

    void writeValue(const QVariant& value) {
        switch (value.typeId()) {
        case QMetaType::QVariantMap:
            return writeDictionary(value.toMap());
        case QMetaType::QVariantList:
        case QMetaType::QStringList:
            return writeArray(value.toList());
        case QMetaType::QString:
            return writeText("string", value.toString());
        case QMetaType::Bool:
            return line(value.toBool() ? QStringLiteral("<true/>") : QStringLiteral("<false/>"));
        case QMetaType::Int:
        case QMetaType::LongLong:
            return writeText("integer", QString::number(value.toLongLong()));
        case QMetaType::UInt:
        case QMetaType::ULongLong:
            return writeText("integer", QString::number(value.toULongLong()));
        case QMetaType::Double:
            return writeText("real", shortestText(value.toDouble()));
        case QMetaType::Float:
            return writeText("real", shortestText(value.toFloat()));
        case QMetaType::QByteArray:
            return writeText("data", QString::fromLatin1(value.toByteArray().toBase64()));
        case QMetaType::QDateTime:
            return writeText("date",
                             value.toDateTime().toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ssZ")));
        default:
            xAssert(false, "A property list holds no %@", value.typeName() ? value.typeName() : "null");
            writeText("string", {}); // the entry needs some value
        }
    }

    QString m_xml;
    qsizetype m_indent = 0;
};

} // namespace

QVariant PropertyList::readXml(const QByteArray& bytes) {
    return XmlReader(bytes).readDocument();
}

QByteArray PropertyList::writeXml(const QVariant& value) {
    return XmlWriter().document(value);
}
