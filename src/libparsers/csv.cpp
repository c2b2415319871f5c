// The tokenisers behind callbacks, and the parts of their state machines that no sink takes part in.
#include "libparsers/csv.h"

#include "Core/Assertions.h"
#include "libparsers/csvTokenizing.h"

#include <cstring>
#include <utility>

namespace {

/// Calls a parser's callbacks. `lineRequired`: a line end without a callback for it is an error.
class CallbackSink {
  public:
    CallbackSink(const IParser& parser, bool lineRequired) : m_parser(parser), m_lineRequired(lineRequired) {}

    void field(std::string_view text) {
        if (!m_parser.mFieldCallback)
            return;
        m_text.assign(text);
        m_parser.mFieldCallback(m_text.c_str());
    }
    void line(char /*terminator*/) {
        if (m_lineRequired || m_parser.mLineCallback)
            m_parser.mLineCallback();
    }

  private:
    const IParser& m_parser;
    bool m_lineRequired;
    std::string m_text; ///< NUL-terminated
};

} // namespace

void IParser::append(std::string& buffer, const char* begin, const char* end) {
    const auto length = static_cast<std::size_t>(end - begin);
    if (length > longestField - std::min(longestField, buffer.size()))
        throw FieldTooLong();
    buffer.append(begin, length);
}

CSVParser::CSVParser(std::string delimiters)
    : mDelimiters(std::move(delimiters)), mFieldEnds(mDelimiters + "\n\r"), mStops(mDelimiters + "\n\r\"") {}

void CSVParser::parse(const char* data, std::size_t length) {
    CallbackSink sink(*this, true);
    tokenize({data, length}, sink);
}

void CSVParser::finishParsing() {
    CallbackSink sink(*this, true);
    finish(sink);
}

const char* CSVParser::quotedRun(const char* begin, const char* end) {
    const void* quote = std::memchr(begin, '"', static_cast<std::size_t>(end - begin));
    const char* const stop = quote == nullptr ? end : static_cast<const char*>(quote);
    append(mBuffer, begin, stop);
    if (quote == nullptr)
        return end;
    mState = ParserState::QUOTED_FIELD_QUOTE;
    return stop + 1;
}

std::string_view CSVParser::tailThatFinishes() const {
    return mState == ParserState::QUOTED_FIELD ? "\"\n" : "\n";
}

void CSVParser::checkFinished() const {
    xAssert(mState == ParserState::FIELD, "mState==ParserState::FIELD");
}

NumbersExtractor::NumbersExtractor() {
    mBuffer.reserve(16);
}

void NumbersExtractor::parse(const char* data, std::size_t length) {
    CallbackSink sink(*this, false);
    tokenize({data, length}, sink);
}

void NumbersExtractor::finishParsing() {
    CallbackSink sink(*this, false);
    finish(sink);
}
