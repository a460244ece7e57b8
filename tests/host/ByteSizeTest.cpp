#include "site/ByteSize.h"

#include <gtest/gtest.h>

using host::byteSizeFault;
using host::parseByteSize;

TEST(ByteSize, CarriesItsUnit) {
    EXPECT_EQ(parseByteSize("24B"), 24U);
    EXPECT_EQ(parseByteSize("512kB"), 512'000U);
    EXPECT_EQ(parseByteSize("10MB"), 10'000'000U);
    EXPECT_EQ(parseByteSize("1GB"), 1'000'000'000U);
    EXPECT_EQ(parseByteSize("0B"), 0U);
}

TEST(ByteSize, IsNothingWithoutUnitOrNumber) {
    for (const char* const text : {"", "10", "MB", "10 MB", "1.5MB", "-1MB", "+1MB", "10mb", "10KB", "10MiB",
                                   "10MBs", "MB10", "0x10B"})
        EXPECT_FALSE(parseByteSize(text)) << text;
}

TEST(ByteSize, IsNothingBeyondWhatAFileCanHold) {
    EXPECT_EQ(parseByteSize("9223372036854775807B"), 9'223'372'036'854'775'807U);
    EXPECT_FALSE(parseByteSize("9223372036854775808B"));
    EXPECT_EQ(parseByteSize("9223372036GB"), 9'223'372'036'000'000'000U);
    EXPECT_FALSE(parseByteSize("9223372037GB"));
    EXPECT_FALSE(parseByteSize("18446744073709551616B"));
    EXPECT_FALSE(parseByteSize("18446744073709551615GB"));
}

TEST(ByteSize, OfACommandLineIsAbove0) {
    EXPECT_EQ(byteSizeFault("1B"), "");
    for (const char* const text : {"0B", "0MB", "10", ""})
        EXPECT_EQ(byteSizeFault(text), "\"" + std::string(text) +
                                           "\" is no size above 0; write a number and its unit: 512kB, 10MB, "
                                           "1GB");
}
