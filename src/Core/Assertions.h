// Programming-error checks with fixed texts, reported with the source path they stand at.
#pragma once

#include <concepts>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// A failed assertion: what the text says and where it stands.
struct AssertionFailure : std::runtime_error {
    AssertionFailure(const std::string& text, std::string path, int lineNumber);

    std::string sourcePath; ///< from src/ on and without the extension, e.g. "Classes/PlotModel/XCurve"
    int line;
};

/// What a failed assertion does on the calling thread.
enum class AssertionPolicy {
    Throw,      ///< raise AssertionFailure: workers, and the main thread while it loads a document
    ReportOnly, ///< report and go on with the call site's fallback: an edit by the user
};

/// Sets the policy of the calling thread for a scope. A thread starts with `Throw`.
class AssertionScope {
  public:
    explicit AssertionScope(AssertionPolicy policy);
    ~AssertionScope();
    AssertionScope(const AssertionScope&) = delete;
    AssertionScope& operator=(const AssertionScope&) = delete;

  private:
    AssertionPolicy m_previous;
};

/// Told of every failed assertion, on the failing thread, before the policy applies. The default writes
/// one line to standard error. Returns the reporter that was in force. Not to be changed while workers run.
using AssertionReporter = std::function<void(const AssertionFailure&)>;
AssertionReporter setAssertionReporter(AssertionReporter reporter);

namespace assertions {

/// A fixed text together with the place where it is written down.
struct PlacedText {
    std::string_view text;
    const char* file;
    int line;

    // Implicit, so that a literal brings its own place along.
    constexpr PlacedText(const char* fixedText, const char* atFile = __builtin_FILE(),
                         int atLine = __builtin_LINE())
        : text(fixedText), file(atFile), line(atLine) {}
};

inline std::string argumentText(std::string_view value) {
    return std::string(value);
}
template <std::integral T>
std::string argumentText(T value) {
    return std::to_string(value);
}

/// Replaces the directives of `text` (%@, %s, %d, %ld, ...) by `arguments`, in order; "%%" is a per cent
/// sign.
std::string fillIn(std::string_view text, std::initializer_list<std::string> arguments);

void fail(const PlacedText& where, const std::string& text);

} // namespace assertions

/// Reports a programming error unless `condition` holds. Returns `condition`, so that a call site can name
/// its fallback: `if (!xAssert(index < count, "Bad index %ld", index)) return {};`
/// Arguments are integers and UTF-8 texts. Throws AssertionFailure under AssertionPolicy::Throw.
template <class... Arguments>
bool xAssert(bool condition, assertions::PlacedText text, const Arguments&... arguments) {
    if (!condition) [[unlikely]]
        assertions::fail(text, assertions::fillIn(text.text, {assertions::argumentText(arguments)...}));
    return condition;
}
