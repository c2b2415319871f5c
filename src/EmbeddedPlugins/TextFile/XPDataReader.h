// Reads a byte stream of delimited text into a table, on a thread of its own.
#pragma once

#include "EmbeddedPlugins/Common/XPTableData.h"
#include "EmbeddedPlugins/TextFile/TableBuilder.h"
#include "libparsers/csv.h"

#include <QIODevice>
#include <QString>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

/// One read: made with a stream, configured, started once. It ends with exactly one call of one of its
/// handlers. Made, configured, started and destroyed on one thread.
///
/// Values of `delimiterType` (saved in documents): 0 numbers wherever they stand; fields split at 1 commas,
/// 2 semicolons, 3 tabs, 4 spaces, 5 spaces and tabs; any other: fields are whole lines.
class XPDataReader {
  public:
    /// Gets the table, its column ranges summarised; null when the read was cancelled. On the reader's
    /// thread.
    using CompletionHandler = std::function<void(std::shared_ptr<XPTableData>)>;
    /// Gets the reason without a file name; an empty one says that there was no stream. On the reader's
    /// thread, or within `startReading` when the read could not begin.
    using ErrorHandler = std::function<void(const QString& reason)>;

    /// Bytes of the input that are handed to the tokeniser at once.
    static constexpr std::size_t chunkSize = 4096;

    /// The stream, which may be null, is opened unless it is open; it is read and closed on the reader's
    /// thread.
    explicit XPDataReader(std::unique_ptr<QIODevice> inputStream);
    /// Cancels, and waits until the thread is through with its chunk. Not from a handler.
    ~XPDataReader();
    XPDataReader(const XPDataReader&) = delete;
    XPDataReader& operator=(const XPDataReader&) = delete;

    void setSkiplines(int lines) { m_selection.skiplines = lines; }
    void setEveryNthLine(int n) { m_selection.everyNthLine = n; }
    void setExtractColumnNames(bool extract) { m_selection.extractColumnNames = extract; }
    void setDelimiterType(int type) { m_delimiterType = type; }
    /// Bytes that the table may take; a table that would need more fails the read before it is allocated.
    void setMemoryLimit(std::uint64_t bytes) { m_memoryLimit = bytes; }
    void setCompletionHandler(CompletionHandler handler) { m_completionHandler = std::move(handler); }
    void setErrorHandler(ErrorHandler handler) { m_errorHandler = std::move(handler); }

    /// A new tokeniser for the delimiter type.
    std::unique_ptr<IParser> createParser() const;

    /// Starts the thread and returns.
    void startReading();

    /// Asks the read to end at its next chunk. Any thread.
    void cancelReading() { m_needStop = true; }
    bool isCancelled() const { return m_needStop; }

    /// Bytes consumed so far. Any thread.
    std::uint64_t readSoFar() const { return m_readSoFar; }

  private:
    void run();
    void readInto(XPTableData& table, TableBuilder& builder);
    template <class Parser>
    void feed(Parser& parser, TableBuilder& builder);
    void report(std::shared_ptr<XPTableData> table, const QString* errorReason);

    static constexpr std::size_t reserveSize = 65536;

    std::unique_ptr<QIODevice> m_inputStream;
    std::unique_ptr<std::array<char, reserveSize>> m_reserve; ///< memory for the report, given back before it
    LineSelection m_selection;
    int m_delimiterType = 0;
    std::uint64_t m_memoryLimit = std::numeric_limits<std::uint64_t>::max();
    CompletionHandler m_completionHandler;
    ErrorHandler m_errorHandler;
    std::atomic<bool> m_needStop = false;
    std::atomic<std::uint64_t> m_readSoFar = 0;
    std::thread m_thread;
};
