// The reader: tables of given texts, any split of the input, and one report for every way a read can end.
#include "EmbeddedPlugins/TextFile/XPDataReader.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QBuffer>

#include <bit>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <random>

namespace {

struct Settings {
    int delimiterType = 1;
    int skiplines = 0;
    int everyNthLine = 1;
    bool extractColumnNames = false;
    std::uint64_t memoryLimit = ~std::uint64_t{0};
};

/// What a read reported.
struct Report {
    std::shared_ptr<XPTableData> table;
    std::optional<QString> error;
    int count = 0;
};

/// A stream that hands out its bytes in given portions, then fails or ends, and may act before a portion.
class PortionedStream : public QIODevice {
  public:
    PortionedStream(QByteArray bytes, std::function<qint64()> nextPortion)
        : m_bytes(std::move(bytes)), m_nextPortion(std::move(nextPortion)) {}
    bool isSequential() const override { return true; }

  protected:
    qint64 readData(char* data, qint64 maximum) override {
        const qint64 portion = m_nextPortion();
        if (portion < 0)
            return -1;
        const qint64 length = std::min({portion, maximum, m_bytes.size() - m_at});
        std::copy_n(m_bytes.constData() + m_at, length, data);
        m_at += length;
        return length;
    }
    qint64 writeData(const char* /*data*/, qint64 /*length*/) override { return -1; }

  private:
    QByteArray m_bytes;
    qint64 m_at = 0;
    std::function<qint64()> m_nextPortion;
};

/// Reads to the end and waits for the report; fails the test when there is more than one.
Report readAll(std::unique_ptr<QIODevice> stream, const Settings& settings,
               const std::function<void(XPDataReader&)>& afterStart = {}) {
    Report report;
    std::mutex mutex;
    std::condition_variable reported;
    {
        XPDataReader reader(std::move(stream));
        reader.setDelimiterType(settings.delimiterType);
        reader.setSkiplines(settings.skiplines);
        reader.setEveryNthLine(settings.everyNthLine);
        reader.setExtractColumnNames(settings.extractColumnNames);
        reader.setMemoryLimit(settings.memoryLimit);
        const auto note = [&](std::shared_ptr<XPTableData> table, std::optional<QString> error) {
            const std::lock_guard lock(mutex);
            report = {std::move(table), std::move(error), report.count + 1};
            reported.notify_all();
        };
        reader.setCompletionHandler([&](std::shared_ptr<XPTableData> table) { note(std::move(table), {}); });
        reader.setErrorHandler([&](const QString& reason) { note(nullptr, reason); });
        reader.startReading();
        if (afterStart)
            afterStart(reader);
        std::unique_lock lock(mutex);
        EXPECT_TRUE(reported.wait_for(lock, std::chrono::seconds(20), [&] { return report.count > 0; }));
    } // the thread has ended
    EXPECT_EQ(report.count, 1);
    return report;
}

std::unique_ptr<QIODevice> bufferOf(const QByteArray& text) {
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(text);
    return buffer;
}

/// Names and rows as text: `a|b: 1 nan; 3 4;`
std::string textOf(const XPTableData* table) {
    if (table == nullptr)
        return "none";
    std::string text;
    for (const std::string& name : table->columnNames())
        text += name + "|";
    text += ':';
    for (std::uint64_t row = 0; row < table->rowsNumber(); ++row) {
        for (std::uint64_t column = 0; column < table->columnsNumber(); ++column) {
            std::array<char, 32> number;
            std::snprintf(number.data(), number.size(), " %.17g", std::fabs(table->column(column)[row]));
            text += (std::signbit(table->column(column)[row]) ? " -" : " ") + std::string(number.data() + 1);
        }
        text += ';';
    }
    return text;
}

TEST(XPDataReader, MakesTablesOfTexts) {
    const struct {
        const char* name;
        QByteArray text;
        Settings settings;
        const char* expected;
    } rows[] = {
        {"header", "a;b\n1;2\n", {2, 0, 1, true}, "a|b|: 1 2;"},
        {"kept: CR LF leaves a row of NaN", "1,2\r\n3,4\r\n", {1}, ": 1 2; nan nan; 3 4; nan nan;"},
        {"quotes and units", "\"x,y\",2 kg\n\"3\",\"1,5\"\n", {1}, ": nan 2; 3 nan;"},
        {"no final line end", "1,2\n3,4", {1}, ": 1 2; 3 4;"},
        {"numbers", " -3.5e-2 \n1e", {0}, ": -0.035000000000000003; 1;"},
        {"empty input has one row", "", {1}, ":;"},
        {"skip and every third", "0\n1\n2\n3\n4\n5\n6\n7\n8\n9\n", {1, 2, 3}, ": 2; 5; 8;"},
        {"every second of none", "0\n1\n2\n", {1, 0, 0}, ": 0; 1; 2;"},
        {"skipping counts from the line after the header", "a\n0\n1\n2\n", {1, 1, 1, true}, "a|: 1; 2;"},
        {"a blank line is skipped like others", "\n7\n", {1, 1}, ": 7;"},
        {"header and no rows", "a,b", {1, 0, 1, true}, "a|b|:;"},
        {"a header that is no UTF-8",
         "a\xff,\xc3,\xc3\xa4,\xed\xa0\x80\n1\n",
         {1, 0, 1, true},
         "?|?|\xc3\xa4|?|: 1;"},
        {"a byte-order mark stays in the header",
         "\xef\xbb\xbf"
         "a\n1\n",
         {1, 0, 1, true},
         "\xef\xbb\xbf"
         "a|: 1;"},
        {"NUL ends a field",
         QByteArray("1\0"
                    "2,3\n",
                    6),
         {1},
         ": 1 3;"},
        {"rows of unequal length", "1\n2,3\n", {1}, ": 1 nan; 2 3;"},
        {"spaces and tabs", "1 2\t3\n", {5}, ": 1 2 3;"},
        {"CR only", "1,2\r3,4\r", {1}, ": 1 2; 3 4;"},
        {"UTF-16",
         QByteArray("\xff\xfe"
                    "1\0,\0"
                    "2\0\n\0",
                    10),
         {1},
         ": 1 nan; nan nan;"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(textOf(readAll(bufferOf(row.text), row.settings).table.get()), row.expected) << row.name;
}

TEST(XPDataReader, LogsWhatItCannotUse) {
    const support::LogRecorder log;
    EXPECT_EQ(textOf(readAll(bufferOf("1,2\n3\n"), {17}).table.get()), ": nan; 3;");
    EXPECT_EQ(textOf(readAll(bufferOf("\xff\n"), {1, 0, 1, true}).table.get()), "?|:;");
    const QString lines = log.lines().join(u'\n');
    EXPECT_TRUE(lines.contains(u"-[XPDataReader createParser] Unknown delimiter type 17"))
        << lines.toStdString();
    EXPECT_TRUE(lines.contains(u"Could not parse header field: ")) << lines.toStdString();
}

TEST(XPDataReader, GivesTheSameTableForEverySplitOfTheInput) {
    std::mt19937 random(3);
    const QByteArray alphabet = "0123456789012345678901234567890123456789....---,,,,,,,,,;;\t \"\r\n\n\n\nea";
    for (int i = 0, n = support::rounds(200); i < n; ++i) {
        QByteArray text;
        const unsigned longest = 1U << (1 + random() % 15); // up to eight of the reader's own chunks
        for (auto length = random() % longest; length > 0; --length)
            text += alphabet[static_cast<qsizetype>(random() % static_cast<unsigned>(alphabet.size()))];
        Settings settings{static_cast<int>(random() % 6), static_cast<int>(random() % 3),
                          static_cast<int>(random() % 3), random() % 2 == 0};
        const Report whole = readAll(bufferOf(text), settings);
        // Portions from one byte to the chunk's size, and beyond it by splitting unevenly.
        const unsigned greatest = 1U << (random() % 13);
        const auto portion = [&] { return static_cast<qint64>(random() % greatest + 1); };
        const Report split = readAll(std::make_unique<PortionedStream>(text, portion), settings);
        ASSERT_EQ(textOf(whole.table.get()), textOf(split.table.get())) << "run " << i;
    }
}

TEST(XPDataReader, KeepsTheColumnRangesWithTheTable) {
    const auto table = readAll(bufferOf("3,-1\n-2,\n0,5\n"), {1}).table;
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->getRangeOfColumnIndexWithValidValuesInRange(1, {}), (XValueRange{-2, 3}));
    EXPECT_TRUE(table->isSummarized()) << "computed on the reader's thread, not by who asks first";
    const XValueRange positive{XPTableData::smallestPositive, NAN};
    EXPECT_EQ(table->getRangeOfColumnIndexWithValidValuesInRange(2, positive), (XValueRange{5, 5}));
}

TEST(XPDataReader, ReportsEveryEndOnce) {
    const Report noStream = readAll(nullptr, {});
    EXPECT_TRUE(noStream.error.has_value() && noStream.error->isEmpty())
        << "no stream: an error without a reason";

    const Report closed = readAll(std::make_unique<QFile>(QStringLiteral("/nowhere/at all")), {});
    EXPECT_EQ(closed.error, QStringLiteral("No such file or directory"));

    int calls = 0;
    const auto failing = [&] { return ++calls > 3 ? qint64{-1} : qint64{2}; };
    EXPECT_EQ(textOf(readAll(std::make_unique<PortionedStream>("1\n2\n3\n4\n", failing), {}).table.get()),
              ": 1; 2; 3;")
        << "a failing stream ends the input";

    XPDataReader* running = nullptr;
    std::atomic<bool> started = false;
    const auto cancelling = [&]() -> qint64 {
        while (!started)
            std::this_thread::yield();
        running->cancelReading();
        return 2;
    };
    const Report cancelled =
        readAll(std::make_unique<PortionedStream>("1\n2\n", cancelling), {}, [&](XPDataReader& reader) {
            running = &reader;
            started = true;
        });
    EXPECT_EQ(cancelled.table, nullptr);
    EXPECT_FALSE(cancelled.error.has_value()) << "a cancelled read completes without a table";

    const auto throwing = []() -> qint64 { throw std::runtime_error("broken stream"); };
    EXPECT_EQ(readAll(std::make_unique<PortionedStream>("1", throwing), {}).error,
              QStringLiteral("line 1: broken stream"));
}

TEST(XPDataReader, RefusesWhatItHasNoRoomForAndNamesTheLine) {
    const struct {
        const char* name;
        QByteArray text;
        Settings settings;
        const char* expected;
    } rows[] = {
        {"a late wide row",
         QByteArray("1\n").repeated(1000) + QByteArray(10'000, ','),
         {1, 0, 1, false, 1'000'000},
         "line 1001: the table would need 2 MB, more than the 1 MB it may take"},
        {"too many rows",
         QByteArray("1,2\r\n").repeated(40'000),
         {1, 0, 1, false, 1'000'000},
         "line 31251: the table would need 2 MB, more than the 1 MB it may take"},
        {"a line of commas",
         QByteArray(200'000, ','),
         {1, 0, 1, false, 1'000'000},
         "line 1: the table would need 2 MB, more than the 1 MB it may take"},
        {"more names than room",
         QByteArray(20'000, ','),
         {1, 0, 1, true, 1'000'000},
         "line 1: the table would need 2 MB, more than the 1 MB it may take"},
        {"columns beside long names",
         QByteArray(200'000, 'x') + "\n" + QByteArray("1\n").repeated(40'000),
         {1, 0, 1, true, 1'000'000},
         "line 24986: the table would need 2 MB, more than the 1 MB it may take"},
        {"an unclosed quote",
         "1\n2,\"" + QByteArray(65 << 20, 'x'),
         {1},
         "line 2: a field is longer than 64 MiB"},
    };
    for (const auto& row : rows) {
        const Report report = readAll(bufferOf(row.text), row.settings);
        EXPECT_EQ(report.error.value_or(QString()).toStdString(), row.expected) << row.name;
    }
    const QByteArray wide = QByteArray("7,").repeated(9'999) + "8\n";
    const auto table = readAll(bufferOf(wide + wide), {1}).table;
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->columnsNumber(), 10'000U);
    EXPECT_EQ(table->column(9'999)[1], 8);
}

} // namespace
