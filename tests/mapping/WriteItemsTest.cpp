#include "WriteItems.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// Where a telegram begins, its count, and the values that it carries, a letter each.
struct Write {
    quint32 address;
    quint32 count;
    QByteArray values;
};

bool operator==(const Write& a, const Write& b) {
    return a.address == b.address && a.count == b.count && a.values == b.values;
}

void PrintTo(const Write& write, std::ostream* out) {
    *out << '(' << write.address << ", " << write.count << ", \"" << write.values.toStdString() << "\")";
}

using Writes = std::vector<Write>;

Writes writes(const sbus::DataByElement& elements) {
    Writes result;
    for (const SBusRequestItem& item : sbus::buildWriteItems(14, elements)) {
        EXPECT_EQ(item.command, 14u);
        result.push_back({item.address, item.count, item.data});
    }
    return result;
}

sbus::DataByElement run(int first, int last, const char* value = "a") {
    sbus::DataByElement elements;
    for (int element = first; element <= last; ++element)
        elements[element] = value;
    return elements;
}

} // namespace

TEST(WriteItem, TakesTheCommandOfItsMedia) {
    EXPECT_EQ(sbus::writeItem(QStringLiteral("R"), 7, 3, "xy"), (SBusRequestItem{14, 3, 7, "xy"}));
    EXPECT_EQ(sbus::writeItem(QStringLiteral("O"), 0, 0, ""), (SBusRequestItem{13, 0, 0, ""}));
    EXPECT_EQ(sbus::writeItem(QStringLiteral("I"), 7, 0, "x"), (SBusRequestItem{0, 0, 7, "x"}));
}

TEST(WriteItem, TakesANegativeElementAsItsUnsignedNumber) {
    EXPECT_EQ(sbus::writeItem(QStringLiteral("R"), -1, 1, "x").address, 4'294'967'295u);
}

TEST(WriteItems, OfNoElementsAreNone) {
    EXPECT_EQ(writes({}), Writes{});
}

TEST(WriteItems, OfALoneElementAreOneWithoutACount) {
    EXPECT_EQ(writes({{7, "a"}}), (Writes{{7, 0, "a"}}));
}

TEST(WriteItems, ShareATelegramAndStartAnewAfterAGap) {
    EXPECT_EQ(writes({{7, "a"}, {8, "b"}, {10, "c"}}), (Writes{{7, 2, "ab"}, {10, 0, "c"}}));
    EXPECT_EQ(writes({{7, "a"}, {9, "b"}, {10, "c"}}), (Writes{{7, 1, "a"}, {9, 2, "bc"}}));
}

TEST(WriteItems, CutALongRunAfterThirtyOneValues) {
    const QByteArray full(31, 'a');
    EXPECT_EQ(writes(run(1, 31)), (Writes{{1, 31, full}}));
    EXPECT_EQ(writes(run(1, 32)), (Writes{{1, 31, full}, {32, 1, "a"}}));
    EXPECT_EQ(writes(run(1, 33)), (Writes{{1, 31, full}, {32, 2, "aa"}}));
}

TEST(WriteItems, TakeTheElementAfterACutWhateverItsNumberIs) {
    const QByteArray full(31, 'a');
    sbus::DataByElement elements = run(1, 32);
    elements[40] = "b";
    EXPECT_EQ(writes(elements), (Writes{{1, 31, full}, {32, 2, "ab"}}));
    elements[50] = "c";
    EXPECT_EQ(writes(elements), (Writes{{1, 31, full}, {32, 2, "ab"}, {50, 0, "c"}}));
}

TEST(WriteItems, BeginAnewWhereAFullRunEndsAtAGap) {
    sbus::DataByElement elements = run(1, 31);
    elements[40] = "b";
    elements[41] = "c";
    EXPECT_EQ(writes(elements), (Writes{{1, 31, QByteArray(31, 'a')}, {40, 2, "bc"}}));
}

TEST(WriteItems, RunFromNegativeElementsToZeroAndOn) {
    EXPECT_EQ(writes(run(-2, 1)), (Writes{{4'294'967'294u, 4, "aaaa"}}));
    EXPECT_EQ(writes({{-5, "a"}, {-1, "b"}}), (Writes{{4'294'967'291u, 1, "a"}, {4'294'967'295u, 0, "b"}}));
}
