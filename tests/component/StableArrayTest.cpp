#include "StableArray.h"

#include <gtest/gtest.h>

TEST(StableArray, KeepsEachObjectInItsPlaceAndInOrder) {
    StableArray<int> array;
    std::vector<int*> added;
    for (int value = 0; value < 5000; ++value) {
        added.push_back(&array.add());
        EXPECT_EQ(*added.back(), 0);
        *added.back() = value;
    }
    EXPECT_EQ(array.size(), 5000U);
    std::size_t index = 0;
    array.forEach([&](int& object) {
        ASSERT_LT(index, added.size());
        EXPECT_EQ(&object, added[index]);
        EXPECT_EQ(object, static_cast<int>(index));
        ++index;
    });
    EXPECT_EQ(index, 5000U);
}

TEST(StableArray, HasNothingUntilSomethingIsAdded) {
    StableArray<int> array;
    array.forEach([](int) { ADD_FAILURE(); });
    EXPECT_EQ(array.size(), 0U);
}

TEST(StableArray, DestroysWhatItHasWhenCleared) {
    const auto shared = std::make_shared<int>(7);
    StableArray<std::shared_ptr<int>> array;
    for (int count = 0; count < 100; ++count)
        array.add() = shared;
    EXPECT_EQ(shared.use_count(), 101);
    array.clear();
    EXPECT_EQ(shared.use_count(), 1);
    EXPECT_EQ(array.size(), 0U);
    array.add() = shared;
    int seen = 0;
    array.forEach([&](const std::shared_ptr<int>&) { ++seen; });
    EXPECT_EQ(seen, 1);
}
