// Expressions that the bytes make up from a grammar: the road that each takes gives the parser's bits and
// errors.
#include "FuzzedBytes.h"
#include "expression/EvaluationRoads.h"
#include "expression/ExpressionGrammar.h"

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const EvaluationRoads roads;
    FuzzedBytes input(bytes, size);
    ExpressionGrammar grammar([&input](unsigned n) { return input.choice(n); });
    const std::string difference = roads.difference(grammar.expression());
    if (!difference.empty())
        std::fprintf(stderr, "%s\n", difference.c_str());
    require(difference.empty());
    return 0;
}
