#include "NumberTable.h"

#include <gtest/gtest.h>

#include <map>

namespace {

// Numbers without gaps, with gaps and far apart, in an order of no meaning.
const std::vector<unsigned> numbers{3, 1, 2, 0, 4'294'967'295, 60, 500, 2'147'483'648, 61};

} // namespace

TEST(NumberTable, FindsWhatWasEnteredAndNothingElse) {
    std::vector<int> objects(numbers.size());
    NumberTable<int> table;
    for (std::size_t index = 0; index < numbers.size(); ++index)
        table.enter(numbers[index], &objects[index], index + 1);
    for (std::size_t index = 0; index < numbers.size(); ++index)
        EXPECT_EQ(table.find(numbers[index]), &objects[index]) << numbers[index];
    for (const unsigned number : {4U, 59U, 62U, 499U, 501U, 2'147'483'647U, 4'294'967'294U})
        EXPECT_EQ(table.find(number), nullptr) << number;
}

TEST(NumberTable, HandsOutEachNumberWithItsObject) {
    std::vector<int> objects(numbers.size());
    NumberTable<int> table;
    std::map<unsigned, int*> expected;
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        table.enter(numbers[index], &objects[index], index + 1);
        expected[numbers[index]] = &objects[index];
    }
    std::map<unsigned, int*> found;
    table.forEach([&](unsigned number, int& object) {
        EXPECT_TRUE(found.emplace(number, &object).second) << number << " twice";
    });
    EXPECT_EQ(found, expected);
}

TEST(NumberTable, FindsADistantNumberThatTheTableHasGrownBeyond) {
    std::vector<int> objects(1001);
    NumberTable<int> table;
    table.enter(500, &objects[0], 1);
    for (unsigned number = 1; number <= 1000; ++number)
        if (number != 500)
            table.enter(number, &objects[number], number);
    EXPECT_EQ(table.find(500), &objects[0]);
    EXPECT_EQ(table.find(1000), &objects[1000]);
}

TEST(NumberTable, FindsAThousandNumbersOfEveryDistribution) {
    for (const unsigned step : {1U, 1000U, 65'536U, 4'294'967U, 1'640'531'527U}) {
        constexpr unsigned first = 40'001;
        std::vector<int> objects(1000);
        NumberTable<int> table;
        for (unsigned index = 0; index < 1000; ++index)
            table.enter(first + index * step, &objects[index], index + 1);
        for (unsigned index = 0; index < 1000; ++index)
            ASSERT_EQ(table.find(first + index * step), &objects[index]) << step << ", " << index;
        EXPECT_EQ(table.find(first - 1), nullptr) << step;
    }
}

TEST(NumberTable, IsEmptyWhenCleared) {
    int object = 0;
    NumberTable<int> table;
    table.enter(1, &object, 1);
    table.enter(4'000'000'000, &object, 2);
    table.clear();
    EXPECT_EQ(table.find(1), nullptr);
    EXPECT_EQ(table.find(4'000'000'000), nullptr);
    table.forEach([](unsigned number, int&) { ADD_FAILURE() << number; });
}
