#include "TimeTable.h"

#include <gtest/gtest.h>

#include <vector>

namespace qmz {
namespace {

TEST(TimeTableTest, SharesEqualTimesAndKeepsEveryValue) {
    struct Case {
        const char* what;
        std::vector<int64_t> times;
        size_t distinct;
    };
    std::vector<int64_t> manyDistinct;
    for (int64_t t = 0; t < 70000; ++t) { // past the look-up's limit
        manyDistinct.push_back(t * 3);
    }
    manyDistinct.push_back(0);
    const std::vector<Case> cases = {
        {"one time", {5, 5, 5, 5}, 1},
        {"alternating", {1, 2, 1, 2, 1}, 2},
        {"extremes", {INT64_MIN, 0, INT64_MAX, INT64_MIN, -1}, 4},
        {"many distinct", manyDistinct, 70000},
    };
    TimeTable reused; // as a volume index reopened
    reused.Add(1);
    reused.Clear();
    EXPECT_EQ(reused.Size(), 0u);
    EXPECT_EQ(reused.At(reused.Add(7)), 7);
    for (const Case& c : cases) {
        TimeTable table;
        std::vector<uint32_t> indices;
        for (int64_t t : c.times) {
            indices.push_back(table.Add(t));
        }
        EXPECT_EQ(table.Size(), c.distinct) << c.what;
        table.FinishAdding();
        for (size_t i = 0; i < c.times.size(); ++i) {
            EXPECT_EQ(table.At(indices[i]), c.times[i]) << c.what << " " << i;
            for (size_t j = 0; j < i && c.times.size() < 100; ++j) {
                EXPECT_EQ(indices[i] == indices[j], c.times[i] == c.times[j]) << c.what;
            }
        }
    }
}

} // namespace
} // namespace qmz
