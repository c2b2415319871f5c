// Both tokenisers: the calls for a text in one chunk are the calls for any split of it.
#include "FuzzedBytes.h"
#include "libparsers/csv.h"

#include <algorithm>
#include <memory>
#include <string>

namespace {

/// Every call as text: a field between bars, a line end as a line end.
std::string callsOf(IParser& parser, std::string_view text, std::size_t portion) {
    std::string calls;
    parser.mFieldCallback = [&calls](const char* field) { (calls += '|') += field; };
    parser.mLineCallback = [&calls] { calls += '\n'; };
    for (std::size_t i = 0; i < text.size(); i += portion) {
        // Of its own, so that a read beyond the chunk's end is found.
        const std::string chunk(text.substr(i, portion));
        parser.parse(chunk.data(), chunk.size());
    }
    parser.finishParsing();
    return calls;
}

std::unique_ptr<IParser> makeParser(unsigned kind) {
    static constexpr const char* delimiters[] = {",", ";", "\t", " ", " \t", ""};
    if (kind == 0)
        return std::make_unique<NumbersExtractor>();
    return std::make_unique<CSVParser>(delimiters[kind - 1]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedBytes input(bytes, size);
    const unsigned kind = input.choice(7);
    const std::size_t portion = 1 + input.choice(80);
    const std::string_view text = input.rest();
    const auto whole = callsOf(*makeParser(kind), text, std::max<std::size_t>(text.size(), 1));
    require(whole == callsOf(*makeParser(kind), text, portion));
    return 0;
}
