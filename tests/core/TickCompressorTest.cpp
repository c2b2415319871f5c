// Point shapes that share pixel and size are one entry, with the number of its hits.
#include "Core/TickCompressor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <tuple>
#include <vector>

namespace {

TEST(TickCompressor, CountsEveryKeyInTheOrderOfItsFirstHit) {
    // Few and many distinct keys, near and far: the table grows several times and meets long searches.
    for (const int spread : {1, 40, 3000}) {
        std::mt19937 random(1);
        std::uniform_int_distribution<int> coordinate(-spread, spread);
        TickCompressor ticks;
        std::map<std::tuple<int, int, int>, int> counts;
        std::vector<std::tuple<int, int, int>> order;
        for (int i = 0; i < 20000; ++i) {
            const TickKey key{coordinate(random), 1000 * coordinate(random), coordinate(random) % 3};
            const std::tuple id(key.x, key.y, key.size4);
            if (++counts[id] == 1)
                order.push_back(id);
            ticks.add(key);
        }
        ASSERT_EQ(ticks.entries().size(), order.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            const auto& [key, count] = ticks.entries()[i];
            ASSERT_EQ(std::tuple(key.x, key.y, key.size4), order[i])
                << "entry " << i << ", spread " << spread;
            ASSERT_EQ(count, counts[order[i]]) << "entry " << i << ", spread " << spread;
        }
        EXPECT_LE(ticks.entries().size(), ticks.bucketCount()) << "load factor above 1";
    }
}

TEST(TickCompressor, HashesKeysAsTheFormulaSays) {
    EXPECT_EQ((TickKey{1, 1, 1}.hash()), (1U << 12U) ^ (1U << 2U) ^ 1U);
    EXPECT_EQ((TickKey{0, -1, 0}.hash()), 0xfffffffcU);
}

} // namespace
