// The reporter, the per-thread policy and the text of failed assertions.
#include "Core/Assertions.h"

#include <cstdio>
#include <utility>

namespace {

thread_local AssertionPolicy threadPolicy = AssertionPolicy::Throw;

void writeToStandardError(const AssertionFailure& failure) {
    std::fprintf(stderr, "velquin: assertion: %s (%s:%d)\n", failure.what(), failure.sourcePath.c_str(),
                 failure.line);
}

AssertionReporter& reporterInForce() {
    static AssertionReporter reporter = writeToStandardError;
    return reporter;
}

std::string withoutExtension(std::string path) {
    const auto dot = path.rfind('.');
    const auto slash = path.rfind('/');
    if (dot != std::string::npos && (slash == std::string::npos || dot > slash))
        path.erase(dot);
    return path;
}

} // namespace

AssertionFailure::AssertionFailure(const std::string& text, std::string path, int lineNumber)
    : std::runtime_error(text), sourcePath(std::move(path)), line(lineNumber) {}

AssertionScope::AssertionScope(AssertionPolicy policy) : m_previous(std::exchange(threadPolicy, policy)) {}

AssertionScope::~AssertionScope() {
    threadPolicy = m_previous;
}

AssertionReporter setAssertionReporter(AssertionReporter reporter) {
    return std::exchange(reporterInForce(), std::move(reporter));
}

std::string assertions::fillIn(std::string_view text, std::initializer_list<std::string> arguments) {
    std::string filled;
    const auto* next = arguments.begin();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            filled += text[i];
            continue;
        }
        ++i;
        while (i < text.size() && text[i] == 'l')
            ++i;
        if (i < text.size() && text[i] == '%')
            filled += '%';
        else if (next != arguments.end())
            filled += *next++;
    }
    return filled;
}

void assertions::fail(const PlacedText& where, const std::string& text) {
    const AssertionFailure failure(text, withoutExtension(where.file), where.line);
    if (reporterInForce())
        reporterInForce()(failure);
    if (threadPolicy == AssertionPolicy::Throw)
        throw AssertionFailure(failure);
}
