#include "site/Number.h"

#include <gtest/gtest.h>

namespace host {

TEST(Number, IsTheWholeTextAndWithinItsBounds) {
    EXPECT_EQ(parseNumber("17", 0, 17), 17U);
    EXPECT_EQ(parseNumber<long long>("-3", -3, 5), -3);
    for (const char* const text : {"", " 1", "1 ", "+1", "-1", "18", "1.0", "0x1", "99999999999999999999"})
        EXPECT_EQ(parseNumber(text, 0, 17), std::nullopt) << text;
    EXPECT_EQ(parseNumber<long long>("-4", -3, 5), std::nullopt);
}

} // namespace host
