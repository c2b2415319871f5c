// Streaming tokenisers of delimited text: fields between delimiters, and numbers wherever they stand.
#pragma once

#include "libparsers/ByteScan.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// Raised when a field that is collected over several chunks outgrows `IParser::longestField`.
struct FieldTooLong : std::length_error {
    FieldTooLong() : std::length_error("a field is too long") {}
};

/// A tokeniser. Chunks may split a field or a line anywhere; the calls are the same for every split. One
/// thread.
///
/// Each tokeniser also has `tokenize(chunk, sink)` and `finish(sink)` (defined in csvTokenizing.h): the same
/// calls without a callable for each field, into a sink with
///   void field(std::string_view text); // valid during the call; inside the chunk wherever that holds the
///   whole field void line(char terminator);        // line feed or carriage return
/// `parse` and `finishParsing` are these two with a sink that calls the callbacks.
class IParser {
  public:
    /// Called with the NUL-terminated text of each field, valid only during the call. When it is not set,
    /// fields are dropped. A callback must not be replaced while it runs.
    std::function<void(const char*)> mFieldCallback;
    /// Called at each end of line: a line feed or a carriage return, each by itself.
    std::function<void()> mLineCallback;

    /// Bytes that a field may have.
    static constexpr std::size_t longestField = std::size_t{64} << 20U;

    IParser() = default;
    virtual ~IParser() = default;
    IParser(const IParser&) = delete;
    IParser& operator=(const IParser&) = delete;

    /// Consumes the next chunk.
    virtual void parse(const char* data, std::size_t length) = 0;
    /// The input has ended: hands out what is pending.
    virtual void finishParsing() = 0;

  protected:
    /// Appends to a field that a chunk's end, or a quote, split. Throws FieldTooLong.
    static void append(std::string& buffer, const char* begin, const char* end);
};

/// Where a CSVParser stands.
enum class ParserState {
    FIELD = 0,              ///< outside quotes
    QUOTED_FIELD = 1,       ///< inside a quoted run
    QUOTED_FIELD_QUOTE = 2, ///< after a double quote inside a quoted run
};

/// Fields split at a set of delimiter bytes, with double-quote quoting anywhere in a field. A doubled quote
/// within quotes is a quote; text after a closing quote is kept; line ends within quotes belong to the field.
/// An empty line is a line of one empty field.
class CSVParser : public IParser {
  public:
    /// Every byte of `delimiters` ends a field; with none, only line ends do.
    explicit CSVParser(std::string delimiters);

    /// Throws std::bad_function_call at a line end when `mLineCallback` is not set.
    void parse(const char* data, std::size_t length) override;
    /// Closes an open quote and ends a last line that has no line end.
    void finishParsing() override;

    template <class Sink>
    void tokenize(std::string_view chunk, Sink& sink);
    template <class Sink>
    void finish(Sink& sink);

  private:
    template <class Sink>
    const char* unquotedRun(const char* begin, const char* end, Sink& sink);
    const char* quotedRun(const char* begin, const char* end);
    template <class Sink>
    const char* runAfterQuote(const char* begin, const char* end, Sink& sink);
    template <class Sink>
    void endField(const char* begin, const char* end, Sink& sink);
    std::string_view tailThatFinishes() const;
    void checkFinished() const;

    std::string mDelimiters;
    ByteSet mFieldEnds; ///< the delimiters, line feed, carriage return
    ByteSet mStops;     ///< these and the double quote
    ParserState mState = ParserState::FIELD;
    std::uint32_t mColumn = 0;        ///< bytes since the last end of line
    std::string mBuffer;              ///< what earlier chunks, or quotes, hold of the field being collected
    const char* mLineBegin = nullptr; ///< where the bytes of the chunk begin that mColumn does not count yet
};

/// Where a NumbersExtractor stands.
enum class ExtractorState {
    START = 0,
    SEPARATOR = 1, ///< between numbers
    NUMBER = 2,
};

/// Every run of number bytes (digits, signs, points, and e or E inside a run), whatever stands between the
/// runs. A tab or comma that does not end a run is an empty field, so that empty cells keep their column.
class NumbersExtractor : public IParser {
  public:
    NumbersExtractor();

    void parse(const char* data, std::size_t length) override;
    /// Ends the last line only if the input ended inside a number.
    void finishParsing() override;

    template <class Sink>
    void tokenize(std::string_view chunk, Sink& sink);
    template <class Sink>
    void finish(Sink& sink);

  private:
    template <class Sink>
    void endNumber(const char* begin, const char* end, Sink& sink);

    ExtractorState mState = ExtractorState::START;
    std::string mBuffer;
};
