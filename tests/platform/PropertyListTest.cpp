// Property lists: both forms against an independent implementation, and hostile input.
#include "Platform/Core/PropertyList.h"
#include "support/Numbers.h"
#include "support/TestSupport.h"

#include <QDateTime>
#include <QProcess>

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>

namespace {

QByteArray plistXml(const QByteArray& value) {
    return "<plist version=\"1.0\">" + value + "</plist>";
}

QString refusal(const QByteArray& bytes) {
    const PropertyList::ReadResult result = PropertyList::read(bytes);
    EXPECT_EQ(result.value.has_value(), result.error.isEmpty());
    return result.error;
}

/// Equal bit for bit: QVariant compares doubles loosely.
bool same(const QVariant& a, const QVariant& b) {
    if (a.typeId() != b.typeId())
        return false;
    switch (a.typeId()) {
    case QMetaType::Double:
        return (std::isnan(a.toDouble()) && std::isnan(b.toDouble())) ||
               std::bit_cast<quint64>(a.toDouble()) == std::bit_cast<quint64>(b.toDouble());
    case QMetaType::QVariantList: {
        const QVariantList left = a.toList();
        const QVariantList right = b.toList();
        return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
    }
    case QMetaType::QVariantMap: {
        const QVariantMap left = a.toMap();
        const QVariantMap right = b.toMap();
        return left.keys() == right.keys() &&
               std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
    }
    default:
        return a == b;
    }
}

QVariantList hardDoubles() {
    constexpr double inf = support::inf, nan = support::nan;
    return {-0.0,         0.1, 1.0 / 3, 1e22, 1e23, 123456789012345678.0, -2.5, DBL_MAX, DBL_MIN,
            DBL_TRUE_MIN, inf, -inf,    nan,  -nan};
}

class RandomValues {
  public:
    QVariant value(int depth = 0) {
        switch (below(depth < 4 ? 9 : 7)) {
        case 0:
            return below(2) == 0;
        case 1:
            return static_cast<qint64>(m_random()) >> below(64);
        case 2:
            return static_cast<quint64>(m_random()) | quint64{1} << 63;
        case 3:
            return std::bit_cast<double>(m_random());
        case 4:
            return text();
        case 5:
            return text().toUtf8();
        case 6:
            return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(below(2'000'000'000)), Qt::UTC);
        case 7: {
            QVariantList list;
            for (std::size_t i = below(20); i > 0; --i)
                list.append(value(depth + 1));
            return list;
        }
        default: {
            QVariantMap map;
            for (std::size_t i = below(20); i > 0; --i)
                map.insert(text(), value(depth + 1));
            return map;
        }
        }
    }

  private:
    std::size_t below(std::size_t bound) { return m_random() % bound; }
    QString text() {
        static const QList<QString> parts{u"a"_qs,  u" "_qs,  u"<&>\"'"_qs, u"\u00e9"_qs, u"\U0001F600"_qs,
                                          u"\n"_qs, u"\t"_qs, u"]]>"_qs,    u"\r"_qs,     u"&#13;"_qs};
        QString text;
        for (std::size_t i = below(24); i > 0; --i)
            text += parts[static_cast<qsizetype>(below(static_cast<std::size_t>(parts.size())))];
        return text;
    }
    std::mt19937_64 m_random{20240229};
};

TEST(PropertyList, everyValueSurvivesTheRoundTripBitForBit) {
    RandomValues random;
    QVariantList values{hardDoubles(), QVariantMap(), QVariantList(), QString(), QByteArray()};
    for (int i = 0; i < 300; ++i)
        values.append(random.value());
    for (const QVariant& value : values) {
        const QByteArray xml = PropertyList::writeXml(value);
        const PropertyList::ReadResult result = PropertyList::read(xml);
        ASSERT_TRUE(result.value && same(*result.value, value))
            << result.error.toStdString() << xml.toStdString();
        EXPECT_EQ(PropertyList::writeXml(*result.value), xml);
    }
}

TEST(PropertyList, anIndependentImplementationReadsWhatWeWriteAndWeReadBothItsForms) {
    RandomValues random;
    QVariantList values{hardDoubles(), qint64{-1}, std::numeric_limits<qint64>::min()};
    for (int i = 0; i < 100; ++i)
        values.append(random.value());
    const support::ScratchFolder folder;
    const QString ours = folder.write(u"ours.plist"_qs, PropertyList::writeXml(values));
    QProcess python;
    python.start(u"python3"_qs, {u"-c"_qs, uR"(
import plistlib, sys
values = plistlib.load(open(sys.argv[1], "rb"))
plistlib.dump(values, open(sys.argv[1] + ".xml", "wb"))
plistlib.dump(values, open(sys.argv[1] + ".bin", "wb"), fmt=plistlib.FMT_BINARY)
)"_qs,
                                 ours});
    ASSERT_TRUE(python.waitForFinished()) << python.errorString().toStdString();
    ASSERT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    for (const QString& form : {u".xml"_qs, u".bin"_qs}) {
        const PropertyList::ReadResult result = PropertyList::read(support::ScratchFolder::read(ours + form));
        ASSERT_TRUE(result.value) << form.toStdString() << ": " << result.error.toStdString();
        const QVariantList read = result.value->toList();
        ASSERT_EQ(read.size(), values.size());
        for (qsizetype i = 0; i < read.size(); ++i) {
            const QByteArray xml = PropertyList::writeXml(values[i]);
            if (form == u".xml"_qs && xml.contains("&#13;"))
                continue; // it writes a carriage return as a newline
            EXPECT_TRUE(same(read[i], values[i])) << form.toStdString() << i << xml.toStdString();
        }
    }
}

TEST(PropertyList, writesTheFormThatOthersKnow) {
    const QVariantMap root{
        {u"b"_qs, QVariantList{1, 2.5F, true}}, {u"a <"_qs, QVariantMap()}, {u"f"_qs, 0.1F}};
    const QByteArray xml = PropertyList::writeXml(root);
    EXPECT_TRUE(xml.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC "));
    EXPECT_EQ(xml.mid(xml.indexOf("<plist")).toStdString(),
              "<plist version=\"1.0\">\n<dict>\n\t<key>a &lt;</key>\n\t<dict/>\n\t<key>b</key>\n\t<array>\n"
              "\t\t<integer>1</integer>\n\t\t<real>2.5</real>\n\t\t<true/>\n\t</array>\n"
              "\t<key>f</key>\n\t<real>0.1</real>\n</dict>\n</plist>\n");
    const QString unfit =
        QStringLiteral("a") + QChar(0) + QChar(0x1B) + QChar(0xD800) + u'b' + QChar(0xDC00) + QChar(0xFFFF);
    EXPECT_EQ(PropertyList::read(PropertyList::writeXml(unfit)).value->toString(),
              u"a\uFFFD\uFFFD\uFFFDb\uFFFD\uFFFD"_qs);
    const support::AssertionRecorder recorder;
    EXPECT_TRUE(PropertyList::writeXml(QVariant()).contains("<string></string>"));
    EXPECT_EQ(recorder.texts(), std::vector<std::string>{"A property list holds no null"});
}

TEST(PropertyList, readsWhatOthersWrite) {
    struct Row {
        const char* name;
        QByteArray xml;
        QVariant value;
    };
    const QString utf16 = QString(QChar(0xFEFF)) +
                          QString::fromLatin1("<?xml version=\"1.0\" encoding=\"UTF-16\"?>") +
                          QString::fromLatin1(plistXml("<string>\xE9</string>"));
    const std::vector<Row> rows{
        {"a number with a plus sign and blanks", plistXml("<real> +2.5 </real>"), 2.5},
        {"a number beyond the range", plistXml("<real>-1e999</real>"),
         -std::numeric_limits<double>::infinity()},
        {"a number below the range", plistXml("<real>-1e-999</real>"), -0.0},
        {"CDATA, comments and references",
         plistXml("<string>a<![CDATA[<&]]><!-- x -->&amp;&#13;\r\n</string>"), u"a<&&\r\n"_qs},
        {"text between the elements", plistXml("<array>x<integer>1</integer>y</array>"),
         QVariantList{qint64{1}}},
        {"the last of two equal keys", plistXml("<dict><key>a</key><true/><key>a</key><false/></dict>"),
         QVariantMap{{u"a"_qs, false}}},
        {"data in lines", plistXml("<data>\n\tSGVs\n\tbG8=\n</data>"), QByteArray("Hello")},
        {"a byte-order mark", "\xEF\xBB\xBF" + plistXml("<true/>"), true},
        {"UTF-16", QByteArray(reinterpret_cast<const char*>(utf16.utf16()), utf16.size() * 2), u"\u00e9"_qs},
    };
    for (const Row& row : rows) {
        const PropertyList::ReadResult result = PropertyList::read(row.xml);
        ASSERT_TRUE(result.value) << row.name << ": " << result.error.toStdString();
        EXPECT_TRUE(same(*result.value, row.value)) << row.name << result.value->toString().toStdString();
        EXPECT_TRUE(PropertyList::looksLikePropertyList(row.xml.left(200))) << row.name;
    }
}

/// Binary property lists of hand-made objects; references take one byte, offsets two, the first object is the
/// root.
QByteArray binary(const QList<QByteArray>& objects) {
    QByteArray file("bplist00");
    QByteArray offsets;
    for (const QByteArray& object : objects) {
        offsets.append(static_cast<char>(file.size() >> 8)).append(static_cast<char>(file.size()));
        file += object;
    }
    const auto trailer = QByteArray(6, 0) + "\x02\x01" + QByteArray(7, 0) +
                         static_cast<char>(objects.size()) + QByteArray(8, 0) + QByteArray(6, 0) +
                         static_cast<char>(file.size() >> 8) + static_cast<char>(file.size());
    return file + offsets + trailer;
}

TEST(PropertyList, refusesWhatIsNoneAndSaysWhy) {
    const auto nested = [](const char* open, const char* close, int depth) {
        return plistXml(QByteArray(open).repeated(depth) + QByteArray(close).repeated(depth));
    };
    QByteArray bomb = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\">";
    for (char c = 'b'; c < 'k'; ++c)
        bomb += QByteArray("<!ENTITY ") + c + " \"" +
                (QByteArray("&") + static_cast<char>(c - 1) + ";").repeated(10) + "\">";
    bomb += "]>" + plistXml("<string>&j;</string>");
    const QByteArray external = "<!DOCTYPE plist PUBLIC \"x\" \"y\">" + plistXml("<string>&x;</string>");
    QList<QByteArray> doubling; // a list of twice the next list, 60 deep
    for (char i = 1; i <= 60; ++i)
        doubling.append(QByteArray("\xA2") + i + i);
    doubling.append(QByteArray("\x09"));
    const QByteArray longText = QByteArray("\x5F\x12\x00\x10\x00\x00", 6) + QByteArray(1 << 20, 'x');

    struct Row {
        const char* name;
        QByteArray bytes;
        const char* reason;
    };
    const std::vector<Row> rows{
        {"nothing", "", "it is empty"},
        {"a table", "1,2,3\n", "neither an XML nor a binary"},
        {"other XML", "<svg><dict/></svg>", "its XML is no property list"},
        {"cut off", plistXml("<dict><key>a</key><true/></dict>").chopped(20), "Premature end"},
        {"not closed", plistXml("<dict>"), "line 1"},
        {"no value", plistXml(""), "has no value"},
        {"two values", plistXml("<true/><true/>"), "more than one value"},
        {"something after the end", plistXml("<true/>") + "<true/>", "line 1"},
        {"an unknown element", plistXml("<float>1</float>"), "unknown element \"float\""},
        {"an element in a text", plistXml("<string><b/></string>"), "an element within a text"},
        {"a key without a value", plistXml("<dict><key>a</key></dict>"), "a key without a value"},
        {"a value without a key", plistXml("<dict><true/></dict>"), "without a key"},
        {"no integer", plistXml("<integer>2.5</integer>"), "\"2.5\" is no integer"},
        {"too great an integer", plistXml("<integer>18446744073709551616</integer>"),
         "is no integer of 64 bits"},
        {"no number", plistXml("<real>1,5</real>"), "\"1,5\" is no number"},
        {"an empty number", plistXml("<real/>"), "\"\" is no number"},
        {"no date", plistXml("<date>yesterday</date>"), "is no date"},
        {"a date before the first year", plistXml("<date>0001-01-01T00:00:00+12:00</date>"), "is no date"},
        {"no base 64", plistXml("<data>?</data>"), "base 64"},
        {"wrong UTF-8", plistXml("<string>\xFF</string>"), "line 1"},
        {"513 lists deep", nested("<array>", "</array>", 513), "nested too deeply"},
        {"200,000 dictionaries deep", nested("<dict><key>k</key>", "</dict>", 200'000), "nested too deeply"},
        {"an entity bomb", bomb, "declares entities"},
        {"an entity declared elsewhere", external, "unknown entity \"x\""},
        {"binary: the header alone", "bplist00", "cut off"},
        {"binary: a list that holds itself", binary({QByteArray("\xA1\x00", 2)}), "nested too deeply"},
        {"binary: 2^60 values in 400 bytes", binary(doubling), "too large"},
        {"binary: a reference to nowhere", binary({QByteArray("\xA1\x07", 2)}), "damaged"},
        {"binary: a size beyond the file", binary({QByteArray("\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF")}),
         "damaged"},
        {"binary: a key that is no text", binary({QByteArray("\xD1\x01\x01"), QByteArray("\x09")}),
         "no text"},
        {"binary: null", binary({QByteArray(1, 0)}), "unknown kind"},
        {"binary: a date before the first year", binary({QByteArray("\x33\xC2\x38\0\0\0\0\0\0", 9)}),
         "out of range"},
        {"binary: 65 bits", binary({QByteArray("\x14\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0", 17)}),
         "more than 64 bits"},
    };
    for (const Row& row : rows) {
        const QString reason = refusal(row.bytes);
        EXPECT_TRUE(reason.contains(QLatin1String(row.reason))) << row.name << ": " << reason.toStdString();
    }
    EXPECT_EQ(refusal(nested("<array>", "</array>", 512)), QString());
    QByteArray manyReferences("\xAF\x11\x03\xE8", 4); // a thousand times the same text of 1 MiB
    QByteArray file = "bplist00" + manyReferences + QByteArray(1000, 1);
    const QByteArray offsets = QByteArray("\0\0\0\x08\0\0", 6) + static_cast<char>(file.size() >> 8) +
                               static_cast<char>(file.size());
    file += longText;
    QByteArray tableAt(4, 0);
    for (int i = 0; i < 4; ++i)
        tableAt[i] = static_cast<char>(file.size() >> (24 - 8 * i));
    file += offsets + QByteArray(6, 0) + "\x04\x01" + QByteArray(7, 0) + "\x02" + QByteArray(12, 0) + tableAt;
    EXPECT_TRUE(refusal(file).contains(u"too large"_qs)) << refusal(file).toStdString();
}

TEST(PropertyList, noDamageToABinaryFileIsMoreThanAnError) {
    const QByteArray whole =
        binary({QByteArray("\xD2\x01\x02\x03\x04"),
                QByteArray("\x51"
                           "a"),
                QByteArray("\x62\0b\xD8\0", 5), QByteArray("\xA4\x05\x06\x07\x08"), QByteArray("\x42xy"),
                QByteArray("\x10\xFF"), QByteArray("\x23\x40\x04\0\0\0\0\0\0", 9),
                QByteArray("\x33\x41\xC0\0\0\0\0\0\0", 9), QByteArray("\x22\x3F\0\0\0", 5)});
    const PropertyList::ReadResult intact = PropertyList::read(whole);
    ASSERT_TRUE(intact.value) << intact.error.toStdString();
    const QVariantMap expected{
        {u"a"_qs,
         QVariantList{qint64{255}, 2.5, QDateTime::fromSecsSinceEpoch(978307200 + 0x20000000, Qt::UTC), 0.5}},
        {QStringLiteral("b") + QChar(0xD800), QByteArray("xy")}};
    EXPECT_TRUE(same(*intact.value, expected)) << PropertyList::writeXml(*intact.value).toStdString();

    int read = 0;
    for (qsizetype i = 8; i < whole.size(); ++i) {
        read += refusal(whole.first(i)).isEmpty();
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray damaged = whole;
            damaged[i] = static_cast<char>(byte);
            read += refusal(damaged).isEmpty();
        }
    }
    EXPECT_GT(read, 0); // damage within a number or a text is another number or text
}

TEST(PropertyList, tellsPropertyListsFromDataFiles) {
    EXPECT_TRUE(PropertyList::looksLikePropertyList("bplist00\xD1"));
    EXPECT_TRUE(PropertyList::looksLikePropertyList(PropertyList::writeXml(1).first(80)));
    for (const char* other : {"", "1,2\n", "<html>", "x <plist", "<?xml version=\"1.0\"?>\n<svg>"})
        EXPECT_FALSE(PropertyList::looksLikePropertyList(other)) << other;
}

} // namespace
