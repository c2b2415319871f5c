// The reader with its table: a stream that hands out its bytes in odd portions gives the table of one that
// hands them out whole.
#include "EmbeddedPlugins/TextFile/XPDataReader.h"
#include "FuzzedBytes.h"

#include <QBuffer>

#include <algorithm>
#include <bit>
#include <string>

namespace {

constexpr std::uint64_t memoryLimit = 64U << 20U;

class PortionedBuffer : public QBuffer {
  public:
    PortionedBuffer(std::string_view bytes, qint64 portion) : m_portion(portion) {
        setData(bytes.data(), static_cast<int>(bytes.size()));
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

  protected:
    qint64 readData(char* data, qint64 greatest) override {
        return QBuffer::readData(data, std::min(greatest, m_portion));
    }

  private:
    qint64 m_portion;
};

struct Settings {
    int delimiterType, skiplines, everyNthLine;
    bool extractColumnNames;
};

struct Outcome {
    std::shared_ptr<XPTableData> table;
    QString error;
};

Outcome readingOf(std::string_view bytes, const Settings& settings, qint64 portion) {
    Outcome outcome;
    {
        XPDataReader reader(std::make_unique<PortionedBuffer>(bytes, portion));
        reader.setDelimiterType(settings.delimiterType);
        reader.setSkiplines(settings.skiplines);
        reader.setEveryNthLine(settings.everyNthLine);
        reader.setExtractColumnNames(settings.extractColumnNames);
        reader.setMemoryLimit(memoryLimit);
        std::atomic<bool> isDone = false;
        reader.setCompletionHandler([&](std::shared_ptr<XPTableData> table) {
            outcome.table = std::move(table);
            isDone = true;
            isDone.notify_all();
        });
        reader.setErrorHandler([&](const QString& reason) {
            outcome.error = reason;
            isDone = true;
            isDone.notify_all();
        });
        reader.startReading();
        isDone.wait(false);
    }
    require((outcome.table != nullptr) != !outcome.error.isEmpty());
    return outcome;
}

bool areSame(const XPTableData& a, const XPTableData& b) {
    if (a.columnsNumber() != b.columnsNumber() || a.rowsNumber() != b.rowsNumber() ||
        a.columnNames() != b.columnNames())
        return false;
    for (std::uint64_t column = 0; column < a.columnsNumber(); ++column) {
        const std::span<const double> left = a.column(column);
        const std::span<const double> right = b.column(column);
        const auto sameBits = [](double x, double y) {
            return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
        };
        if (!std::equal(left.begin(), left.end(), right.begin(), right.end(), sameBits))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedBytes input(bytes, size);
    const Settings settings{static_cast<int>(input.choice(7)), static_cast<int>(input.choice(5)),
                            static_cast<int>(input.choice(4)), input.choice(2) == 1};
    const auto portion = static_cast<qint64>(1 + input.choice(100));
    const std::string_view text = input.rest();
    const Outcome whole = readingOf(text, settings, XPDataReader::chunkSize);
    const Outcome portioned = readingOf(text, settings, portion);
    require(whole.error == portioned.error);
    require((whole.table == nullptr) == (portioned.table == nullptr));
    require(whole.table == nullptr || areSame(*whole.table, *portioned.table));
    return 0;
}
