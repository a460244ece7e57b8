#pragma once

#include "Plant.h"

#include <gtest/gtest.h>

// Tests that hold on every kind of line.
class EveryLine : public testing::TestWithParam<LineType> {};

inline std::string nameOfLine(const testing::TestParamInfo<LineType>& info) {
    switch (info.param) {
    case LineType::Ethernet:
        return "Ethernet";
    case LineType::SerialDataMode:
        return "SerialDataMode";
    case LineType::SerialBreakMode:
        return "SerialBreakMode";
    }
    return "Unknown";
}

#define ON_EVERY_LINE(suite)                                                                                 \
    INSTANTIATE_TEST_SUITE_P(                                                                                \
        On, suite, testing::Values(LineType::Ethernet, LineType::SerialDataMode, LineType::SerialBreakMode), \
        nameOfLine)
