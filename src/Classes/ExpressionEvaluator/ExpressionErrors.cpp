// The library wraps an error thrown inside a function in one of its own and keeps of it the message alone.
// Here each message begins with its code, so the code survives the wrapping and is cut out before anyone sees
// it.
#include "Classes/ExpressionEvaluator/ExpressionErrors.h"

#include <muparserx/mpParser.h>

#include <charconv>
#include <new>
#include <optional>
#include <string_view>

namespace {

constexpr char tagMark = '\x1b'; // on both sides of a code; in no message

class TaggedMessages final : public mup::ParserMessageProviderEnglish {
  protected:
    void InitErrorMessages() override {
        ParserMessageProviderEnglish::InitErrorMessages();
        for (std::size_t code = 0; code < m_vErrMsg.size(); ++code)
            m_vErrMsg[code] = tagMark + std::to_string(code) + tagMark + m_vErrMsg[code];
    }
};

/// The code that the first tag of a message tells.
std::optional<int> codeIn(std::string_view message) {
    const std::size_t mark = message.find(tagMark);
    int code = 0;
    if (mark == std::string_view::npos ||
        std::from_chars(message.data() + mark + 1, message.data() + message.size(), code).ec != std::errc())
        return {};
    return code;
}

std::string withoutTags(std::string_view message) {
    std::string text;
    while (!message.empty()) {
        const std::size_t mark = message.find(tagMark);
        text += message.substr(0, mark);
        const std::size_t end = mark == std::string_view::npos ? mark : message.find(tagMark, mark + 1);
        message.remove_prefix(end == std::string_view::npos ? message.size() : end + 1);
    }
    return text;
}

} // namespace

void expressionErrors::prepareLibrary() {
    // The library builds some of its tables at their first use: an erroneous expression touches them all.
    static const bool prepared = [] {
        static auto* const messages = new TaggedMessages; // the library owns it
        mup::ParserX::ResetErrorMessageProvider(messages);
        mup::ParserX parser(mup::pckALL_NON_COMPLEX);
        try {
            parser.SetExpr("1+");
            parser.Eval();
        } catch (const mup::ParserError& error) {
            return !error.GetMsg().empty();
        }
        return true;
    }();
    static_cast<void>(prepared);
}

namespace {

/// Syntax, type, name and argument errors end an evaluation. The library lists three faults of the text
/// itself behind the errors of single rows.
bool endsEvaluation(int code) {
    switch (code) {
    case mup::ecMISSING_SQR_BRACKET:
    case mup::ecMISSING_CURLY_BRACKET:
    case mup::ecUNKNOWN_ESCAPE_SEQUENCE:
        return true;
    default:
        return code < mup::ecDOMAIN_ERROR;
    }
}

} // namespace

RowError expressionErrors::describe(mup::ParserError& error) {
    int code = error.GetCode();
    const std::string& inner = error.GetContext().Hint;
    if (code == mup::ecEVAL && !inner.empty())
        code = codeIn(inner).value_or(mup::ecUNDEFINED);
    return {endsEvaluation(code), withoutTags(error.GetMsg())};
}

RowError expressionErrors::describe(const std::exception& error) {
    const bool exhausted = dynamic_cast<const std::bad_alloc*>(&error) != nullptr;
    return {true, exhausted ? "The expression needs more memory than there is." : error.what()};
}
