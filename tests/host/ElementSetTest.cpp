#include "plan/ElementSet.h"

#include <gtest/gtest.h>

TEST(ElementSet, HoldsTheElementsOfItsTelegrams) {
    const host::ElementSet set({{'R', 10, 5}, {'R', 20, 1}, {'F', 0, 3}});
    for (const unsigned number : {10U, 14U, 20U})
        EXPECT_TRUE(set.contains({'R', number})) << number;
    for (const unsigned number : {9U, 15U, 19U, 21U, 2U})
        EXPECT_FALSE(set.contains({'R', number})) << number;
    EXPECT_TRUE(set.contains({'F', 2}));
    EXPECT_FALSE(set.contains({'F', 3}));
    EXPECT_FALSE(set.contains({'T', 10}));
    EXPECT_FALSE(host::ElementSet({}).contains({'R', 0}));
}
