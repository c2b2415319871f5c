// Files that change under the reader: every read ends, with the beginning of one of the file's versions.
#include "EmbeddedPlugins/TextFile/XPDataReader.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QFile>

#include <atomic>
#include <random>

namespace {

/// A file to which something happens once, when the reader has come to `place`.
class DisturbedFile : public QFile {
  public:
    DisturbedFile(const QString& path, qint64 place, std::function<void()> disturb)
        : QFile(path), m_place(place), m_disturb(std::move(disturb)) {}

  protected:
    qint64 readData(char* data, qint64 greatest) override {
        if (m_at >= m_place && m_disturb)
            std::exchange(m_disturb, {})();
        const qint64 length = QFile::readData(data, greatest);
        m_at += std::max<qint64>(length, 0);
        return length;
    }

  private:
    qint64 m_at = 0;
    qint64 m_place;
    std::function<void()> m_disturb;
};

struct Outcome {
    std::shared_ptr<XPTableData> table;
    QString error;
};

Outcome readingOf(std::unique_ptr<QIODevice> stream) {
    Outcome outcome;
    std::atomic<bool> isDone = false;
    XPDataReader reader(std::move(stream));
    reader.setDelimiterType(1);
    const auto end = [&](std::shared_ptr<XPTableData> table, const QString& error) {
        outcome = {std::move(table), error};
        isDone = true;
        isDone.notify_all();
    };
    reader.setCompletionHandler([&](std::shared_ptr<XPTableData> table) { end(std::move(table), {}); });
    reader.setErrorHandler([&](const QString& reason) { end(nullptr, reason); });
    reader.startReading();
    isDone.wait(false);
    return outcome;
}

/// Rows "version, number of the row".
QByteArray version(int number, int rows) {
    QByteArray text;
    for (int row = 0; row < rows; ++row)
        text += QByteArray::number(number) + ',' + QByteArray::number(row) + '\n';
    return text;
}

/// Rows of one version from its first on; the last one may be cut.
bool isBeginningOfAVersion(const XPTableData& table) {
    if (table.rowsNumber() == 0)
        return true;
    const std::span<const double> versions = table.column(0);
    const std::span<const double> numbers = table.column(1);
    for (std::size_t row = 0; row + 1 < table.rowsNumber(); ++row)
        if (versions[row] != versions[0] || numbers[row] != static_cast<double>(row))
            return false;
    return versions[0] == 1 || versions[0] == 2;
}

TEST(ChangingFile, GivesTheBeginningOfOneOfItsVersions) {
    const support::ScratchFolder folder;
    const QString path = folder.path(QStringLiteral("data.csv"));
    const QString other = folder.path(QStringLiteral("other.csv"));
    std::mt19937 chance(7);
    constexpr int rows = 4'000;
    struct Row {
        const char* name;
        std::function<void()> disturb;
        std::uint64_t leastRows, greatestRows;
    };
    const Row kinds[] = {
        {"truncated", [&] { EXPECT_TRUE(QFile::resize(path, static_cast<qint64>(chance() % 20'000))); }, 0,
         rows},
        {"emptied and written anew",
         [&] {
             QFile file(path);
             EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
             file.write(version(1, 100));
         },
         0, rows},
        {"grown",
         [&] {
             QFile file(path);
             EXPECT_TRUE(file.open(QIODevice::Append));
             QByteArray more;
             for (int row = rows; row < rows + 1'000; ++row)
                 more += "1," + QByteArray::number(row) + '\n';
             file.write(more);
         },
         rows, rows + 1'000},
        {"replaced",
         [&] {
             folder.write(QStringLiteral("other.csv"), version(2, rows));
             EXPECT_EQ(::rename(qPrintable(other), qPrintable(path)), 0);
         },
         rows, rows},
        {"deleted", [&] { EXPECT_TRUE(QFile::remove(path)); }, rows, rows},
    };
    for (const Row& kind : kinds) {
        for (int i = 0, n = support::rounds(20); i < n; ++i) {
            const QByteArray bytes = version(1, rows);
            folder.write(QStringLiteral("data.csv"), bytes);
            const auto place = static_cast<qint64>(chance() % static_cast<unsigned>(bytes.size()));
            SCOPED_TRACE(testing::Message() << kind.name << " at byte " << place);
            const Outcome outcome = readingOf(std::make_unique<DisturbedFile>(path, place, kind.disturb));
            ASSERT_TRUE(outcome.table) << outcome.error.toStdString();
            EXPECT_TRUE(isBeginningOfAVersion(*outcome.table));
            EXPECT_GE(outcome.table->rowsNumber(), kind.leastRows);
            EXPECT_LE(outcome.table->rowsNumber(), kind.greatestRows + 1);
        }
    }
}

} // namespace
