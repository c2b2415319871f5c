// The reader's loop, and how every end of it becomes one report.
#include "EmbeddedPlugins/TextFile/XPDataReader.h"

#include "Core/Assertions.h"
#include "Platform/Core/Log.h"
#include "libparsers/csvTokenizing.h"

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

namespace {

constexpr std::uint64_t megabyte = 1'000'000;

/// In whole megabytes the need still is more than the limit.
QString tooLarge(std::uint64_t neededBytes, std::uint64_t limit) {
    const std::uint64_t allowed = limit / megabyte;
    const std::uint64_t needed = std::max(neededBytes / megabyte, allowed + 1);
    return QStringLiteral("the table would need %1 MB, more than the %2 MB it may take")
        .arg(needed)
        .arg(allowed);
}

QString atLine(const TableBuilder& builder, const QString& reason) {
    return QStringLiteral("line %1: %2").arg(builder.currentLine()).arg(reason);
}

} // namespace

XPDataReader::XPDataReader(std::unique_ptr<QIODevice> inputStream) : m_inputStream(std::move(inputStream)) {}

XPDataReader::~XPDataReader() {
    cancelReading();
    if (m_thread.joinable())
        m_thread.join();
}

std::unique_ptr<IParser> XPDataReader::createParser() const {
    constexpr std::array<const char*, 5> delimiters{",", ";", "\t", " ", " \t"};
    if (m_delimiterType == 0)
        return std::make_unique<NumbersExtractor>();
    if (m_delimiterType > 0 && static_cast<std::size_t>(m_delimiterType) <= delimiters.size())
        return std::make_unique<CSVParser>(delimiters[static_cast<std::size_t>(m_delimiterType) - 1]);
    logMethod("-[XPDataReader createParser]",
              QStringLiteral("Unknown delimiter type %1").arg(m_delimiterType));
    return std::make_unique<CSVParser>("");
}

void XPDataReader::startReading() {
    if (m_inputStream == nullptr) {
        if (m_errorHandler)
            m_errorHandler(QString());
        return;
    }
    QString reason;
    m_reserve = std::make_unique<std::array<char, reserveSize>>();
    if (!m_inputStream->isOpen() && !m_inputStream->open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        reason = m_inputStream->errorString();
    } else {
        try {
            m_thread = std::thread(&XPDataReader::run, this);
            return;
        } catch (const std::system_error& error) {
            reason = QStringLiteral("no thread to read it: ") + QString::fromLocal8Bit(error.what());
        }
    }
    report(nullptr, &reason);
}

/// The thread. Nothing that is thrown leaves it.
void XPDataReader::run() {
    std::optional<QString> reason;
    std::shared_ptr<XPTableData> table;
    try {
        table = std::make_shared<XPTableData>();
        TableBuilder builder(*table, m_selection);
        try {
            readInto(*table, builder);
        } catch (const TableTooLarge& error) {
            reason = atLine(builder, tooLarge(error.neededBytes, m_memoryLimit));
        } catch (const FieldTooLong&) {
            reason = atLine(
                builder, QStringLiteral("a field is longer than %1 MiB").arg(IParser::longestField >> 20U));
        } catch (const std::bad_alloc&) {
            reason = atLine(builder, QStringLiteral("not enough memory"));
        } catch (const AssertionFailure&) { // the table got no memory: the only one on this road
            reason = atLine(builder, QStringLiteral("not enough memory"));
        } catch (const std::exception& error) {
            reason = atLine(builder, QString::fromUtf8(error.what()));
        }
    } catch (...) {
        reason = QStringLiteral("not enough memory");
    }
    if (reason || isCancelled())
        table.reset();
    report(std::move(table), reason && !isCancelled() ? &*reason : nullptr);
    m_inputStream->close();
}

void XPDataReader::readInto(XPTableData& table, TableBuilder& builder) {
    table.setMemoryLimit(m_memoryLimit);
    const std::unique_ptr<IParser> parser = createParser();
    if (auto* numbers = dynamic_cast<NumbersExtractor*>(parser.get()))
        feed(*numbers, builder);
    else if (auto* fields = dynamic_cast<CSVParser*>(parser.get()))
        feed(*fields, builder);
    if (!isCancelled())
        table.summarizeColumns();
}

template <class Parser>
void XPDataReader::feed(Parser& parser, TableBuilder& builder) {
    // Short decimals are read in windows that may begin before their text.
    std::array<char, shortDecimal::window + chunkSize> buffer{};
    char* const chunk = buffer.data() + shortDecimal::window;
    while (!isCancelled()) {
        // Files of the system's own making have no size and nothing "available": only reading tells. A
        // failing read ends the input; what came before it is the table.
        const qint64 length = m_inputStream->read(chunk, chunkSize);
        if (length <= 0) {
            parser.finish(builder);
            builder.finish();
            return;
        }
        const std::string_view bytes(chunk, static_cast<std::size_t>(length));
        builder.setChunk(bytes);
        parser.tokenize(bytes, builder);
        m_readSoFar.fetch_add(bytes.size(), std::memory_order_relaxed);
    }
}

void XPDataReader::report(std::shared_ptr<XPTableData> table, const QString* errorReason) {
    m_reserve.reset();
    const auto log = [](const char* text) {
        try {
            logMethod("-[XPDataReader startReading]", QString::fromUtf8(text));
        } catch (const std::bad_alloc&) {
            // Not even a line in the log can be had.
        }
    };
    try {
        if (errorReason != nullptr && m_errorHandler)
            m_errorHandler(*errorReason);
        else if (errorReason == nullptr && m_completionHandler)
            m_completionHandler(std::move(table));
    } catch (const std::exception& error) {
        log(error.what());
    } catch (...) {
        log("a handler failed");
    }
}
