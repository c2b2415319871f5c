// The loops of the tokenisers, for any sink: include this where fields are consumed without callbacks.
#pragma once

#include "libparsers/csv.h"

#include <bit>

template <class Sink>
void CSVParser::tokenize(std::string_view chunk, Sink& sink) {
    const char* next = chunk.data();
    const char* const end = next + chunk.size();
    mLineBegin = next;
    while (next != end) {
        switch (mState) {
        case ParserState::FIELD:
            next = unquotedRun(next, end, sink);
            break;
        case ParserState::QUOTED_FIELD:
            next = quotedRun(next, end);
            break;
        case ParserState::QUOTED_FIELD_QUOTE:
            next = runAfterQuote(next, end, sink);
            break;
        }
    }
    mColumn += static_cast<std::uint32_t>(end - mLineBegin);
}

template <class Sink>
const char* CSVParser::unquotedRun(const char* begin, const char* end, Sink& sink) {
    const char* field = begin;
    for (const char* at = begin; at < end; at += std::min<std::ptrdiff_t>(scanBlock, end - at)) {
        const ScannedBlock block(at, end);
        for (std::uint64_t stops = mStops.membersIn(block); stops != 0; stops &= stops - 1) {
            const char* const stop = at + std::countr_zero(stops);
            if (*stop == '"') {
                append(mBuffer, field, stop);
                mState = ParserState::QUOTED_FIELD;
                return stop + 1;
            }
            endField(field, stop, sink);
            field = stop + 1;
        }
    }
    append(mBuffer, field, end);
    return end;
}

template <class Sink>
const char* CSVParser::runAfterQuote(const char* begin, const char* end, Sink& sink) {
    for (const char* at = begin; at != end; ++at) {
        if (*at == '"') {
            append(mBuffer, at, at + 1);
            mState = ParserState::QUOTED_FIELD;
            return at + 1;
        }
        if (mFieldEnds.contains(*at)) {
            endField(at, at, sink);
            mState = ParserState::FIELD;
            return at + 1;
        }
        append(mBuffer, at, at + 1);
    }
    return end;
}

/// Hands out the field whose last part is [begin, end); `*end` is the byte that ended it.
template <class Sink>
void CSVParser::endField(const char* begin, const char* end, Sink& sink) {
    if (mBuffer.empty()) {
        sink.field(std::string_view(begin, static_cast<std::size_t>(end - begin)));
    } else {
        append(mBuffer, begin, end);
        sink.field(std::string_view(mBuffer));
        mBuffer.clear();
    }
    if (*end == '\n' || *end == '\r') {
        sink.line(*end);
        mColumn = 0;
        mLineBegin = end + 1;
    }
}

template <class Sink>
void CSVParser::finish(Sink& sink) {
    if (mColumn == 0)
        return;
    tokenize(tailThatFinishes(), sink);
    checkFinished();
}

template <class Sink>
void NumbersExtractor::tokenize(std::string_view chunk, Sink& sink) {
    const char* number = chunk.data(); // where this chunk's part of the current number begins
    const char* const end = number + chunk.size();
    for (const char* at = number; at < end; at += std::min<std::ptrdiff_t>(scanBlock, end - at)) {
        const ScannedBlock block(at, end);
        const NumberMasks masks = numberMasksOf(block);
        for (std::size_t i = 0; i < block.size(); ++i) {
            if (mState != ExtractorState::NUMBER) {
                const std::uint64_t awake = masks.wake >> i;
                if (awake == 0)
                    break;
                i += static_cast<std::size_t>(std::countr_zero(awake));
                if (((masks.start >> i) & 1U) == 0) {
                    if (((masks.lines >> i) & 1U) != 0)
                        sink.line(at[i]);
                    else
                        sink.field(std::string_view());
                    continue;
                }
                mState = ExtractorState::NUMBER;
                number = at + i;
            }
            // The byte that ends a number is not looked at again, unless it ends the line too.
            const std::uint64_t pastNumber = ~masks.run >> i;
            if (pastNumber == 0)
                break;
            i += static_cast<std::size_t>(std::countr_zero(pastNumber));
            if (i >= block.size())
                break;
            endNumber(number, at + i, sink);
            if (((masks.lines >> i) & 1U) != 0)
                sink.line(at[i]);
        }
    }
    if (mState == ExtractorState::NUMBER)
        append(mBuffer, number, end);
}

template <class Sink>
void NumbersExtractor::endNumber(const char* begin, const char* end, Sink& sink) {
    if (mBuffer.empty()) {
        sink.field(std::string_view(begin, static_cast<std::size_t>(end - begin)));
    } else {
        append(mBuffer, begin, end);
        sink.field(std::string_view(mBuffer));
        mBuffer.clear();
    }
    mState = ExtractorState::SEPARATOR;
}

template <class Sink>
void NumbersExtractor::finish(Sink& sink) {
    if (mState == ExtractorState::NUMBER)
        tokenize("\n", sink);
}
